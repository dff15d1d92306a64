// The rules for the index file of a database with a user file.
#ifndef TABWERK_CLI_CHECK_INDEX_H
#define TABWERK_CLI_CHECK_INDEX_H

#include <filesystem>
#include <vector>

#include "cli/check_report.h"
#include "cli/table_image.h"

namespace tabwerk::tool {

// tables in the order of the main file.  With rows, an index that was written
// for exactly these files is compared with their rows as well.
void CheckIndex(std::filesystem::path const& path, FileImage const& main,
                FileImage const& user, std::vector<TableImage> const& tables,
                bool with_rows, CheckReport& report);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_CHECK_INDEX_H
