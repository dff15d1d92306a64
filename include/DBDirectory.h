// One database: its name, its files and the tables that they hold.
#ifndef TABWERK_DBDIRECTORY_H
#define TABWERK_DBDIRECTORY_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

#include "DBDefinition.h"
#include "tabwerk_export.h"
#include "ztypes.h"

class DBDirectory;

namespace tabwerk {

struct FileRecord;
struct TablePart;
struct DirectoryAccess;

// An object that an entry owns for a higher layer and deletes with itself.
class EntryCompanion {
 public:
  EntryCompanion() = default;
  EntryCompanion(EntryCompanion const&) = delete;
  EntryCompanion& operator=(EntryCompanion const&) = delete;
  virtual ~EntryCompanion() = default;
};

}  // namespace tabwerk

// One table of a database: its name, its definition and one part for every
// database file that holds rows of it.
//
// Part k belongs to file k of the directory.  The entry owns its definition,
// its parts (row blocks and string stores) and every entry behind it in the
// list (deleted in a loop, so lists may be long).  Entries belong to a
// directory; a caller only borrows them, until the database is closed.
class TABWERK_API DBDirEntry {
 public:
  static constexpr std::size_t kNameSize = 64;

  // A nameless entry with an empty definition and no parts.  Without memory it
  // throws std::bad_alloc.
  DBDirEntry();
  DBDirEntry(DBDirEntry const&) = delete;
  DBDirEntry& operator=(DBDirEntry const&) = delete;
  virtual ~DBDirEntry();

  // Name of the table: NUL-terminated, at most 63 characters, empty for an
  // entry that could not be named.
  char const* GetName() const noexcept;
  // Definition of the table; never null, owned by the entry.
  DBDefinition* GetDefinition() const noexcept;
  // Neighbours in the directory's list, or null.
  DBDirEntry* GetNext() const noexcept;
  DBDirEntry* GetPrevious() const noexcept;
  // Number of parts.
  std::size_t GetNumberOfParts() const noexcept;
  // Number of rows that part has in memory, new ones included; 0 for a part
  // that does not exist.  For a part whose directory numbers are damaged it is
  // the stored number, which may be negative: a table shows no row of it.
  long GetPartRows(std::size_t part) const noexcept;
  // True when that part's rows and texts are in memory.
  bool GetPartLoaded(std::size_t part) const noexcept;

 private:
  friend class DBDirectory;
  friend struct tabwerk::DirectoryAccess;

  char name_[kNameSize];
  std::unique_ptr<DBDefinition> definition_;
  std::unique_ptr<tabwerk::EntryCompanion> companion_;
  std::vector<std::unique_ptr<tabwerk::TablePart>> parts_;
  DBDirEntry* previous_;
  DBDirEntry* next_;
};

// The directory of one database.
//
// A directory is created empty, given its name and files by Initialize, and
// filled with tables by opening its files one after the other, the first file
// first: the first file decides which tables exist, every later file adds one
// part to the tables that it also holds.
//
// Functions that speak of "the current table" need one that was selected with
// SelectTabelle; without one they return 0 or null and change nothing.  A file
// or part index that does not exist gives 0, null, false or an empty text and
// changes nothing.
//
// The directory owns its entries and its open streams.  A copy shares the
// entries, the current table, the next directory and the streams with its
// source; what is shared is released once, by the last of them.
class TABWERK_API DBDirectory {
 public:
  // Not initialised, no entries, no files, empty name.
  DBDirectory();
  DBDirectory(DBDirectory const& other);
  DBDirectory& operator=(DBDirectory const& other);
  virtual ~DBDirectory();

  // Sets the name and makes one closed file record for every path.
  void Initialize(zWString const& name, std::vector<zWString> const& files);

  zWString GetName() const;
  std::size_t GetNumberFiles() const;
  std::size_t GetNumberOfFiles() const;  // the same
  zWString GetFileiName(std::size_t file) const;
  void SetFileName(std::size_t file, zWString const& name);
  // 1 when the file counts as open; closing its stream leaves this as it is.
  int GetFileOpen(std::size_t file) const;
  void SetFileOpen(std::size_t file, bool open);
  // The open stream of that file, owned by the directory; null when closed.
  FILE* GetFile(std::size_t file) const;
  // Hands a stream to the directory, which closes it; a stream that was there
  // before is not closed.
  void SetFile(std::size_t file, FILE* stream);

  // Next directory of the manager's chain; not owned.
  DBDirectory* Getnextdbdir() const;
  int Setnextdbdir(DBDirectory* next);  // returns 1

