// Rows of a table as cells of output.
#ifndef TABWERK_CLI_TABLE_ROWS_H
#define TABWERK_CLI_TABLE_ROWS_H

#include <cstddef>
#include <vector>

#include "DBTabelle.h"
#include "cli/table_out.h"

namespace tabwerk::tool {

// The columns of a table with their values in the manager's language.  Borrows
// the table, whose current row and column it moves.
class TableRows {
 public:
  explicit TableRows(DBTabelle& table);

  long RowCount() const { return row_count_; }
  std::vector<ColumnHead> Heads() const;
  // The values of a row; those that out does not want are missing.
  std::vector<Cell> Row(long row, TableOut const& out);

 private:
  Cell Value(DBFeld const& field);

  DBTabelle& table_;
  long row_count_;
  std::vector<DBFeld const*> fields_;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TABLE_ROWS_H
