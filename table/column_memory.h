// The column that a search selects again when it is over.
#ifndef TABWERK_TABLE_COLUMN_MEMORY_H
#define TABWERK_TABLE_COLUMN_MEMORY_H

#include "DBTabelle.h"

namespace tabwerk {

// Remembers the name of the selected column, or fallback where none is
// selected, and selects the first column of that name at its end.  Kept: by
// name, so that the index that follows a value is that of the name, and the
// searched column stays selected where none was.
class ColumnMemory {
 public:
  ColumnMemory(DBTabelle& table, char const* fallback) : table_(table) {
    DBFeld const* const field = table.GetAktuelleFeldDef();
    name_ = field == nullptr ? fallback : field->name;
  }
  ColumnMemory(ColumnMemory const&) = delete;
  ColumnMemory& operator=(ColumnMemory const&) = delete;
  ~ColumnMemory() { table_.SelectColumn(name_); }

 private:
  DBTabelle& table_;
  char const* name_;
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_COLUMN_MEMORY_H
