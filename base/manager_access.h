// The library's own access to the manager.
#ifndef TABWERK_BASE_MANAGER_ACCESS_H
#define TABWERK_BASE_MANAGER_ACCESS_H

#include <memory>
#include <vector>

#include "DBbase.h"

namespace tabwerk {

struct ManagerAccess {
  // As DBbase::Open with both flags, but files that are there keep their
  // content until they are replaced; they are held as for creation.  *made is
  // set when a file was not there and an empty one was made.
  static int OpenForReplacement(DBbase& manager, zWString const& name,
                                bool* made);

  // -1: a valid index file was read; 0: the database has none; 1: it was
  // written; 2: it was not, and the indices were built in memory.
  static int MakeIndexFile(DBbase const& manager, DBDirectory* directory) {
    return manager.MakeIndexFile(directory);
  }
  static zWString IndexFileName(DBbase const& manager, DBDirectory* directory) {
    return manager.IndexFileName(directory);
  }
  static int FindLastFile(DBbase& manager) { return manager.FindLastFile(); }

  static short Language() noexcept { return DBbase::sprache; }

  // The configuration.
  static std::vector<zWString> const& Names(DBbase const& manager) {
    return manager.names_;
  }
  static std::vector<std::vector<zWString>> const& Files(
      DBbase const& manager) {
    return manager.files_;
  }

  // The two steps of DBbase::Init: a manager of that configuration, and its
  // place as the instance.  Make throws std::bad_alloc.
  static std::unique_ptr<DBbase> Make(
      std::vector<zWString> const& names,
      std::vector<std::vector<zWString>> const& files);
  static void Install(std::unique_ptr<DBbase> fresh) noexcept;

  // Parts of the exported operations that several source files share.
  static void AddDatabases(std::vector<zWString> const& names,
                           std::vector<std::vector<zWString>> const& files,
                           DBbase& target);  // throws std::bad_alloc
  // The database of that name, as DBbase::SelectDB looks for it; null without.
  // Throws std::bad_alloc.
  static DBDirectory* Find(DBbase const& manager, zWString const& name);
  static DBDirectory* Current(DBbase const& manager);
  static DBDirectory* First(DBbase const& manager);
  // OpenDatabaseFile with a choice of what to do with files made anew: null
  // empties them, otherwise they keep their content and *made is set when one
  // was not there before.  The files stay open.
  static int OpenFiles(DBbase& manager, bool for_write, bool create,
                       bool* made);
  // Loads the table of an entry as DBbase::OpenTabelle does.
  static int LoadTable(DBDirectory& directory, DBDirEntry& entry,
                       DBTabelle*& table);
};

}  // namespace tabwerk

#endif  // TABWERK_BASE_MANAGER_ACCESS_H
