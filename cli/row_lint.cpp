#include "cli/row_lint.h"

#include <fmt/format.h>

#include <utility>

#include "cli/files.h"
#include "cli/number_check.h"
#include "cli/script_lines.h"
#include "cli/text.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

std::string Shown(std::u16string_view text) {
  constexpr std::size_t kMostShown = 40;
  std::string const shown =
      CutToWidth(Escape(zWString(text).toUtf8()), kMostShown);
  return text.starts_with(u'"') ? shown : "\"" + shown + "\"";
}

DBFeld const* FirstOf(DBDefinition const& definition, char const* name) {
  DBFeld* field = nullptr;
  bool const found = definition.GetOffset(name, field) == 1;
  return found && field->type == DBTypeInteger ? field : nullptr;
}

}  // namespace

RowLint::RowLint(ScriptTable const& table, DataLines& lines,
                 TakeFinding const& take, RowNumbers* numbers, std::size_t file,
                 long long* rows)
    : table_(table),
      lines_(lines),
      take_(take),
      numbers_(numbers),
      file_(file),
      rows_(rows),
      id_(FirstOf(table.definition, "ID")),
      folge_(FirstOf(table.definition, "FOLGE")) {
  for (DBFeld const* field = table.definition.GetDefinition(); field != nullptr;
       field = field->next) {
    fields_.push_back(field);
  }
}

void RowLint::Warn(Code code, Place where, std::string what,
                   std::string advice) const {
  take_(Severity::kWarning,
        {code, std::move(where), std::move(what), std::move(advice)});
}

void RowLint::Run() {
  while (lines_.Next() && CheckPiece()) {
  }
}

bool RowLint::CheckPiece() {
  CheckCharacters();
  if (lines_.IsTooLong()) {
    // Its pieces are rows that nobody meant; one finding says so.
    CheckLongLine();
    ++*rows_;
    return true;
  }
  std::vector<SplitValue> const values =
      SplitLine(tokenizer_, lines_.Piece(), u',');
  return values.empty() || CheckRow(values);
}

bool RowLint::CheckRow(std::vector<SplitValue> const& values) {
  is_open_ = false;
  if (!CheckFirst(values.front())) return false;
  for (std::size_t i = 0; i < values.size() && i < fields_.size(); ++i) {
    if (!CheckValue(*fields_[i], values[i])) return false;
  }
  CheckCount(values);
  return true;
}

bool RowLint::CheckFirst(SplitValue const& first) {
  goes_on_ = first.text.empty();
  if (goes_on_) {
    if (*rows_ == 0) {
      return LeaveOutRest(first,
                          "the line begins with a comma, so it goes on "
                          "with the row before it, but there is none");
    }
    Warn(TW(257), lines_.At(first.offset),
         "the line begins with a comma, so it makes no row, but replaces "
         "values of the row before it",
         "write the first value, or \"\" for an empty one");
    return true;
  }
  if (table_.definition.GetMemorySize() == 0) {
    return LeaveOutRest(first, "the table takes no rows");
  }
  ++*rows_;
  return true;
}

bool RowLint::LeaveOutRest(SplitValue const& value,
                           std::string const& why) const {
  Warn(TW(218), lines_.At(value.offset, value.text.size()),
       why + "; from here on the file is left out",
       "correct it or the definition of the table");
  return false;
}

bool RowLint::CheckValue(DBFeld const& field, SplitValue const& value) {
  switch (field.type) {
    case DBTypeInteger:
      CheckInteger(field, value);
      return true;
    case DBTypeReal:
      CheckReal(value);
      return true;
    case DBTypeString:
      CheckText(value);
      return true;
    case DBTypeUnknown:
      break;
  }
  return LeaveOutRest(
      value, "the column " + ScriptToUtf8(field.name) + " has no usable type");
}

