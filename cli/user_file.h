// A new user file for a database.
#ifndef TABWERK_CLI_USER_FILE_H
#define TABWERK_CLI_USER_FILE_H

#include <filesystem>
#include <optional>

#include "cli/errors.h"
#include "cli/session.h"

namespace tabwerk::tool {

// Makes the user file of the database when it is missing, with the tables of
// the main file and no rows, and takes it away again unless it was kept.  The
// same for an index that opening has made, unless something was saved.
class NewUserFile {
 public:
  explicit NewUserFile(DatabaseFiles const& files);
  ~NewUserFile();
  NewUserFile(NewUserFile const&) = delete;
  NewUserFile& operator=(NewUserFile const&) = delete;

  // Nothing when the file is there afterwards.
  std::optional<Problem> MakeWhenMissing();
  bool WasMade() const { return was_made_; }
  void Keep() { is_kept_ = true; }
  // Before a save: from then on the index may hold what nothing else does.
  void KeepIndex() { is_index_kept_ = true; }

 private:
  DatabaseFiles const& files_;
  std::filesystem::path path_;
  std::filesystem::path index_;
  bool had_index_ = false;
  bool was_made_ = false;
  bool is_kept_ = false;
  bool is_index_kept_ = false;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_USER_FILE_H
