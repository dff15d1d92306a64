// A look at a script, to say where it is wrong.  The library carries it out;
// it knows whether a script worked, but not at which line it stopped.
#ifndef TABWERK_CLI_SCRIPT_SCAN_H
#define TABWERK_CLI_SCRIPT_SCAN_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cli/errors.h"

namespace tabwerk::tool {

struct ScriptScan {
  std::string database_file;  // of the last database; empty: none
  // The first statement that cannot be carried out.
  std::optional<Problem> failure;
  // What is left out without a failure.
  std::vector<Problem> remarks;
};

// script is the path of the script; content its bytes.  Paths in it are
// relative to the current folder.
ScriptScan ScanScript(std::string const& script, std::string const& content);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_SCRIPT_SCAN_H
