// The files that a script names, as they are before it is carried out.
#ifndef TABWERK_CLI_SCRIPT_FILES_H
#define TABWERK_CLI_SCRIPT_FILES_H

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "cli/errors.h"

namespace tabwerk::tool {

class Options;

// Adds -C, and goes to that folder; paths in scripts are relative to the
// current one.  Nothing where folder is empty.
void AddFolderOption(Options& options, std::string* folder);
std::optional<Problem> EnterFolder(std::string const& folder);

// The path of a data file by its bytes in the script.
std::filesystem::path DataPath(std::string const& bytes);
// Why a script cannot read that data file; the place is left out.
std::optional<Problem> WhyNotReadable(std::string const& bytes);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_SCRIPT_FILES_H
