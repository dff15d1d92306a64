// The output of the languages command.
#ifndef TABWERK_CLI_LANGUAGE_ROWS_H
#define TABWERK_CLI_LANGUAGE_ROWS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "DBTabelle.h"
#include "cli/language_coverage.h"
#include "cli/language_names.h"
#include "cli/session.h"
#include "cli/table_out.h"

namespace tabwerk::tool {

// Counts columns and hands out what it found: as a matrix with a column for
// each language, as a row for each of them, or cell by cell.  Borrows options
// and languages.
class LanguageRows {
 public:
  LanguageRows(OutputOptions const& options, LanguageNames const* languages,
               bool cells);

  std::optional<Problem> Begin();
  bool IsTerminal() const { return out_.IsTerminal(); }
  // Before its columns.
  void BeginTable(DBTabelle& table, DatabaseFiles const& files);
  void Add(DBTabelle& table, DBFeld const& field);
  // With the totals.
  std::optional<Problem> End();
  // By language.
  std::vector<SectionCounts> const& Totals() const { return total_.languages; }

 private:
  enum class Form { kMatrix, kRows, kCells };

  std::vector<ColumnHead> Heads() const;
  void AddMatrixRow(ColumnCoverage const& coverage);
  void AddRows(ColumnCoverage const& coverage);
  void AddSurplusRows(ColumnCoverage const& coverage);
  void AddCell(std::string const& column, IncompleteText const& cell);
  void AddToTotal(ColumnCoverage const& coverage);

  Form form_;
  LanguageNames const& languages_;
  TableOut out_;
  ColumnCoverage total_;
  // Of the current table.
  std::string table_;
  std::string main_file_;
  std::string user_file_;
  std::size_t main_rows_ = 0;
  std::vector<Cell> ids_;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_LANGUAGE_ROWS_H
