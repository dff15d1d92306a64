// The manual page.
#include <fmt/format.h>

#include "cli/help_text.h"
#include "cli/settings.h"
#include "cli/text.h"

namespace tabwerk::tool {
namespace {

// A character that roff would set as another one, or does not read at all;
// empty for any other one.
std::string RoffName(char32_t character) {
  switch (character) {
    case U'…':
      return "...";
    case '\\':
      return "\\e";
    case '-':
      return "\\-";
    case '\'':
      return "\\(aq";
    case '`':
      return "\\(ga";
    case '^':
      return "\\(ha";
    case '~':
      return "\\(ti";
    default:
      break;
  }
  if (character < 0x80) return "";
  return fmt::format("\\[u{:04X}]", static_cast<unsigned>(character));
}

// Text as man reads it, in ASCII: a leading "." would be a request.
std::string Roff(std::string_view text) {
  std::string escaped;
  while (!text.empty()) {
    bool const begins = escaped.empty() || escaped.back() == '\n';
    if (begins && text.front() == '.') escaped += "\\&";
    std::string_view rest = text;
    std::string const name = RoffName(NextCharacter(&rest));
    escaped += name.empty() ? text.substr(0, text.size() - rest.size()) : name;
    text = rest;
  }
  return escaped;
}

std::string Tagged(std::string_view tag, std::string_view text) {
  return fmt::format(".TP\n.B {}\n{}\n", Roff(tag), Roff(text));
}

std::string CommandSection(DeclaredCommand const& command) {
  std::string page =
      fmt::format(".SS {}\n{}.\n.PP\n.B {}\n", command.entry->name,
                  Roff(command.entry->summary), Roff(UsageLine(command)));
  for (OptionText const& option : ListOf(command.options)) {
    if (option.group == kCommonGroup) continue;
    page += Tagged(OptionNames(option), option.description);
  }
  std::string const notes = command.options.Notes();
  if (!notes.empty()) page += ".PP\n" + Roff(notes) + "\n";
  for (Example const& example : command.entry->examples) {
    page += fmt::format(".PP\n{}:\n.PP\n.RS 4\n.nf\ntabwerk {}\n.fi\n.RE\n",
                        Roff(example.purpose), Roff(example.arguments));
  }
  return page;
}

}  // namespace

std::string ManPage(Parser& parser) {
  std::string page =
      ".TH TABWERK 1 \"\" \"tabwerk " TABWERK_VERSION
      "\" \"User Commands\"\n"
      ".SH NAME\ntabwerk \\- looks into databases, makes them and changes user "
      "files\n"
      ".SH SYNOPSIS\n.B tabwerk\n.I COMMAND\n[\\fIOPTION\\fR]... "
      "[\\fIFILE\\fR]...\n.br\n.B tabwerk\n.I FILE\n"
      ".SH DESCRIPTION\n"
      "With a file and no command it does what\n.B tabwerk info\ndoes.\n";
  for (Group const group : kAllGroups) {
    std::string sections;
    for (DeclaredCommand const& command : parser.commands()) {
      if (command.entry->group == group) sections += CommandSection(command);
    }
    if (sections.empty()) continue;
    page += fmt::format(".SH \"{}\"\n", GroupTitle(group)) + sections;
  }
  page += ".SH \"OPTIONS OF ALL COMMANDS\"\n";
  for (OptionText const& option : ListOf(parser.options())) {
    page += Tagged(OptionNames(option), option.description);
  }
  page += ".SH \"EXIT STATUS\"\n";
  for (ExitText const& exit : ExitTexts()) {
    page += Tagged(fmt::format("{}", exit.number), exit.meaning);
  }
  page += ".SH ENVIRONMENT\n";
  page += Tagged("NO_COLOR",
                 "When it is set and not empty, nothing is coloured "
                 "unless --color=always says so.");
  page += Tagged("TMPDIR", "Folder for temporary files (on Windows: TEMP).");
  return page;
}

}  // namespace tabwerk::tool
