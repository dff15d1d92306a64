// tabwerk import: rows from a text file to the end of a user file's table.
#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "DBDirectory.h"
#include "DBInterpreter.h"
#include "DBbase.h"
#include "cli/commands.h"
#include "cli/database_file.h"
#include "cli/files.h"
#include "cli/import_rows.h"
#include "cli/progress.h"
#include "cli/session.h"
#include "cli/settings.h"
#include "cli/text.h"
#include "cli/user_file.h"
#include "cli/writing.h"

namespace tabwerk::tool {
namespace {

// The lines of the input, sorted.
struct SortedLines {
  std::u16string accepted;  // each with a line feed
  long accepted_count = 0;
  std::u16string rejected;  // as they stood
  long rejected_count = 0;
};

Problem NotSaved(std::string const& user_file) {
  return {TW(119), user_file,
          "the rows could not be added; the file is as it was",
          "check that its folder and the folder for temporary files can be "
          "written and have room"};
}

class ImportCommand : public Command {
 public:
  void Declare(CLI::App& app) override {
    app.add_option("ROWS", rows_file_,
                   "Text file in UTF-16LE, one row a line, values in the order "
                   "of the table's columns")
        ->required();
    AddDatabaseOptions(app, &files_, true);
    app.add_option("-t,--table", table_, "The table")
        ->required()
        ->type_name("TABLE");
    app.add_option("--separator", separator_,
                   "The character between two values, \"\\t\" for a tab; "
                   "\";\" otherwise")
        ->type_name("CHARACTER");
    app.add_option("--rejected", rejected_file_,
                   "Write lines that do not fit to this file; ROWS.rejected "
                   "otherwise")
        ->type_name("FILE");
    AddWriteOptions(app, &write_);
    app.footer(
        "ROWS may be - for standard input.\n"
        "A missing USERFILE is made.  ID, FOLGE and STATUS take a value each,\n"
        "but get the next free ones; a name that is taken gets \"_NEW\".\n"
        "Empty lines are left out.  Lines that do not fit the table are\n"
        "written, as they stand, to ROWS.rejected.");
  }

  ExitCode Run() override {
    std::string bytes;
    if (auto const problem = CheckArguments()) return Report(*problem);
    if (!ReadInput(rows_file_, &bytes)) {
      return Report({TW(116), rows_file_, "the rows cannot be read",
                     "check the path and its permissions"});
    }
    RowText const rows(bytes);
    if (!rows.IsPlausible(unit_)) {
      return Report({TW(129), rows_file_, "this is no UTF-16LE text",
                     "save it as \"Unicode text\" (UTF-16, little-endian)"});
    }
    WriteTarget target(files_, write_);
    if (auto const problem = target.Prepare()) return Report(*problem);
    NewUserFile user_file(target.files());
    SortedLines lines;
    auto const problem = Import(rows, target.files(), user_file, &lines);
    if (problem) return Report(target.InUsersNames(*problem));
    bool const made = user_file.WasMade() && lines.accepted_count > 0;
    Summarise(lines, made, target.Ending());
    // The manager lets go of copies before they are removed.
    if (write_.dry_run) static_cast<void>(DBbase::Init({}, {}));
    return lines.rejected_count > 0 ? ExitCode::kRejected : ExitCode::kDone;
  }

 private:
  std::string RowsName() const {
    return rows_file_ == "-" ? "standard-input" : rows_file_;
  }
  std::string RejectedFile() const {
    return rejected_file_.empty() ? RowsName() + ".rejected" : rejected_file_;
  }

  std::optional<Problem> CheckArguments() {
    if (!IsUserFile(files_.user) || IsUserFile(files_.main)) {
      return Problem{TW(104), files_.user, "this is no name of a user file",
                     "a user file ends in \".UDB\", a main file does not"};
    }
    if (separator_ == "\\t") separator_ = "\t";
    zWString const separator = zWString::fromUtf8(separator_);
    if (separator.length() != 1 || separator_ == "\"" || separator_ == "\n" ||
        separator_ == "\r") {
      return Problem{TW(103), "",
                     "\"" + Escape(separator_) + "\" cannot be a separator",
                     "name one character, for example --separator \";\""};
    }
    unit_ = separator.view().front();
    return std::nullopt;
  }