void RowLint::CheckCount(std::vector<SplitValue> const& values) const {
  if (values.size() > fields_.size()) {
    SplitValue const& surplus = values[fields_.size()];
    SplitValue const& last = values.back();
    Warn(TW(217),
         lines_.At(surplus.offset,
                   last.offset + last.text.size() - surplus.offset),
         fmt::format("{} for {}: the rest of the line is not read",
                     Count(static_cast<long long>(values.size()), "value"),
                     Count(static_cast<long long>(fields_.size()), "column")),
         "leave it out, or quote a text that has a comma");
    return;
  }
  if (is_open_) return;
  // A comma at the end says that the last value is left empty.
  SplitValue const& last = values.back();
  std::size_t const end = last.offset + last.text.size();
  std::size_t const given =
      values.size() + (end < lines_.Piece().size() ? 1 : 0);
  if (given >= fields_.size()) return;
  Warn(TW(258), lines_.At(lines_.Piece().size()),
       fmt::format("{} for {}: the others stay empty or 0",
                   Count(static_cast<long long>(given), "value"),
                   Count(static_cast<long long>(fields_.size()), "column")),
       "write all values, empty ones as nothing between commas");
}

void RowLint::CheckInteger(DBFeld const& field, SplitValue const& value) {
  std::int32_t number = 0;
  NumberText const text = tool::CheckInteger(value.text, &number);
  if (text != NumberText::kWhole && text != NumberText::kEmpty) {
    ReportNumber(value, true, text == NumberText::kTooLarge,
                 std::to_string(number));
  }
  if (goes_on_) return;
  if (&field == id_) AddId(number, value);
  if (&field == folge_) AddFolge(number, value);
}

void RowLint::CheckReal(SplitValue const& value) const {
  NumberText const text = tool::CheckReal(value.text);
  if (text == NumberText::kWhole || text == NumberText::kEmpty) return;
  ReportNumber(value, false, text == NumberText::kTooLarge,
               text == NumberText::kNone ? "0" : "what it begins with");
}

void RowLint::ReportNumber(SplitValue const& value, bool is_integer,
                           bool is_too_large, std::string const& read) const {
  Place const place = lines_.At(value.offset, value.text.size());
  if (is_too_large) {
    Warn(TW(260), place,
         Shown(value.text) +
             (is_integer ? " does not fit into 32 bits: " + read
                         : " does not fit into a real: the "
                           "nearest number") +
             " is stored",
         "use a smaller number, or a column of another type");
    return;
  }
  bool const quoted = value.text.starts_with(u'"');
  Warn(TW(259), place,
       Shown(value.text) + (is_integer ? " is no integer: " : " is no real: ") +
           read + " is stored",
       quoted       ? "leave the quotes out"
       : is_integer ? "write digits only, with a sign if need be"
                    : "write digits with a full stop, and an exponent if need "
                      "be");
}

RowPlace RowLint::RowPlaceOf(SplitValue const& value) const {
  return {file_, lines_.Remember(value.offset, value.text.size())};
}

void RowLint::AddId(std::int32_t id, SplitValue const& value) {
  auto const before = numbers_->AddId(id, RowPlaceOf(value));
  if (before) {
    ReportTwice(TW(261), value, *before,
                fmt::format("the ID {} is given twice", id));
  }
}

void RowLint::AddFolge(std::int32_t folge, SplitValue const& value) {
  auto const before = numbers_->AddFolge(folge, RowPlaceOf(value));
  if (before) {
    ReportTwice(TW(263), value, *before,
                fmt::format("the place {} is given twice", folge));
  } else if (folge < 0) {
    Warn(TW(264), lines_.At(value.offset, value.text.size()),
         fmt::format("{} is no place in the order", folge),
         "use places from 1 on, or 0 for none");
  }
}

void RowLint::ReportTwice(Code code, SplitValue const& value,
                          RowPlace const& before,
                          std::string const& what) const {
  std::string const where =
      before.file == file_ ? "" : " of an earlier data file";
  Warn(
      code, lines_.At(value.offset, value.text.size()),
      fmt::format("{}, first in line {}{}", what, before.in_file.number, where),
      "give every row one of its own");
}

}  // namespace tabwerk::tool
