// Writing a database file anew in the current form.
#ifndef TABWERK_CLI_CONVERT_FILE_H
#define TABWERK_CLI_CONVERT_FILE_H

#include <optional>
#include <string>

#include "cli/database_file.h"
#include "cli/errors.h"

namespace tabwerk::tool {

// What is known of a file before it is converted; a problem when it is damaged
// or holds what cannot be written.  Opens it in the manager.
std::optional<Problem> Examine(std::string const& path, DatabaseFile* file);

// Writes what Examine has opened to a file that is there or not; that of path
// itself is replaced when the new one is complete.
std::optional<Problem> ConvertFile(std::string const& path,
                                   std::string const& target);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_CONVERT_FILE_H
