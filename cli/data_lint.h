// What is wrong with the table data that a script names.
#ifndef TABWERK_CLI_DATA_LINT_H
#define TABWERK_CLI_DATA_LINT_H

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cli/data_lines.h"
#include "cli/row_numbers.h"
#include "cli/script_scan.h"

namespace tabwerk::tool {

using TakeFinding = std::function<void(Severity, Problem const&)>;

// Looks at the files of one table.  Borrows the table.
class DataLint {
 public:
  DataLint(ScriptTable const& table, TakeFinding take);

  // One file, in the order of the script; content are its bytes.
  void Read(std::string const& path, std::string_view content);
  // Behind the last file: what only all rows together show.
  void End();

 private:
  void Warn(Code code, Place where, std::string what, std::string advice);
  // False when the file is not what the library takes it for, so that a look
  // at its lines would be of no use.
  bool CheckEncoding(std::string const& path, std::string_view content);

  ScriptTable const& table_;
  TakeFinding take_;
  // Kept for the places of what is found at the end.
  std::vector<std::unique_ptr<DataLines>> files_;
  RowNumbers numbers_;
  long long row_count_ = 0;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_DATA_LINT_H
