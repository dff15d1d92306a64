// tabwerk info: what is in database files, from their headers and lists of
// tables alone.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/console.h"
#include "cli/database_file.h"
#include "cli/files.h"
#include "cli/index_state.h"
#include "cli/session.h"
#include "cli/text.h"
#include "schema/format.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

void Line(char const* label, std::string const& value) {
  std::string text = std::string("  ") + label;
  text.resize(std::max<std::size_t>(text.size() + 1, 11), ' ');
  console::Out(text + value + "\n");
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

// Years that a four-digit date can show.
constexpr std::int64_t kEndOfDates = 253402300800;

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

void PrintTables(DatabaseFile const& file) {
  if (file.has_damaged_list) return Line("tables", "DAMAGED: cannot be listed");
  Line("tables", Count(static_cast<long long>(file.tables.size()), "table") +
                     ", " + Count(file.RowCount(), "row"));
  std::size_t name_width = 0;
  std::size_t rows_width = 0;
  for (TableSummary const& table : file.tables) {
    name_width = std::max(name_width, DisplayWidth(table.name));
    rows_width = std::max(rows_width, RowsText(table).size());
  }
  for (TableSummary const& table : file.tables) {
    std::string const rows = RowsText(table);
    std::string line = "    " + Escape(table.name);
    line.append(name_width - DisplayWidth(table.name) + 2, ' ');
    line.append(rows_width - rows.size(), ' ');
    console::Out(line + rows + "  " + Escape(table.columns) + "\n");
  }
}

class InfoCommand : public Command {
 public:
  void Declare(CLI::App& app) override {
    app.add_option("FILE", paths_,
                   "Database files; a main file followed by its user file is "
                   "taken as one database")
        ->required();
    app.add_option("--name", name_,
                   "Name of the database, where it is not that of the first "
                   "FILE; the index file is called after it");
  }

  ExitCode Run() override {
    ExitCode code = ExitCode::kDone;
    std::vector<DatabaseFile> files;
    for (std::string const& path : paths_) {
      files.emplace_back();
      auto const problem = ReadDatabaseFile(path, &files.back());
      ExitCode found = ExitCode::kDone;
      if (problem) {
        found = Report(*problem);
        files.pop_back();
      } else {
        found = Print(files);
      }
      if (code == ExitCode::kDone) code = found;
    }
    return code;
  }

 private:
  // Prints the last one.
  ExitCode Print(std::vector<DatabaseFile> const& files) const {
    DatabaseFile const& file = files.back();
    if (files.size() > 1) console::Out("\n");
    console::Out(file.path + "\n");
    Line("role", Role(file.path));
    Line("header", HeaderForm(file));
    Line("written", DateAndTime(file.time_stamp));
    Line("size", Count(file.size_bytes, "byte"));
    PrintTables(file);
    if (IsUserFile(file.path)) PrintIndex(files);
    if (!file.IsDamaged()) return ExitCode::kDone;
    return Report({TW(125), file.path, "the file is damaged",
                   "restore it from a backup"});
  }

  void PrintIndex(std::vector<DatabaseFile> const& files) const {
    std::string const& user_file = files.back().path;
    DatabaseFiles database{files.front().path, user_file, name_};
    auto const index = IndexPath(user_file, database.DatabaseName());
    std::string state;
    if (files.size() > 1 && files.size() == paths_.size()) {
      state = IndexState(index, files);
    } else {
      std::error_code error;
      state = std::filesystem::exists(index, error)
                  ? "there; name the main file before the user file to "
                    "have it examined"
                  : "missing; made at the next opening";
    }
    Line("index", ToUtf8(index) + ": " + state);
  }

  std::vector<std::string> paths_;
  std::string name_;
};

}  // namespace

extern CommandEntry const kInfoCommand;
CommandEntry const kInfoCommand = {
    "info",
    Group::kLook,
    "Say what is in database files, without loading them",
    {{"info geo.db", "one file"},
     {"info geo.db GEO.UDB", "a main file with its user file and the index"}},
    &MakeCommand<InfoCommand>};

}  // namespace tabwerk::tool
