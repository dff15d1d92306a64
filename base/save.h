// One save of a database file: from the tables in memory to the replaced file.
#ifndef TABWERK_BASE_SAVE_H
#define TABWERK_BASE_SAVE_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <vector>

#include "DBDirectory.h"
#include "DBTabelle.h"
#include "base/file_lock.h"
#include "ztypes.h"

namespace tabwerk {

// Writes the data of one file of a database to a path, in steps that leave the
// old file, its index and the tables in memory untouched until the new file
// takes the old one's place in one move:
//
//   1. the blocks of all tables into a temporary file ("dta…")
//   2. header and directory into a second one ("dir…")
//   3. the index for the new file beside the old index
//   4. a trial copy of both, one behind the other, beside the target, on the
//      disk
//   5. the trial copy moves onto the target
//   6. the new index moves onto the old one
//
// While it lasts, two empty lock files ("…L" beside target and index) keep
// other programs from saving the same file.  A save is used once.  The two
// temporary files stay when it fails; the second one gets the blocks then, too,
// so that it is the new file as far as there was one.
class Save {
 public:
  // The data are those of file `file`; both arguments are borrowed.
  Save(DBDirectory& directory, std::size_t file, zWString target);
  Save(Save const&) = delete;
  Save& operator=(Save const&) = delete;
  ~Save();

  // True when the target was replaced; the directory's streams are then
  // closed.  May throw std::bad_alloc before step 5, with the effect of false.
  bool Run();

 private:
  struct TempFile {
    zWString path;
    FILE* stream = nullptr;

    // True as well when it is not open.
    bool Close();
  };
  // What a save changes of an entry, as it was before.
  struct EntryState {
    std::size_t part_count;
    std::int32_t row_block_size;
    std::int32_t row_block_offset;
    std::int32_t string_block_offset;
    std::int32_t string_block_size;
  };

  bool LoadTables();
  bool TakeLocks();
  bool PrepareParts();
  bool WriteTables();
  bool WriteTable(DBTabelle& table, DBDirEntry& entry, std::int64_t* end);
  bool WriteDirectory();
  bool MayForgetUnreadIndex() const;
  bool MayReplaceIndex() const;
  bool PrepareIndex();
  bool PrepareTrialCopy();
  bool AppendData(FILE* stream) const;
  void CompleteDirectoryFile() noexcept;
  bool ReplaceTarget();
  void FinishIndex() noexcept;
  void RestoreEntries() noexcept;
  std::int64_t LastTimeStamp() const;
  std::int64_t NewTimeStamp() const;

  DBDirectory& directory_;
  DBDirEntry* current_table_;  // as before the save
  std::size_t file_;
  zWString target_;
  // Which of the database's files the target is, however it is spelt.
  std::optional<std::size_t> position_;
  zWString trial_copy_;  // empty until it is begun
  zWString index_;
  zWString pending_index_;
  // Indices of earlier saves that could not be moved to their place.
  std::vector<zWString> unreachable_indices_;  // for the target's last stamp
  std::vector<zWString> older_indices_;        // for other files' stamps
  std::int64_t time_stamp_ = 0;
  std::optional<FileLock> target_lock_;
  std::optional<FileLock> index_lock_;
  std::vector<DBTabelle*> tables_;
  std::vector<EntryState> entries_;
  TempFile data_;
  std::int64_t data_size_ = 0;
  TempFile directory_file_;
  std::int64_t data_start_ = -1;  // in the new file; -1 until it is known
  bool replaced_ = false;
};

}  // namespace tabwerk

#endif  // TABWERK_BASE_SAVE_H
