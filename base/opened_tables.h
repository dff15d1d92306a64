// The tables that were handed out for a directory entry.
#ifndef TABWERK_BASE_OPENED_TABLES_H
#define TABWERK_BASE_OPENED_TABLES_H

#include <memory>
#include <utility>
#include <vector>

#include "DBDirectory.h"
#include "DBTabelle.h"

namespace tabwerk {

// Keeps the current table of an entry and those that it replaced: a host may
// still use these, so they live as long as the entry.
class OpenedTables : public EntryCompanion {
 public:
  // The entry's table; null when none was opened.
  static DBTabelle* Current(DBDirEntry& entry);
  // Makes table the entry's table and returns it; throws std::bad_alloc.
  static DBTabelle* Record(DBDirEntry& entry, std::unique_ptr<DBTabelle> table);

 private:
  std::vector<std::unique_ptr<DBTabelle>> tables_;  // the last one is current
};

// True when the entry has parts and all of them are in memory.
bool AllPartsLoaded(DBDirEntry& entry);

}  // namespace tabwerk

#endif  // TABWERK_BASE_OPENED_TABLES_H
