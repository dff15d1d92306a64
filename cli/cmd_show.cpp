// tabwerk show: the rows of a table.
#include <optional>
#include <string>

#include "DBbase.h"
#include "cli/commands.h"
#include "cli/row_query.h"
#include "cli/session.h"
#include "cli/table_out.h"
#include "cli/table_rows.h"
#include "cli/translated_text.h"

namespace tabwerk::tool {
namespace {

class ShowCommand : public Command {
 public:
  void Declare(Options& options) override {
    AddDatabaseOptions(options, &files_);
    options.Add("TABLE", last_word_, "The table, unless -t names it");
    options.Add("-t,--table", table_, "The table").Value("TABLE");
    AddRowQueryOptions(options, &query_);
    AddLanguageOption(options, &language_,
                      "Number of the language of the texts, 0 is the first; "
                      "all: a column for each; raw: as they are stored");
    AddOutputOptions(options, &output_);
    options.Notes(
        "A terminal gets a table, a pipe complete lines of values separated\n"
        "by tabs, behind a line of column names; control characters stand as\n"
        "\\t, \\n, \\r and \\xHH there, \"\\\" as \"\\\\\".  No file is "
        "changed.");
  }

  ExitCode Run() override {
    if (auto const problem = SortWords()) return Report(*problem);
    if (auto const problem = OpenToLook(files_)) return Report(*problem);
    DBTabelle* table = nullptr;
    if (auto const problem = FindTable(files_, table_, &table)) {
      return Report(*problem);
    }
    RowChoice choice(*table, language_);
    if (auto problem = choice.Apply(query_)) {
      problem->where = files_.main;
      return Report(*problem);
    }
    TableRows rows(*table);
    if (language_.IsAll()) {
      rows.SplitLanguages();
    } else {
      DBbase::SetSprache(language_.Number());
    }
    if (auto const problem = PrintRows(rows, choice.rows(), table_, output_)) {
      return Report(*problem);
    }
    return ReportMissing(choice.missing());
  }

 private:
  std::optional<Problem> SortWords() {
    if (auto problem = SortTableWord("show", &files_, &table_, &last_word_)) {
      return problem;
    }
    if (query_.part == "user" && files_.user.empty()) {
      return Problem{TW(105), "", "--part user needs a USERFILE",
                     "name the user file behind FILE"};
    }
    return std::nullopt;
  }

  ExitCode ReportMissing(std::vector<std::string> const& missing) const {
    ExitCode code = ExitCode::kDone;
    for (std::string const& what : missing) {
      code = Report(
          {TW(132), files_.main, "no row of " + table_ + " has " + what, ""});
    }
    return code;
  }

  DatabaseFiles files_;
  std::string last_word_;
  std::string table_;
  RowQuery query_;
  LanguageChoice language_{"0"};
  OutputOptions output_;
};

}  // namespace

extern CommandEntry const kShowCommand;
CommandEntry const kShowCommand = {
    "show",
    Group::kLook,
    "Print the rows of a table",
    {{"show geo.db CURRENCY", "all rows"},
     {"show geo.db CURRENCY --where CODE=EUR --language all --format list",
      "a row in all languages"},
     {"show geo.db GEO.UDB CURRENCY --active --order folge --format csv -o "
      "currency.csv",
      "rows in use, in display order, into a file"}},
    &MakeCommand<ShowCommand>};

}  // namespace tabwerk::tool
