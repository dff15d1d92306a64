// tabwerk diff: what differs between two databases.
#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/commands.h"
#include "cli/diff_out.h"
#include "cli/diff_snapshot.h"
#include "cli/diff_tables.h"
#include "cli/out_file.h"
#include "cli/progress.h"
#include "cli/settings.h"

namespace tabwerk::tool {
namespace {

class DiffCommand : public Command {
 public:
  void Declare(CLI::App& app) override {
    app.add_option("BEFORE", before_.main, "The main file of one database")
        ->required();
    app.add_option("AFTER", after_.main, "The main file of the other one")
        ->required();
    app.add_option("--user-before", before_.user,
                   "The user file that belongs to BEFORE")
        ->type_name("FILE");
    app.add_option("--user-after", after_.user,
                   "The user file that belongs to AFTER")
        ->type_name("FILE");
    app.add_option("--name-before", before_.name,
                   "Name of the database, where it is not that of BEFORE; the "
                   "index file is called after it")
        ->type_name("NAME");
    app.add_option("--name-after", after_.name, "The same for AFTER")
        ->type_name("NAME");
    AddNames(app, "--tables", &options_.tables, "These tables only: A,B");
    AddNames(app, "--columns", &options_.columns, "These columns only: A,B");
    AddNames(app, "--ignore", &options_.ignored,
             "Not these columns; with ID, rows belong together by number");
    app.add_flag("--summary", options_.summary, "Count rows, list none");
    app.add_option("--limit", options_.limit,
                   "List no more than so many rows of a table")
        ->check(CLI::NonNegativeNumber)
        ->type_name("N");
    app.add_option("--format", format_, "text, json or md")
        ->check(CLI::IsMember({"text", "json", "md"}))
        ->capture_default_str()
        ->type_name("FORMAT");
    app.add_option("-o,--output", file_,
                   "Write to this file, which appears when it is complete; - "
                   "is standard output")
        ->type_name("FILE");
    app.footer(
        "Rows of a table with a column ID of integers belong together by ID,\n"
        "others by number; columns by name.  A text with sections for several\n"
        "languages is compared language by language.  With a user file, order\n"
        "and status are those of the index.  A line begins with - for what\n"
        "only BEFORE has, + for what only AFTER has, ~ for what differs.\n"
        "Exit codes: 0 no differences, 1 differences.");
  }

  ExitCode Run() override {
    Snapshot before;
    Snapshot after;
    if (auto const problem = TakeSnapshot(before_, &before)) {
      return Report(*problem);
    }
    if (auto const problem = TakeSnapshot(after_, &after)) {
      return Report(*problem);
    }
    OutFile file(file_);
    if (auto const problem = file.Open()) return Report(*problem);
    bool equal = true;
    {
      std::optional<Progress> progress;
      if (!file.IsTerminal()) progress.emplace("comparing");
      auto const problem =
          CompareDatabases(before, after, options_, *MakeOut(file), &equal);
      if (problem) return Report(*problem);
    }
    if (auto const problem = file.Close()) return Report(*problem);
    return equal ? ExitCode::kDone : ExitCode::kFindings;
  }

 private:
  static void AddNames(CLI::App& app, char const* option,
                       std::vector<std::string>* names, char const* help) {
    app.add_option(option, *names, help)
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("NAMES");
  }

  std::unique_ptr<DiffOut> MakeOut(OutFile& file) const {
    if (format_ == "json") return MakeDiffJson(file);
    if (format_ == "md") return MakeDiffMarkdown(file);
    return MakeDiffText(file, file.IsStandardOutput() && ColorsOut());
  }

  DatabaseFiles before_;
  DatabaseFiles after_;
  DiffOptions options_;
  std::string format_ = "text";
  std::string file_;
};

}  // namespace

extern CommandEntry const kDiffCommand;
CommandEntry const kDiffCommand = {
    "diff",
    Group::kLook,
    "Say what differs between two databases",
    {{"diff geo-2023.db geo.db", "schema, rows and texts"},
     {"diff old/geo.db geo.db --user-before old/GEO.UDB --user-after GEO.UDB",
      "with what the users have made"},
     {"diff geo-2023.db geo.db --ignore FOLGE --summary",
      "how many rows, but for their order"},
     {"diff geo-2023.db geo.db --format md -o changes.md", "for a change log"}},
    &MakeCommand<DiffCommand>};

}  // namespace tabwerk::tool
