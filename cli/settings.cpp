#include "cli/settings.h"

#include <cstdlib>
#include <string_view>

#include "cli/console.h"
#include "cli/options.h"

namespace tabwerk::tool {
namespace {

bool IsSet(char const* variable) {
  char const* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

bool Colors(bool (*takes_color)()) {
  std::string const& choice = CurrentSettings().color;
  if (choice != "auto") return choice == "always";
  return !IsSet("NO_COLOR") && takes_color();
}

}  // namespace

Settings& CurrentSettings() {
  static Settings settings;
  return settings;
}

void AddCommonOptions(Options& options) {
  Settings& settings = CurrentSettings();
  options
      .AddFlag("-q,--quiet", settings.quiet,
               "Errors only: no warnings, no progress, no closing line")
      .Group(kCommonGroup);
  options
      .AddFlag("-v,--verbose", settings.verbose,
               "Say on standard error what is done on the way")
      .Group(kCommonGroup);
  options
      .Add("--color", settings.color,
           "Colours: auto (on a terminal, unless NO_COLOR is set), "
           "always or never")
      .OneOf({"auto", "always", "never"})
      .Value("WHEN")
      .Group(kCommonGroup);
}

bool ColorsOut() { return Colors(&console::OutTakesColor); }
bool ColorsErr() { return Colors(&console::ErrTakesColor); }

std::string Styled(std::string const& text, char const* style, bool colors) {
  if (!colors || text.empty()) return text;
  return std::string("\x1B[") + style + "m" + text + "\x1B[0m";
}

void Tell(std::string const& text) {
  if (!CurrentSettings().verbose) return;
  static_cast<void>(console::FlushOut());
  console::Err("tabwerk: " + text + "\n");
}

void Conclude(std::string const& text, bool output_is_taken) {
  if (!output_is_taken) {
    if (!CurrentSettings().quiet) console::Out(text + "\n");
    return;
  }
  static_cast<void>(console::FlushOut());
  if (!CurrentSettings().quiet) console::Err(text + "\n");
}

}  // namespace tabwerk::tool
