#include "tests/cli/script_folder.h"

#include <algorithm>

#include "DBInterpreter.h"
#include "DBbase.h"
#include "cli/lint.h"

namespace tabwerk::test {

ScriptFolder::ScriptFolder() : before_(std::filesystem::current_path()) {
  std::filesystem::current_path(folder_.folder());
}

ScriptFolder::~ScriptFolder() {
  DBbase::Init({}, {});
  std::filesystem::current_path(before_);
}

std::vector<tool::ScriptFinding> ScriptFolder::Findings(
    std::string const& script) {
  std::vector<tool::ScriptFinding> findings;
  tool::Lint(tool::ScanScript("a.script", script),
             [&](tool::Severity severity, tool::Problem const& problem) {
               findings.push_back({severity, problem});
             });
  return findings;
}

std::string ScriptFolder::Found(std::string const& script) {
  std::string found;
  for (tool::ScriptFinding const& finding : Findings(script)) {
    std::string const code = finding.problem.code.Text();
    if (found.find(code) != found.npos) continue;
    found += (found.empty() ? "" : " ") + code;
  }
  return found;
}

bool ScriptFolder::HasError(std::string const& script) {
  auto const findings = Findings(script);
  return std::any_of(findings.begin(), findings.end(), [](auto const& it) {
    return it.severity == tool::Severity::kError;
  });
}

bool ScriptFolder::Builds(std::string const& script) const {
  folder_.Make("a.script", script);
  DBbase::Init({}, {});
  int const result = DBInterpreter().ReadScript("a.script", zWString());
  DBbase::Init({}, {});
  return result != 0;
}

}  // namespace tabwerk::test
