// The comparison of two rows, value by value.
#ifndef TABWERK_CLI_DIFF_VALUES_H
#define TABWERK_CLI_DIFF_VALUES_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "DBDefinition.h"
#include "cli/diff_model.h"
#include "cli/diff_snapshot.h"

namespace tabwerk::tool {

// A column of both tables.
struct ColumnPair {
  std::string name;  // UTF-8
  DBType type = DBTypeUnknown;
  std::int32_t offset_before = 0;
  std::int32_t offset_after = 0;
};

// Reals are the same when their bytes are.
bool SameValues(SnapshotRow const& before, SnapshotRow const& after,
                std::vector<ColumnPair> const& columns);

// What differs between them.
std::vector<CellDifference> ChangedCells(
    SnapshotRow const& before, SnapshotRow const& after,
    std::vector<ColumnPair> const& columns);

// What differs between two texts: where only pieces of their sections for
// several languages do, these; else the whole text.
std::vector<CellDifference> ChangedPieces(std::string const& column,
                                          std::u16string_view before,
                                          std::u16string_view after);

// The value as it is stored; texts with all their languages.
Cell ValueOf(SnapshotRow const& row, DBType type, std::int32_t offset);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_DIFF_VALUES_H
