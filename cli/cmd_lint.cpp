// tabwerk lint: what is wrong with a script and its data.
#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/console.h"
#include "cli/files.h"
#include "cli/findings.h"
#include "cli/lint.h"
#include "cli/progress.h"
#include "cli/script_files.h"

namespace tabwerk::tool {
namespace {

class LintCommand : public Command {
 public:
  void Declare(Options& options) override {
    options.Add("SCRIPT", scripts_, "The scripts; - is standard input")
        .Required();
    AddFolderOption(options, &folder_);
    options
        .Add("--ignore", ignored_,
             "Leave these findings out: numbers as TW220, with commas")
        .List()
        .Value("NUMBER");
    AddFindingsOptions(options, &output_);
    options.Notes(
        "Errors are what \"tabwerk build\" would stop at; warnings what it "
        "takes\n"
        "in silence; notes do not count for the exit code.  Nothing is built.");
  }

  ExitCode Run() override {
    if (auto const problem = CheckIgnored()) return Report(*problem);
    if (auto const problem = EnterFolder(folder_)) return Report(*problem);
    FindingsOut out(output_);
    if (auto const problem = out.Begin()) return Report(*problem);
    bool const all_read = LintAll(out);
    ExitCode const code = out.End();
    return all_read ? code : ExitCode::kFile;
  }

 private:
  std::optional<Problem> CheckIgnored() {
    std::vector<CodeEntry> const codes = AllCodes();
    for (std::string const& text : ignored_) {
      auto const entry = std::find_if(
          codes.begin(), codes.end(),
          [&](CodeEntry const& it) { return Code{it.number}.Text() == text; });
      if (entry == codes.end()) {
        return Problem{TW(109), "", "there is no message " + text,
                       "\"tabwerk explain\" lists them"};
      }
      ignored_numbers_.insert(entry->number);
    }
    return std::nullopt;
  }

  bool LintAll(FindingsOut& out) const {
    // Findings on the same terminal are sign of life enough.
    std::optional<Progress> progress;
    bool all_read = true;
    for (std::string const& path : scripts_) {
      std::string const script = InputName(path);
      std::string content;
      if (!ReadInput(path, &content)) {
        Report({TW(116), script, "the script cannot be read",
                "check its path and permissions"});
        all_read = false;
        continue;
      }
      if (!console::OutIsTerminal()) progress.emplace("reading " + script);
      Lint(ScanScript(script, content),
           [&](Severity severity, Problem const& problem) {
             if (ignored_numbers_.contains(problem.code.number)) return;
             out.Add(severity, problem);
           });
      progress.reset();
    }
    return all_read;
  }

  std::vector<std::string> scripts_;
  std::string folder_;
  std::vector<std::string> ignored_;
  std::set<int> ignored_numbers_;
  OutputOptions output_;
};

}  // namespace

extern CommandEntry const kLintCommand;
CommandEntry const kLintCommand = {
    "lint",
    Group::kCheck,
    "Find what is wrong with a script and its data",
    {{"lint geo.script -C examples/reference",
      "all errors and warnings, each with its place"},
     {"lint geo.script --ignore TW220,TW225", "without these two"},
     {"lint *.script --format ndjson", "a JSON record for each"}},
    &MakeCommand<LintCommand>};

}  // namespace tabwerk::tool
