#include "cli/session.h"

#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "DBbase.h"
#include "cli/database_file.h"
#include "cli/files.h"
#include "cli/index_state.h"
#include "cli/near_names.h"
#include "cli/options.h"
#include "cli/progress.h"
#include "cli/settings.h"
#include "cli/table_list.h"

namespace tabwerk::tool {
namespace {

namespace fs = std::filesystem;

// Only a user file that the library recognises has an index file.
bool HasIndexFile(DatabaseFiles const& files) {
  return IsUserFile(files.user) && !IsUserFile(files.main);
}

std::vector<zWString> Paths(DatabaseFiles const& files) {
  std::vector<zWString> paths = {zWString::fromUtf8(files.main)};
  if (!files.user.empty()) paths.push_back(zWString::fromUtf8(files.user));
  return paths;
}

// Why the files do not open together.
Problem WhyNotOpenedTogether(DatabaseFiles const& files, Access user_access) {
  for (std::string const& path : {files.main, files.user}) {
    DatabaseFile file;
    if (path.empty()) continue;
    if (auto problem = ReadDatabaseFile(path, &file)) return *problem;
    // Only a user file may be without tables.
    bool const is_main = path == files.main;
    if (file.has_damaged_list || (is_main && file.tables.empty())) {
      return WhyNotOpened(path, Access::kRead);
    }
    if (!is_main && !LetsIn(path, user_access)) {
      return WhyNotOpened(path, user_access);
    }
  }
  return {TW(126), files.user,
          "the tables in it are defined otherwise than in " + files.main,
          "open it with the main file that it was made for"};
}

std::optional<Problem> Open(DatabaseFiles const& files, bool for_write) {
  zWString const name = zWString::fromUtf8(files.DatabaseName());
  DBbase::Init({name}, {Paths(files)});
  Progress const progress("opening " + files.main);
  if (DBbase::GetDBBaseInstance()->Open(name, for_write, false) == 1) {
    Tell("opened database " + files.DatabaseName() + ": " + files.main +
         (files.user.empty() ? "" : " with " + files.user));
    return std::nullopt;
  }
  return WhyNotOpenedTogether(files,
                              for_write ? Access::kUpdate : Access::kRead);
}

// For a table that is not wholly in memory.
Problem DamagedTable(DatabaseFiles const& files, DBDirEntry const& entry) {
  bool const in_user_file = entry.GetPartLoaded(0);
  return {TW(124), in_user_file ? files.user : files.main,
          "table " + NameToUtf8(entry.GetName()) +
              " is damaged and cannot be loaded",
          "restore the file from a backup; \"tabwerk info\" shows which "
          "tables are sound"};
}

std::vector<std::string> TableNames() {
  std::vector<std::string> names;
  for (DBDirEntry const* entry :
       TablesInFileOrder(*DBbase::GetDBBaseInstance()->GetDirectory())) {
    names.push_back(NameToUtf8(entry->GetName()));
  }
  return names;
}

}  // namespace

std::string DatabaseFiles::DatabaseName() const {
  std::string const given = name.empty() ? ToUtf8(ToPath(main).stem()) : name;
  return zWString::fromUtf8(given.substr(0, given.find('.')))
      .ToUpper()
      .toUtf8();
}

void AddDatabaseOptions(Options& options, DatabaseFiles* files,
                        bool user_file_required) {
  options.Add("FILE", files->main, "The main file of the database").Required();
  options
      .Add("USERFILE", files->user,
           "The user file that belongs to it (NAME.UDB)")
      .Required(user_file_required);
  options
      .Add("--name", files->name,
           "Name of the database, where it is not that of FILE; the "
           "index file is called after it")
      .Value("NAME");
}

std::optional<Problem> SortTableWord(std::string const& command,
                                     DatabaseFiles* files, std::string* table,
                                     std::string* last_word) {
  if (table->empty()) {
    if (last_word->empty() && !IsUserFile(files->user)) {
      *last_word = std::exchange(files->user, "");
    }
    *table = std::exchange(*last_word, "");
  }
  if (!table->empty() && last_word->empty()) return std::nullopt;
  return Problem{TW(101), "",
                 table->empty()
                     ? "no table is named"
                     : "two tables are named: " + *table + " and " + *last_word,
                 "write \"tabwerk " + command + " " + files->main +
                     " TABLE\"; \"tabwerk info\" lists the tables"};
}

std::vector<fs::path> IndexFiles(DatabaseFiles const& files) {
  fs::path const index = IndexPath(files.user, files.DatabaseName());
  std::string const name = ToUtf8(index.filename());
  fs::path const parent = index.parent_path();
  std::vector<fs::path> found;
  std::error_code error;
  for (auto const& entry :
       fs::directory_iterator(parent.empty() ? fs::path(".") : parent, error)) {
    std::string const other = ToUtf8(entry.path().filename());
    bool const waits =
        other.starts_with(name + ".") &&
        other.find_first_not_of("-0123456789", name.size() + 1) == other.npos;
    if (other == name || waits) found.push_back(parent / other);
  }
  return found;
}

std::optional<Problem> CopyFile(fs::path const& from, fs::path const& to) {
  std::string content;
  if (!ReadWhole(from, &content)) {
    return Problem{TW(116), ToUtf8(from), "the file cannot be read",
                   "check its permissions"};
  }
  if (!WriteWhole(to, content)) {
    return Problem{TW(117), ToUtf8(to), "a copy cannot be written",
                   "make room on the disk, or let TMPDIR (on Windows: TEMP) "
                   "name another folder"};
  }
  Tell("copied " + ToUtf8(from) + " to " + ToUtf8(to));
  return std::nullopt;
}

std::optional<Problem> CopyUserFiles(DatabaseFiles const& files,
                                     fs::path const& folder) {
  fs::path const user_file = ToPath(files.user);
  std::error_code error;
  if (fs::exists(user_file, error)) {
    auto problem = CopyFile(user_file, folder / user_file.filename());
    if (problem) return problem;
  }
  for (fs::path const& index : IndexFiles(files)) {
    // An index that cannot be read is like a missing one: the library shows
    // the rows as they are stored.
    static_cast<void>(CopyFile(index, folder / index.filename()));
  }
  return std::nullopt;
}

std::optional<Problem> CheckOrder(DatabaseFiles const& files) {
  bool const is_swapped =
      IsUserFile(files.main) && !files.user.empty() && !IsUserFile(files.user);
  if (!is_swapped) return std::nullopt;
  return Problem{TW(104), files.user,
                 "this is no name of a user file, but " + files.main + " is",
                 "name the main file first, then the user file"};
}

std::optional<Problem> OpenToLook(DatabaseFiles const& files) {
  if (auto problem = CheckOrder(files)) return problem;
  if (!HasIndexFile(files)) return Open(files, false);
  // The share modes of whoever writes it count for the copy as well.
  DatabaseFile user_file;
  if (auto problem = ReadDatabaseFile(files.user, &user_file)) return problem;
  TemporaryFolder const folder;
  if (folder.path().empty()) return TemporaryFolder::WhyMissing();
  if (auto problem = CopyUserFiles(files, folder.path())) return problem;
  DatabaseFiles copies = files;
  copies.name = files.DatabaseName();
  copies.user = ToUtf8(folder.path() / ToPath(files.user).filename());
  auto problem = Open(copies, false);
  if (problem && problem->where.file == copies.user) {
    problem->where = files.user;
  }
  return problem;
}

std::optional<Problem> OpenToWrite(DatabaseFiles const& files) {
  if (auto problem = Open(files, true)) return problem;
  DBDirectory const* const directory =
      DBbase::GetDBBaseInstance()->GetDirectory();
  for (DBDirEntry const* entry = directory->GetEntries(); entry != nullptr;
       entry = entry->GetNext()) {
    for (std::size_t part = 0; part < entry->GetNumberOfParts(); ++part) {
      if (!entry->GetPartLoaded(part)) return DamagedTable(files, *entry);
    }
  }
  return std::nullopt;
}

std::optional<Problem> FindTable(DatabaseFiles const& files,
                                 std::string const& name, DBTabelle** table) {
  *table = nullptr;
  DBbase* const manager = DBbase::GetDBBaseInstance();
  // Table names are 8-bit texts; a script in UTF-8 makes names of its bytes.
  std::string const latin1 = zWString::fromUtf8(name).toLatin1();
  for (std::string const& spelling : {latin1, name}) {
    if (manager->OpenTabelle(spelling.c_str(), *table) == 1) {
      return std::nullopt;
    }
    if (*table != nullptr) {
      return DamagedTable(files, *(*table)->GetDirEntry(false));
    }
  }
  return NoSuchTable(files.main, name, TableNames());
}

}  // namespace tabwerk::tool
