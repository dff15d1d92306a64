#include "cli/health_card.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <utility>

#include "cli/file_content.h"
#include "cli/table_list.h"
#include "cli/table_shape.h"
#include "cli/text.h"
#include "cli/text_facts.h"
#include "schema/format.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

std::string Line(char const* label, std::string const& value) {
  std::string text = std::string("  ") + label;
  text.resize(std::max<std::size_t>(text.size() + 1, 11), ' ');
  return text + value + "\n";
}

std::string HeaderForm(DatabaseFile const& file) {
  if (file.size_bytes == 0) return "none: the file is empty";
  if (!file.has_known_start) return "unknown: this is no database file";
  if (file.header_bytes == 0) {
    return "none: version 2014, string sizes in bytes";
  }
  std::string form = "version " + std::to_string(file.version);
  form += file.header_bytes == static_cast<std::int64_t>(format::kHeaderSize)
              ? " with time"
              : " without time";
  if (file.version == format::kHeaderlessVersion) {
    form += ", string sizes in bytes";
  }
  return form;
}

std::string DateAndTime(std::int64_t seconds) {
  if (seconds == 0) return "unknown";
  if (seconds < 0 || seconds >= kEndOfDates) {
    return "no date: " + std::to_string(seconds);
  }
  using std::chrono::days;
  std::chrono::sys_seconds const time{std::chrono::seconds(seconds)};
  auto const midnight = std::chrono::floor<days>(time);
  std::chrono::year_month_day const date(midnight);
  std::chrono::hh_mm_ss const clock(time - midnight);
  char text[64];
  static_cast<void>(std::snprintf(
      text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d UTC",
      static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
      static_cast<unsigned>(date.day()),
      static_cast<int>(clock.hours().count()),
      static_cast<int>(clock.minutes().count()),
      static_cast<int>(clock.seconds().count())));
  return text;
}

std::string Role(std::string const& path) {
  if (IsUserFile(path)) return "user file";
  std::string const tail =
      path.substr(path.size() - std::min<std::size_t>(path.size(), 4));
  if (zWString::fromUtf8(tail).ToUpper() == zWString(u".UDB")) {
    return "main file; as a user file it would have to end in \".UDB\"";
  }
  return "main file";
}

std::string RowsText(TableSummary const& table) {
  return table.damaged ? "DAMAGED" : Count(table.row_count, "row");
}

std::string TableLines(DatabaseFile const& file) {
  if (file.has_damaged_list) return Line("tables", "DAMAGED: cannot be listed");
  std::string lines = Line(
      "tables", Count(static_cast<long long>(file.tables.size()), "table") +
                    ", " + Count(file.RowCount(), "row"));
  std::size_t name_width = 0;
  std::size_t rows_width = 0;
  for (TableSummary const& table : file.tables) {
    name_width = std::max(name_width, DisplayWidth(table.name));
    rows_width = std::max(rows_width, RowsText(table).size());
  }
  for (TableSummary const& table : file.tables) {
    std::string const rows = RowsText(table);
    lines += "    " + Escape(table.name);
    lines.append(name_width - DisplayWidth(table.name) + 2, ' ');
    lines.append(rows_width - rows.size(), ' ');
    lines += rows + "  " + Escape(table.columns) + "\n";
  }
  return lines;
}

std::string LanguagesText(HealthCard const& card) {
  if (card.languages > 0) return "in " + Count(card.languages, "language");
  return card.verdict == Verdict::kEmpty ? "none" : "cannot be read";
}

nlohmann::ordered_json TablesAsJson(DatabaseFile const& file) {
  std::vector<TableShape> shapes;
  // What cannot be read has no columns.
  if (!file.has_damaged_list && !file.tables.empty()) {
    static_cast<void>(ReadShapes(file.path, &shapes));
  }
  auto tables = nlohmann::ordered_json::array();
  for (std::size_t i = 0; i < file.tables.size(); ++i) {
    TableSummary const& table = file.tables[i];
    auto columns = nlohmann::ordered_json::array();
    for (std::size_t j = 0; i < shapes.size() && j < shapes[i].columns.size();
         ++j) {
      columns.push_back({{"name", shapes[i].columns[j].name},
                         {"type", TypeName(shapes[i].columns[j].type)}});
    }
    nlohmann::ordered_json rows;
    if (!table.damaged) rows = table.row_count;
    tables.push_back({{"name", table.name},
                      {"rows", std::move(rows)},
                      {"damaged", table.damaged},
                      {"columns", std::move(columns)}});
  }
  return tables;
}

nlohmann::ordered_json OrNull(std::string const& text) {
  return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

}  // namespace

std::optional<Problem> ExamineFile(std::string const& path, HealthCard* card) {
  *card = HealthCard();
  if (auto problem = ReadDatabaseFile(path, &card->file)) return problem;
  DatabaseFile const& file = card->file;
  bool is_damaged = file.IsDamaged();
  if (!file.has_damaged_list && !file.tables.empty()) {
    FileContent const content(path);
    for (TableContent const& table : content.tables()) {
      is_damaged = is_damaged || !table.loaded;
    }
    card->languages = LanguagesOf(content);
  }
  card->verdict = is_damaged            ? Verdict::kDamaged
                  : file.tables.empty() ? Verdict::kEmpty
                                        : Verdict::kSound;
  return std::nullopt;
}

char const* VerdictText(Verdict verdict) {
  switch (verdict) {
    case Verdict::kSound:
      return "sound";
    case Verdict::kEmpty:
      return "empty";
    case Verdict::kDamaged:
      break;
  }
  return "damaged";
}

std::string CardAsText(HealthCard const& card) {
  DatabaseFile const& file = card.file;
  std::string text = file.path + "\n";
  text += Line("role", Role(file.path));
  text += Line("header", HeaderForm(file));
  text += Line("written", DateAndTime(file.time_stamp));
  text += Line("size", Count(file.size_bytes, "byte"));
  text += TableLines(file);
  text += Line("texts", LanguagesText(card));
  if (!card.index_file.empty()) {
    text += Line("index", card.index_file + ": " + card.index_state);
  }
  return text + Line("verdict", VerdictText(card.verdict));
}

std::string CardsAsJson(std::vector<HealthCard> const& cards) {
  nlohmann::ordered_json document;
  document["files"] = nlohmann::ordered_json::array();
  for (HealthCard const& card : cards) {
    DatabaseFile const& file = card.file;
    nlohmann::ordered_json time;
    if (file.time_stamp != 0) time = file.time_stamp;
    nlohmann::ordered_json languages;
    if (card.languages != 0) languages = card.languages;
    document["files"].push_back(
        {{"file", file.path},
         {"role", IsUserFile(file.path) ? "user" : "main"},
         {"header", HeaderForm(file)},
         {"version", file.version},
         {"time", std::move(time)},
         {"written",
          OrNull(file.time_stamp == 0 ? "" : DateAndTime(file.time_stamp))},
         {"bytes", file.size_bytes},
         {"rows", file.RowCount()},
         {"tables", TablesAsJson(file)},
         {"languages", std::move(languages)},
         {"index", OrNull(card.index_file)},
         {"index_state", OrNull(card.index_state)},
         {"verdict", VerdictText(card.verdict)}});
  }
  return document.dump(2, ' ', false,
                       nlohmann::json::error_handler_t::replace) +
         "\n";
}

}  // namespace tabwerk::tool
