// What the tool says about itself, from the table of commands.
#ifndef TABWERK_CLI_HELP_TEXT_H
#define TABWERK_CLI_HELP_TEXT_H

#include <string>
#include <string_view>
#include <vector>

#include "cli/parser.h"

namespace tabwerk::tool {

// A number of the tool's exit codes and what it means.
struct ExitText {
  int number;
  char const* meaning;
};
std::vector<ExitText> ExitTexts();

// For a start without arguments: what the tool is for and what to try.
std::string ShortHelp();
// All commands.
std::string WholeHelp(Parser& parser);
// One command.
std::string CommandHelp(DeclaredCommand const& command);
// "tabwerk show [OPTION]... FILE [USERFILE]".
std::string UsageLine(DeclaredCommand const& command);
// "-t, --table TABLE".
std::string OptionNames(OptionText const& option);
// The manual page, for man.
std::string ManPage(Parser& parser);

// A script that completes command lines; shell is one of AllShells().
std::vector<std::string> const& AllShells();
std::string CompletionScript(Parser& parser, std::string_view shell);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_HELP_TEXT_H
