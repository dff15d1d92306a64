// The rules for IDs, places in the order, and status of the rows of a table.
#ifndef TABWERK_CLI_CHECK_ROWS_H
#define TABWERK_CLI_CHECK_ROWS_H

#include "DBTabelle.h"
#include "cli/check_report.h"
#include "cli/table_image.h"

namespace tabwerk::tool {

// Of those that a row can have, from 0.
inline constexpr std::int32_t kLastStatus = 2;

// As the rows stand in the files.
void CheckRows(TableImage const& table, CheckReport& report);

// As the program sees them, with the order of the index: which of the active
// rows it leaves out.  loaded is the same table in the manager.
void CheckOrder(TableImage const& table, DBTabelle& loaded,
                CheckReport& report);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_CHECK_ROWS_H
