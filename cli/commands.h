// The commands of the tool.
#ifndef TABWERK_CLI_COMMANDS_H
#define TABWERK_CLI_COMMANDS_H

#include <memory>
#include <span>

#include "cli/errors.h"

namespace CLI {
class App;
}

namespace tabwerk::tool {

// One command: takes its part of the command line, then runs.  It reports its
// problems itself.
class Command {
 public:
  Command() = default;
  Command(Command const&) = delete;
  Command& operator=(Command const&) = delete;
  virtual ~Command() = default;

  // Adds its options to its part of the command line.  They are bound to this
  // object.
  virtual void Declare(CLI::App& app) = 0;
  virtual ExitCode Run() = 0;
};

struct CommandEntry {
  char const* name;
  char const* summary;
  std::unique_ptr<Command> (*make)();
};

// All of them, in the order in which the help lists them.
std::span<CommandEntry const> AllCommands();

// Each is defined in the file of its command.
std::unique_ptr<Command> MakeBuildCommand();
std::unique_ptr<Command> MakeDumpCommand();
std::unique_ptr<Command> MakeImportCommand();
std::unique_ptr<Command> MakeInfoCommand();
std::unique_ptr<Command> MakeShowCommand();

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_COMMANDS_H
