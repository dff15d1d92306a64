#include "cli/parser.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "cli/settings.h"

namespace tabwerk::tool {

Parser::Parser()
    : options_("Makes databases, looks into them and changes user files",
               "tabwerk") {
  options_
      .AddVersion("--version", "tabwerk " TABWERK_VERSION,
                  "Say which version this is")
      .Group(kCommonGroup);
  options_
      .AddHelp("-h,--help",
               "List the commands; behind a command, say how it is used")
      .Group(kCommonGroup);
  AddCommonOptions(options_);
  for (CommandEntry const* entry : AllCommands()) {
    Options options = options_.AddCommand(entry->name, entry->summary);
    options.AddHelp("-h,--help", "Say how the command is used")
        .Group(kCommonGroup);
    commands_.push_back({entry, entry->make(), options});
    commands_.back().command->Declare(options);
    AddCommonOptions(options);
  }
}

DeclaredCommand const* Parser::Find(std::string_view name) const {
  for (DeclaredCommand const& command : commands_) {
    if (command.entry->name == name) return &command;
  }
  return nullptr;
}

std::vector<OptionText> ListOf(Options const& options) {
  std::vector<OptionText> positional;
  std::vector<OptionText> named;
  for (OptionText& text : options.Texts()) {
    (text.IsPositional() ? positional : named).push_back(std::move(text));
  }
  // Those of one group together; what every command takes comes last.
  std::vector<std::string> groups;
  for (OptionText const& option : named) {
    if (option.group == kCommonGroup) continue;
    if (std::find(groups.begin(), groups.end(), option.group) == groups.end()) {
      groups.push_back(option.group);
    }
  }
  groups.emplace_back(kCommonGroup);
  for (std::string const& group : groups) {
    std::copy_if(named.begin(), named.end(), std::back_inserter(positional),
                 [&](OptionText const& it) { return it.group == group; });
  }
  return positional;
}

}  // namespace tabwerk::tool
