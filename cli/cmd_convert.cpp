// tabwerk convert: a database file in the current form.
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "cli/commands.h"
#include "cli/console.h"
#include "cli/convert_file.h"
#include "cli/database_file.h"
#include "cli/files.h"
#include "cli/session.h"
#include "cli/settings.h"
#include "cli/text.h"
#include "cli/writing.h"

namespace tabwerk::tool {
namespace {

namespace fs = std::filesystem;

std::string FormText(DatabaseFile const& file) {
  std::string const version = std::to_string(file.version);
  if (file.header_bytes == 0) return version + " (no header)";
  return version + (file.time_stamp == 0 ? "" : " with time");
}

class ConvertCommand : public Command {
 public:
  void Declare(Options& options) override {
    options.Add("FILE", source_, "The database file, in any form").Required();
    options
        .Add("-o,--output", target_,
             "Write the new file here, - is standard output; without this, "
             "FILE is replaced, which needs --backup")
        .Value("FILE");
    options
        .Add("--name", name_,
             "Name of the database, where it is not that of a user FILE; "
             "the index that --backup copies with it is called after it")
        .Value("NAME");
    AddWriteOptions(options, &write_);
    options.Notes(
        "Rows, texts and tables stay; every text gets a place of its own, in\n"
        "the order of the rows, and what no row uses is left out.  Damaged\n"
        "files are refused.  A user file's index finds its rows again by ID.");
  }

  ExitCode Run() override {
    if (auto const problem = CheckArguments()) return Report(*problem);
    std::string const target = target_.empty() ? source_ : target_;
    DatabaseFile before;
    DatabaseFile after;
    if (auto const problem = Examine(source_, &before)) {
      return Report(*problem);
    }
    if (!IsToOutput()) {
      if (auto problem = WhyNotReplaced(target)) return Report(*problem);
    }
    if (write_.backup) {
      if (auto problem = BackUp()) return Report(*problem);
    }
    TemporaryFolder const folder;
    if (folder.path().empty()) return Report(TemporaryFolder::WhyMissing());
    std::string const written =
        write_.dry_run || IsToOutput()
            ? ToUtf8(folder.path() /
                     ToPath(IsToOutput() ? source_ : target).filename())
            : target;
    auto problem = ConvertFile(source_, written);
    if (!problem) problem = ReadDatabaseFile(written, &after);
    if (!problem && IsToOutput() && !write_.dry_run) problem = HandOut(written);
    if (problem) {
      if (problem->where.file == written) problem->where.file = target;
      return Report(*problem);
    }
    Summarise(target, before, after);
    return ExitCode::kDone;
  }

 private:
  bool IsToOutput() const {
    return target_ == "-" ||
           (!target_.empty() && console::IsStandardOutput(ToPath(target_)));
  }

  std::optional<Problem> CheckArguments() const {
    std::error_code error;
    if (IsToOutput()) {
      if (write_.dry_run || !console::OutIsTerminal()) return std::nullopt;
      return Problem{TW(157), source_, "a terminal takes no database",
                     "send standard output to a file or a pipe"};
    }
    if (target_.empty()) {
      if (write_.backup || write_.dry_run) return std::nullopt;
      return Problem{TW(157), source_, "there is no target",
                     "name one behind -o, or replace the file and keep a copy "
                     "of it with --backup"};
    }
    if (!fs::exists(ToPath(target_), error)) return std::nullopt;
    return Problem{TW(158), target_, "there is a file of that name",
                   "name another one behind -o"};
  }

  std::optional<Problem> BackUp() {
    std::vector<fs::path> files = {ToPath(source_)};
    if (IsUserFile(source_)) {
      for (fs::path const& index : IndexFiles({source_, source_, name_})) {
        files.push_back(index);
      }
    }
    return MakeBackup(files, &copies_);
  }

  // A complete file.
  static std::optional<Problem> HandOut(std::string const& written) {
    std::string content;
    if (!ReadWhole(ToPath(written), &content)) {
      return TemporaryFolder::WhyMissing();
    }
    console::Out(content);
    return std::nullopt;
  }

  void Summarise(std::string const& target, DatabaseFile const& before,
                 DatabaseFile const& after) const {
    std::string const to =
        IsToOutput() ? " to standard output" : " to " + target;
    Conclude(source_ + ": converted" + (target == source_ ? "" : to) +
                 WriteEnding(write_, copies_) + "\n  form    " +
                 FormText(before) + " -> " + FormText(after) + "\n  size    " +
                 std::to_string(before.size_bytes) + " -> " +
                 std::to_string(after.size_bytes) + " bytes\n  tables  " +
                 Count(static_cast<long long>(before.tables.size()), "table") +
                 ", " + Count(before.RowCount(), "row") + " -> " +
                 Count(static_cast<long long>(after.tables.size()), "table") +
                 ", " + Count(after.RowCount(), "row"),
             IsToOutput());
  }

  std::string source_;
  std::string target_;
  std::string name_;
  WriteOptions write_;
  std::vector<std::string> copies_;
};

}  // namespace

extern CommandEntry const kConvertCommand;
CommandEntry const kConvertCommand = {
    "convert",
    Group::kChange,
    "Write a database file of any form anew in the current one",
    {{"convert stock-2014.db -o stock.db", "the old file stays"},
     {"convert stock.db --backup", "in place, with a copy"}},
    &MakeCommand<ConvertCommand>};

}  // namespace tabwerk::tool
