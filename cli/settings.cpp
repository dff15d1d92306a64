#include "cli/settings.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <string_view>

#include "cli/console.h"

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

void AddCommonOptions(CLI::App& app) {
  Settings& settings = CurrentSettings();
  app.add_flag("-q,--quiet", settings.quiet,
               "Errors only: no warnings, no progress, no closing line")
      ->group(kCommonGroup);
  app.add_flag("-v,--verbose", settings.verbose,
               "Say on standard error what is done on the way")
      ->group(kCommonGroup);
  app.add_option("--color", settings.color,
                 "Colours: auto (on a terminal, unless NO_COLOR is set), "
                 "always or never")
      ->check(CLI::IsMember({"auto", "always", "never"}))
      ->type_name("WHEN")
      ->group(kCommonGroup);
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

void Conclude(std::string const& text) {
  if (!CurrentSettings().quiet) console::Out(text + "\n");
}

}  // namespace tabwerk::tool
