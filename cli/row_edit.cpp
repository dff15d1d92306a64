#include "cli/row_edit.h"

#include <algorithm>
#include <limits>
#include <map>
#include <string_view>
#include <utility>

#include "DBDirectory.h"
#include "DBbase.h"
#include "cli/field_value.h"
#include "cli/files.h"
#include "cli/near_names.h"
#include "cli/table_list.h"
#include "cli/table_out.h"
#include "cli/text.h"
#include "cli/translated_text.h"
#include "cli/user_rows.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

// The library's texts with all their languages while it lives.
class AllLanguages {
 public:
  AllLanguages() { DBbase::SetSprache(kAsStored); }
  ~AllLanguages() { DBbase::SetSprache(0); }
  AllLanguages(AllLanguages const&) = delete;
  AllLanguages& operator=(AllLanguages const&) = delete;
};

}  // namespace

std::optional<Problem> ParseAssignments(std::vector<std::string> const& words,
                                        std::vector<Assignment>* assignments) {
  for (std::string const& word : words) {
    std::size_t const end = word.find('=');
    if (end == word.npos || end == 0) {
      return Problem{TW(623), "", "\"" + Escape(word) + "\" sets no column",
                     "write COLUMN=VALUE, for example NAME=Bolt"};
    }
    Assignment made{word.substr(0, end), word.substr(end + 1)};
    for (Assignment const& other : *assignments) {
      if (other.column != made.column) continue;
      return Problem{TW(623), "", "column " + made.column + " is set twice",
                     "name every column once"};
    }
    assignments->push_back(std::move(made));
  }
  return std::nullopt;
}

std::optional<Problem> RowEdit::Add(std::vector<Assignment> const& assignments,
                                    std::int32_t* id) {
  std::map<std::string, std::wstring> values;
  for (Assignment const& assignment : assignments) {
    if (auto problem = CheckAssignment(assignment)) return problem;
    values[FindField(assignment.column)->name] =
        zWString::fromUtf8(assignment.value).toStdWString();
  }
  if (auto problem = CheckColumn("ID")) return problem;
  if (auto problem = CheckNewRows(files_, table_name_, table_)) return problem;
  if (!table_.SetZeileWerte(values, DBTabelle::ActionAppend)) {
    return Refusal(TW(121), "there is not enough memory for the row",
                   "close other programs and try again");
  }
  long const row = table_.GetAnzahlZeilen() - 1;
  AllLanguages const raw;
  *id = Number(row, "ID");
  place_ = Number(row, "FOLGE");
  changes_.push_back({"ID", "", std::to_string(*id)});
  for (Assignment const& assignment : assignments) {
    DBFeld const& field = *FindField(assignment.column);
    changes_.push_back({assignment.column, assignment.value, Text(row, field)});
  }
  return std::nullopt;
}

std::optional<Problem> RowEdit::Set(
    std::int32_t id, std::vector<Assignment> const& assignments) {
  long row = 0;
  if (auto problem = FindRow(id, &row)) return problem;
  if (IsShipped(row)) {
    return Refusal(
        TW(621), "row " + std::to_string(id) + " is a shipped one",
        "its values stand in " + files_.main +
            ", which is replaced as a whole; the user file keeps only its "
            "order and status (\"tabwerk move\", \"tabwerk deactivate\")");
  }
  AllLanguages const raw;
  for (Assignment const& assignment : assignments) {
    if (auto problem = CheckAssignment(assignment)) return problem;
  }
  for (Assignment const& assignment : assignments) {
    DBFeld const& field = *FindField(assignment.column);
    std::string const before = Text(row, field);
    if (!Store(row, field, assignment.value)) {
      return Refusal(TW(121), "there is not enough memory for the row",
                     "close other programs and try again");
    }
    std::string const after = Text(row, field);
    if (before != after) changes_.push_back({assignment.column, before, after});
  }
  return std::nullopt;
}

