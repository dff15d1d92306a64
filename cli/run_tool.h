// The tool as a function, for its own main and for programs that drive it.
#ifndef TABWERK_CLI_RUN_TOOL_H
#define TABWERK_CLI_RUN_TOOL_H

#include <string>
#include <vector>

namespace tabwerk::tool {

// Carries out one command line, without the name of the program; arguments are
// UTF-8.  Returns the exit code.  Output goes to stdout and stderr; nothing is
// thrown.  What a command opens in the manager stays open, so that a caller
// that goes on calls DBbase::Init({}, {}) in between.
int RunTool(std::vector<std::string> arguments);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_RUN_TOOL_H
