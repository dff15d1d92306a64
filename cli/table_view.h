// Rows of a table on standard output.
#ifndef TABWERK_CLI_TABLE_VIEW_H
#define TABWERK_CLI_TABLE_VIEW_H

#include <string>
#include <vector>

#include "DBTabelle.h"

namespace tabwerk::tool {

// The columns of a table with their values in the manager's language.  Borrows
// the table, whose current row and column it moves.
class TableView {
 public:
  explicit TableView(DBTabelle& table);

  long RowCount() const { return row_count_; }

  // Prints the first row_limit rows, complete, as lines of values separated by
  // tabs, behind a line of column names.
  void PrintTabSeparated(long row_limit);
  // Prints them below each other, cut to fit into so many columns of text.
  void PrintAligned(long row_limit, int terminal_width);

 private:
  struct Column {
    std::string label;
    DBFeld const* field;
    bool IsNumber() const;
  };

  // The current row's value, on one line.
  std::string Value(Column const& column);
  std::vector<std::size_t> Widths(long row_limit);
  void PrintLine(std::vector<std::string> const& cells,
                 std::vector<std::size_t> const& widths);

  DBTabelle& table_;
  long row_count_;
  std::vector<Column> columns_;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TABLE_VIEW_H
