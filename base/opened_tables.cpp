#include "base/opened_tables.h"

#include <algorithm>

#include "schema/directory_access.h"

namespace tabwerk {

// Only this layer gives entries a companion, so its type is known.

DBTabelle* OpenedTables::Current(DBDirEntry& entry) {
  auto* const opened =
      static_cast<OpenedTables*>(DirectoryAccess::Companion(entry).get());
  if (opened == nullptr || opened->tables_.empty()) return nullptr;
  return opened->tables_.back().get();
}

DBTabelle* OpenedTables::Record(DBDirEntry& entry,
                                std::unique_ptr<DBTabelle> table) {
  auto& companion = DirectoryAccess::Companion(entry);
  if (companion == nullptr) companion = std::make_unique<OpenedTables>();
  auto& tables = static_cast<OpenedTables&>(*companion).tables_;
  tables.push_back(std::move(table));
  return tables.back().get();
}

bool AllPartsLoaded(DBDirEntry& entry) {
  auto const& parts = DirectoryAccess::Parts(entry);
  return !parts.empty() &&
         std::all_of(parts.begin(), parts.end(),
                     [](auto const& part) { return part->loaded; });
}

}  // namespace tabwerk
