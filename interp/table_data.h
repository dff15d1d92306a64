// Table data: one row a line, values in the order of the columns.
#ifndef TABWERK_INTERP_TABLE_DATA_H
#define TABWERK_INTERP_TABLE_DATA_H

#include <array>
#include <cstdint>
#include <string_view>

#include "DBInterpreter.h"
#include "DBTabelle.h"
#include "interp/text_file.h"

namespace tabwerk {

// How far a reading came.
enum class DataResult : std::uint8_t {
  kRead,
  kRefused,  // a value or a row that the table has no place for
  kLost,     // the file could not be read to its end, or memory is exhausted
};

// Fills a table from a text file.  Errors are recorded in the interpreter,
// whose tokenizer splits the lines.  Borrows all that it is given; the table
// has a directory entry.
class TableDataReader {
 public:
  TableDataReader(DBInterpreter& interpreter, DBTabelle& table,
                  zWString* version);

  // Reads the file behind its two-byte mark, up to the first failure; what was
  // read before stays.  Throws std::bad_alloc.
  DataResult Read(TextFile& file);

 private:
  bool ReadLine(std::u16string_view line);
  bool StoreToken(DBFeld const& field, std::u16string_view token);
  bool StoreText(DBFeld const& field, std::u16string_view token);
  bool Stored(int result, DBType type);
  bool HasPlaceFor(DBType type);
  std::u16string_view Units(wchar_t const* token);
  void RecordError(int number, char const* message);

  DBInterpreter& interpreter_;
  DBTabelle& table_;
  DBDirEntry& entry_;
  zWString* version_;
  DataResult failure_ = DataResult::kRefused;  // of the value or row at fault
  std::array<char16_t, TextFile::kMaxPieceUnits + 1> units_;  // with a NUL
};

}  // namespace tabwerk

#endif  // TABWERK_INTERP_TABLE_DATA_H
