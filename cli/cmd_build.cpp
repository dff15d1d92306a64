// tabwerk build: a database file from a script.
#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "DBInterpreter.h"
#include "DBbase.h"
#include "cli/commands.h"
#include "cli/console.h"
#include "cli/database_file.h"
#include "cli/files.h"
#include "cli/lint.h"
#include "cli/progress.h"
#include "cli/script_files.h"
#include "cli/session.h"
#include "cli/settings.h"
#include "cli/text.h"
#include "cli/writing.h"

namespace tabwerk::tool {
namespace {

constexpr int kScriptFailed = 0;
constexpr int kWrittenOtherVersion = 2;

// Findings that tell of statements or data that are not in the database.
bool IsLoss(Code code) {
  constexpr int kLosses[] = {216, 217, 218, 233};
  return std::find(std::begin(kLosses), std::end(kLosses), code.number) !=
         std::end(kLosses);
}

bool HasLoss(ScriptScan const& scan) {
  return std::any_of(
      scan.findings.begin(), scan.findings.end(),
      [](ScriptFinding const& it) { return IsLoss(it.problem.code); });
}

// The files that a dry run makes; the destructor removes them.
class DryRunFiles {
 public:
  explicit DryRunFiles(ScriptScan const& scan) : scan_(scan) {
    auto const is_taken = [this](ScriptDatabase const& database) {
      std::error_code error;
      return std::filesystem::exists(ToPath(database.file + ending_), error);
    };
    for (int i = 2;
         std::any_of(scan_.databases.begin(), scan_.databases.end(), is_taken);
         ++i) {
      ending_ = kEnding + std::to_string(i);
    }
  }
  ~DryRunFiles() {
    // The manager lets go of them first.
    static_cast<void>(DBbase::Init({}, {}));
    for (ScriptDatabase const& database : scan_.databases) {
      std::error_code ignored;  // one that stays does no harm
      std::filesystem::remove(ToPath(database.file + ending_), ignored);
    }
  }
  DryRunFiles(DryRunFiles const&) = delete;
  DryRunFiles& operator=(DryRunFiles const&) = delete;

  std::string const& ending() const { return ending_; }

 private:
  static constexpr char kEnding[] = ".dry-run";

  ScriptScan const& scan_;
  std::string ending_ = kEnding;
};

// Of all data files that the script reads.
long long DataBytes(ScriptScan const& scan) {
  long long bytes = 0;
  for (ScriptData const& data : scan.data) {
    std::error_code error;
    auto const size = std::filesystem::file_size(DataPath(data.path), error);
    if (!error) bytes += static_cast<long long>(size);
  }
  return bytes;
}

class BuildCommand : public Command {
 public:
  void Declare(Options& options) override {
    options.Add("SCRIPT", script_, "The script; - is standard input")
        .Required();
    AddFolderOption(options, &folder_);
    options
        .Add("--expect-version", version_,
             "Version that the data are to have; only for a script "
             "that is called D000")
        .Value("VERSION");
    options.AddFlag("--lint", lint_,
                    "Say first all that \"tabwerk lint\" finds");
    AddWriteOptions(options, &write_);
    options.Notes(
        "A database that was there is replaced when the new one is complete;\n"
        "when something goes wrong, it stays as it was.  Paths in a script, "
        "also\n"
        "in one from standard input, are relative to the current folder.");
  }

  ExitCode Run() override {
    if (auto const problem = EnterFolder(folder_)) return Report(*problem);
    std::string content;
    name_ = InputName(script_);
    if (!ReadInput(script_, &content)) {
      return Report({TW(116), name_, "the script cannot be read",
                     "check its path and permissions"});
    }
    ScriptScan const scan = ScanScript(name_, content);
    if (lint_) PrintFindings(scan, [](Severity, Code) { return true; });
    return write_.dry_run ? RunDry(scan) : RunReally(scan, content);
  }

 private:
  // Those that are chosen, on standard error.
  template <typename Choose>
  void PrintFindings(ScriptScan const& scan, Choose choose) {
    Lint(scan, [&](Severity severity, Problem const& problem) {
      if (!choose(severity, problem.code)) return;
      has_findings_ = has_findings_ || severity != Severity::kNote;
      has_losses_ = has_losses_ || IsLoss(problem.code);
      if (severity == Severity::kError) {
        ExitCode const code = Report(problem);
        if (failure_ == ExitCode::kDone) failure_ = code;
      } else {
        Warn(problem, severity);
      }
    });
  }

  ExitCode RunReally(ScriptScan const& scan, std::string const& content) {
    if (write_.backup) {
      if (auto const problem = BackUp(scan)) return Report(*problem);
    }
    return script_ == "-" ? BuildOf(scan, content) : Build(scan, script_);
  }

  // A database that is built anew, and the index where it is a user file.
  std::optional<Problem> BackUp(ScriptScan const& scan) {
    std::vector<std::filesystem::path> files;
    for (ScriptDatabase const& database : scan.databases) {
      files.push_back(ToPath(database.file));
      if (!IsUserFile(database.file)) continue;
      auto const indices = IndexFiles({"", database.file, database.name});
      files.insert(files.end(), indices.begin(), indices.end());
    }
    return MakeBackup(files, &copies_);
  }

