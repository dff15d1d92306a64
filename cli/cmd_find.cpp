// tabwerk find: where a text stands in a database.
#include <optional>
#include <string>
#include <vector>

#include "DBDirectory.h"
#include "DBbase.h"
#include "cli/commands.h"
#include "cli/files.h"
#include "cli/patterns.h"
#include "cli/progress.h"
#include "cli/session.h"
#include "cli/table_list.h"
#include "cli/table_out.h"
#include "cli/text_finder.h"
#include "cli/translated_text.h"

namespace tabwerk::tool {
namespace {

class FindTextCommand : public Command {
 public:
  void Declare(Options& options) override {
    options
        .Add("PATTERN", pattern_,
             "A regular expression (ECMAScript) for a part of the text")
        .Required();
    AddDatabaseOptions(options, &files_);
    options.Add("-t,--table", table_, "In this table only").Value("TABLE");
    options.AddFlag("--whole", whole_, "PATTERN is to match the whole text");
    options.AddFlag("--literal", literal_,
                    "PATTERN is a text as it stands, not an expression");
    AddLanguageOption(options, &language_,
                      "Number of one language; all, as without the option; "
                      "raw: texts as they are stored");
    AddOutputOptions(options, &output_);
    options.Notes(
        "A text that has pieces for several languages is found in each of "
        "them;\none that reads the same in all is found once, without a "
        "language.  No\nfile is changed.");
  }

  ExitCode Run() override {
    std::string pattern = literal_ ? LiteralPattern(pattern_) : pattern_;
    if (auto const problem = CheckPattern(pattern)) return Report(*problem);
    if (!whole_) pattern = PatternWithin(pattern);
    if (auto const problem = OpenToLook(files_)) return Report(*problem);
    TableOut out(output_);
    auto const problem = out.Begin({{"PART"},
                                    {"TABLE"},
                                    {"ROW", CellType::kInteger},
                                    {"ID", CellType::kInteger},
                                    {"COLUMN"},
                                    {"LANGUAGE", CellType::kInteger},
                                    {"TEXT"}});
    if (problem) return Report(*problem);
    ExitCode const code = Search(pattern, out);
    if (auto const lost = out.End()) return Report(*lost);
    return code;
  }

 private:
  std::vector<std::string> Tables() const {
    if (!table_.empty()) return {table_};
    std::vector<std::string> names;
    for (DBDirEntry const* entry :
         TablesInFileOrder(*DBbase::GetDBBaseInstance()->GetDirectory())) {
      names.push_back(NameToUtf8(entry->GetName()));
    }
    return names;
  }

  // A table that is damaged does not keep the others from being searched.
  ExitCode Search(std::string const& pattern, TableOut& out) const {
    ExitCode code = ExitCode::kDone;
    auto const tables = Tables();
    Progress progress("searching", static_cast<long long>(tables.size()),
                      "tables");
    long long done = 0;
    for (std::string const& name : tables) {
      if (!out.WantsMore()) break;
      if (auto const problem = SearchTable(name, pattern, out)) {
        code = Report(*problem);
      }
      progress.Advance(++done);
    }
    return code;
  }

  std::optional<Problem> SearchTable(std::string const& name,
                                     std::string const& pattern,
                                     TableOut& out) const {
    DBTabelle* table = nullptr;
    if (auto problem = FindTable(files_, name, &table)) return problem;
    std::vector<TextHit> hits;
    if (auto problem = FindTexts(*table, pattern, language_, &hits)) {
      return problem;
    }
    auto const columns =
        ColumnNames(*table->GetDirEntry(false)->GetDefinition());
    long const main_rows = table->GetDirEntry(false)->GetPartRows(0);
    for (TextHit& hit : hits) {
      if (!out.WantsMore()) break;
      Cell language;
      if (hit.language) language = std::int64_t{*hit.language};
      out.Add({hit.row < main_rows ? "main" : "user", name,
               std::int64_t{hit.row}, IdOf(*table, hit.row),
               columns[hit.column], language, std::move(hit.text)});
    }
    return std::nullopt;
  }

  static Cell IdOf(DBTabelle& table, long row) {
    long id = 0;
    table.SelectZeile(row);
    if (table.SelectColumn("ID") == 0 || table.GetWert(id) != 1) return {};
    return std::int64_t{id};
  }

  std::string pattern_;
  DatabaseFiles files_;
  std::string table_;
  bool whole_ = false;
  bool literal_ = false;
  LanguageChoice language_{"all"};
  OutputOptions output_;
};

}  // namespace

extern CommandEntry const kFindCommand;
CommandEntry const kFindCommand = {
    "find",
    Group::kLook,
    "Find texts in all tables, columns and languages",
    {{"find Franken geo.db", "a part of a text"},
     {"find \"A[a-z]*ia\" geo.db GEO.UDB -t TERRITORY --whole",
      "whole texts in one table"},
     {"find --literal \"(old)\" geo.db --language 1 --format json",
      "as it stands, in the second language"}},
    &MakeCommand<FindTextCommand>};

}  // namespace tabwerk::tool
