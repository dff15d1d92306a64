// tabwerk help: all commands, one of them, or the manual page.
#include <string>

#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/help_text.h"
#include "cli/out_file.h"

namespace tabwerk::tool {
namespace {

class HelpCommand : public Command {
 public:
  void Declare(Options& options) override {
    options.Add("COMMAND", command_, "The command; without, all of them");
    options.AddFlag("--man", man_, "The manual page, for man");
    options.Add("-o,--output", file_, "Write to this file").Value("FILE");
  }

  ExitCode Run() override {
    Parser parser;
    DeclaredCommand const* const command = parser.Find(command_);
    if (!command_.empty() && command == nullptr) {
      return Report({TW(102), "", "there is no command " + command_,
                     "\"tabwerk help\" lists them"});
    }
    OutFile file(file_);
    if (auto const problem = file.Open()) return Report(*problem);
    if (man_) {
      file.Write(ManPage(parser));
    } else {
      file.Write(command != nullptr ? CommandHelp(*command)
                                    : WholeHelp(parser));
    }
    if (auto const problem = file.Close()) return Report(*problem);
    return ExitCode::kDone;
  }

 private:
  std::string command_;
  std::string file_;
  bool man_ = false;
};

}  // namespace

extern CommandEntry const kHelpCommand;
CommandEntry const kHelpCommand = {
    "help",
    Group::kHelp,
    "Say how a command is used",
    {{"help show", "all about one command"},
     {"help --man -o tabwerk.1", "the manual page"}},
    &MakeCommand<HelpCommand>};

}  // namespace tabwerk::tool
