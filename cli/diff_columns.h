// Which tables and columns a comparison takes.
#ifndef TABWERK_CLI_DIFF_COLUMNS_H
#define TABWERK_CLI_DIFF_COLUMNS_H

#include <optional>
#include <string>
#include <vector>

#include "DBDefinition.h"
#include "cli/diff_snapshot.h"

namespace tabwerk::tool {

// What is compared.  Names are UTF-8.
struct DiffOptions {
  std::vector<std::string> tables;   // empty: all
  std::vector<std::string> columns;  // empty: all
  std::vector<std::string> ignored;  // columns
  bool summary = false;              // no rows are handed out
  std::optional<long long> limit;    // of rows of a table that are

  bool WantsTable(std::string const& name) const;
  bool WantsColumn(std::string const& name) const;
};

struct DiffColumn {
  std::string name;  // UTF-8
  DBFeld const* field;
};

// The columns to be compared, with the names of ColumnNames.
std::vector<DiffColumn> DiffColumns(SnapshotTable const& table,
                                    DiffOptions const& options);
// The column that rows are told apart by; null when there is none.
DBFeld const* DiffId(SnapshotTable const& table, DiffOptions const& options);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_DIFF_COLUMNS_H
