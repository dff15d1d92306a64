// tabwerk import: rows from a text file to the end of a user file's table.
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "DBbase.h"
#include "cli/commands.h"
#include "cli/files.h"
#include "cli/import_source.h"
#include "cli/named_rows.h"
#include "cli/out_file.h"
#include "cli/session.h"
#include "cli/settings.h"
#include "cli/text.h"
#include "cli/user_file.h"
#include "cli/user_rows.h"
#include "cli/writing.h"

namespace tabwerk::tool {
namespace {

Problem NotSaved(std::string const& user_file) {
  return {TW(119), user_file,
          "the rows could not be added; the file is as it was",
          "check that its folder and the folder for temporary files can be "
          "written and have room"};
}

class ImportCommand : public Command {
 public:
  void Declare(Options& options) override {
    options
        .Add("ROWS", rows_file_,
             "Text file with a row a line, or JSON; - is standard input")
        .Required();
    AddDatabaseOptions(options, &files_, true);
    options.Add("-t,--table", table_, "The table").Required().Value("TABLE");
    options
        .Add("--from", from_,
             "What ROWS is: csv, tsv, json or ndjson, with names of "
             "columns; rows: UTF-16LE, values in the order of the "
             "columns.  Guessed from the name otherwise")
        .OneOf({"csv", "tsv", "json", "ndjson", "rows"})
        .Value("FORM");
    options
        .Add("--separator", separator_,
             "The character between two values, \"\\t\" for a tab; "
             "\",\" for csv, else \";\"")
        .Value("CHARACTER");
    options
        .Add("--rejected", rejected_file_,
             "Write lines that do not fit to this file, - is standard output; "
             "ROWS.rejected otherwise")
        .Value("FILE");
    AddWriteOptions(options, &write_);
    options.Notes(
        "csv and tsv begin with a line of column names; json is an array of\n"
        "objects, ndjson an object a line, all in UTF-8.  Lines end in a line\n"
        "feed, with or without a carriage return before it.  Columns that are\n"
        "missing get 0 or an empty text.  A missing USERFILE is made.  ID,\n"
        "FOLGE and STATUS get the next free values; a NAME that is taken or\n"
        "empty gets \"_NEW\".  Empty lines are left out.  Rows that do not "
        "fit\n"
        "the table are written, as they stand, to ROWS.rejected.");
  }

  ExitCode Run() override {
    std::string bytes;
    if (auto const problem = CheckArguments()) return Report(*problem);
    if (!ReadInput(rows_file_, &bytes)) {
      return Report({TW(116), rows_file_, "the rows cannot be read",
                     "check the path and its permissions"});
    }
    if (auto const problem = source_->Read(std::move(bytes))) {
      return Report(*problem);
    }
    WriteTarget target(files_, write_);
    if (auto const problem = target.Prepare()) return Report(*problem);
    NewUserFile user_file(target.files());
    auto const problem = Import(target.files(), user_file);
    if (problem) return Report(target.InUsersNames(*problem));
    if (source_->AcceptedCount() == 0) target.DropBackup();
    bool const made = user_file.WasMade() && source_->AcceptedCount() > 0;
    Summarise(made, target.Ending());
    // The manager lets go of copies before they are removed.
    if (write_.dry_run) static_cast<void>(DBbase::Init({}, {}));
    return source_->RejectedCount() > 0 ? ExitCode::kRejected : ExitCode::kDone;
  }

 private:
  std::string RowsName() const { return InputName(rows_file_); }
  std::string RejectedFile() const {
    return rejected_file_.empty() ? RowsName() + ".rejected" : rejected_file_;
  }
  bool RejectsToOutput() const { return rejected_file_ == "-"; }

  std::optional<Problem> CheckArguments() {
    if (auto problem = CheckUserFileName(files_)) return problem;
    auto form = FormOfWord(from_);
    if (from_.empty()) form = FormOfName(rows_file_);
    std::string given = separator_.value_or(form ? "," : ";");
    if (given == "\\t") given = "\t";
    zWString const separator = zWString::fromUtf8(given);
    bool const is_unit = separator.length() == 1 && given != "\"" &&
                         given != "\n" && given != "\r";
    if (!is_unit || (form && given.size() != 1)) {
      return Problem{TW(103), "",
                     "\"" + Escape(given) + "\" cannot be a separator",
                     "name one character, for example --separator \";\""};
    }
    source_ = form ? MakeNamedSource(RowsName(), *form, given.front())
                   : MakePositionalSource(RowsName(), separator.view().front());
    return std::nullopt;
  }

  std::optional<Problem> Import(DatabaseFiles const& files,
                                NewUserFile& user_file) {
    if (auto problem = user_file.MakeWhenMissing()) return problem;
    if (auto problem = OpenToWrite(files)) return problem;
    DBTabelle* table = nullptr;
    if (auto problem = FindTable(files, table_, &table)) return problem;
    if (auto problem = CheckUserPart(files, table_, *table)) return problem;
    if (auto problem = CheckNewRows(files, table_, *table)) return problem;
    if (auto problem = source_->Sort(*table)) return problem;
    if (source_->RejectedCount() > 0 && !write_.dry_run) {
      if (auto problem = SetAside()) return problem;
    }
    if (source_->AcceptedCount() == 0) return std::nullopt;
    user_file.KeepIndex();
    if (auto problem = AppendRows(files, *table)) return problem;
    user_file.Keep();
    return std::nullopt;
  }

  // The rejected rows, in a file of their own; nothing is imported yet.
  std::optional<Problem> SetAside() const {
    std::error_code error;  // where one of them is not there
    if (std::filesystem::equivalent(ToPath(RejectedFile()), ToPath(rows_file_),
                                    error)) {
      return Problem{TW(108), RejectedFile(),
                     "the rejected rows do not replace the input",
                     "name another file behind --rejected"};
    }
    OutFile file(RejectedFile());
    if (auto problem = file.Open()) return problem;
    file.Write(source_->RejectedBytes());
    return file.Close();
  }

  std::optional<Problem> AppendRows(DatabaseFiles const& files,
                                    DBTabelle& table) {
    bool complete = false;
    if (auto problem = source_->Append(table, &complete)) return problem;
    if (!complete) return NotSaved(files_.user);
    return SaveUserFile(files);
  }

  void Summarise(bool made, std::string const& ending) const {
    std::string text = RowsName() + ": " +
                       Count(source_->AcceptedCount(), "row") + " added to " +
                       table_ + " in " + files_.user;
    if (made) text += " (new)";
    if (source_->RejectedCount() > 0) {
      text += ", " + Count(source_->RejectedCount(), source_->RejectedNoun()) +
              " rejected to " +
              (RejectsToOutput() ? "standard output" : RejectedFile());
    }
    Conclude(text + ending, RejectsToOutput());
  }

  std::string rows_file_;
  std::string rejected_file_;
  WriteOptions write_;
  DatabaseFiles files_;
  std::string table_;
  std::string from_;
  std::optional<std::string> separator_;
  std::unique_ptr<ImportSource> source_;
};

}  // namespace

extern CommandEntry const kImportCommand;
CommandEntry const kImportCommand = {
    "import",
    Group::kChange,
    "Append rows from a text file to a user file",
    {{"import currency.csv geo.db GEO.UDB -t CURRENCY --dry-run",
      "which rows would be taken?"},
     {"import rows.txt geo.db GEO.UDB -t CURRENCY --backup",
      "keep copies of the files as they were"}},
    &MakeCommand<ImportCommand>};

}  // namespace tabwerk::tool
