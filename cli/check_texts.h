// The rules for the texts of a table: their places, lengths and markers.
#ifndef TABWERK_CLI_CHECK_TEXTS_H
#define TABWERK_CLI_CHECK_TEXTS_H

#include "cli/check_report.h"
#include "cli/table_image.h"

namespace tabwerk::tool {

void CheckTexts(TableImage const& table, CheckReport& report);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_CHECK_TEXTS_H
