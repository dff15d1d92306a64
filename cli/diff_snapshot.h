// A database in memory, apart from the manager.
#ifndef TABWERK_CLI_DIFF_SNAPSHOT_H
#define TABWERK_CLI_DIFF_SNAPSHOT_H

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DBDefinition.h"
#include "cli/errors.h"
#include "cli/session.h"
#include "schema/part.h"
#include "schema/string_memory.h"

namespace tabwerk::tool {

// The rows and texts of a table in one file.
struct SnapshotPart {
  std::int64_t row_count = 0;
  platform::Block rows;
  std::unique_ptr<DBStringMemory> strings;
};

struct SnapshotTable {
  std::string name;  // UTF-8
  DBDefinition definition;
  std::vector<SnapshotPart> parts;

  std::int64_t RowCount() const;
};

// A row of a table.  Borrows it.
class SnapshotRow {
 public:
  // row counts over all parts; it has to be there.
  SnapshotRow(SnapshotTable const& table, std::int64_t row);

  std::int32_t Integer(std::int32_t offset) const;
  double Real(std::int32_t offset) const;
  // As it is stored, with all languages; empty where there is none.
  std::u16string_view Text(std::int32_t offset) const;
  // The bytes of a value.
  std::byte const* Bytes(std::int32_t offset) const { return bytes_ + offset; }

 private:
  std::byte const* bytes_;
  DBStringMemory const* strings_;
};

struct Snapshot {
  DatabaseFiles files;
  std::list<SnapshotTable> tables;  // in the order of the main file
};

// Takes a database as the manager shows it, with the order and the status of
// its index.  Afterwards the manager has none.
std::optional<Problem> TakeSnapshot(DatabaseFiles const& files,
                                    Snapshot* snapshot);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_DIFF_SNAPSHOT_H
