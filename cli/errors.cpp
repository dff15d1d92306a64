#include "cli/errors.h"

#include "cli/console.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

void Print(Problem const& problem, char const* kind) {
  std::string line = problem.where.empty() ? "tabwerk" : problem.where;
  line += std::string(": ") + kind + ": " + problem.what;
  if (!problem.advice.empty()) line += "; " + problem.advice;
  // What was printed so far comes first where both go to one place.
  static_cast<void>(console::FlushOut());
  // Paths and names come from files and command lines of any bytes.
  console::Err(zWString::fromUtf8(line).toUtf8() + "\n");
}

}  // namespace

ExitCode Report(Problem const& problem) {
  Print(problem, "error");
  return problem.code;
}

void Warn(Problem const& problem) { Print(problem, "warning"); }

}  // namespace tabwerk::tool
