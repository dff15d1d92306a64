// Scripts that complete command lines, one for each shell.
#include <fmt/format.h>

#include <algorithm>

#include "cli/help_text.h"

namespace tabwerk::tool {
namespace {

std::string Joined(std::vector<std::string> const& words, char const* between) {
  return fmt::format("{}", fmt::join(words, between));
}

std::vector<std::string> NamesOf(OptionText const& option) {
  std::vector<std::string> names = option.short_names;
  names.insert(names.end(), option.long_names.begin(), option.long_names.end());
  return names;
}

std::vector<std::string> AllNames(Options const& options) {
  std::vector<std::string> all;
  for (OptionText const& option : ListOf(options)) {
    auto const names = NamesOf(option);
    all.insert(all.end(), names.begin(), names.end());
  }
  return all;
}

std::vector<std::string> CommandNames(Parser const& parser) {
  std::vector<std::string> names;
  for (DeclaredCommand const& command : parser.commands()) {
    names.emplace_back(command.entry->name);
  }
  return names;
}

// The words that the first operand of a command can be.
std::vector<std::string> OperandsOf(DeclaredCommand const& command,
                                    Parser const& parser) {
  std::string_view const name = command.entry->name;
  if (name == "help") return CommandNames(parser);
  if (name == "completion") return AllShells();
  return {};
}

// Between single quotes; a quote inside is written as the shell wants it.
std::string ShellQuoted(std::string_view text, std::string_view inner_quote) {
  std::string quoted = "'";
  for (char const character : text) {
    if (character == '\'') {
      quoted += inner_quote;
    } else {
      quoted += character;
    }
  }
  return quoted + "'";
}

std::string Bash(Parser& parser) {
  std::string text =
      "# bash completion for tabwerk\n"
      "_tabwerk() {\n"
      "  local word=${COMP_WORDS[COMP_CWORD]}\n"
      "  local before=${COMP_WORDS[COMP_CWORD-1]}\n"
      "  local words=\n"
      "  if ((COMP_CWORD == 1)); then\n";
  text += "    words=\"" + Joined(CommandNames(parser), " ") + " " +
          Joined(AllNames(parser.options()), " ") + "\"\n";
  text +=
      "    COMPREPLY=($(compgen -W \"$words\" -- \"$word\"))\n"
      "    return\n"
      "  fi\n"
      "  case ${COMP_WORDS[1]} in\n";
  for (DeclaredCommand const& command : parser.commands()) {
    text +=
        fmt::format("    {})\n      case $before in\n", command.entry->name);
    for (OptionText const& option : ListOf(command.options)) {
      if (option.IsPositional() || option.value.empty()) continue;
      text += fmt::format("        {}) ", Joined(NamesOf(option), " | "));
      text += option.choices.empty()
                  ? "return ;;\n"
                  : "words=\"" + Joined(option.choices, " ") + "\" ;;\n";
    }
    auto words = OperandsOf(command, parser);
    auto const names = AllNames(command.options);
    words.insert(words.end(), names.begin(), names.end());
    text += fmt::format("        *) words=\"{}\" ;;\n      esac\n      ;;\n",
                        Joined(words, " "));
  }
  return text +
         "  esac\n"
         "  COMPREPLY=($(compgen -W \"$words\" -- \"$word\"))\n"
         "}\n"
         "complete -o default -o bashdefault -F _tabwerk tabwerk\n";
}

// An option of zsh's _arguments.
std::string ZshOption(OptionText const& option) {
  std::string description;
  for (char const character : option.description) {
    if (character == '[' || character == ']' || character == ':') {
      description += '\\';
    }
    description += character;
  }
  std::string action;
  if (!option.value.empty()) {
    action = ":" + option.value + ":";
    if (option.takes_file) action += "_files";
    if (!option.choices.empty()) {
      action += "(" + Joined(option.choices, " ") + ")";
    }
  }
  std::string text;
  for (std::string const& name : NamesOf(option)) {
    std::string const entry =
        fmt::format("{}[{}]{}", name, description, action);
    text += " \\\n        " + ShellQuoted(entry, "'\\''");
  }
  return text;
}

std::string Zsh(Parser& parser) {
  std::string text =
      "#compdef tabwerk\n"
      "_tabwerk() {\n"
      "  if (( CURRENT == 2 )); then\n"
      "    local -a commands=(\n";
  for (DeclaredCommand const& command : parser.commands()) {
    text += "      " +
            ShellQuoted(
                std::string(command.entry->name) + ":" + command.entry->summary,
                "'\\''") +
            "\n";
  }
  text +=
      "    )\n"
      "    _describe command commands\n"
      "    _arguments";
  for (OptionText const& option : ListOf(parser.options())) {
    text += ZshOption(option);
  }
  text +=
      "\n    _files\n"
      "    return\n"
      "  fi\n"
      "  shift words\n"
      "  (( CURRENT-- ))\n"
      "  case $words[1] in\n";
  for (DeclaredCommand const& command : parser.commands()) {
    text += fmt::format("    {})\n      _arguments", command.entry->name);
    for (OptionText const& option : ListOf(command.options)) {
      if (!option.IsPositional()) text += ZshOption(option);
    }
    auto const operands = OperandsOf(command, parser);
    text += operands.empty() ? " \\\n        '*:file:_files'\n      ;;\n"
                             : " \\\n        ':word:(" + Joined(operands, " ") +
                                   ")'\n      ;;\n";
  }
  return text + "  esac\n}\n_tabwerk \"$@\"\n";
}

std::string FishOption(std::string const& condition, OptionText const& option) {
  std::string text = "complete -c tabwerk -n " + ShellQuoted(condition, "\\'");
  for (std::string const& name : option.short_names) {
    text += " -s " + name.substr(1);
  }
  for (std::string const& name : option.long_names) {
    text += " -l " + name.substr(2);
  }
  if (!option.choices.empty()) {
    text += " -x -a " + ShellQuoted(Joined(option.choices, " "), "\\'");
  } else if (!option.value.empty()) {
    text += option.takes_file ? " -r -F" : " -x";
  }
  return text + " -d " + ShellQuoted(option.description, "\\'") + "\n";
}

std::string Fish(Parser& parser) {
  std::string text = "# fish completion for tabwerk\n";
  for (OptionText const& option : ListOf(parser.options())) {
    text += FishOption("__fish_use_subcommand", option);
  }
  for (DeclaredCommand const& command : parser.commands()) {
    std::string const name = command.entry->name;
    text += "complete -c tabwerk -n __fish_use_subcommand -a " + name + " -d " +
            ShellQuoted(command.entry->summary, "\\'") + "\n";
    std::string const condition = "__fish_seen_subcommand_from " + name;
    for (OptionText const& option : ListOf(command.options)) {
      if (!option.IsPositional()) text += FishOption(condition, option);
    }
    auto const operands = OperandsOf(command, parser);
    if (!operands.empty()) {
      text += "complete -c tabwerk -f -n " + ShellQuoted(condition, "\\'") +
              " -a " + ShellQuoted(Joined(operands, " "), "\\'") + "\n";
    }
  }
  return text;
}

std::string PowerShellList(std::vector<std::string> const& words) {
  std::vector<std::string> quoted;
  quoted.reserve(words.size());
  for (std::string const& word : words) {
    quoted.push_back(ShellQuoted(word, "''"));
  }
  return "@(" + Joined(quoted, ", ") + ")";
}

std::string PowerShell(Parser& parser) {
  auto first = CommandNames(parser);
  auto const names = AllNames(parser.options());
  first.insert(first.end(), names.begin(), names.end());
  std::string text =
      "# PowerShell completion for tabwerk\n"
      "Register-ArgumentCompleter -Native -CommandName tabwerk -ScriptBlock {\n"
      "  param($word, $line, $position)\n"
      "  $first = " +
      PowerShellList(first) + "\n  $options = @{\n";
  std::string choices;
  for (DeclaredCommand const& command : parser.commands()) {
    auto words = OperandsOf(command, parser);
    auto const more = AllNames(command.options);
    words.insert(words.end(), more.begin(), more.end());
    text += fmt::format("    '{}' = {}\n", command.entry->name,
                        PowerShellList(words));
    for (OptionText const& option : ListOf(command.options)) {
      if (option.choices.empty()) continue;
      for (std::string const& name : NamesOf(option)) {
        choices += fmt::format("    '{} {}' = {}\n", command.entry->name, name,
                               PowerShellList(option.choices));
      }
    }
  }
  return text + "  }\n  $choices = @{\n" + choices +
         "  }\n"
         "  $before = @($line.CommandElements | Where-Object {\n"
         "    $_.Extent.EndOffset -lt $position -or $word -eq ''\n"
         "  } | ForEach-Object { $_.ToString() })\n"
         "  if ($before.Count -lt 2) { $words = $first }\n"
         "  elseif ($choices.ContainsKey(\"$($before[1]) $($before[-1])\")) {\n"
         "    $words = $choices[\"$($before[1]) $($before[-1])\"]\n"
         "  } else { $words = $options[$before[1]] }\n"
         "  $words | Where-Object { $_ -like \"$word*\" } | ForEach-Object {\n"
         "    [System.Management.Automation.CompletionResult]::new($_)\n"
         "  }\n"
         "}\n";
}

}  // namespace

std::vector<std::string> const& AllShells() {
  static std::vector<std::string> const shells = {"bash", "zsh", "fish",
                                                  "powershell"};
  return shells;
}

std::string CompletionScript(Parser& parser, std::string_view shell) {
  if (shell == "bash") return Bash(parser);
  if (shell == "zsh") return Zsh(parser);
  if (shell == "fish") return Fish(parser);
  return PowerShell(parser);
}

}  // namespace tabwerk::tool
