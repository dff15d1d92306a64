#include "cli/diff_snapshot.h"

#include <utility>

#include "DBDirectory.h"
#include "DBbase.h"
#include "cli/files.h"
#include "schema/bytes.h"
#include "schema/directory_access.h"

namespace tabwerk::tool {
namespace {

// Takes rows and texts out of an entry, which is to be deleted.
SnapshotTable TakeTable(DBDirEntry& entry) {
  SnapshotTable table;
  table.name = NameToUtf8(entry.GetName());
  table.definition = *entry.GetDefinition();
  for (auto const& part : DirectoryAccess::Parts(entry)) {
    SnapshotPart taken;
    // Of two tables of one name only one is loaded.
    taken.row_count = part->loaded ? part->Rows() : 0;
    taken.rows = std::move(part->rows);
    taken.strings =
        std::exchange(part->strings, std::make_unique<DBStringMemory>());
    part->row_count = 0;
    table.parts.push_back(std::move(taken));
  }
  return table;
}

}  // namespace

std::int64_t SnapshotTable::RowCount() const {
  std::int64_t count = 0;
  for (SnapshotPart const& part : parts) count += part.row_count;
  return count;
}

SnapshotRow::SnapshotRow(SnapshotTable const& table, std::int64_t row) {
  auto part = table.parts.begin();
  while (row >= part->row_count) row -= (part++)->row_count;
  bytes_ = part->rows.data() + row * table.definition.GetMemorySize();
  strings_ = part->strings.get();
}

std::int32_t SnapshotRow::Integer(std::int32_t offset) const {
  return LoadValue<std::int32_t>(Bytes(offset));
}

double SnapshotRow::Real(std::int32_t offset) const {
  return LoadValue<double>(Bytes(offset));
}

std::u16string_view SnapshotRow::Text(std::int32_t offset) const {
  return strings_->Text(Integer(offset)).value_or(std::u16string_view());
}

std::optional<Problem> TakeSnapshot(DatabaseFiles const& files,
                                    Snapshot* snapshot) {
  snapshot->files = files;
  if (auto problem = OpenToLook(files)) return problem;
  DBDirectory* const directory = DBbase::GetDBBaseInstance()->GetDirectory();
  for (DBDirEntry* entry = directory->GetEntries(); entry != nullptr;
       entry = entry->GetNext()) {
    DBTabelle* table = nullptr;
    if (auto problem = FindTable(files, NameToUtf8(entry->GetName()), &table)) {
      return problem;
    }
  }
  for (DBDirEntry* entry = directory->GetEntries(); entry != nullptr;
       entry = entry->GetNext()) {
    // The directory has them backwards.
    snapshot->tables.push_front(TakeTable(*entry));
  }
  DBbase::Init({}, {});
  return std::nullopt;
}

}  // namespace tabwerk::tool
