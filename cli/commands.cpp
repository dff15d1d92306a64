#include "cli/commands.h"

#include <algorithm>
#include <tuple>

// Written by the build: the declarations of all entries, and their list.
#include "cli/command_list.inc"

namespace tabwerk::tool {

char const* GroupTitle(Group group) {
  switch (group) {
    case Group::kLook:
      return "Look into databases";
    case Group::kMake:
      return "Make databases and bring their data out";
    case Group::kChange:
      return "Change the user's data";
    case Group::kCheck:
      return "Find mistakes";
    case Group::kHelp:
      break;
  }
  return "Help";
}

std::vector<CommandEntry const*> const& AllCommands() {
  static std::vector<CommandEntry const*> const commands = [] {
    std::vector<CommandEntry const*> all = {TABWERK_COMMANDS};
    std::sort(all.begin(), all.end(), [](auto const* a, auto const* b) {
      return std::tuple(a->group, std::string_view(a->name)) <
             std::tuple(b->group, std::string_view(b->name));
    });
    return all;
  }();
  return commands;
}

CommandEntry const* FindCommand(std::string_view name) {
  for (CommandEntry const* entry : AllCommands()) {
    if (entry->name == name) return entry;
  }
  return nullptr;
}

}  // namespace tabwerk::tool
