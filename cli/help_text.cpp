#include "cli/help_text.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/text.h"

namespace tabwerk::tool {
namespace {

constexpr std::size_t kWidth = 78;
constexpr std::size_t kNamesWidth = 24;

// Words in lines that begin with so many blanks.
std::string Wrapped(std::string_view text, std::size_t indent) {
  std::string lines;
  std::string line;
  while (!text.empty()) {
    std::size_t const length = std::min(text.find(' '), text.size());
    std::string_view const word = text.substr(0, length);
    text.remove_prefix(std::min(length + 1, text.size()));
    if (!line.empty() && indent + line.size() + 1 + word.size() > kWidth) {
      lines += std::string(indent, ' ') + line + "\n";
      line.clear();
    }
    line += (line.empty() ? "" : " ") + std::string(word);
  }
  return lines + std::string(indent, ' ') + line + "\n";
}

// A name and what is said of it, beside or, where there is no room, below.
std::string Entry(std::string const& name, std::string_view text) {
  std::string const lines = Wrapped(text, kNamesWidth);
  std::string const head = "  " + name;
  if (head.size() + 2 > kNamesWidth) return head + "\n" + lines;
  return head + lines.substr(head.size());
}

std::string Exits() {
  std::string text = "Exit codes:\n";
  for (ExitText const& exit : ExitTexts()) {
    text += fmt::format("  {}  {}\n", exit.number, exit.meaning);
  }
  return text;
}

}  // namespace

std::vector<ExitText> ExitTexts() {
  return {{0, "done"},
          {1, "findings: it was done, or looked at, and something is wrong"},
          {2, "wrong usage"},
          {3, "a file cannot be opened, read or written"},
          {4, "a database file is damaged"},
          {5, "another process holds a file"},
          {6, "input rows were rejected"}};
}

std::string ShortHelp() {
  return "tabwerk " TABWERK_VERSION
         " - looks into databases, makes them and changes user files\n"
         "\n"
         "Try:\n"
         "  tabwerk info stock.db                 what is in it?\n"
         "  tabwerk show stock.db -t ARTICLE      the rows of a table\n"
         "  tabwerk build stock.script            make it from its script\n"
         "\n"
         "  tabwerk help                          all commands\n"
         "  tabwerk help show                     all about one of them\n"
         "  tabwerk explain TW110                 more about an error\n";
}

std::string WholeHelp(Parser& parser) {
  std::string text =
      "Usage: tabwerk COMMAND [OPTION]... [FILE]...\n"
      "       tabwerk FILE             (tabwerk info FILE)\n\n";
  for (Group const group : kAllGroups) {
    std::string entries;
    for (DeclaredCommand const& command : parser.commands()) {
      if (command.entry->group != group) continue;
      entries += fmt::format("  {:<13}{}\n", command.entry->name,
                             command.entry->summary);
    }
    if (entries.empty()) continue;
    text += std::string(GroupTitle(group)) + ":\n" + entries + "\n";
  }
  text += "Everywhere:\n";
  for (OptionText const& option : ListOf(parser.options())) {
    text += Entry(OptionNames(option), option.description);
  }
  return text + "\n" + Exits();
}

std::string UsageLine(DeclaredCommand const& command) {
  std::string line = fmt::format("tabwerk {} [OPTION]...", command.entry->name);
  for (OptionText const& option : ListOf(command.options)) {
    if (!option.IsPositional()) continue;
    std::string const name = option.value + (option.is_repeated ? "..." : "");
    line += option.is_required ? " " + name : " [" + name + "]";
  }
  return line;
}

std::string OptionNames(OptionText const& option) {
  if (option.IsPositional()) return option.value;
  std::string text;
  for (auto const* names : {&option.short_names, &option.long_names}) {
    for (std::string const& name : *names) {
      text += (text.empty() ? "" : ", ") + name;
    }
  }
  return option.value.empty() ? text : text + " " + option.value;
}

std::string CommandHelp(DeclaredCommand const& command) {
  std::string text = "Usage: " + UsageLine(command) + "\n\n" +
                     Wrapped(command.entry->summary, 0);
  std::string group;
  for (OptionText const& option : ListOf(command.options)) {
    std::string const title = option.IsPositional() ? "Files" : option.group;
    if (title != group) text += "\n" + title + ":\n";
    group = title;
    text += Entry(
        OptionNames(option),
        option.description +
            (option.is_required && !option.IsPositional() ? " (needed)" : ""));
  }
  std::string const notes = command.options.Notes();
  if (!notes.empty()) text += "\n" + notes + "\n";
  if (!command.entry->examples.empty()) text += "\nExamples:\n";
  for (Example const& example : command.entry->examples) {
    text += fmt::format("  tabwerk {}\n      {}\n", example.arguments,
                        example.purpose);
  }
  return text;
}

}  // namespace tabwerk::tool
