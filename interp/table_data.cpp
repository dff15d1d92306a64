#include "interp/table_data.h"

#include <cstdint>
#include <string_view>

#include "DBDirectory.h"
#include "interp/interpreter_access.h"
#include "platform/numbers.h"
#include "table/table_access.h"

namespace tabwerk {
namespace {

constexpr wchar_t kValueSeparator = L',';
constexpr std::int64_t kByteOrderMarkBytes = 2;
constexpr std::string_view kVersionColumn = "VERSION";

std::u16string_view WithoutLineEnd(std::u16string_view line) {
  std::size_t const last = line.find_last_not_of(u"\r\n");
  return line.substr(0, last == line.npos ? 0 : last + 1);
}

// Without any quotes at its start and its end.
std::u16string_view Unquoted(std::u16string_view text) {
  std::size_t const first = text.find_first_not_of(u'"');
  if (first == text.npos) return text.substr(0, 0);
  return text.substr(first, text.find_last_not_of(u'"') + 1 - first);
}

}  // namespace

TableDataReader::TableDataReader(DBInterpreter& interpreter, DBTabelle& table,
                                 zWString* version)
    : interpreter_(interpreter),
      table_(table),
      entry_(*table.GetDirEntry(false)),
      version_(version) {}

DataResult TableDataReader::Read(TextFile& file) {
  file.SeekTo(kByteOrderMarkBytes);
  std::u16string_view piece;
  while (file.ReadPiece(&piece)) {
    if (!ReadLine(WithoutLineEnd(piece))) return failure_;
    InterpreterAccess::CountRead(interpreter_, file.PieceBytes());
  }
  return file.Failed() ? DataResult::kLost : DataResult::kRead;
}

bool TableDataReader::ReadLine(std::u16string_view line) {
  wchar_t* token =
      InterpreterAccess::FirstToken(interpreter_, line, kValueSeparator);
  // Kept: a line that starts with a comma goes on with the row before it,
  // whose first value becomes 0 or empty.
  if (token != nullptr && *token != L'\0' && !table_.NeueZeile(false)) {
    RecordError(kErrorNoNewRow, kNoNewRowText);
    bool const has_rows = entry_.GetDefinition()->GetMemorySize() > 0;
    failure_ = has_rows ? DataResult::kLost : DataResult::kRefused;
    return false;
  }
  DBFeld const* field = entry_.GetDefinition()->GetDefinition();
  for (; token != nullptr;
       token = interpreter_.GetNextToken(nullptr, kValueSeparator)) {
    if (field == nullptr) {
      RecordError(kErrorTooManyValues, kTooManyValuesText);
      return true;
    }
    if (!StoreToken(*field, Units(token))) return false;
    field = field->next;
  }
  return true;
}

// Stores the value in the first column of the field's name.
bool TableDataReader::StoreToken(DBFeld const& field,
                                 std::u16string_view token) {
  // Of use only for what is stored next, which fails by itself.
  static_cast<void>(table_.SelectColumn(field.name));
  switch (field.type) {
    case DBTypeReal:
      return Stored(table_.SetWert(platform::ParseReal(token)), field.type);
    case DBTypeInteger:
      return Stored(table_.SetWert(long{platform::ParseInt32(token)}),
                    field.type);
    case DBTypeString:
      return StoreText(field, token);
    case DBTypeUnknown:
      break;
  }
  RecordError(kErrorNotStored, kInvalidTypeText);
  return false;
}

bool TableDataReader::StoreText(DBFeld const& field,
                                std::u16string_view token) {
  std::u16string_view const text = Unquoted(token);
  auto const end = text.data() + text.size() - units_.data();
  units_[static_cast<std::size_t>(end)] = u'\0';
  if (field.name == kVersionColumn) *version_ = zWString(text);
  return Stored(table_.SetWert(text.data()), field.type);
}

// Records an error for a result of SetWert that is one.
bool TableDataReader::Stored(int result, DBType type) {
  if (result != 0) return true;
  RecordError(kErrorNotStored, kNotStoredText);
  // What has a place and is not stored failed for lack of memory.
  failure_ = HasPlaceFor(type) ? DataResult::kLost : DataResult::kRefused;
  return false;
}

// True when the selected value takes one of that type.
bool TableDataReader::HasPlaceFor(DBType type) {
  if (type == DBTypeString) return TableAccess::HasText(table_);
  long number = 0;
  return type == DBTypeInteger && table_.GetWert(number) == 1;
}

// The token in 16-bit units, as it was read, at the start of units_.
std::u16string_view TableDataReader::Units(wchar_t const* token) {
  std::size_t length = 0;
  for (; length + 1 < units_.size() && token[length] != L'\0'; ++length) {
    units_[length] = static_cast<char16_t>(token[length]);
  }
  return {units_.data(), length};
}

void TableDataReader::RecordError(int number, char const* message) {
  InterpreterAccess::RecordError(interpreter_, number, message,
                                 entry_.GetName());
}

}  // namespace tabwerk
