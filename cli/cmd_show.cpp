// tabwerk show: the rows of a table, in one language.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <limits>
#include <optional>
#include <string>

#include "DBbase.h"
#include "cli/commands.h"
#include "cli/console.h"
#include "cli/session.h"
#include "cli/table_view.h"

namespace tabwerk::tool {
namespace {

class ShowCommand : public Command {
 public:
  void Declare(CLI::App& app) override {
    AddDatabaseOptions(app, &files_);
    app.add_option("-t,--table", table_, "The table")->required();
    app.add_option("--language", language_,
                   "Number of the language of the texts; 0 is the first")
        ->check(CLI::Range(0, int{std::numeric_limits<short>::max()}));
    app.add_option("--limit", limit_, "Print no more than so many rows")
        ->check(CLI::NonNegativeNumber);
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
    TableView view(*table);
    long const limit =
        std::min(limit_.value_or(view.RowCount()), view.RowCount());
    if (console::OutIsTerminal()) {
      view.PrintAligned(limit, console::TerminalWidth());
    } else {
      view.PrintTabSeparated(limit);
    }
    return ExitCode::kDone;
  }

 private:
  DatabaseFiles files_;
  std::string table_;
  int language_ = 0;
  std::optional<long> limit_;
};

}  // namespace

std::unique_ptr<Command> MakeShowCommand() {
  return std::make_unique<ShowCommand>();
}

}  // namespace tabwerk::tool