  std::optional<Problem> Import(RowText const& rows, DatabaseFiles const& files,
                                NewUserFile& user_file, SortedLines* lines) {
    if (auto problem = user_file.MakeWhenMissing()) return problem;
    if (auto problem = OpenToWrite(files)) return problem;
    DBTabelle* table = nullptr;
    if (auto problem = FindTable(files, table_, &table)) return problem;
    if (auto problem = CheckTable(*table)) return problem;
    Sort(rows, *table, lines);
    if (lines->rejected_count > 0 && !write_.dry_run) {
      if (!WriteWhole(ToPath(RejectedFile()),
                      EncodeUnits(lines->rejected, rows.HasMark()))) {
        return Problem{TW(117), RejectedFile(),
                       "the rejected lines cannot be set aside",
                       "nothing was imported; check the folder of the input"};
      }
    }
    if (lines->accepted_count == 0) return std::nullopt;
    if (auto problem = AppendRows(*lines, files, *table)) return problem;
    user_file.Keep();
    return std::nullopt;
  }

  std::optional<Problem> CheckTable(DBTabelle& table) const {
    DBDirEntry const* const user_part = table.GetDirEntry(true);
    if (user_part == nullptr) {
      return Problem{TW(127), files_.user,
                     "there is no table " + table_ + " in this file",
                     "it was made for an earlier main file; let the program "
                     "that uses it bring it up to date"};
    }
    for (DBFeld const* field = user_part->GetDefinition()->GetDefinition();
         field != nullptr; field = field->next) {
      if (field->type != DBTypeUnknown) continue;
      return Problem{TW(128), files_.main,
                     "column " + NameToUtf8(field->name) + " of table " +
                         table_ + " has no type",
                     "correct the script of the main file and build it again"};
    }
    return std::nullopt;
  }

  void Sort(RowText const& rows, DBTabelle& table, SortedLines* lines) const {
    RowJudge judge(*table.GetDirEntry(true)->GetDefinition(), unit_);
    for (RowLine const& line : rows.Lines()) {
      if (line.text.empty()) continue;
      auto const objection = judge.Objection(line.text);
      if (!objection) {
        lines->accepted.append(line.text).append(u"\n");
        ++lines->accepted_count;
        continue;
      }
      lines->rejected.append(line.whole);
      ++lines->rejected_count;
      Warn({objection->code, Place(RowsName(), line.number), objection->what,
            "the line is rejected"});
    }
  }

  std::optional<Problem> AppendRows(SortedLines const& lines,
                                    DatabaseFiles const& files,
                                    DBTabelle& table) const {
    TemporaryFolder const folder;
    auto const path = folder.path() / "rows.txt";
    if (folder.path().empty() ||
        !WriteWhole(path, EncodeUnits(lines.accepted, false))) {
      return TemporaryFolder::WhyMissing();
    }
    Progress const progress("importing " + RowsName());
    long const rows_before = table.GetAnzahlZeilen();
    wchar_t const separator[] = {static_cast<wchar_t>(unit_), L'\0'};
    DBInterpreter interpreter;
    interpreter.SetTabelle(&table);
    if (interpreter.OpenDatei(ToUtf8(path).c_str(), "rb") == 0) {
      return TemporaryFolder::WhyMissing();
    }
    zWString version;
    static_cast<void>(interpreter.ReadDatei(version, true, separator));
    interpreter.CloseDatei();
    // The import itself tells nothing of rows that it could not write.
    bool const complete =
        table.GetAnzahlZeilen() - rows_before == lines.accepted_count &&
        interpreter.GetError() == 0;
    zWString const name = zWString::fromUtf8(files.DatabaseName());
    if (!complete ||
        !DBbase::GetDBBaseInstance()->Write(name, true, zWString())) {
      return NotSaved(files_.user);
    }
    static_cast<void>(DBbase::GetDBBaseInstance()->Close(name));
    return std::nullopt;
  }

  void Summarise(SortedLines const& lines, bool made,
                 std::string const& ending) const {
    std::string text = RowsName() + ": " + Count(lines.accepted_count, "row") +
                       " added to " + table_ + " in " + files_.user;
    if (made) text += " (new)";
    if (lines.rejected_count > 0) {
      text += ", " + Count(lines.rejected_count, "line") + " rejected to " +
              RejectedFile();
    }
    Conclude(text + ending);
  }

  std::string rows_file_;
  std::string rejected_file_;
  WriteOptions write_;
  DatabaseFiles files_;
  std::string table_;
  std::string separator_ = ";";
  char16_t unit_ = u';';
};

}  // namespace

extern CommandEntry const kImportCommand;
CommandEntry const kImportCommand = {
    "import",
    Group::kChange,
    "Append rows from a text file to a user file",
    {{"import rows.txt geo.db GEO.UDB -t CURRENCY --dry-run",
      "which lines would be taken?"},
     {"import rows.txt geo.db GEO.UDB -t CURRENCY --backup",
      "keep copies of the files as they were"}},
    &MakeCommand<ImportCommand>};

}  // namespace tabwerk::tool
