// The command line with all commands and their options declared.
#ifndef TABWERK_CLI_PARSER_H
#define TABWERK_CLI_PARSER_H

#include <memory>
#include <string_view>
#include <vector>

#include "cli/commands.h"
#include "cli/options.h"

namespace tabwerk::tool {

struct DeclaredCommand {
  CommandEntry const* entry;
  std::unique_ptr<Command> command;
  Options options;
};

class Parser {
 public:
  Parser();

  Options& options() { return options_; }
  Options const& options() const { return options_; }
  std::vector<DeclaredCommand> const& commands() const { return commands_; }
  DeclaredCommand const* Find(std::string_view name) const;

 private:
  Options options_;
  std::vector<DeclaredCommand> commands_;
};

// As help lists them, operands (value: their name) first.
std::vector<OptionText> ListOf(Options const& options);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_PARSER_H
