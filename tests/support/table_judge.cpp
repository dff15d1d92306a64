#include "tests/support/table_judge.h"

#include <array>
#include <map>
#include <regex>
#include <utility>
#include <vector>

#include "DBbase.h"
#include "platform/platform.h"
#include "tests/support/random_values.h"
#include "tests/support/table_builder.h"
#include "tests/support/table_state.h"

namespace tabwerk::test {
namespace {

using std::to_string;

constexpr int kMostRows = 70;

std::string ShownValues(model::Values const& values) {
  std::string text;
  for (auto const& [key, value] : values) {
    text += " " + key + "='" + Shown(value) + "'";
  }
  return text;
}

}  // namespace

int TableJudge::RowCount() { return static_cast<int>(model_.RowCount()); }

std::string TableJudge::AnyColumn() {
  auto const& fields = model_.entry->definition.fields;
  if (random_.OneIn(4)) {
    return random_.PickOf({"ID", "FOLGE", "STATUS", "NAME", "STATUSX", ""});
  }
  auto const last = static_cast<int>(fields.size()) - 1;
  return fields[static_cast<std::size_t>(random_.Between(0, last))].name;
}

Outcome TableJudge::Operate(bool may_read_sections) {
  static constexpr std::array kChoices{Choice{10, &TableJudge::SelectColumn},
                                       Choice{10, &TableJudge::SelectRow},
                                       Choice{10, &TableJudge::SelectByInteger},
                                       Choice{6, &TableJudge::SelectByReal},
                                       Choice{14, &TableJudge::SelectByText},
                                       Choice{4, &TableJudge::FindRows},
                                       Choice{8, &TableJudge::SetInteger},
                                       Choice{4, &TableJudge::SetReal},
                                       Choice{8, &TableJudge::SetText},
                                       Choice{3, &TableJudge::SetUnits},
                                       Choice{4, &TableJudge::SetBytes},
                                       Choice{12, &TableJudge::SetColumn},
                                       Choice{6, &TableJudge::NewRow},
                                       Choice{2, &TableJudge::NewUserId},
                                       Choice{4, &TableJudge::Counts},
                                       Choice{6, &TableJudge::LookUp},
                                       Choice{4, &TableJudge::MakeIndex},
                                       Choice{3, &TableJudge::WriteSection},
                                       Choice{16, &TableJudge::SetRowValues},
                                       Choice{4, &TableJudge::Dump},
                                       Choice{2, &TableJudge::SetLanguage},
                                       Choice{2, &TableJudge::Resort},
                                       Choice{3, &TableJudge::ReadSection}};
  int total = 0;
  for (auto const& choice : kChoices) total += choice.weight;
  if (!may_read_sections) total -= kChoices.back().weight;
  int at = random_.Between(1, total);
  for (auto const& choice : kChoices) {
    at -= choice.weight;
    if (at <= 0) return (this->*choice.operation)();
  }
  return {};
}

Outcome TableJudge::VisibleState() {
  return {"selection and value", SelectionOf(model_) + " " + ValueOf(model_),
          Selection(table_) + " " + ValueOf(table_)};
}

Outcome TableJudge::FullState() {
  return {"full state",
          BlocksOf(model_) + IndicesOf(model_) + "\n" + SelectionOf(model_),
          BlocksOf(table_) + Indices(table_) + "\n" + Selection(table_)};
}

// --- Selection and search ---------------------------------------------------

Outcome TableJudge::SelectColumn() {
  auto const column = AnyColumn();
  return {"SelectColumn " + column, to_string(model_.SelectColumn(column)),
          to_string(table_.SelectColumn(column.c_str()))};
}

Outcome TableJudge::SelectRow() {
  long const row = AnyNumber(random_, RowCount());
  return {"SelectZeile " + to_string(row), to_string(model_.SelectRow(row)),
          to_string(table_.SelectZeile(row))};
}

Outcome TableJudge::SelectByInteger() {
  auto const column = AnyColumn();
  long const value = AnyNumber(random_, RowCount());
  return {"SelectZeile " + column + " integer " + to_string(value),
          to_string(model_.SelectInteger(column, value)),
          to_string(table_.SelectZeile(column.c_str(), value))};
}

Outcome TableJudge::SelectByReal() {
  auto const column = AnyColumn();
  double const value = AnyReal(random_, RowCount());
  return {"SelectZeile " + column + " real " + to_string(value),
          to_string(model_.SelectReal(column, value)),
          to_string(table_.SelectZeile(column.c_str(), value))};
}

// Mostly in the first column of strings, as hosts do: tables remember what they
// found out in one search for the next one.
Outcome TableJudge::SelectByText() {
  auto column = AnyColumn();
  for (auto const& field : model_.entry->definition.fields) {
    if (field.type != model::Type::kString || random_.OneIn(4)) continue;
    column = field.name;
    break;
  }
  auto const text = AnyText(random_);
  return {
      "SelectZeile " + column + " text '" + Shown(text) + "'",
      to_string(model_.SelectText(column, text)),
      to_string(table_.SelectZeile(column.c_str(), WideText(text).c_str()))};
}

Outcome TableJudge::FindRows() {
  static std::array<std::u16string, 10> const kPatterns{
      u".*",      u"Ab.*",   u"",  u"[ab]+",      u"Pump(_NEW)*",
      u"J.|Pump", u"(a|b)?", u".", u"\\w+ ?\\w*", u"(a"};
  auto const column = AnyColumn();
  auto const pattern = AnyOf(random_, kPatterns);
  bool const ids = random_.OneIn(2);
  auto const found = [](auto const& find) {
    try {
      return ShownNumbers(find());
    } catch (std::regex_error const&) {
      return std::string("malformed");
    }
  };
  return {"FindRows " + column + " '" + Shown(pattern) + "' " +
              (ids ? "ids" : "rows"),
          found([&] { return model_.FindRows(column, pattern, ids); }),
          found([&] {
            return table_.FindRows(column.c_str(), zWString(pattern), ids);
          })};
}

// --- Values -----------------------------------------------------------------

Outcome TableJudge::SetInteger() {
  long const value = AnyNumber(random_, RowCount());
  return {"SetWert integer " + to_string(value),
          to_string(model_.SetInteger(value)),
          to_string(table_.SetWert(value))};
}

Outcome TableJudge::SetReal() {
  double const value = AnyReal(random_, RowCount());
  return {"SetWert real " + to_string(value), to_string(model_.SetReal(value)),
          to_string(table_.SetWert(value))};
}

Outcome TableJudge::SetText() {
  auto const text = AnyText(random_);
  return {"SetWert text '" + Shown(text) + "'", to_string(model_.SetText(text)),
          to_string(table_.SetWert(WideText(text).c_str()))};
}

Outcome TableJudge::SetUnits() {
  auto const text = AnyText(random_);
  return {"SetWert units '" + Shown(text) + "'",
          to_string(model_.SetText(text)),
          to_string(table_.SetWert(text.c_str()))};
}

Outcome TableJudge::SetBytes() {
  auto const text =
      random_.PickOf({"", "abc", "\xE4h", "Pump", "a longer text"});
  return {"SetWert bytes '" + text + "'", to_string(model_.SetBytes(text)),
          to_string(table_.SetWert(text.c_str()))};
}

// A value for a column of the right type in a row that exists.
Outcome TableJudge::SetColumn() {
  auto const column = AnyColumn();
  long const row = random_.Between(0, RowCount());
  int const expected = model_.SelectColumn(column) + model_.SelectRow(row);
  int const got = table_.SelectColumn(column.c_str()) + table_.SelectZeile(row);
  auto outcome = model_.CurrentType() == model::Type::kInteger ? SetInteger()
                 : model_.CurrentType() == model::Type::kReal  ? SetReal()
                                                               : SetText();
  outcome.what = "at " + column + " " + to_string(row) + ": " + outcome.what;
  outcome.expected += " " + to_string(expected);
  outcome.got += " " + to_string(got);
  return outcome;
}

// --- Rows -------------------------------------------------------------------

Outcome TableJudge::NewRow() {
  bool const user = random_.OneIn(3) || random_.OneIn(2);
  if (RowCount() >= kMostRows) return NewUserId();
  return {std::string("NeueZeile ") + (user ? "true" : "false"),
          to_string(model_.NewRow(user)), to_string(table_.NeueZeile(user))};
}

Outcome TableJudge::NewUserId() {
  return {"NewUserID", to_string(model_.NewUserId()),
          to_string(table_.NewUserID())};
}

Outcome TableJudge::Counts() {
  auto const expected = to_string(model_.RowCount()) + " " +
                        to_string(model_.MaxFolge()) + " " +
                        to_string(model_.ActiveRowCount());
  return {"GetAnzahlZeilen, MaxFolge, GetAnzahlAktiveZeilen", expected,
          to_string(table_.GetAnzahlZeilen()) + " " +
              to_string(table_.MaxFolge()) + " " +
              to_string(table_.GetAnzahlAktiveZeilen())};
}

Outcome TableJudge::LookUp() {
  long const value = AnyNumber(random_, RowCount());
  if (random_.OneIn(2)) {
    return {"GetRowByID " + to_string(value), to_string(model_.RowById(value)),
            to_string(table_.GetRowByID(value))};
  }
  return {"GetRowByFolge " + to_string(value),
          to_string(model_.RowByFolge(value)),
          to_string(table_.GetRowByFolge(value))};
}

Outcome TableJudge::SetRowValues() {
  auto const action = random_.Between(0, 2);
  if (RowCount() >= kMostRows && action != 1) return NewUserId();
  auto const values = AnyRow(random_, model_.entry->definition, RowCount());
  std::map<std::string, std::wstring> wide;
  for (auto const& [key, value] : values) wide[key] = WideText(value);
  return {"SetZeileWerte " + to_string(action) + ShownValues(values),
          to_string(model_.SetRowValues(
              values, static_cast<model::Table::Action>(action))),
          to_string(table_.SetZeileWerte(
              wide, static_cast<DBTabelle::Action>(action)))};
}

Outcome TableJudge::Dump() {
  bool const user = random_.OneIn(2);
  std::u16string lines;
  auto const expected = model_.Dump(u";", user, &lines);
  auto const text = zWString(lines).toUtf8();
  FillStream({});
  std::wstring separator = L";";
  int const got = table_.Dump(stream_, separator.data(), user);
  auto const bytes = StreamContent();
  Outcome outcome{
      std::string("Dump ") + (user ? "true" : "false"),
      to_string(expected) + "\n" + text,
      to_string(got) + "\n" + std::string(bytes.begin(), bytes.end())};
  // It leaves the part on another row than the table, which is where a value
  // that is set now goes.
  if (random_.OneIn(2)) {
    auto const set = SetText();
    outcome.what += ", " + set.what;
    outcome.expected += set.expected;
    outcome.got += set.got;
  }
  return outcome;
}

Outcome TableJudge::SetLanguage() {
  auto const language =
      static_cast<short>(random_.OneIn(6) ? -1 : random_.Between(0, 3));
  model::SetLanguage(language);
  DBbase::SetSprache(language);
  return {"SetSprache " + to_string(language), "", ""};
}

// --- Indices ----------------------------------------------------------------

Outcome TableJudge::MakeIndex() {
  if (random_.OneIn(3)) {
    model_.MakeIndexId();
    table_.MakeIndexID();
    return {"MakeIndexID", "", ""};
  }
  if (random_.OneIn(2)) {
    model_.MakeIndexFolge();
    table_.MakeIndexFolge();
    return {"MakeIndexFolge", "", ""};
  }
  model_.MakeIndexStatus();
  table_.MakeIndexStatus();
  return {"MakeIndexStatus", "", ""};
}

Outcome TableJudge::Resort() {
  model_.ResortIndexId();
  table_.ResortIndexID();
  return {"ResortIndexID", "", ""};
}

void TableJudge::FillStream(model::Bytes const& bytes) {
  (void)platform::Seek(stream_, 0, platform::Origin::kStart);
  (void)platform::Write(stream_, bytes.data(), bytes.size());
  (void)platform::Flush(stream_);
  (void)platform::Seek(stream_, 0, platform::Origin::kStart);
}

// Everything from the start up to the stream's position.
model::Bytes TableJudge::StreamContent() {
  model::Bytes bytes(static_cast<std::size_t>(platform::Tell(stream_)));
  (void)platform::Flush(stream_);
  (void)platform::Seek(stream_, 0, platform::Origin::kStart);
  bytes.resize(platform::Read(stream_, bytes.data(), bytes.size()));
  return bytes;
}

Outcome TableJudge::WriteSection() {
  int const which = random_.Between(0, 2);
  model::Bytes expected;
  FillStream({});
  if (which == 0) {
    expected = model_.WriteIndexId();
    table_.WriteIndexID(stream_);
  } else if (which == 1) {
    expected = model_.WriteIndexFolge();
    table_.WriteIndexFolge(stream_);
  } else {
    expected = model_.WriteIndexStatus();
    table_.WriteIndexStatus(stream_);
  }
  auto const got = StreamContent();
  return {"WriteIndex section " + to_string(which),
          std::string(expected.begin(), expected.end()),
          std::string(got.begin(), got.end())};
}

// The section of another table, with row numbers in and out of range, more or
// fewer entries than rows, or none.
model::Bytes TableJudge::AnySection(int which) {
  int const rows = RowCount();
  model::Entry empty{"", {}, {}};
  model::Table other(&empty);
  for (int i = random_.Between(0, rows + 3); i > 0; --i) {
    other.id_index[static_cast<std::int32_t>(random_.Between(-1, rows + 2))] =
        random_.Between(-1, rows + 1);
    other.folge_index.push_back(random_.Between(-1, rows + 1));
    other.status_index.push_back(random_.OneIn(3) ? random_.Between(0, 3) : 0);
  }
  auto bytes = which == 0   ? other.WriteIndexId()
               : which == 1 ? other.WriteIndexFolge()
                            : other.WriteIndexStatus();
  if (random_.OneIn(10)) bytes[1] = 'X';
  if (random_.OneIn(10)) {  // a negative count
    std::size_t const count = which == 0 ? 2 : which == 1 ? 5 : 6;
    bytes[count + 3] = 0xFF;
    bytes.resize(count + 4);
  }
  return bytes;
}

Outcome TableJudge::ReadSection() {
  int const which = random_.Between(0, 2);
  bool const update = random_.OneIn(2);
  auto const bytes = AnySection(which);
  FillStream(bytes);
  std::size_t at = 0;
  if (which == 0) {
    model_.ReadIndexId(bytes, &at);
    table_.ReadIndexID(stream_);
  } else if (which == 1) {
    model_.ReadIndexFolge(bytes, &at, update);
    update ? table_.ReadIndexFolge(stream_)
           : table_.ReadIndexFolgeNoUpdate(stream_);
  } else {
    model_.ReadIndexStatus(bytes, &at, update);
    update ? table_.ReadIndexStatus(stream_)
           : table_.ReadIndexStatusNoUdate(stream_);
  }
  return {"ReadIndex section " + to_string(which) +
              (update ? " with update, " : ", ") + to_string(bytes.size()) +
              " bytes",
          to_string(at), to_string(platform::Tell(stream_))};
}

}  // namespace tabwerk::test
