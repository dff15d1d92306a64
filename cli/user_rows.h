// What commands that change a user file's rows check before and do after.
#ifndef TABWERK_CLI_USER_ROWS_H
#define TABWERK_CLI_USER_ROWS_H

#include <optional>
#include <string>

#include "DBTabelle.h"
#include "cli/errors.h"
#include "cli/session.h"

namespace tabwerk::tool {

// A problem unless the library takes the second file for the user's.
std::optional<Problem> CheckUserFileName(DatabaseFiles const& files);

// A problem when the table takes no rows of the user.
std::optional<Problem> CheckUserPart(DatabaseFiles const& files,
                                     std::string const& table_name,
                                     DBTabelle& table);

// A problem when the library cannot fill the columns of a new row: values go to
// columns by their names.
std::optional<Problem> CheckNewRows(DatabaseFiles const& files,
                                    std::string const& table_name,
                                    DBTabelle& table);

// Saves the user file with its index and closes the database.
std::optional<Problem> SaveUserFile(DatabaseFiles const& files);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_USER_ROWS_H