std::optional<Problem> RowEdit::SetActive(std::int32_t id, bool active) {
  constexpr std::int32_t kSwitchedOff = 1;
  long row = 0;
  if (auto problem = FindRow(id, &row)) return problem;
  if (auto problem = CheckColumn("STATUS")) return problem;
  std::int32_t const before = Number(row, "STATUS");
  if ((before == 0) == active) return std::nullopt;
  std::int32_t const after = active ? 0 : kSwitchedOff;
  bool done = SetNumber(row, "STATUS", after);
  if (done && FindField("FOLGE") != nullptr) {
    // The row that comes back has no place, and so goes behind the others.
    done = SetNumber(row, "FOLGE", 0) && Renumber(ActiveRows(), row);
  }
  if (!done) {
    return Refusal(TW(627), "the status cannot be stored",
                   "STATUS and FOLGE have to be integers");
  }
  changes_.push_back({"STATUS", std::to_string(before), std::to_string(after)});
  return std::nullopt;
}

std::optional<Problem> RowEdit::Move(std::int32_t id,
                                     MoveTarget const& target) {
  using Kind = MoveTarget::Kind;
  long row = 0;
  if (auto problem = FindRow(id, &row)) return problem;
  for (char const* const column : {"FOLGE", "STATUS"}) {
    if (auto problem = CheckColumn(column)) return problem;
  }
  std::vector<long> rows = ActiveRows();
  auto const inactive = [&](std::int32_t which) {
    return Refusal(TW(625),
                   "row " + std::to_string(which) +
                       " is switched off and has no place in the order",
                   "switch it on first, with \"tabwerk activate\"");
  };
  auto const found = std::find(rows.begin(), rows.end(), row);
  if (found == rows.end()) return inactive(id);
  auto const old_position = found - rows.begin();
  rows.erase(found);
  auto to = target.kind == Kind::kFirst ? rows.begin() : rows.end();
  if (target.kind == Kind::kBefore || target.kind == Kind::kAfter) {
    long other = 0;
    if (auto problem = FindRow(target.id, &other)) return problem;
    // Beside itself it stays where it is.
    to = other == row ? rows.begin() + old_position
                      : std::find(rows.begin(), rows.end(), other);
    if (other != row && to == rows.end()) return inactive(target.id);
    if (other != row && target.kind == Kind::kAfter) ++to;
  }
  std::int32_t const before = Number(row, "FOLGE");
  rows.insert(to, row);
  if (!Renumber(rows, row)) {
    return Refusal(TW(627), "the place cannot be stored",
                   "FOLGE has to be an integer");
  }
  if (before != place_) {
    changes_.push_back(
        {"FOLGE", std::to_string(before), std::to_string(place_)});
  }
  return std::nullopt;
}

Problem RowEdit::Refusal(Code code, std::string const& what,
                         std::string const& advice) const {
  return {code, files_.user, "table " + table_name_ + ": " + what, advice};
}

std::optional<Problem> RowEdit::CheckColumn(char const* name) const {
  DBFeld const* const field = FindField(name);
  if (field != nullptr && field->type == DBTypeInteger) return std::nullopt;
  return Refusal(TW(627), "there is no integer column " + std::string(name),
                 "the command needs it");
}

std::optional<Problem> RowEdit::CheckAssignment(
    Assignment const& assignment) const {
  std::string const& column = assignment.column;
  DBFeld const* const field = FindField(column);
  if (field == nullptr) {
    auto const names = ColumnNames(*table_.GetDirEntry(false)->GetDefinition());
    Problem problem = NoSuchColumn(files_.user, column, names);
    problem.what = "table " + table_name_ + ": " + problem.what;
    return problem;
  }
  if (IsAssigned(column)) {
    return Refusal(
        TW(622), "column " + column + " is not set by hand",
        "an ID is given once; \"tabwerk move\" and \"tabwerk deactivate\" "
        "change place and status");
  }
  auto const objection =
      ValueObjection(*field, zWString::fromUtf8(assignment.value).view());
  if (!objection) return std::nullopt;
  return Refusal(objection->code, objection->what,
                 "nothing was changed; correct the value");
}

std::optional<Problem> RowEdit::FindRow(std::int32_t id, long* row) const {
  if (auto problem = CheckColumn("ID")) return problem;
  if (table_.SelectZeile("ID", long{id}) == 1) {
    *row = table_.GetRowByID(id);
    if (*row >= 0 && *row < table_.GetAnzahlZeilen() &&
        Number(*row, "ID") == id) {
      return std::nullopt;
    }
  }
  return Refusal(TW(620), "there is no row with the ID " + std::to_string(id),
                 "\"tabwerk show\" lists the rows");
}

bool RowEdit::IsShipped(long row) const {
  return row < table_.GetDirEntry(false)->GetPartRows(0);
}

