// Rows that a command hands out: as a table on a terminal, as CSV, TSV, JSON,
// Markdown or list, to standard output or to a file.
//
//   OutputOptions output_;                       // a member of the command
//   AddOutputOptions(options, &output_);         // in Declare
//   …
//   TableOut out(output_);
//   if (auto problem = out.Begin({{"ID", CellType::kInteger}, {"NAME"}})) …
//   for (long row = 0; row < count && out.WantsMore(); ++row) {
//     out.Add({id, name});
//   }
//   if (auto problem = out.End(count)) return Report(*problem);
//
// Rows go out one by one; only a table holds back the first ones until its
// columns are measured.
#ifndef TABWERK_CLI_TABLE_OUT_H
#define TABWERK_CLI_TABLE_OUT_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "cli/errors.h"
#include "cli/out_file.h"

namespace tabwerk::tool {

class Options;

struct OutputOptions {
  std::string format = "auto";
  std::optional<long long> limit;    // rows
  std::vector<std::string> columns;  // those to be shown; empty: all
  std::string file;                  // empty or "-": standard output
};

// Adds --format, --limit, --columns and -o.
void AddOutputOptions(Options& options, OutputOptions* output);
// Adds --format and -o alone, for what is no list of rows.
void AddFormatOptions(Options& options, OutputOptions* output);

enum class CellType { kText, kInteger, kReal };

struct ColumnHead {
  std::string name;
  CellType type = CellType::kText;
};

// A value; without one it is missing, as JSON's null.  Texts are UTF-8 and
// well-formed: a half of a character pair that stands alone in a database
// becomes U+FFFD on the way (zWString::toUtf8).
using Cell = std::variant<std::monostate, std::int64_t, double, std::string>;

// Missing when the text is empty.
Cell TextCell(std::string const& text);

// The cell as plain text: numbers in the shortest form that reads back as the
// same number, nothing for a missing value.
std::string CellText(Cell const& cell);

// How rows become bytes.  One object writes one output.
class RowFormat {
 public:
  RowFormat() = default;
  RowFormat(RowFormat const&) = delete;
  RowFormat& operator=(RowFormat const&) = delete;
  virtual ~RowFormat() = default;

  virtual void Begin(std::vector<ColumnHead> const& columns) = 0;
  virtual void Add(std::vector<Cell> const& cells) = 0;
  virtual void End() = 0;
};

class TableOut {
 public:
  // The options must outlive it.
  explicit TableOut(OutputOptions const& options);
  ~TableOut();
  TableOut(TableOut const&) = delete;
  TableOut& operator=(TableOut const&) = delete;

  // Before all else.  A problem: a column that is asked for is not there, or
  // the file cannot be made.
  std::optional<Problem> Begin(std::vector<ColumnHead> columns);
  // False when the limit is reached or nobody takes the output any more.
  bool WantsMore() const;
  bool IsTerminal() const { return file_.IsTerminal(); }
  // False for a column that is not shown: its cell may be left empty.
  bool Wants(std::size_t column) const;
  // A row, one cell for each column of Begin.
  void Add(std::vector<Cell> cells);
  // Behind the last row.  total is the number of rows that there are, where it
  // is known: a table on a terminal tells when not all are shown.
  std::optional<Problem> End(std::optional<long long> total = std::nullopt);

 private:
  std::unique_ptr<RowFormat> MakeFormat();

  OutputOptions const& options_;
  OutFile file_;
  std::unique_ptr<RowFormat> format_;
  std::vector<bool> shown_;         // by column of Begin
  std::vector<std::size_t> order_;  // columns of Begin as they are shown
  long long row_count_ = 0;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TABLE_OUT_H
