// What the tool's exit codes mean, and how it reports what went wrong.
#ifndef TABWERK_CLI_ERRORS_H
#define TABWERK_CLI_ERRORS_H

#include <string>

namespace tabwerk::tool {

// Scripts rely on the numbers.
enum class ExitCode : int {
  kDone = 0,
  kFindings = 1,  // it was done, or looked at, and something is wrong
  kUsage = 2,     // the command line makes no sense
  kFile = 3,      // a file cannot be opened, read or written
  kDamaged = 4,   // a database file is damaged
  kHeld = 5,      // another process holds a file
  kRejected = 6,  // some of the input rows were not taken
};

// Something that stands in the way.  Texts are UTF-8.
struct Problem {
  ExitCode code = ExitCode::kDone;
  std::string where;   // "file" or "file:line"; empty: the tool as a whole
  std::string what;    // what is wrong
  std::string advice;  // what to do about it; may be empty
};

// Writes "where: error: what; advice" on standard error, with U+FFFD for what
// is not UTF-8; the problem's code.
ExitCode Report(Problem const& problem);

// The same with "warning" in place of "error".
void Warn(Problem const& problem);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_ERRORS_H
