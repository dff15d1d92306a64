// What the options that every command takes have set.
#ifndef TABWERK_CLI_SETTINGS_H
#define TABWERK_CLI_SETTINGS_H

#include <string>

namespace tabwerk::tool {

class Options;

struct Settings {
  bool quiet = false;          // errors only: no warnings, progress, summaries
  bool verbose = false;        // says what is done on the way
  std::string color = "auto";  // "auto", "always" or "never"
  bool records = false;        // problems are lines of JSON
};

// Those of this run.
Settings& CurrentSettings();

// Their heading in help.
inline constexpr char kCommonGroup[] = "Everywhere";

// Adds -q, -v and --color.
void AddCommonOptions(Options& options);

// Whether standard output and standard error are to be coloured: as --color
// says, else on a terminal that knows colours where NO_COLOR is not set.
bool ColorsOut();
bool ColorsErr();

// The text between the sequences of a style, for example "1;31".
std::string Styled(std::string const& text, char const* style, bool colors);

// A line on standard error for -v.
void Tell(std::string const& text);
// The closing line of a command that has changed something, on standard
// output, or on standard error where that takes what was made; not with -q.
void Conclude(std::string const& text, bool output_is_taken = false);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_SETTINGS_H
