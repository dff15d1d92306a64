// Runs the tool as a program.
#ifndef TABWERK_TESTS_CLI_RUN_TOOL_H
#define TABWERK_TESTS_CLI_RUN_TOOL_H

#include <filesystem>
#include <string>
#include <vector>

namespace tabwerk::test {

struct ToolRun {
  int exit_code = -1;
  std::string out;  // standard output, bytes as they came
  std::string err;
};

// Starts it in that folder and waits.  Arguments are UTF-8.  Its output goes to
// files, as it would go to a pipe.
ToolRun RunTool(std::filesystem::path const& folder,
                std::vector<std::string> const& arguments);

#ifndef _WIN32
// The same with standard output and standard error on a terminal of so many
// columns; both come in out, with "\n" for line ends.
ToolRun RunToolOnTerminal(std::filesystem::path const& folder,
                          std::vector<std::string> const& arguments,
                          int columns);
// The same with standard output in that file.
ToolRun RunToolInto(char const* output, std::filesystem::path const& folder,
                    std::vector<std::string> const& arguments);
#endif

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_CLI_RUN_TOOL_H
