// The commands of the tool.
//
// How a command is written:
//
// 1.  A file cmd_NAME.cpp with a class that is a Command, and at its end
//
//         extern CommandEntry const kNameCommand;
//         CommandEntry const kNameCommand = {
//             "name", Group::kLook, "Say what it does, in one line",
//             {{"name geo.db -t CURRENCY", "what this shows"}},
//             [] { return MakeCommand<NameCommand>(); }};
//
//     The build finds it by the name of the file (kNameCommand for
//     cmd_name.cpp); help, manual page and completions follow from it and from
//     the options that it declares.
// 2.  Declare adds options, bound to members:
//
//         options.Add("-t,--table", table_, "The table").Required();
//
//     What else they can do is in options.h, which keeps the argument library
//     to itself.  AddDatabaseOptions (session.h) is for FILE and USERFILE,
//     AddOutputOptions (table_out.h) where rows come out, AddWriteOptions
//     (writing.h) where something is changed.  -q, -v and --color are added to
//     every command.
// 3.  Run hands rows to a TableOut (table_out.h), findings to a FindingsOut
//     (findings.h), and problems to Report and Warn (errors.h).  A new kind of
//     problem gets the next number of its range (codes.h).  A command that
//     looks opens the database with OpenToLook, so that no file changes; one
//     that writes ends with Conclude (settings.h).  What may take long has a
//     Progress (progress.h).
// 4.  Tests run the tool (tests/cli/tool_test.h) and compare longer output with
//     tests/cli/expected (tests/cli/expected.h); docs/tool.md gets a section
//     "### name" with an example that a test runs.
#ifndef TABWERK_CLI_COMMANDS_H
#define TABWERK_CLI_COMMANDS_H

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/codes.h"
#include "cli/options.h"

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
  virtual void Declare(Options& options) = 0;
  virtual ExitCode Run() = 0;
};

template <typename T>
std::unique_ptr<Command> MakeCommand() {
  return std::make_unique<T>();
}

// In the order in which the help lists them.
enum class Group { kLook, kMake, kChange, kCheck, kHelp };

char const* GroupTitle(Group group);
inline constexpr Group kAllGroups[] = {
    Group::kLook, Group::kMake, Group::kChange, Group::kCheck, Group::kHelp};

struct Example {
  char const* arguments;  // "show geo.db -t CURRENCY"
  char const* purpose;    // "the rows of a table"
};

struct CommandEntry {
  char const* name;
  Group group;
  char const* summary;
  std::vector<Example> examples;
  std::unique_ptr<Command> (*make)();
};

// All of them, by group and name.
std::vector<CommandEntry const*> const& AllCommands();
// Null when there is no command of that name.
CommandEntry const* FindCommand(std::string_view name);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_COMMANDS_H
