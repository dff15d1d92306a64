// The rules for header, list of tables and blocks of a database file.
#ifndef TABWERK_CLI_CHECK_STRUCTURE_H
#define TABWERK_CLI_CHECK_STRUCTURE_H

#include <cstdint>

#include "cli/check_report.h"
#include "cli/file_image.h"

namespace tabwerk::tool {

// A place in a file, and in the file for a table.
CheckPlace At(FileImage const& image, std::int64_t byte);
CheckPlace At(FileImage const& image, RecordImage const& record,
              std::int64_t byte);

void CheckHeader(FileImage const& image, CheckReport& report);
// A user file may be without tables.
void CheckList(FileImage const& image, bool is_user_file, CheckReport& report);
void CheckBlocks(FileImage const& image, CheckReport& report);
// Whether a user file belongs to that main file.
void CheckUserTables(FileImage const& main, FileImage const& user,
                     CheckReport& report);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_CHECK_STRUCTURE_H
