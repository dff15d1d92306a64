// The interpreter object: its file, its line, its error.
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <iterator>
#include <memory>
#include <string_view>

#include "DBInterpreter.h"
#include "DBTabelle.h"
#include "interp/interpreter_access.h"
#include "interp/row_import.h"
#include "interp/table_data.h"
#include "interp/text_file.h"
#include "interp/token_buffer.h"
#include "platform/guarded.h"

using tabwerk::Guarded;
using tabwerk::InterpreterAccess;
using tabwerk::TextFile;
using tabwerk::TokenBuffer;

namespace {

// Length of a NUL-terminated text, looking at limit + 1 characters at most.
std::size_t BoundedLength(wchar_t const* text, std::size_t limit) {
  std::size_t length = 0;
  while (length <= limit && text[length] != L'\0') ++length;
  return length;
}

}  // namespace

namespace tabwerk {

TokenBuffer& InterpreterAccess::BeginLine(DBInterpreter& interpreter) {
  if (interpreter.tokens_ == nullptr) {
    interpreter.tokens_ = std::make_shared<TokenBuffer>();
  }
  interpreter.cursor_tokens_ = interpreter.tokens_;
  interpreter.cursor_ = interpreter.tokens_->Start();
  return *interpreter.tokens_;
}

wchar_t* InterpreterAccess::FirstToken(DBInterpreter& interpreter,
                                       std::u16string_view line,
                                       wchar_t separator) {
  BeginLine(interpreter).SetLine(line);
  return TokenBuffer::NextToken(&interpreter.cursor_, separator);
}

DataResult InterpreterAccess::ReadTableData(DBInterpreter& interpreter,
                                            zWString* version) {
  auto* const table = interpreter.table_;
  if (interpreter.file_ == nullptr || table == nullptr ||
      table->GetDirEntry(false) == nullptr) {
    return DataResult::kRefused;
  }
  TableDataReader reader(interpreter, *table, version);
  return reader.Read(*interpreter.file_);
}

void InterpreterAccess::RecordError(DBInterpreter& interpreter, int number,
                                    char const* message,
                                    char const* table_name) {
  interpreter.error_number_ = number;
  // Cut where it does not fit.
  static_cast<void>(std::snprintf(interpreter.error_text_,
                                  sizeof interpreter.error_text_, "%s%s",
                                  message, table_name));
}

void InterpreterAccess::CountRead(DBInterpreter& interpreter,
                                  std::size_t bytes) {
  // One thread writes, so nothing is lost between the two.
  auto& count = interpreter.read_bytes_;
  count.store(
      count.load(std::memory_order_relaxed) + static_cast<long long>(bytes),
      std::memory_order_relaxed);
}

}  // namespace tabwerk

DBInterpreter::DBInterpreter() : error_text_{} {}

DBInterpreter::DBInterpreter(DBInterpreter const& other) : error_text_{} {
  *this = other;
}

DBInterpreter& DBInterpreter::operator=(DBInterpreter const& other) {
  if (this == &other) return *this;
  file_ = other.file_;
  table_ = other.table_;
  std::copy(std::begin(other.error_text_), std::end(other.error_text_),
            std::begin(error_text_));
  error_number_ = other.error_number_;
  // Kept: the copy goes on in the source's line, and the ends of tokens that
  // one of them writes are seen by the other.
  cursor_tokens_ = other.cursor_tokens_;
  cursor_ = other.cursor_;
  // Only a third one, copied from this object, can still look into its own
  // line; an unmade line is an empty one.
  if (tokens_ != nullptr && other.tokens_ != nullptr) {
    *tokens_ = *other.tokens_;
  } else if (tokens_ != nullptr) {
    tokens_->Clear();
  }
  return *this;
}

DBInterpreter::~DBInterpreter() = default;

int DBInterpreter::OpenDatei(char const* path, char const* mode) {
  file_.reset();
  return Guarded(0, [&] {
    file_ = TextFile::Open(path, mode);
    return file_ != nullptr ? 1 : 0;
  });
}

void DBInterpreter::CloseDatei() { file_.reset(); }

void DBInterpreter::SetTabelle(DBTabelle* table) { table_ = table; }

int DBInterpreter::GetError() const { return error_number_; }

char const* DBInterpreter::GetErrorString() const { return error_text_; }

long long DBInterpreter::GetReadBytes() const {
  return read_bytes_.load(std::memory_order_relaxed);
}

wchar_t* DBInterpreter::GetNextToken(wchar_t* line, wchar_t separator) {
  return Guarded<wchar_t*>(nullptr, [&]() -> wchar_t* {
    if (line != nullptr) {
      std::size_t const length =
          BoundedLength(line, TokenBuffer::kMaxLineLength);
      if (length > TokenBuffer::kMaxLineLength) return nullptr;
      InterpreterAccess::BeginLine(*this).SetLine(
          std::wstring_view(line, length));
    } else if (cursor_ != nullptr) {
      cursor_ = cursor_tokens_->Behind(cursor_);
    } else {
      return nullptr;
    }
    return TokenBuffer::NextToken(&cursor_, separator);
  });
}

int DBInterpreter::ReadDatei(zWString& version, bool conditions,
                             wchar_t const* conditionText) {
  if (conditions) return checkFeldConditions(conditionText);
  return Guarded(0, [&] {
    auto const result = InterpreterAccess::ReadTableData(*this, &version);
    return result == tabwerk::DataResult::kRead ? 1 : 0;
  });
}

int DBInterpreter::checkFeldConditions(wchar_t const* conditionText) {
  if (file_ == nullptr || table_ == nullptr ||
      table_->GetDirEntry(false) == nullptr) {
    return 1;
  }
  wchar_t const separator = conditionText != nullptr ? *conditionText : L'\0';
  return Guarded(1, [&] {
    tabwerk::RowImport import(*this, *table_, separator);
    import.Read(*file_);
    return 1;
  });
}
