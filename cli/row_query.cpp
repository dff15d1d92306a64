#include "cli/row_query.h"

#include <algorithm>
#include <charconv>
#include <numeric>
#include <set>

#include "DBDirectory.h"
#include "DBbase.h"
#include "cli/near_names.h"
#include "cli/options.h"
#include "cli/patterns.h"
#include "cli/sole_column.h"
#include "cli/table_list.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

constexpr char kRowsGroup[] = "Rows";

// The two sides of "COLUMN=VALUE".
std::optional<Problem> Split(std::string const& condition, char const* option,
                             std::string* column, std::string* value) {
  std::size_t const equals = condition.find('=');
  if (equals == condition.npos) {
    return Problem{TW(133), "",
                   std::string(option) + " " + condition + " has no \"=\"",
                   "write COLUMN=VALUE"};
  }
  *column = condition.substr(0, equals);
  *value = condition.substr(equals + 1);
  return std::nullopt;
}

// False when the text is not a number and nothing else.
template <typename Number>
bool Parse(std::string const& text, Number* number) {
  char const* const end = text.data() + text.size();
  auto const [stop, error] = std::from_chars(text.data(), end, *number);
  return error == std::errc() && stop == end;
}

Problem NoNumber(std::string const& column, std::string const& value) {
  return {TW(133), "",
          value + " is no number, and column " + column + " holds numbers",
          "write a number as in 7 or 0.5"};
}

void AddConditions(Options& options, RowQuery* query) {
  options.Add("--id", query->ids, "The row of this ID; several: 1,2,3")
      .List()
      .Value("ID")
      .Group(kRowsGroup);
  options.Add("--row", query->rows, "The row of this number, from 0")
      .List()
      .NotNegative()
      .Value("N")
      .Group(kRowsGroup);
  options.Add("--where", query->where, "Rows with this value in a column")
      .OneWord()
      .Value("COLUMN=VALUE")
      .Group(kRowsGroup);
  options
      .Add("--match", query->match,
           "Rows whose whole text in a column matches a regular "
           "expression")
      .OneWord()
      .Value("COLUMN=PATTERN")
      .Group(kRowsGroup);
  options.AddFlag("--active", query->active, "Rows whose STATUS is 0")
      .Group(kRowsGroup);
}

}  // namespace

void AddRowQueryOptions(Options& options, RowQuery* query) {
  AddConditions(options, query);
  options
      .Add("--part", query->part,
           "main: shipped rows only; user: the user's rows only")
      .OneOf({"main", "user"})
      .Value("PART")
      .Group(kRowsGroup);
  options
      .Add("--order", query->order,
           "row: as they are stored; folge: the display order, rows "
           "without a place behind; id: by ID")
      .OneOf({"folge", "id", "row"})
      .Value("ORDER")
      .Group(kRowsGroup);
}

RowChoice::RowChoice(DBTabelle& table, LanguageChoice const& language)
    : table_(table),
      language_(language),
      chosen_(static_cast<std::size_t>(table.GetAnzahlZeilen()), true) {}

std::optional<Problem> RowChoice::Apply(RowQuery const& query) {
  if (!query.part.empty()) KeepPart(query.part == "user");
  if (!query.rows.empty()) KeepRows(query.rows);
  if (!query.ids.empty()) {
    if (auto problem = SelectColumn("ID")) return problem;
    KeepIds(query.ids);
  }
  for (std::string const& condition : query.where) {
    if (auto problem = KeepEqual(condition)) return problem;
  }
  for (std::string const& condition : query.match) {
    if (auto problem = KeepMatches(condition)) return problem;
  }
  if (query.active) {
    if (auto problem = KeepActive()) return problem;
  }
  return Order(query.order);
}

void RowChoice::Keep(std::vector<bool> const& rows) {
  for (std::size_t i = 0; i < Size(); ++i) chosen_[i] = chosen_[i] && rows[i];
}

void RowChoice::KeepIds(std::vector<int> const& ids) {
  std::set<int> const wanted(ids.begin(), ids.end());
  std::set<int> absent = wanted;
  std::vector<bool> rows(Size());
  for (std::size_t i = 0; i < Size(); ++i) {
    table_.SelectZeile(static_cast<long>(i));
    long id = 0;
    if (table_.GetWert(id) != 1) continue;
    rows[i] = wanted.contains(static_cast<int>(id));
    if (rows[i]) absent.erase(static_cast<int>(id));
  }
  Keep(rows);
  for (int const id : absent) {
    missing_.push_back("the ID " + std::to_string(id));
  }
}

void RowChoice::KeepRows(std::vector<int> const& rows) {
  std::vector<bool> wanted(Size());
  for (int const row : rows) {
    auto const index = static_cast<std::size_t>(row);
    if (index < Size()) {
      wanted[index] = true;
    } else {
      missing_.push_back("the number " + std::to_string(row));
    }
  }
  Keep(wanted);
}

void RowChoice::KeepPart(bool user) {
  auto const main_rows =
      static_cast<std::size_t>(table_.GetDirEntry(false)->GetPartRows(0));
  for (std::size_t i = 0; i < Size(); ++i) {
    if ((i >= main_rows) != user) chosen_[i] = false;
  }
}

