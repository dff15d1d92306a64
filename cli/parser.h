// The command line with all commands and their options declared.
#ifndef TABWERK_CLI_PARSER_H
#define TABWERK_CLI_PARSER_H

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "cli/commands.h"

namespace tabwerk::tool {

struct DeclaredCommand {
  CommandEntry const* entry;
  std::unique_ptr<Command> command;
  CLI::App* app;  // the parser's
};

class Parser {
 public:
  Parser();

  CLI::App& app() { return app_; }
  std::vector<DeclaredCommand> const& commands() const { return commands_; }
  DeclaredCommand const* Find(std::string_view name) const;

 private:
  CLI::App app_;
  std::vector<DeclaredCommand> commands_;
};

// One option as it is listed in help, manual page and completions.
struct OptionText {
  std::vector<std::string> short_names;  // "-t"
  std::vector<std::string> long_names;   // "--table"
  std::string value;                     // "TABLE"; empty: takes none
  std::vector<std::string> choices;      // where only these are taken
  std::string description;
  std::string group;
  bool is_required = false;
  bool is_repeated = false;
  bool takes_file = false;

  bool IsPositional() const {
    return short_names.empty() && long_names.empty();
  }
};

// Those of a command, positional ones (value: their name) first.
std::vector<OptionText> OptionsOf(CLI::App const& app);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_PARSER_H
