// tabwerk build: a database file from a script.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>
#include <string>
#include <system_error>

#include "DBInterpreter.h"
#include "cli/commands.h"
#include "cli/console.h"
#include "cli/database_file.h"
#include "cli/files.h"
#include "cli/progress.h"
#include "cli/script_scan.h"
#include "cli/text.h"

namespace tabwerk::tool {
namespace {

constexpr int kScriptFailed = 0;
constexpr int kWrittenOtherVersion = 2;

class BuildCommand : public Command {
 public:
  void Declare(CLI::App& app) override {
    app.add_option("SCRIPT", script_, "The script")->required();
    app.add_option("-C", folder_,
                   "Go to this folder first; all paths are relative to it");
    app.add_option("--expect-version", version_,
                   "Version that the data are to have; only for a script "
                   "that is called D000");
    app.footer(
        "A database that was there is replaced when the new one is complete;\n"
        "when something goes wrong, it stays as it was.");
  }

  ExitCode Run() override {
    if (auto const problem = EnterFolder()) return Report(*problem);
    std::string content;
    if (!ReadWhole(ToPath(script_), &content)) {
      return Report({ExitCode::kFile, script_, "the script cannot be read",
                     "check its path and permissions"});
    }
    ScriptScan const scan = ScanScript(script_, content);
    DBInterpreter interpreter;
    int const result = ReadScript(&interpreter);
    if (result == kScriptFailed) return Report(WhyFailed(scan, interpreter));
    return Conclude(scan, interpreter, result);
  }

 private:
  std::optional<Problem> EnterFolder() const {
    if (folder_.empty()) return std::nullopt;
    std::error_code error;
    std::filesystem::current_path(ToPath(folder_), error);
    if (!error) return std::nullopt;
    return Problem{ExitCode::kFile, folder_, "this is no folder to work in",
                   "check the path behind -C"};
  }

  int ReadScript(DBInterpreter* interpreter) const {
    Progress const progress("building " + script_);
    return interpreter->ReadScript(script_.c_str(),
                                   zWString::fromUtf8(version_.value_or("")));
  }

  Problem WhyFailed(ScriptScan const& scan,
                    DBInterpreter const& interpreter) const {
    if (scan.failure) return *scan.failure;
    std::string const& target = scan.database_file;
    if (auto const problem = WhyNotReplaced(target)) return *problem;
    if (interpreter.GetError() != 0) return DataProblem(interpreter);
    return {ExitCode::kFile, target, "the database could not be written",
            "check that its folder and the folder for temporary files can be "
            "written and have room, and that names of tables and columns are "
            "plain words"};
  }

  static std::optional<Problem> WhyNotReplaced(std::string const& target) {
    std::error_code error;
    auto const path = ToPath(target);
    bool const stands_in_the_way =
        std::filesystem::exists(path, error)
            ? !LetsIn(target, Access::kReplace)
            : path.has_parent_path() &&
                  !std::filesystem::is_directory(path.parent_path(), error);
    if (!stands_in_the_way) return std::nullopt;
    return WhyNotOpened(target, Access::kReplace);
  }

  // What the reader of table data has left out.
  Problem DataProblem(DBInterpreter const& interpreter) const {
    std::string text =
        zWString::fromLatin1(interpreter.GetErrorString()).toUtf8();
    std::replace(text.begin(), text.end(), '\n', ' ');
    return {ExitCode::kFindings, script_, text,
            interpreter.GetError() == 1
                ? "values behind the last column were left out; correct the "
                  "data file and build again"
                : "the rest of its data file was left out; correct the types "
                  "of the columns and build again"};
  }

  ExitCode Conclude(ScriptScan const& scan, DBInterpreter const& interpreter,
                    int result) const {
    DatabaseFile file;
    if (auto const problem = ReadDatabaseFile(scan.database_file, &file)) {
      return Report(*problem);
    }
    PrintBuilt(file);
    ExitCode code = ExitCode::kDone;
    for (Problem const& remark : scan.remarks) code = Report(remark);
    if (interpreter.GetError() != 0) code = Report(DataProblem(interpreter));
    // Without an expected version there is nothing to differ from.
    if (result == kWrittenOtherVersion && version_) {
      code = Report({ExitCode::kFindings, script_,
                     "the version of the data is not \"" + *version_ + "\"",
                     "the database was built all the same; check its table "
                     "VERSION"});
    }
    return code;
  }

  static void PrintBuilt(DatabaseFile const& file) {
    console::Out(file.path + ": built with " +
                 Count(static_cast<long long>(file.tables.size()), "table") +
                 ", " + Count(file.RowCount(), "row") + "\n");
    for (TableSummary const& table : file.tables) {
      console::Out("  " + Escape(table.name) + ": " +
                   Count(table.row_count, "row") + "\n");
    }
  }

  std::string script_;
  std::string folder_;
  std::optional<std::string> version_;
};

}  // namespace

std::unique_ptr<Command> MakeBuildCommand() {
  return std::make_unique<BuildCommand>();
}

}  // namespace tabwerk::tool