  // Builds beside the databases, under names that are gone afterwards.
  ExitCode RunDry(ScriptScan const& scan) {
    if (scan.Failure() != nullptr) return ReportFailure(scan, DBInterpreter());
    DryRunFiles const drafts(scan);
    ending_ = drafts.ending();
    return BuildOf(scan, scan.WithEnding(ending_));
  }

  // As if the script were a file of that content in the current folder.
  ExitCode BuildOf(ScriptScan const& scan, std::string const& content) {
    TemporaryFolder const folder;
    auto const script = folder.path() / ToPath(name_).filename();
    if (folder.path().empty() || !WriteWhole(script, content)) {
      return Report(TemporaryFolder::WhyMissing());
    }
    return Build(scan, ToUtf8(script));
  }

  // script is what is carried out.
  ExitCode Build(ScriptScan const& scan, std::string const& script) {
    DBInterpreter interpreter;
    int const result = ReadScript(scan, &interpreter, script);
    if (result == kScriptFailed) return ReportFailure(scan, interpreter);
    return Finish(scan, interpreter, result);
  }

  int ReadScript(ScriptScan const& scan, DBInterpreter* interpreter,
                 std::string const& script) const {
    Progress progress("building " + name_, DataBytes(scan) / kKiB, "KiB");
    progress.Follow(
        [interpreter] { return interpreter->GetReadBytes() / kKiB; });
    return interpreter->ReadScript(script.c_str(),
                                   zWString::fromUtf8(version_.value_or("")));
  }

  ExitCode ReportFailure(ScriptScan const& scan,
                         DBInterpreter const& interpreter) {
    if (!lint_) {
      PrintFindings(scan, [](Severity severity, Code) {
        return severity == Severity::kError;
      });
    }
    if (failure_ != ExitCode::kDone) return failure_;
    return Report(WhyFailed(scan, interpreter));
  }

  // For a failure that does not show in the script.
  Problem WhyFailed(ScriptScan const& scan,
                    DBInterpreter const& interpreter) const {
    std::string const target = scan.DatabaseFile();
    if (auto const problem = WhyNotReplaced(target)) return *problem;
    if (interpreter.GetError() != 0) return DataProblem(interpreter);
    return {TW(119), target, "the database could not be written",
            "check that its folder and the folder for temporary files can be "
            "written and have room"};
  }

  // What the reader of table data has left out.
  Problem DataProblem(DBInterpreter const& interpreter) const {
    std::string text =
        zWString::fromLatin1(interpreter.GetErrorString()).toUtf8();
    std::replace(text.begin(), text.end(), '\n', ' ');
    if (interpreter.GetError() == 1) {
      return {TW(217), name_, text,
              "values behind the last column were left out; correct the data "
              "file and build again"};
    }
    return {TW(218), name_, text,
            "the rest of its data file was left out; correct the types of the "
            "columns and build again"};
  }

  ExitCode Finish(ScriptScan const& scan, DBInterpreter const& interpreter,
                  int result) {
    DatabaseFile file;
    if (auto const problem =
            ReadDatabaseFile(scan.DatabaseFile() + ending_, &file)) {
      return Report(*problem);
    }
    file.path = scan.DatabaseFile();
    PrintBuilt(file);
    bool const data_left_out = interpreter.GetError() != 0;
    // Without need the data are not read again.
    if (!lint_ && (data_left_out || HasLoss(scan))) {
      PrintFindings(scan, [](Severity, Code code) { return IsLoss(code); });
    }
    ExitCode code = has_findings_ ? ExitCode::kFindings : ExitCode::kDone;
    if (data_left_out && !has_losses_) code = Report(DataProblem(interpreter));
    // Without an expected version there is nothing to differ from.
    if (result == kWrittenOtherVersion && version_) {
      code = Report({TW(219), name_,
                     "the version of the data is not \"" + *version_ + "\"",
                     "the database was built all the same; check its table "
                     "VERSION"});
    }
    return code;
  }

  void PrintBuilt(DatabaseFile const& file) const {
    if (CurrentSettings().quiet) return;
    Conclude(file.path + ": built with " +
             Count(static_cast<long long>(file.tables.size()), "table") + ", " +
             Count(file.RowCount(), "row") + WriteEnding(write_, copies_));
    for (TableSummary const& table : file.tables) {
      console::Out("  " + Escape(table.name) + ": " +
                   Count(table.row_count, "row") + "\n");
    }
  }

  std::string script_;
  std::string name_;  // of the script in messages
  std::string folder_;
  std::optional<std::string> version_;
  bool lint_ = false;
  WriteOptions write_;
  std::vector<std::string> copies_;  // of a backup
  std::string ending_;               // of the file that is built
  // Of the findings that were printed.
  bool has_findings_ = false;  // errors or warnings
  bool has_losses_ = false;
  ExitCode failure_ = ExitCode::kDone;  // of the first error
};

}  // namespace

extern CommandEntry const kBuildCommand;
CommandEntry const kBuildCommand = {
    "build",
    Group::kMake,
    "Make a database file from a script",
    {{"build geo.script -C examples/reference",
      "paths are those of that folder"},
     {"build geo.script --dry-run", "what would be built?"},
     {"build geo.script --lint", "with all that looks like a mistake"}},
    &MakeCommand<BuildCommand>};

}  // namespace tabwerk::tool
