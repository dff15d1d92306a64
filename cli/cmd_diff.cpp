// tabwerk diff: what differs between two databases.
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
  void Declare(Options& options) override {
    options.Add("BEFORE", before_.main, "The main file of one database")
        .Required();
    options.Add("AFTER", after_.main, "The main file of the other one")
        .Required();
    options
        .Add("--user-before", before_.user,
             "The user file that belongs to BEFORE")
        .Value("FILE");
    options
        .Add("--user-after", after_.user, "The user file that belongs to AFTER")
        .Value("FILE");
    options
        .Add("--name-before", before_.name,
             "Name of the database, where it is not that of BEFORE; the "
             "index file is called after it")
        .Value("NAME");
    options.Add("--name-after", after_.name, "The same for AFTER")
        .Value("NAME");
    AddNames(options, "--tables", &options_.tables, "These tables only: A,B");
    AddNames(options, "--columns", &options_.columns,
             "These columns only: A,B");
    AddNames(options, "--ignore", &options_.ignored,
             "Not these columns; with ID, rows belong together by number");
    options.AddFlag("--summary", options_.summary, "Count rows, list none");
    options
        .Add("--limit", options_.limit,
             "List no more than so many rows of a table")
        .NotNegative()
        .Value("N");
    options.Add("--format", format_, "text, json or md")
        .OneOf({"text", "json", "md"})
        .Value("FORMAT");
    options
        .Add("-o,--output", file_,
             "Write to this file, which appears when it is complete; - "
             "is standard output")
        .Value("FILE");
    options.Notes(
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
  static void AddNames(Options& options, char const* option,
                       std::vector<std::string>* names, char const* help) {
    options.Add(option, *names, help).List().Value("NAMES");
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
