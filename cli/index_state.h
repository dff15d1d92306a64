// What can be said of an index file without loading tables.
#ifndef TABWERK_CLI_INDEX_STATE_H
#define TABWERK_CLI_INDEX_STATE_H

#include <filesystem>
#include <string>
#include <vector>

#include "cli/database_file.h"

namespace tabwerk::tool {

// The index file of a database of that name with that user file.
std::filesystem::path IndexPath(std::string const& user_file,
                                std::string const& database_name);

// Compares an index file with the files of its database, in their order; the
// answer for the user.
std::string IndexState(std::filesystem::path const& index,
                       std::vector<DatabaseFile> const& files);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_INDEX_STATE_H
