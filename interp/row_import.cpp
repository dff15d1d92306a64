#include "interp/row_import.h"

#include <algorithm>

#include "DBDirectory.h"
#include "interp/interpreter_access.h"

namespace tabwerk {
namespace {

bool IsNumber(DBType type) {
  return type == DBTypeReal || type == DBTypeInteger;
}

// Without one pair of quotes around the text.  A quote in the middle does not
// matter, and a quote alone is both of the pair.
std::wstring_view WithoutQuotePair(std::wstring_view text) {
  if (text.empty() || text.front() != L'"' || text.back() != L'"') return text;
  return text.size() == 1 ? text.substr(1) : text.substr(1, text.size() - 2);
}

// The value that a token stands for.  Where wchar_t has 32 bits the tokenizer
// gives a pair of surrogates as two characters; the table takes it so, too.
std::wstring ValueOf(wchar_t* token, DBType type) {
  std::wstring value(token);
  if (IsNumber(type)) {
    // Kept: every comma, so "1.234,5" reads as 1.234.
    std::replace(value.begin(), value.end(), L',', L'.');
  }
  return std::wstring(WithoutQuotePair(value));
}

}  // namespace

RowImport::RowImport(DBInterpreter& interpreter, DBTabelle& table,
                     wchar_t separator)
    : interpreter_(interpreter),
      table_(table),
      entry_(*table.GetDirEntry(false)),
      separator_(separator) {}

void RowImport::Read(TextFile& file) {
  // Kept: a byte-order mark belongs to the first value.
  file.SeekTo(0);
  std::u16string_view piece;
  while (file.ReadPiece(&piece)) {
    // Kept: a carriage return stays in the last value.
    if (piece.ends_with(u'\n')) piece.remove_suffix(1);
    ReadLine(piece);
    InterpreterAccess::CountRead(interpreter_, file.PieceBytes());
  }
}

void RowImport::ReadLine(std::u16string_view line) {
  values_.clear();
  wchar_t* token =
      InterpreterAccess::FirstToken(interpreter_, line, separator_);
  DBFeld const* field = entry_.GetDefinition()->GetDefinition();
  for (; token != nullptr;
       token = interpreter_.GetNextToken(nullptr, separator_)) {
    if (field == nullptr) {
      InterpreterAccess::RecordError(interpreter_, kErrorTooManyValues,
                                     kTooManyValuesText, entry_.GetName());
      break;
    }
    // SetZeileWerte selects the columns itself.
    static_cast<void>(table_.SelectColumn(field->name));
    values_.insert_or_assign(field->name, ValueOf(token, field->type));
    field = field->next;
  }
  // Kept: an empty line makes a row as well, and a row that could not be
  // written is not reported: hosts compare the row counts before and after.
  static_cast<void>(table_.SetZeileWerte(values_, DBTabelle::ActionAppend));
}

}  // namespace tabwerk
