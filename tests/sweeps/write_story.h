// One database and every way in which a program writes to it, for the sweeps
// that interrupt it.
#ifndef TABWERK_TESTS_SWEEPS_WRITE_STORY_H
#define TABWERK_TESTS_SWEEPS_WRITE_STORY_H

#include <cstdint>
#include <string>

#include "tests/support/database_fixture.h"
#include "tests/support/disk_model.h"

namespace tabwerk::test {

// A way of writing to the database STOCK of MAIN.db and USER.UDB.
enum class Writing : std::uint8_t {
  kUserFile,  // rows and texts of the user file, order and status of all rows
  kMainFile,  // rows of the first file, order and status of all rows
  kCopy,      // the first file's rows over another file, COPY.db
  kScript,    // the first file built anew by a script
  kIndex,     // order and status alone
  kOpening,   // nothing: a save that died before its last step is settled
  kOpening2,  // nothing: two such saves, of both files, are settled
  kCreation,  // both files made anew, empty
};

// Those that end in the old or the new state: all but the creation.
constexpr Writing kWritings[] = {
    Writing::kUserFile, Writing::kMainFile, Writing::kCopy,    Writing::kScript,
    Writing::kIndex,    Writing::kOpening,  Writing::kOpening2};

char const* NameOf(Writing writing);
Writing WritingOf(std::string const& name);
// True where nothing is written but what an opening writes.
bool OnlyOpens(Writing writing);
// For tests that are run for each of them.
std::string NameOfCase(testing::TestParamInfo<Writing> const& tested);

// Opens the database in a folder (with a separator at its end) and changes it
// in memory, as far as the way of writing needs that.
bool Prepare(std::string const& folder, Writing writing);
// Writes.
bool CarryOut(std::string const& folder, Writing writing);

class WriteStory : public DatabaseTest {
 protected:
  // The temporary folder of this process and its children is a folder in the
  // test's own.
  WriteStory();
  ~WriteStory() override;

  std::string Folder() const { return Path(""); }

  // Makes the files as they are before the writing, finds out what they hold
  // before (old_state_) and after it (new_state_) and how many calls of the
  // seam it takes, and puts them back.
  void Begin(Writing writing);

  FolderImage TakeImage() const;
  // Makes the folder hold these files and no others.
  void PutImage(FolderImage const& image) const;

  // Everything that a program sees: the rows of all tables of STOCK and COPY,
  // and the index as it is on the disk then.  Names what is inconsistent.
  std::string Observe() const;

  // "old", "new", or what else is seen.
  std::string StateNow() const;

  // Names that an interrupted writing may leave nowhere else than told in
  // docs/architecture.md; the others, "" when there are none.
  std::string UndocumentedLeftovers() const;

  FolderImage start_;
  std::string old_state_;
  std::string new_state_;
  std::int64_t calls_ = 0;

 private:
  void MakeStart() const;
  // Saves and lets the index wait.
  void SaveButTheIndex(Writing writing) const;
  void MakeScript() const;
  std::string IndexOnDisk() const;

  std::string temp_before_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SWEEPS_WRITE_STORY_H
