#include "cli/parser.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include "cli/settings.h"

namespace tabwerk::tool {
namespace {

// The library writes "FORMAT:{csv,tsv}": the name, then what is checked.
void SplitType(std::string const& type, OptionText* text) {
  std::size_t const colon = type.find(':');
  text->value = type.substr(0, colon);
  if (colon == type.npos || type[colon + 1] != '{') return;
  std::string_view rest = std::string_view(type).substr(colon + 2);
  rest = rest.substr(0, rest.find('}'));
  while (!rest.empty()) {
    std::size_t const length = std::min(rest.find(','), rest.size());
    text->choices.emplace_back(rest.substr(0, length));
    rest.remove_prefix(std::min(length + 1, rest.size()));
  }
}

bool NamesFile(std::string_view value) {
  constexpr std::array<std::string_view, 3> kOthers = {"SCRIPT", "ROWS", "DIR"};
  return value.ends_with("FILE") ||
         std::find(kOthers.begin(), kOthers.end(), value) != kOthers.end();
}

OptionText TextOf(CLI::Option const& option) {
  OptionText text;
  for (auto const& name : option.get_snames()) {
    text.short_names.push_back("-" + name);
  }
  for (auto const& name : option.get_lnames()) {
    text.long_names.push_back("--" + name);
  }
  if (option.get_items_expected_max() > 0) {
    SplitType(option.get_type_name(), &text);
  }
  if (text.IsPositional()) text.value = option.get_single_name();
  text.takes_file = NamesFile(text.value);
  text.description = option.get_description();
  text.group = option.get_group();
  text.is_required = option.get_required();
  text.is_repeated = text.IsPositional() && option.get_expected_max() > 1;
  return text;
}

}  // namespace

Parser::Parser()
    : app_("Makes databases, looks into them and changes user files",
           "tabwerk") {
  app_.require_subcommand(1);
  app_.set_version_flag("--version", "tabwerk " TABWERK_VERSION,
                        "Say which version this is");
  app_.set_help_flag("-h,--help", "List the commands");
  for (CLI::Option* option : app_.get_options()) option->group(kCommonGroup);
  AddCommonOptions(app_);
  for (CommandEntry const* entry : AllCommands()) {
    CLI::App* const app = app_.add_subcommand(entry->name, entry->summary);
    app->set_help_flag("-h,--help", "Say how the command is used")
        ->group(kCommonGroup);
    commands_.push_back({entry, entry->make(), app});
    commands_.back().command->Declare(*app);
    AddCommonOptions(*app);
  }
}

DeclaredCommand const* Parser::Find(std::string_view name) const {
  for (DeclaredCommand const& command : commands_) {
    if (command.entry->name == name) return &command;
  }
  return nullptr;
}

std::vector<OptionText> OptionsOf(CLI::App const& app) {
  std::vector<OptionText> positional;
  std::vector<OptionText> named;
  for (CLI::Option const* option : app.get_options()) {
    OptionText text = TextOf(*option);
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