  // Divisor that turns the stored size of a string block into 16-bit units: 2
  // for format 2014, else 1.  Reports the file that was read last.
  short GetCharFactor() const;

  // Opens one file.
  //   write and create:  for writing anew; everybody else is kept out, and an
  //                      existing file is emptied once the lock is held;
  //   write:             for reading and writing; other writers are kept out;
  //   neither, or create alone: for reading; nobody is kept out.
  // Except when writing anew, the file's directory is read and merged.  Returns
  // true when the file is open; false when it could not be opened, is held by
  // another process, its directory cannot be read, the first file has no
  // tables, or a table is defined otherwise than in the first file.  After
  // false the stream may stay in its record until CloseDBdatei.
  bool OpenDBdatei(std::size_t file, bool write, bool create);
  // Closes all streams.  The open flags stay.  Always true.
  bool CloseDBdatei();
  // True when every file was opened (a file with the extension ".UDB" in any
  // case: for writing, when write is true).  False before Initialize, true
  // without files.  The second argument is not used.
  bool FileIsOpen(bool write, bool create) const;
  // Position of the first file whose path ends in exactly ".UDB"; -1 without.
  int GetUserFile() const;
  // Time of writing of every file, in file order: seconds since 1970-01-01
  // 00:00 UTC, 0 where a file has none.
  std::vector<long long> GetTimeStamps() const;

  // Appends a table of one part, number 0.  The directory takes the definition,
  // whatever the result.  Returns 1; returns 0 when name is null, empty or has
  // 64 characters or more: then a nameless entry without parts stays in the
  // list.  Returns 0, and the list stays as it is, when an offset does not fit
  // into 32 bits, part is not 0 or memory is exhausted.  reserved is not used.
  int AddEntry(DBDefinition* definition, char const* name,
               zWString const& file_name, bool loaded, int row_count,
               long row_block_offset, long reserved, long string_block_offset,
               std::size_t part);
  // First entry of exactly this name, from start (included) onwards; null when
  // there is none or start is null.
  DBDirEntry* FindTable(char const* name, DBDirEntry* start) const;
  // Makes the table of that name current; false, and no current table, when
  // there is none.
  bool SelectTabelle(char const* name);
  DBDirEntry* GetEntries() const;
  DBDirEntry* GetAktuelleTabelle() const;
  DBDefinition* GetDefinition() const;
  // Rows of the current table over all files; a part whose directory numbers
  // are damaged has none.
  int GetAnzahlZeilen() const;
  // Place and size of part's blocks of the current table: bytes from the start
  // of the file; the size of the string block as the file stores it.
  long GetOffsetTabelle(std::size_t part) const;
  void SetOffsetTabelle(long offset, std::size_t part);
  long GetOffsetStrings(std::size_t part) const;
  void SetOffsetStrings(long offset, std::size_t part);
  long GetSizeStrings(std::size_t part) const;
  // Adds delta to both block offsets of that part in every entry.  Leaves no
  // current table.  Returns 1; 0, and changes nothing, when delta does not fit
  // into 32 bits.
  int AdjustOffset(long delta, std::size_t part);
  // Deletes all entries.
  void ResetEntries();

  // Reads the header of a database file and leaves the stream at its first
  // directory record.  version is the format version, time_stamp the time of
  // writing (0 where the header has none).  False only for a null stream.
  static bool ReadFileVersion(FILE* stream, short& version,
                              long long& time_stamp);
  // Reads header and directory of the file at that position and merges its
  // tables; leaves the stream at the start of the data area.
  bool ReadFromFile(FILE* stream, int file);
  // Writes header, directory and the zero byte that ends it, for the file at
  // that position.  The time stamp is the current second, at least one more
  // than the file's last one and than that of the file which opening for
  // creation emptied.  Leaves no current table.  Returns 1, or 0 when the
  // stream is null, a table has no name or no part for that file, a definition
  // does not fit or would not read back, or writing failed.
  int WriteToFile(FILE* stream, std::size_t file);
  // Appends to every entry of existing a copy of the first part of the entry of
  // the same name in incoming.  True; false, and nothing is appended, without
  // memory.
  bool Merge(DBDirEntry* existing, DBDirEntry* incoming);

 private:
  friend struct tabwerk::DirectoryAccess;

  bool initialised_;
  DBDirEntry* entries_;
  std::shared_ptr<DBDirEntry> entries_owner_;
  DBDirEntry* current_table_;
  DBDirectory* next_directory_;
  short file_version_;
  zWString name_;
  short char_factor_;
  std::vector<tabwerk::FileRecord> files_;
  bool index_unread_;
};

#endif  // TABWERK_DBDIRECTORY_H
