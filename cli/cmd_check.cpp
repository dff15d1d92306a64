// tabwerk check: what is wrong with the files of a database.
#include <fmt/format.h>

#include <optional>
#include <string>
#include <utility>

#include "cli/check_database.h"
#include "cli/check_report.h"
#include "cli/commands.h"
#include "cli/findings.h"
#include "cli/progress.h"
#include "cli/session.h"
#include "cli/settings.h"
#include "cli/text.h"

namespace tabwerk::tool {
namespace {

class CheckCommand : public Command {
 public:
  void Declare(Options& options) override {
    AddDatabaseOptions(options, &files_);
    options.AddFlag("--quick", quick_,
                    "Header, list of tables, blocks and the form of the index "
                    "only: no rows and texts");
    options
        .Add("--most", most_,
             "Findings of one kind in one table that are shown before "
             "the others are only counted; 0: all")
        .NotNegative()
        .Value("N");
    AddFindingsOptions(options, &output_);
    options.Notes(
        "Errors cost data or keep it from being read or saved; warnings are\n"
        "mistakes that a program shows or trips over; notes are no mistakes.\n"
        "Rows count from 0 over both files, as \"tabwerk show\" lists them.\n"
        "\"tabwerk explain TW360\" says more of a number.  No file is "
        "changed.\n"
        "Exit codes: 0 no errors and warnings, 1 some, 4 a table cannot be\n"
        "loaded.");
  }

  ExitCode Run() override {
    if (auto const problem = CheckOrder(files_)) return Report(*problem);
    DatabaseCheck check(files_, quick_);
    std::optional<Progress> progress(std::in_place, "reading " + files_.main);
    if (auto const problem = check.Read()) return Report(*problem);
    CheckReport report(output_, most_);
    if (auto const problem = report.Begin()) return Report(*problem);
    progress.emplace("checking " + files_.main);
    if (auto const problem = check.Run(report)) return Report(*problem);
    progress.reset();
    ExitCode const code = report.End();
    if (code == ExitCode::kDone) SayThatAllIsWell(check);
    return code;
  }

 private:
  void SayThatAllIsWell(DatabaseCheck const& check) const {
    if (output_.format != "auto" || !output_.file.empty()) return;
    std::string const user = files_.user.empty() ? "" : ", " + files_.user;
    Conclude(fmt::format("{}{}: no mistakes in {} with {}", files_.main, user,
                         Count(check.TableCount(), "table"),
                         Count(check.RowCount(), "row")));
  }

  DatabaseFiles files_;
  bool quick_ = false;
  long long most_ = 20;
  OutputOptions output_;
};

}  // namespace

extern CommandEntry const kCheckCommand;
CommandEntry const kCheckCommand = {
    "check",
    Group::kCheck,
    "Find what is wrong with a database",
    {{"check geo.db", "a main file"},
     {"check geo.db GEO.UDB", "the whole database with its index"},
     {"check --quick geo.db", "without looking at rows and texts"},
     {"check geo.db --format ndjson", "a record for each finding"}},
    &MakeCommand<CheckCommand>};

}  // namespace tabwerk::tool
