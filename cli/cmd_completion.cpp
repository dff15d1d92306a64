// tabwerk completion: scripts that complete command lines.
#include <string>

#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/help_text.h"
#include "cli/out_file.h"

namespace tabwerk::tool {
namespace {

class CompletionCommand : public Command {
 public:
  void Declare(Options& options) override {
    options.Add("SHELL", shell_, "bash, zsh, fish or powershell")
        .OneOf(AllShells())
        .Required();
    options.Add("-o,--output", file_, "Write to this file").Value("FILE");
  }

  ExitCode Run() override {
    Parser parser;
    OutFile file(file_);
    if (auto const problem = file.Open()) return Report(*problem);
    file.Write(CompletionScript(parser, shell_));
    if (auto const problem = file.Close()) return Report(*problem);
    return ExitCode::kDone;
  }

 private:
  std::string shell_;
  std::string file_;
};

}  // namespace

extern CommandEntry const kCompletionCommand;
CommandEntry const kCompletionCommand = {
    "completion",
    Group::kHelp,
    "Print a script that completes command lines in a shell",
    {{"completion bash -o ~/.local/share/bash-completion/completions/tabwerk",
      "for bash, at its next start"},
     {"completion powershell -o tabwerk.ps1",
      "for PowerShell; the profile has to call it"}},
    &MakeCommand<CompletionCommand>};

}  // namespace tabwerk::tool