DBFeld const* RowEdit::FindField(std::string const& column) const {
  for (DBFeld const* field =
           table_.GetDirEntry(false)->GetDefinition()->GetDefinition();
       field != nullptr; field = field->next) {
    if (NameToUtf8(field->name) == column || field->name == column) {
      return field;
    }
  }
  return nullptr;
}

// 0 where there is none.
std::int32_t RowEdit::Number(long row, char const* column) const {
  long value = 0;
  table_.SelectZeile(row);
  if (table_.SelectColumn(column) != 1 || table_.GetWert(value) != 1) return 0;
  return static_cast<std::int32_t>(value);
}

bool RowEdit::SetNumber(long row, char const* column, std::int32_t value) {
  return table_.SelectZeile(row) == 1 && table_.SelectColumn(column) == 1 &&
         table_.SetWert(long{value}) == 1;
}

std::string RowEdit::Text(long row, DBFeld const& field) const {
  table_.SelectZeile(row);
  table_.SelectColumn(field.name);
  long number = 0;
  double real = 0;
  zWString text;
  if (table_.GetWert(number) == 1) return std::to_string(number);
  if (table_.GetWert(real) == 1) return CellText(real);
  if (table_.GetWert(text) == 1) return text.toUtf8();
  return "";
}

bool RowEdit::Store(long row, DBFeld const& field, std::string const& value) {
  zWString const text = zWString::fromUtf8(value);
  if (table_.SelectZeile(row) != 1 || table_.SelectColumn(field.name) != 1) {
    return false;
  }
  if (field.type == DBTypeString) return table_.SetWert(text.utf16()) == 1;
  double const number = NumberOf(text.view()).value_or(0);
  if (field.type == DBTypeReal) return table_.SetWert(number) == 1;
  return table_.SetWert(static_cast<long>(number)) == 1;
}

// In their order.  Of two rows with one place the shipped one comes first; rows
// without a place come last.
std::vector<long> RowEdit::ActiveRows() const {
  std::vector<std::pair<std::int32_t, long>> places;
  long const count = table_.GetAnzahlZeilen();
  for (long row = 0; row < count; ++row) {
    if (Number(row, "STATUS") != 0) continue;
    std::int32_t const place = Number(row, "FOLGE");
    places.emplace_back(
        place > 0 ? place : std::numeric_limits<std::int32_t>::max(), row);
  }
  std::sort(places.begin(), places.end());
  std::vector<long> rows;
  rows.reserve(places.size());
  for (auto const& [place, row] : places) rows.push_back(row);
  return rows;
}

// Gives these rows the places 1, 2, 3 and so on, and takes those of all others:
// a shipped row that is switched off comes with the place that it is shipped
// with, and would take it from the row that has it now.
bool RowEdit::Renumber(std::vector<long> const& active_rows, long changed_row) {
  std::vector<std::int32_t> places(
      static_cast<std::size_t>(table_.GetAnzahlZeilen()), 0);
  std::int32_t last = 0;
  for (long const row : active_rows) {
    places[static_cast<std::size_t>(row)] = ++last;
  }
  for (std::size_t i = 0; i < places.size(); ++i) {
    auto const row = static_cast<long>(i);
    if (Number(row, "FOLGE") != places[i] &&
        !SetNumber(row, "FOLGE", places[i])) {
      return false;
    }
  }
  place_ = places[static_cast<std::size_t>(changed_row)];
  table_.MakeIndexFolge();
  return true;
}

std::optional<Problem> CheckShippedStatus(DatabaseFiles const& files,
                                          std::string const& table_name,
                                          std::int32_t id) {
  DatabaseFiles const alone{files.main, "", files.name};
  if (auto problem = OpenToLook(alone)) return problem;
  DBTabelle* table = nullptr;
  if (auto problem = FindTable(alone, table_name, &table)) return problem;
  // Without a user file there are no indices.
  table->MakeIndexID();
  long status = 0;
  bool const is_off = table->SelectZeile("ID", long{id}) == 1 &&
                      table->SelectColumn("STATUS") == 1 &&
                      table->GetWert(status) == 1 && status != 0;
  if (!is_off) return std::nullopt;
  return Problem{TW(626), files.main,
                 "table " + table_name + ": row " + std::to_string(id) +
                     " is shipped switched off",
                 "the status of the main file counts; add a row of your own "
                 "instead"};
}

}  // namespace tabwerk::tool
