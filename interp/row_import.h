// Delimited rows: every line becomes a row of the user.
#ifndef TABWERK_INTERP_ROW_IMPORT_H
#define TABWERK_INTERP_ROW_IMPORT_H

#include <map>
#include <string>
#include <string_view>

#include "DBInterpreter.h"
#include "DBTabelle.h"
#include "interp/text_file.h"

namespace tabwerk {

// Appends the lines of a text file to a table.  Lines with too many values are
// recorded in the interpreter, whose tokenizer splits the lines.  Borrows all
// that it is given; the table has a directory entry.
class RowImport {
 public:
  // separator 0: none, a line is one value.
  RowImport(DBInterpreter& interpreter, DBTabelle& table, wchar_t separator);

  // Reads the whole file from its start.  Throws std::bad_alloc.
  void Read(TextFile& file);

 private:
  void ReadLine(std::u16string_view line);

  DBInterpreter& interpreter_;
  DBTabelle& table_;
  DBDirEntry& entry_;
  wchar_t separator_;
  std::map<std::string, std::wstring> values_;
};

}  // namespace tabwerk

#endif  // TABWERK_INTERP_ROW_IMPORT_H
