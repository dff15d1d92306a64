#include "cli/run_tool.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "cli/console.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/help_text.h"
#include "cli/near_names.h"
#include "cli/parser.h"
#include "cli/settings.h"

namespace tabwerk::tool {
namespace {

// The command that the line names; null for none.
DeclaredCommand const* CommandInUse(Parser const& parser) {
  for (DeclaredCommand const& command : parser.commands()) {
    if (command.options.IsChosen()) return &command;
  }
  return nullptr;
}

// Whoever reads the output as JSON reads problems as JSON.
void ChooseFormOfProblems(Parser const& parser) {
  DeclaredCommand const* const command = CommandInUse(parser);
  if (command == nullptr) return;
  std::string const format = command->options.Given("--format");
  CurrentSettings().records = format == "json" || format == "ndjson";
}

// Help that was asked for, or what is wrong with the command line.
ExitCode AnswerParser(Parser& parser, Parsed const& parsed) {
  DeclaredCommand const* const command = CommandInUse(parser);
  if (parsed.outcome == Parsed::Outcome::kWrong) {
    std::string const name =
        command != nullptr ? std::string(" ") + command->entry->name : "";
    return Report(
        {TW(101), "", parsed.text, "see \"tabwerk" + name + " --help\""});
  }
  if (parsed.outcome == Parsed::Outcome::kVersion) {
    console::Out(parsed.text + "\n");
  } else {
    console::Out(command != nullptr ? CommandHelp(*command)
                                    : WholeHelp(parser));
  }
  return ExitCode::kDone;
}

Problem UnknownCommand(std::string const& word) {
  std::vector<std::string> names;
  for (auto const* const command : AllCommands()) {
    names.emplace_back(command->name);
  }
  std::string const nearest = NearestName(word, names);
  return {TW(102), "", "there is no command or file " + word,
          nearest.empty() ? "\"tabwerk help\" lists the commands"
                          : "did you mean \"tabwerk " + nearest + "\"?"};
}

// "tabwerk FILE" is "tabwerk info FILE".
bool LooksLikeFile(std::string const& word) {
  std::error_code error;
  return word.find_first_of("./\\") != word.npos ||
         std::filesystem::exists(ToPath(word), error);
}

// The first word that is no option of all commands.
std::vector<std::string>::iterator FirstWord(
    std::vector<std::string>& arguments) {
  auto word = arguments.begin();
  while (word != arguments.end() && word->starts_with('-')) {
    bool const has_value = *word == "--color" && word + 1 != arguments.end();
    word += has_value ? 2 : 1;
  }
  return word;
}

ExitCode Dispatch(std::vector<std::string> arguments) {
  if (arguments.empty()) {
    console::Out(ShortHelp());
    return ExitCode::kDone;
  }
  auto const first = FirstWord(arguments);
  if (first != arguments.end() && FindCommand(*first) == nullptr) {
    if (!LooksLikeFile(*first)) return Report(UnknownCommand(*first));
    arguments.insert(first, "info");
  }
  Parser parser;
  Parsed const parsed = parser.options().Parse(std::move(arguments));
  ChooseFormOfProblems(parser);
  if (parsed.outcome != Parsed::Outcome::kRun) {
    return AnswerParser(parser, parsed);
  }
  return CommandInUse(parser)->command->Run();
}

}  // namespace

int RunTool(std::vector<std::string> arguments) {
  console::SetUp();
  CurrentSettings() = Settings();
  ExitCode code = ExitCode::kDone;
  try {
    code = Dispatch(std::move(arguments));
  } catch (std::bad_alloc const&) {
    code = Report({TW(121), "", "there is not enough memory",
                   "close other programs and try again"});
  } catch (std::exception const& exception) {
    code = Report({TW(122), "", exception.what(), ""});
  }
  // What a command has found is lost as well.  A reader that has closed the
  // pipe does not miss it.
  bool const is_looked_for =
      code == ExitCode::kDone || code == ExitCode::kFindings;
  if (!console::FlushOut() && !console::ReaderLeft() && is_looked_for) {
    code = Report({TW(120), "", "the output could not be written",
                   "check where it goes and the space there"});
  }
  return static_cast<int>(code);
}

}  // namespace tabwerk::tool
