// Runs the tool as a program.
#ifndef TABWERK_TESTS_CLI_RUN_TOOL_H
#define TABWERK_TESTS_CLI_RUN_TOOL_H

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace tabwerk::test {

struct ToolRun {
  int exit_code = -1;
  std::string out;  // standard output, bytes as they came
  std::string err;
};

// Where standard output goes.
enum class OutputTo {
  kFile,               // for ToolRun::out
  kPipeWithoutReader,  // one that nobody reads any more
  kFullDisk,
};

// What a run is given.  Texts are UTF-8, input is bytes.
struct ToolCall {
  std::vector<std::string> arguments;
  std::string input;
  // Variables beside those of the test; an empty value stands for "not set".
  // NO_COLOR and TERM never come from the test.
  std::vector<std::pair<std::string, std::string>> environment;
  OutputTo output = OutputTo::kFile;
#ifndef _WIN32
  // Called in the new process, when its streams are set, before the tool.
  void (*prepare)() = nullptr;
#endif
};

// Starts it in that folder and waits.  Its output goes to files, as it would go
// to a pipe.
ToolRun RunTool(std::filesystem::path const& folder, ToolCall const& call);
ToolRun RunTool(std::filesystem::path const& folder,
                std::vector<std::string> const& arguments);

#ifndef _WIN32
// The same with standard output and standard error on a terminal of so many
// columns; both come in out, with "\n" for line ends.  It knows no colours
// unless the call sets TERM.
ToolRun RunToolOnTerminal(std::filesystem::path const& folder,
                          ToolCall const& call, int columns);
ToolRun RunToolOnTerminal(std::filesystem::path const& folder,
                          std::vector<std::string> const& arguments,
                          int columns);
#endif

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_CLI_RUN_TOOL_H
