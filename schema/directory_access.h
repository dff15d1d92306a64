// The library's own access to directories and entries.
#ifndef TABWERK_SCHEMA_DIRECTORY_ACCESS_H
#define TABWERK_SCHEMA_DIRECTORY_ACCESS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "DBDirectory.h"
#include "schema/part.h"

namespace tabwerk {

struct DirectoryRecord;

struct DirectoryAccess {
  static std::vector<std::unique_ptr<TablePart>>& Parts(DBDirEntry& entry) {
    return entry.parts_;
  }
  // Null when the entry has no such part.
  static TablePart* Part(DBDirEntry& entry, std::size_t index) {
    return index < entry.parts_.size() ? entry.parts_[index].get() : nullptr;
  }
  static std::unique_ptr<EntryCompanion>& Companion(DBDirEntry& entry) {
    return entry.companion_;
  }
  static std::vector<FileRecord>& Files(DBDirectory& directory) {
    return directory.files_;
  }
  static std::vector<FileRecord> const& Files(DBDirectory const& directory) {
    return directory.files_;
  }
  static zWString const& Name(DBDirectory const& directory) {
    return directory.name_;
  }
  // Set while the index file could not be read: what the user has in it is not
  // in memory, so nothing may be written over it.
  static bool& IndexUnread(DBDirectory& directory) {
    return directory.index_unread_;
  }
  // Records the entry that a table was looked up for.
  static void SetCurrentTable(DBDirectory& directory, DBDirEntry* entry) {
    directory.current_table_ = entry;
  }
  // As OpenDBdatei for writing anew, but an existing file keeps its content
  // and its time stamp is put on record, so that the next one is greater.
  // *made tells whether the file did not exist before.
  static bool OpenForReplacement(DBDirectory& directory, std::size_t file,
                                 bool* made);
  // Gives every entry a part for that file, an empty one where it has none.
  // False without memory.
  static bool PadParts(DBDirectory& directory, std::size_t file);
  // Opens that file's stream again in the mode in which it was opened last,
  // without reading its directory.
  static bool ReopenStream(DBDirectory& directory, std::size_t file);
  // As WriteToFile with a time stamp of the caller's choice.  stream is not
  // null.
  static bool WriteContainer(DBDirectory& directory, FILE* stream,
                             std::size_t file, std::int64_t time_stamp);
  // The time stamp that WriteToFile would write now: the current second, but
  // more than the file's last one and that of the file that was emptied for it.
  static std::int64_t NextTimeStamp(DBDirectory const& directory,
                                    std::size_t file);

  // The steps of the operations above.  They may throw std::bad_alloc.
  static bool OpenFile(DBDirectory& directory, std::size_t file, bool write,
                       bool create);
  static bool ReadContainer(DBDirectory& directory, FILE* stream,
                            std::size_t file);
  // Enters the records of that file into the list of tables.  On false the
  // list is as it was.
  static bool JoinRecords(DBDirectory& directory,
                          std::vector<DirectoryRecord>* records,
                          std::size_t file);
  // A list of new entries, the last record first.
  static std::unique_ptr<DBDirEntry> MakeList(
      std::vector<FileRecord> const& files, std::size_t file,
      std::vector<DirectoryRecord>* records);
  static bool AddParts(DBDirectory& directory,
                       std::vector<DirectoryRecord>* records, std::size_t file);
  static void LinkLast(DBDirectory& directory,
                       std::unique_ptr<DBDirEntry> entry);
};

}  // namespace tabwerk

#endif  // TABWERK_SCHEMA_DIRECTORY_ACCESS_H
