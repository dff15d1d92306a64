// tabwerk dump: the rows of one file of a table as they are stored.
#include <optional>
#include <string>

#include "DBTabelle.h"
#include "DBbase.h"
#include "cli/commands.h"
#include "cli/console.h"
#include "cli/files.h"
#include "cli/out_file.h"
#include "cli/row_query.h"
#include "cli/session.h"
#include "cli/table_out.h"
#include "cli/table_rows.h"
#include "cli/translated_text.h"

namespace tabwerk::tool {
namespace {

class DumpCommand : public Command {
 public:
  void Declare(Options& options) override {
    AddDatabaseOptions(options, &files_);
    options.Add("TABLE", last_word_, "The table, unless -t names it");
    options.Add("-t,--table", table_, "The table").Value("TABLE");
    options
        .Add("--separator", separator_,
             "What stands between two values; \";\" otherwise")
        .Value("TEXT");
    options.AddFlag("--user", user_, "The rows of USERFILE, not those of FILE");
    AddOutputOptions(options, &output_);
    options.Find("--format")
        .Describe(
            "table, csv, tsv, json, ndjson, md or list, with the names of the "
            "columns; auto: values with --separator between them");
    options.Notes(
        "Texts are as they are stored, with all languages; without --format\n"
        "they stand between double quotes, and --limit and --columns need a\n"
        "format.  No file is changed.");
  }

  ExitCode Run() override {
    if (auto const problem = CheckArguments()) return Report(*problem);
    if (auto const problem = OpenToLook(files_)) return Report(*problem);
    DBTabelle* table = nullptr;
    if (auto const problem = FindTable(files_, table_, &table)) {
      return Report(*problem);
    }
    if (HasFormat()) return PrintRowsOf(*table);
    std::wstring separator =
        zWString::fromUtf8(separator_.value_or(";")).toStdWString();
    OutFile file(output_.file);
    if (file.IsStandardOutput() && console::OutTakesUtf8()) {
      return Answer(table->Dump(stdout, separator.data(), user_));
    }
    if (auto const problem = file.Open()) return Report(*problem);
    return DumpThroughFile(*table, separator.data(), file);
  }

 private:
  bool HasFormat() const { return output_.format != "auto"; }

  std::optional<Problem> CheckArguments() {
    auto problem = SortTableWord("dump", &files_, &table_, &last_word_);
    if (problem) return problem;
    if (user_ && files_.user.empty()) {
      return Problem{TW(105), "", "--user needs a USERFILE",
                     "name the user file behind FILE"};
    }
    if (HasFormat() && separator_) {
      return Problem{TW(101), "", "--separator is not for --format",
                     "leave one of them out"};
    }
    if (!HasFormat() && (output_.limit || !output_.columns.empty())) {
      return Problem{TW(101), "", "--limit and --columns need a --format",
                     "add, for example, --format tsv"};
    }
    return std::nullopt;
  }

  ExitCode PrintRowsOf(DBTabelle& table) const {
    RowChoice choice(table, LanguageChoice{"raw"});
    RowQuery query;
    query.part = user_ ? "user" : "main";
    if (auto const problem = choice.Apply(query)) return Report(*problem);
    DBbase::SetSprache(kAsStored);
    TableRows rows(table);
    auto const problem = PrintRows(rows, choice.rows(), table_, output_);
    return problem ? Report(*problem) : ExitCode::kDone;
  }

  // The result of a dump is the number of rows and 1.
  ExitCode Answer(int result) const {
    if (result > 0) return ExitCode::kDone;
    return Report({TW(121), user_ ? files_.user : files_.main,
                   "there is not enough memory for the dump",
                   "close other programs and try again"});
  }

  // For a file, and a console that does not show bytes of UTF-8.
  ExitCode DumpThroughFile(DBTabelle& table, wchar_t* separator,
                           OutFile& file) const {
    TemporaryFolder const folder;
    if (folder.path().empty()) return Report(TemporaryFolder::WhyMissing());
    auto const path = folder.path() / "dump.txt";
    std::FILE* const stream = console::OpenStream(path, "wb");
    if (stream == nullptr) return Report(TemporaryFolder::WhyMissing());
    int const result = table.Dump(stream, separator, user_);
    bool const whole = std::fclose(stream) == 0;
    std::string text;
    if (!whole || !ReadWhole(path, &text)) {
      return Report(TemporaryFolder::WhyMissing());
    }
    file.Write(text);
    if (auto const problem = file.Close()) return Report(*problem);
    return Answer(result);
  }

  DatabaseFiles files_;
  std::string last_word_;
  std::string table_;
  std::optional<std::string> separator_;
  bool user_ = false;
  OutputOptions output_;
};

}  // namespace

extern CommandEntry const kDumpCommand;
CommandEntry const kDumpCommand = {
    "dump",
    Group::kLook,
    "Print a table as it is stored, texts in all languages",
    {{"dump geo.db CURRENCY", "the shipped rows"},
     {"dump geo.db CURRENCY --format csv -o currency.csv",
      "the same for a spreadsheet, texts in all languages"},
     {"dump geo.db GEO.UDB CURRENCY --user", "the user's rows"}},
    &MakeCommand<DumpCommand>};

}  // namespace tabwerk::tool
