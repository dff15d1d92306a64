// The manager: which databases exist, which are open, and what is done to
// them as a whole.
#ifndef TABWERK_DBBASE_H
#define TABWERK_DBBASE_H

#include <memory>
#include <vector>

#include "DBDirectory.h"
#include "DBTabelle.h"
#include "tabwerk_export.h"
#include "ztypes.h"

namespace tabwerk {
class Catalogue;
struct ManagerAccess;
}  // namespace tabwerk

// The process-wide manager of all databases.
//
// A host fetches the one instance with GetDBBaseInstance, configures it with
// Init, opens a database by name and asks for its tables.  Init, ReOpen and
// Write replace the instance: every pointer to it, its directories and its
// tables is stale afterwards, so fetch them again.  They may be called through
// the instance that they replace.
//
// The manager owns the directories of its databases, which own their tables.
// One thread at a time uses the library.
class TABWERK_API DBbase {
 public:
  // The instance, made empty on the first call.
  static DBbase* GetDBBaseInstance();

  // A manager whose current database is directory, which stays the caller's.
  explicit DBbase(DBDirectory* directory);
  // Copies share the databases with their source; what is shared is released
  // once, at the latest with the last of them.  They throw std::bad_alloc, and
  // change nothing, when memory is exhausted.
  DBbase(DBbase const& other);
  DBbase& operator=(DBbase const& other);
  virtual ~DBbase();

  // --- Configuration and catalogue ----------------------------------------

  // Replaces the instance by one that has a closed database for every name,
  // made up of the files at the same position.  The last database is current.
  // Names are to be in upper case and without "."; a missing name is empty.
  // Always true; false, with nothing changed, when memory is exhausted.
  static bool Init(std::vector<zWString> const& names,
                   std::vector<std::vector<zWString>> const& files);
  // Puts a database in front of target's catalogue for every name that its
  // configuration does not have.  The configuration stays as it is.
  static void AddFiles(std::vector<zWString> const& names,
                       std::vector<std::vector<zWString>> const& files,
                       DBbase* target);
  // Copies the configuration out.
  void GetInit(std::vector<zWString>& names,
               std::vector<std::vector<zWString>>& files) const;
  // Makes a database current: the one whose name is the part of name before
  // its first ".", in upper case.  False, and no change, when there is none.
  bool SelectDB(zWString const& name);
  // Number of databases.
  int FilesCount() const;
  // True when the configuration does not have exactly this name.
  bool NotRegistered(zWString const& name) const;
  // The current database; null when there is none.
  DBDirectory* GetDirectory();

  // --- Language -----------------------------------------------------------

  // Language number of all texts that are read from now on; 0 at first.
  static void SetSprache(short language);
  // Replaces every "#TS(" … ")TS~" section by its piece of the current
  // language (pieces are separated by U+00AC, the first one is language 0),
  // until a section lacks that piece.
  static void DBTranslate(zWString& text);

  // --- Opening and closing ------------------------------------------------

  // Opens a database: reads its tables into memory and checks or rebuilds its
  // index file.  Returns 1 when it is open (at once when it was already), 0
  // when a file could not be opened: the database is then removed from the
  // catalogue.
  //   forWrite:  ".UDB" files are opened for writing and all files stay open;
  //              otherwise all are closed again once the tables are read.
  //   create:    no table is read and the files stay open; with forWrite every
  //              file is made anew.
  // A name that no database has opens the current database.
  int Open(zWString const& name, bool forWrite, bool create);
  // The same with the file name (without folder and extension) of a path.
  int OpenDatei(zWString const& path, bool forWrite, bool create);
  // Closes a database (empty name: the current one) and removes it from the
  // catalogue with all its tables.  1, or 0 when there is none.
  int Close(zWString const& name);
  // Replaces the instance by one with the same configuration and opens every
  // database in configured order.  The new instance, or null when one did not
  // open (those before it are open).
  static DBbase* ReOpen(bool forWrite);

  // --- Tables -------------------------------------------------------------

  // Hands out a table of the current database on row 0.  1; 0 when there is no
  // such table (table unchanged) or it could not be read whole (the partly
  // read table is handed out).  The table is the manager's.
  int OpenTabelle(char const* name, DBTabelle*& table);
  // Hands out a new table over the rows of that name, with nothing selected and
  // empty indices, in the first database that defines it, which becomes
  // current.  False when no open database does.
  bool NeueTabelle(char const* name, DBTabelle*& table);

  // --- Files --------------------------------------------------------------

  // Rebuilds the indices of a database (null: the current one) and writes its
  // index file.  2 when it was written; 0 when it was not: without a user file,
  // with a table that could not be loaded, when the old index could not be read
  // (it may hold the user's order), when another program has replaced a
  // database file since it was read, or when the file cannot be written; the
  // indices are then as they were or rebuilt.
  int WriteIndexToFile(DBDirectory* directory) const;

  // Writes one file of a database from the tables in memory, with its index
  // file, and reopens all databases for writing.
  //   name:        the database; empty: the first file of the current one
  //   toUserFile:  its user file, else its first file
  //   targetPath:  with a name, another path for the first file's data
  // True when the file was replaced.  False when it was not: the file, its
  // index and the tables in memory are as before.  At every moment the file on
  // disk is the whole old or the whole new one.  What was changed in other
  // files or databases and not written is lost.
  bool Write(zWString const& name, bool toUserFile, zWString const& targetPath);

 private:
  friend struct tabwerk::ManagerAccess;

  DBbase();
  bool FindFile(zWString const& name);
  int FindLastFile();
  int OpenDatabaseFile(bool forWrite, bool create, DBDirectory*& directory);
  zWString IndexFileName(DBDirectory* directory) const;
  int MakeIndexFile(DBDirectory* directory) const;

  static DBbase* _instance;
  static short sprache;

  DBDirectory* current_ = nullptr;
  DBDirectory* first_ = nullptr;
  DBDirectory* borrowed_ = nullptr;  // handed to the constructor
  std::vector<zWString> names_;
  std::vector<std::vector<zWString>> files_;
  std::shared_ptr<tabwerk::Catalogue> catalogue_;
};

#endif  // TABWERK_DBBASE_H
