#include "cli/run_tool.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "cli/commands.h"
#include "cli/console.h"
#include "cli/errors.h"

namespace tabwerk::tool {
namespace {

constexpr char kExitCodes[] =
    "Exit codes: 0 done, 1 findings, 2 wrong usage, 3 a file cannot be\n"
    "opened, read or written, 4 damaged file, 5 file held by another process,\n"
    "6 input rows rejected";

struct Parser {
  CLI::App app{"Makes databases, looks into them and fills user files",
               "tabwerk"};
  std::vector<std::pair<CLI::App*, std::unique_ptr<Command>>> commands;
};

void Declare(Parser& parser) {
  parser.app.require_subcommand(1);
  parser.app.set_version_flag("--version", "tabwerk " TABWERK_VERSION);
  parser.app.footer(kExitCodes);
  for (CommandEntry const& entry : AllCommands()) {
    CLI::App* const app = parser.app.add_subcommand(entry.name, entry.summary);
    parser.commands.emplace_back(app, entry.make());
    parser.commands.back().second->Declare(*app);
  }
}

// The name of the command that the user was about to use, as it is typed.
std::string CommandInUse(CLI::App const& app) {
  std::string name = "tabwerk";
  for (CLI::App const* const it : app.get_subcommands()) {
    name += " " + it->get_name();
  }
  return name;
}

// Help that was asked for, or what is wrong with the command line.
ExitCode AnswerParser(CLI::App const& app, CLI::ParseError const& answer) {
  if (answer.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
    bool const version = answer.get_name() == "CallForVersion";
    console::Out(version ? std::string(answer.what()) + "\n" : app.help());
    return ExitCode::kDone;
  }
  return Report({ExitCode::kUsage, "", answer.what(),
                 "see \"" + CommandInUse(app) + " --help\""});
}

ExitCode Dispatch(std::vector<std::string> arguments) {
  Parser parser;
  Declare(parser);
  // The parser takes them from the end.
  std::reverse(arguments.begin(), arguments.end());
  try {
    parser.app.parse(std::move(arguments));
  } catch (CLI::ParseError const& answer) {
    return AnswerParser(parser.app, answer);
  }
  for (auto const& [app, command] : parser.commands) {
    if (app->parsed()) return command->Run();
  }
  return ExitCode::kUsage;
}

}  // namespace

int RunTool(std::vector<std::string> arguments) {
  console::SetUp();
  ExitCode code = ExitCode::kDone;
  try {
    code = Dispatch(std::move(arguments));
  } catch (std::bad_alloc const&) {
    code = Report({ExitCode::kFile, "", "there is not enough memory",
                   "close other programs and try again"});
  } catch (std::exception const& exception) {
    code = Report({ExitCode::kFile, "", exception.what(), ""});
  }
  if (!console::FlushOut() && code == ExitCode::kDone) {
    code = Report({ExitCode::kFile, "", "the output could not be written",
                   "check where it goes and the space there"});
  }
  return static_cast<int>(code);
}

}  // namespace tabwerk::tool
