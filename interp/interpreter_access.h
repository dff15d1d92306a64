// What the readers use of the interpreter.
#ifndef TABWERK_INTERP_INTERPRETER_ACCESS_H
#define TABWERK_INTERP_INTERPRETER_ACCESS_H

#include <cstddef>
#include <string_view>

#include "DBInterpreter.h"
#include "interp/table_data.h"

namespace tabwerk {

class TokenBuffer;

// Numbers of DBInterpreter::GetError.
inline constexpr int kErrorTooManyValues = 1;
inline constexpr int kErrorNotStored = 2;
inline constexpr int kErrorNoNewRow = 3;

// The texts begin with these; the table's name follows.
inline constexpr char const* kTooManyValuesText =
    "Number of columns and number of token\ndo not match in table ";
inline constexpr char const* kNotStoredText = "Could not write to table ";
inline constexpr char const* kInvalidTypeText = "Invalid type in table ";
inline constexpr char const* kNoNewRowText = "could not add new line to table ";

struct InterpreterAccess {
  // Begins a line and returns its first token, as GetNextToken does.  The line
  // has at most TokenBuffer::kMaxLineLength units.  Throws std::bad_alloc.
  static wchar_t* FirstToken(DBInterpreter& interpreter,
                             std::u16string_view line, wchar_t separator);
  // As ReadDatei without conditions; kRefused without a file or table.  Throws
  // std::bad_alloc.
  static DataResult ReadTableData(DBInterpreter& interpreter,
                                  zWString* version);
  // Stores number and message, followed by the name of a table, as the last
  // error.
  static void RecordError(DBInterpreter& interpreter, int number,
                          char const* message, char const* table_name);
  // Adds to what GetReadBytes returns.
  static void CountRead(DBInterpreter& interpreter, std::size_t bytes);
  // Sets the cursor to the start of the interpreter's own line and returns that
  // line, to be filled.  Throws std::bad_alloc.
  static TokenBuffer& BeginLine(DBInterpreter& interpreter);
};

}  // namespace tabwerk

#endif  // TABWERK_INTERP_INTERPRETER_ACCESS_H
