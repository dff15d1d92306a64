// tabwerk languages: which texts are complete in which language.
#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "DBDirectory.h"
#include "DBbase.h"
#include "cli/commands.h"
#include "cli/files.h"
#include "cli/language_coverage.h"
#include "cli/language_names.h"
#include "cli/language_rows.h"
#include "cli/progress.h"
#include "cli/session.h"
#include "cli/table_out.h"
#include "cli/translated_text.h"

namespace tabwerk::tool {
namespace {

class LanguagesCommand : public Command {
 public:
  void Declare(Options& options) override {
    AddDatabaseOptions(options, &files_);
    AddLanguagesOption(options, &languages_);
    options
        .Add("--fail-under", least_percent_,
             "End with exit code 1 when a language has less of its "
             "sections complete, in per cent")
        .Between(0, 100)
        .Value("PERCENT");
    options.AddFlag("--cells", cells_,
                    "List every text that is not complete in a language");
    AddOutputOptions(options, &output_);
    options.Notes(
        "Without --format, --cells and --columns a matrix of per cents by\n"
        "language; else a line for each table, column and language, and for\n"
        "each language in all.  Counted are the sections \"#TS(\" ... "
        "\")TS~\":\n"
        "  complete  the text of the language is shown\n"
        "  empty     it has no character\n"
        "  missing   there is none\n"
        "  blocked   there is one, but an earlier section of the text stops\n"
        "            the translation\n"
        "  unclosed  the section does not end\n"
        "  surplus   pieces for languages beyond those asked for\n"
        "PLAIN texts have no section and are the same in every language.");
  }

  ExitCode Run() override {
    if (auto const problem = languages_.Parse()) return Report(*problem);
    if (auto const problem = OpenToLook(files_)) return Report(*problem);
    DBbase::SetSprache(kAsStored);
    std::vector<DBTabelle*> const tables = Tables();
    LanguageRows rows(output_, &languages_, cells_);
    FindLanguages(tables);
    if (auto const problem = languages_.ParseOnly()) return Report(*problem);
    if (auto const problem = rows.Begin()) return Report(*problem);
    CountAll(tables, rows);
    if (auto const problem = rows.End()) return Report(*problem);
    return Judge(rows.Totals());
  }

 private:
  // Those that can be read, in the order of the file.
  std::vector<DBTabelle*> Tables() {
    std::vector<std::string> names;
    DBDirectory* const directory = DBbase::GetDBBaseInstance()->GetDirectory();
    for (DBDirEntry const* entry = directory->GetEntries(); entry != nullptr;
         entry = entry->GetNext()) {
      names.insert(names.begin(), NameToUtf8(entry->GetName()));
    }
    std::vector<DBTabelle*> tables;
    for (std::string const& name : names) {
      DBTabelle* table = nullptr;
      if (auto const problem = FindTable(files_, name, &table)) {
        failure_ = Report(*problem);
      } else {
        tables.push_back(table);
      }
    }
    return tables;
  }

  // Unless they were given: as many as there are anywhere.
  void FindLanguages(std::vector<DBTabelle*> const& tables) {
    if (languages_.IsGiven()) return;
    Progress const progress("reading " + files_.main);
    std::size_t most = 0;
    for (DBTabelle* const table : tables) {
      for (DBFeld const* const field : TextColumn::Of(*table)) {
        most = std::max(most, TextColumn(*table, *field).MostPieces());
      }
    }
    languages_.SetCount(most);
  }

  void CountAll(std::vector<DBTabelle*> const& tables, LanguageRows& rows) {
    std::optional<Progress> progress;
    if (!rows.IsTerminal()) progress.emplace("reading " + files_.main);
    for (DBTabelle* const table : tables) {
      rows.BeginTable(*table, files_);
      for (DBFeld const* const field : TextColumn::Of(*table)) {
        rows.Add(*table, *field);
      }
    }
  }

  ExitCode Judge(std::vector<SectionCounts> const& totals) const {
    ExitCode code = failure_;
    for (std::size_t k = 0; k < totals.size(); ++k) {
      if (!least_percent_ || !languages_.Wants(k)) continue;
      if (!totals[k].IsBelow(*least_percent_)) continue;
      ExitCode const low =
          Report({TW(530), files_.main,
                  fmt::format("language {} is complete by {} %, less than {} %",
                              languages_.Title(k), totals[k].Percent(),
                              *least_percent_),
                  "\"tabwerk languages --cells\" lists what is missing"});
      if (code == ExitCode::kDone) code = low;
    }
    return code;
  }

  DatabaseFiles files_;
  LanguageNames languages_;
  std::optional<double> least_percent_;
  bool cells_ = false;
  OutputOptions output_;
  ExitCode failure_ = ExitCode::kDone;
};

}  // namespace

extern CommandEntry const kLanguagesCommand;
CommandEntry const kLanguagesCommand = {
    "languages",
    Group::kCheck,
    "Show how complete the texts are in each language",
    {{"languages geo.db", "per cents by table, column and language"},
     {"languages geo.db --languages en,de,fr --fail-under 98",
      "for a build that must not ship without French"},
     {"languages geo.db GEO.UDB --cells --language 2 --format csv -o todo.csv",
      "what is missing in one language, for its translator"},
     {"show geo.db CURRENCY --language all --limit 1",
      "which number is which language?"}},
    &MakeCommand<LanguagesCommand>};

}  // namespace tabwerk::tool
