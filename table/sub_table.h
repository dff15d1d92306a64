// One part of a table as a table object sees it.
#ifndef TABWERK_TABLE_SUB_TABLE_H
#define TABWERK_TABLE_SUB_TABLE_H

#include <cstdint>

#include "DBDefinition.h"

class DBDirEntry;

namespace tabwerk {
struct TablePart;
}  // namespace tabwerk

// The entry and the part that a table looks at for one file, with the row and
// the field that are selected there.  Everything is borrowed from the entry.
// The selected row is kept as a number, not as an address: blocks move when
// rows are added, through this table or another one over the same entry.
class DBSubTable {
 public:
  DBSubTable(DBDirEntry* its_entry, tabwerk::TablePart* its_part) noexcept
      : entry(its_entry), part(its_part) {}
  DBSubTable(DBSubTable const&) = default;
  DBSubTable& operator=(DBSubTable const&) = default;
  virtual ~DBSubTable() = default;

  DBDirEntry* entry;
  tabwerk::TablePart* part;
  DBFeld* field = nullptr;
  std::int32_t row = -1;  // within the part; -1 before any was selected
};

#endif  // TABWERK_TABLE_SUB_TABLE_H
