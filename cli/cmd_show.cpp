// tabwerk show: the rows of a table, in one language.
#include <CLI/CLI.hpp>
#include <limits>
#include <optional>
#include <string>

#include "DBbase.h"
#include "cli/commands.h"
#include "cli/progress.h"
#include "cli/session.h"
#include "cli/table_out.h"
#include "cli/table_rows.h"

namespace tabwerk::tool {
namespace {

class ShowCommand : public Command {
 public:
  void Declare(CLI::App& app) override {
    AddDatabaseOptions(app, &files_);
    app.add_option("-t,--table", table_, "The table")
        ->required()
        ->type_name("TABLE");
    app.add_option("--language", language_,
                   "Number of the language of the texts; 0 is the first")
        ->check(CLI::Range(0, int{std::numeric_limits<short>::max()}))
        ->type_name("N");
    AddOutputOptions(app, &output_);
    app.footer(
        "A terminal gets a table, a pipe complete lines of values separated\n"
        "by tabs, behind a line of column names; control characters stand as\n"
        "\\t, \\n, \\r and \\xHH there, \"\\\" as \"\\\\\".  No file is "
        "changed.");
  }

  ExitCode Run() override {
    if (auto const problem = OpenToLook(files_)) return Report(*problem);
    DBTabelle* table = nullptr;
    if (auto const problem = FindTable(files_, table_, &table)) {
      return Report(*problem);
    }
    DBbase::SetSprache(static_cast<short>(language_));
    TableRows rows(*table);
    TableOut out(output_);
    if (auto const problem = out.Begin(rows.Heads())) return Report(*problem);
    PrintRows(rows, out);
    if (auto const problem = out.End(rows.RowCount())) return Report(*problem);
    return ExitCode::kDone;
  }

 private:
  void PrintRows(TableRows& rows, TableOut& out) const {
    // A terminal that takes the rows needs no other sign of life.
    std::optional<Progress> progress;
    if (!out.IsTerminal()) {
      progress.emplace("writing " + table_, rows.RowCount(), "row");
    }
    for (long row = 0; row < rows.RowCount() && out.WantsMore(); ++row) {
      out.Add(rows.Row(row, out));
      if (progress) progress->Advance(row + 1);
    }
  }

  DatabaseFiles files_;
  std::string table_;
  int language_ = 0;
  OutputOptions output_;
};

}  // namespace

extern CommandEntry const kShowCommand;
CommandEntry const kShowCommand = {
    "show",
    Group::kLook,
    "Print the rows of a table",
    {{"show geo.db -t CURRENCY", "all rows"},
     {"show geo.db -t CURRENCY --language 1 --columns CODE,NAME --limit 5",
      "the first five in the second language"},
     {"show geo.db GEO.UDB -t CURRENCY --format csv -o currency.csv",
      "into a file"}},
    &MakeCommand<ShowCommand>};

}  // namespace tabwerk::tool
