#include "cli/writing.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include "DBbase.h"
#include "cli/options.h"

namespace tabwerk::tool {
namespace {

namespace fs = std::filesystem;

constexpr int kBackupNumbers = 10000;

fs::path BackupName(fs::path const& file, int number) {
  return ToPath(ToUtf8(file) + ".bak" +
                (number > 1 ? fmt::format("{}", number) : ""));
}

bool IsThere(fs::path const& file) {
  std::error_code error;
  return fs::exists(file, error);
}

void RemoveCopies(std::vector<std::string>* copies) {
  for (std::string const& copy : *copies) {
    std::error_code ignored;  // a copy that stays does no harm
    fs::remove(ToPath(copy), ignored);
  }
  copies->clear();
}

Problem NotBackedUp(fs::path const& copy) {
  return {TW(131), ToUtf8(copy), "the backup cannot be made",
          "nothing was changed; check the folder and the space on the disk"};
}

}  // namespace

void AddWriteOptions(Options& options, WriteOptions* write) {
  constexpr char kGroup[] = "Writing";
  options
      .AddFlag("--dry-run", write->dry_run,
               "Do all of it with copies, say what would change, and change "
               "nothing")
      .Group(kGroup);
  options
      .AddFlag("--backup", write->backup,
               "First copy the files to NAME.bak (NAME.bak2 …): the database, "
               "and the user file with its index, which holds order and "
               "status")
      .Group(kGroup);
}

std::optional<Problem> MakeBackup(std::vector<fs::path> const& files,
                                  std::vector<std::string>* copies) {
  std::vector<fs::path> there;
  std::copy_if(files.begin(), files.end(), std::back_inserter(there), IsThere);
  int number = 1;
  auto const is_taken = [&](fs::path const& file) {
    return IsThere(BackupName(file, number));
  };
  while (std::any_of(there.begin(), there.end(), is_taken)) {
    if (++number > kBackupNumbers) {
      return NotBackedUp(BackupName(there.front(), 1));
    }
  }
  for (fs::path const& file : there) {
    fs::path const copy = BackupName(file, number);
    if (CopyFile(file, copy)) {
      RemoveCopies(copies);
      return NotBackedUp(copy);
    }
    copies->push_back(ToUtf8(copy));
  }
  return std::nullopt;
}

WriteTarget::WriteTarget(DatabaseFiles files, WriteOptions const& options)
    : options_(options), files_(std::move(files)), working_(files_) {}

std::optional<Problem> WriteTarget::Prepare() {
  if (options_.dry_run) return PrepareCopies();
  if (!options_.backup) return std::nullopt;
  std::vector<fs::path> files = {ToPath(files_.main), ToPath(files_.user)};
  for (fs::path const& index : IndexFiles(files_)) files.push_back(index);
  return MakeBackup(files, &copies_);
}

std::optional<Problem> WriteTarget::PrepareCopies() {
  // What would stand in the way of the real run.
  fs::path const user_file = ToPath(files_.user);
  if (IsThere(user_file) && !LetsIn(files_.user, Access::kUpdate)) {
    return WhyNotOpened(files_.user, Access::kUpdate);
  }
  fs::path const parent = user_file.parent_path();
  if (!parent.empty() && !IsThere(parent)) {
    return WhyNotOpened(files_.user, Access::kReplace);
  }
  folder_.emplace();
  if (folder_->path().empty()) return TemporaryFolder::WhyMissing();
  working_.name = files_.DatabaseName();
  working_.user = ToUtf8(folder_->path() / user_file.filename());
  return CopyUserFiles(files_, folder_->path());
}

void WriteTarget::DropBackup() { RemoveCopies(&copies_); }

Problem WriteTarget::InUsersNames(Problem problem) const {
  if (problem.where.file == working_.user) problem.where.file = files_.user;
  return problem;
}

std::string WriteTarget::Ending() const {
  return WriteEnding(options_, copies_);
}

std::string WriteEnding(WriteOptions const& options,
                        std::vector<std::string> const& copies) {
  if (options.dry_run) return " (dry run: nothing was changed)";
  if (copies.empty()) return "";
  return fmt::format(" (backup: {})", fmt::join(copies, ", "));
}

}  // namespace tabwerk::tool
