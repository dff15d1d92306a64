// All that is wrong with a script and the table data that it names.
#ifndef TABWERK_CLI_LINT_H
#define TABWERK_CLI_LINT_H

#include <string>

#include "cli/data_lint.h"
#include "cli/script_scan.h"

namespace tabwerk::tool {

// Hands out the findings of a scan and, each behind its statement, those of
// the data.  Errors are what keeps the library from building the database.
// Changes no file.
void Lint(ScriptScan const& scan, TakeFinding const& take);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_LINT_H
