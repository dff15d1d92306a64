// Rows of a table as cells of output.
#ifndef TABWERK_CLI_TABLE_ROWS_H
#define TABWERK_CLI_TABLE_ROWS_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "DBTabelle.h"
#include "cli/table_out.h"

namespace tabwerk::tool {

// The columns of a table with their values in the manager's language.  Borrows
// the table, whose current row and column it moves.
class TableRows {
 public:
  explicit TableRows(DBTabelle& table);

  // Gives every column whose texts have several languages one column for each:
  // NAME.0, NAME.1 …
  void SplitLanguages();

  long RowCount() const { return row_count_; }
  std::vector<ColumnHead> Heads() const;
  // The values of a row; those that out does not want are missing.
  std::vector<Cell> Row(long row, TableOut const& out);

 private:
  struct Column {
    DBFeld const* field;
    std::optional<short> language;  // without: the manager's
  };

  Cell Value(Column const& column);

  DBTabelle& table_;
  long row_count_;
  std::vector<Column> columns_;
};

// Hands out the rows of these numbers; table is what the user calls it.
std::optional<Problem> PrintRows(TableRows& rows,
                                 std::vector<long> const& chosen,
                                 std::string const& table,
                                 OutputOptions const& options);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TABLE_ROWS_H