std::optional<Problem> RowChoice::FindColumn(std::string const& name,
                                             DBFeld const** field) {
  DBDefinition const& definition = *table_.GetDirEntry(false)->GetDefinition();
  auto const fields = FieldsOf(definition);
  auto const names = ColumnNames(definition);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    // A script in UTF-8 makes names of its bytes.
    if (names[i] != name && fields[i]->name != name) continue;
    *field = fields[i];
    return std::nullopt;
  }
  return NoSuchColumn({}, name, names);
}

std::optional<Problem> RowChoice::SelectColumn(std::string const& name) {
  DBFeld const* field = nullptr;
  if (auto problem = FindColumn(name, &field)) return problem;
  SelectField(table_, *field);
  return std::nullopt;
}

std::vector<short> RowChoice::Languages(char const* column) {
  if (!language_.IsAll()) return {language_.Number()};
  int const count = std::max(LanguageCount(table_, column), 1);
  std::vector<short> languages(static_cast<std::size_t>(count));
  std::iota(languages.begin(), languages.end(), short{0});
  return languages;
}

std::vector<bool> RowChoice::RowsWithInteger(char const* column, long value) {
  std::vector<bool> rows(Size());
  table_.SelectColumn(column);
  for (std::size_t i = 0; i < Size(); ++i) {
    table_.SelectZeile(static_cast<long>(i));
    long found = 0;
    rows[i] = table_.GetWert(found) == 1 && found == value;
  }
  return rows;
}

std::vector<bool> RowChoice::RowsWithReal(char const* column, double value) {
  std::vector<bool> rows(Size());
  table_.SelectColumn(column);
  for (std::size_t i = 0; i < Size(); ++i) {
    table_.SelectZeile(static_cast<long>(i));
    double found = 0;
    rows[i] = table_.GetWert(found) == 1 && found == value;
  }
  return rows;
}

std::vector<bool> RowChoice::RowsWithText(char const* column,
                                          std::string const& value) {
  zWString const wanted = zWString::fromUtf8(value);
  std::vector<bool> rows(Size());
  for (short const language : Languages(column)) {
    DBbase::SetSprache(language);
    table_.SelectColumn(column);
    zWString found;
    for (std::size_t i = 0; i < Size(); ++i) {
      table_.SelectZeile(static_cast<long>(i));
      if (table_.GetWert(found) == 1 && found == wanted) rows[i] = true;
    }
  }
  return rows;
}

std::optional<Problem> RowChoice::KeepEqual(std::string const& condition) {
  std::string name;
  std::string value;
  DBFeld const* field = nullptr;
  if (auto problem = Split(condition, "--where", &name, &value)) return problem;
  if (auto problem = FindColumn(name, &field)) return problem;
  SoleColumn const sole(table_, *field);
  if (field->type == DBTypeInteger) {
    long number = 0;
    if (!Parse(value, &number)) return NoNumber(name, value);
    Keep(RowsWithInteger(field->name, number));
  } else if (field->type == DBTypeReal) {
    double number = 0;
    if (!Parse(value, &number)) return NoNumber(name, value);
    Keep(RowsWithReal(field->name, number));
  } else {
    Keep(RowsWithText(field->name, value));
  }
  return std::nullopt;
}

std::optional<Problem> RowChoice::KeepMatches(std::string const& condition) {
  std::string name;
  std::string pattern;
  DBFeld const* field = nullptr;
  if (auto problem = Split(condition, "--match", &name, &pattern)) {
    return problem;
  }
  if (auto problem = FindColumn(name, &field)) return problem;
  if (field->type != DBTypeString) {
    return Problem{TW(133), "", "column " + name + " holds no texts",
                   "write --where " + name + "=VALUE"};
  }
  SoleColumn const sole(table_, *field);
  std::vector<bool> rows(Size());
  for (short const language : Languages(field->name)) {
    DBbase::SetSprache(language);
    std::vector<long> found;
    auto problem = FindByPattern(table_, field->name, pattern, &found);
    if (problem) return problem;
    for (long const row : found) rows[static_cast<std::size_t>(row)] = true;
  }
  Keep(rows);
  return std::nullopt;
}

std::optional<Problem> RowChoice::KeepActive() {
  if (auto problem = SelectColumn("STATUS")) return problem;
  Keep(RowsWithInteger("STATUS", 0));
  return std::nullopt;
}

std::optional<Problem> RowChoice::Order(std::string const& order) {
  std::vector<bool> left = chosen_;
  auto const take = [&](long row) {
    auto const index = static_cast<std::size_t>(row);
    if (row < 0 || index >= left.size() || !left[index]) return;
    left[index] = false;
    rows_.push_back(row);
  };
  if (order == "folge") {
    if (auto problem = SelectColumn("FOLGE")) return problem;
    // Without a user file there are no indices.
    if (table_.MaxFolge() == 0) table_.MakeIndexFolge();
    // Places count from 1; 0 is none.
    long const last = table_.MaxFolge();
    for (long place = 1; place <= last; ++place) {
      take(table_.GetRowByFolge(place));
    }
  }
  for (std::size_t i = 0; i < left.size(); ++i) take(static_cast<long>(i));
  if (order != "id") return std::nullopt;
  if (auto problem = SelectColumn("ID")) return problem;
  std::vector<std::pair<long, long>> keys;
  for (long const row : rows_) {
    table_.SelectZeile(row);
    long id = 0;
    table_.GetWert(id);
    keys.emplace_back(id, row);
  }
  std::sort(keys.begin(), keys.end());
  for (std::size_t i = 0; i < keys.size(); ++i) rows_[i] = keys[i].second;
  return std::nullopt;
}

}  // namespace tabwerk::tool
