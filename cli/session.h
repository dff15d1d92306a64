// The database that a command works on.
#ifndef TABWERK_CLI_SESSION_H
#define TABWERK_CLI_SESSION_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "DBTabelle.h"
#include "cli/errors.h"

namespace tabwerk::tool {

class Options;

// Which files make up the database; UTF-8.
struct DatabaseFiles {
  std::string main;
  std::string user;  // empty: none
  std::string name;  // empty: the main file's stem

  // Name as the manager knows it and as the index file is called.
  std::string DatabaseName() const;
};

// Adds the positional FILE, then USERFILE (needed or not), and --name.
void AddDatabaseOptions(Options& options, DatabaseFiles* files,
                        bool user_file_required = false);

// For a command that takes its table behind -t or as the last word of the line:
// with last_word, declared behind the files, a second word is the table or the
// user file.  command is for the message.
std::optional<Problem> SortTableWord(std::string const& command,
                                     DatabaseFiles* files, std::string* table,
                                     std::string* last_word);

// The index file of the database, where it is there, and those that a save has
// left for the next opening to put in its place.
std::vector<std::filesystem::path> IndexFiles(DatabaseFiles const& files);

std::optional<Problem> CopyFile(std::filesystem::path const& from,
                                std::filesystem::path const& to);
// Copies the user file, where it is there, and its index files.
std::optional<Problem> CopyUserFiles(DatabaseFiles const& files,
                                     std::filesystem::path const& folder);

// A problem when the user file is named first and the main file behind it.
std::optional<Problem> CheckOrder(DatabaseFiles const& files);

// Opens the database in the manager so that no file of the user's is made or
// changed: what would change an index file is done with copies.  The tables
// are in memory and all files closed afterwards.
std::optional<Problem> OpenToLook(DatabaseFiles const& files);
// Opens it for writing its user file.
std::optional<Problem> OpenToWrite(DatabaseFiles const& files);

// A table of the opened database, on row 0; a table that could not be loaded
// is a problem.  name is UTF-8.  The table is the manager's.
std::optional<Problem> FindTable(DatabaseFiles const& files,
                                 std::string const& name, DBTabelle** table);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_SESSION_H
