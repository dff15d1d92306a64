// What every command that changes something has in common.
#ifndef TABWERK_CLI_WRITING_H
#define TABWERK_CLI_WRITING_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/errors.h"
#include "cli/files.h"
#include "cli/session.h"

namespace tabwerk::tool {

class Options;

struct WriteOptions {
  bool dry_run = false;
  bool backup = false;
};

// Adds --dry-run and --backup.
void AddWriteOptions(Options& options, WriteOptions* write);

// Copies those files that are there to NAME.bak, or where one of these is
// taken, all of them to NAME.bak2, NAME.bak3 …  Adds the names of the copies;
// where one cannot be made, none is left.
std::optional<Problem> MakeBackup(
    std::vector<std::filesystem::path> const& files,
    std::vector<std::string>* copies);

// The user file that a command changes, with its index: the files themselves
// behind a backup, or for a dry run copies that are gone afterwards.
//
//   WriteTarget target(files_, write_);
//   if (auto problem = target.Prepare()) return Report(*problem);
//   … everything with target.files() …
//   if (problem) return Report(target.InUsersNames(*problem));
//   Conclude("2 rows added" + target.Ending());
class WriteTarget {
 public:
  WriteTarget(DatabaseFiles files, WriteOptions const& options);

  std::optional<Problem> Prepare();
  DatabaseFiles const& files() const { return working_; }
  // With the user's file in place of its copy.
  Problem InUsersNames(Problem problem) const;
  // Takes the backup away, where nothing was changed.
  void DropBackup();
  // For the closing line: what a dry run or a backup has to say.
  std::string Ending() const;

 private:
  std::optional<Problem> PrepareCopies();

  WriteOptions options_;
  DatabaseFiles files_;
  DatabaseFiles working_;
  std::optional<TemporaryFolder> folder_;
  std::vector<std::string> copies_;
};

// The same for commands without a user file.
std::string WriteEnding(WriteOptions const& options,
                        std::vector<std::string> const& copies);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_WRITING_H
