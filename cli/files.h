// Paths and files of the user, and a place for copies of them.
#ifndef TABWERK_CLI_FILES_H
#define TABWERK_CLI_FILES_H

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "cli/errors.h"
#include "ztypes.h"

namespace tabwerk::tool {

// Paths stand as UTF-8 on the command line and in messages.
std::filesystem::path ToPath(std::string const& utf8);
std::filesystem::path ToPath(zWString const& path);
std::string ToUtf8(std::filesystem::path const& path);

// The names of tables and columns are texts of 8-bit characters.
std::string NameToUtf8(char const* name);

// What the library was to do with a database file.
enum class Access { kRead, kUpdate, kReplace };

// Why the library did not open that file (or, for kReplace, did not make it).
// Looks at the file again; changes nothing.
Problem WhyNotOpened(std::string const& file, Access access);

// True when the system and everybody who has the file open let the library use
// it in that way.
bool LetsIn(std::string const& file, Access access);

// Why that database cannot be made or replaced.  Changes nothing.
std::optional<Problem> WhyNotReplaced(std::string const& target);

// Whole files.  False when reading or writing failed; a file that was written
// in part is removed.
[[nodiscard]] bool ReadWhole(std::filesystem::path const& path,
                             std::string* content);
// The same, with "-" for standard input.
[[nodiscard]] bool ReadInput(std::string const& path, std::string* content);
// What that input is called in messages and names of files.
std::string InputName(std::string const& path);
[[nodiscard]] bool WriteWhole(std::filesystem::path const& path,
                              std::string_view content);

// A folder of its own in the system's folder for temporary files, for the
// user's eyes only.  The destructor removes it with everything in it.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(TemporaryFolder const&) = delete;
  TemporaryFolder& operator=(TemporaryFolder const&) = delete;

  // Empty when the folder could not be made.
  std::filesystem::path const& path() const { return path_; }
  // What to report then.
  static Problem WhyMissing();

 private:
  std::filesystem::path path_;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_FILES_H
