#include "cli/files.h"

#include <fstream>
#include <random>
#include <system_error>
#include <vector>

#include "DBDirectory.h"
#include "cli/console.h"
#include "cli/database_file.h"
#include "schema/directory_access.h"

namespace tabwerk::tool {
namespace {

namespace fs = std::filesystem;

constexpr fs::perms kAllWrites =
    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
constexpr int kFolderAttempts = 100;

bool IsReadOnly(fs::path const& path) {
  std::error_code error;
  fs::perms const permissions = fs::status(path, error).permissions();
  return !error && (permissions & kAllWrites) == fs::perms::none;
}

// Opens the file as the library would.
struct Probe {
  bool has_stream = false;  // the system and all holders let us in
  bool is_open = false;     // and the directory was read
};

Probe TryToOpen(std::string const& file, Access access) {
  DBDirectory directory;
  directory.Initialize(zWString(), {zWString::fromUtf8(file)});
  Probe probe;
  bool made = false;
  probe.is_open =
      access == Access::kReplace
          ? DirectoryAccess::OpenForReplacement(directory, 0, &made)
          : directory.OpenDBdatei(0, access == Access::kUpdate, false);
  probe.has_stream = directory.GetFile(0) != nullptr;
  return probe;
}

Problem WhyNotMade(std::string const& file) {
  std::error_code error;
  fs::path const folder = ToPath(file).parent_path();
  if (!folder.empty() && !fs::is_directory(folder, error)) {
    return {TW(115), file,
            "its folder \"" + ToUtf8(folder) + "\" does not exist",
            "make the folder first"};
  }
  return {TW(115), file, "the file cannot be made",
          "check the permissions of its folder and the space on the disk"};
}

Problem WhyNotRead(std::string const& file, Access access) {
  fs::path const path = ToPath(file);
  std::error_code error;
  if (fs::is_directory(path, error)) {
    return {TW(111), file, "this is a folder", "name a file of a database"};
  }
  if (access != Access::kRead && IsReadOnly(path)) {
    return {TW(113), file, "the file is read-only", "make it writable first"};
  }
  if (fs::is_regular_file(path, error) &&
      console::IsHeld(path, access != Access::kRead)) {
    return {TW(114), file, "another process holds the file",
            "close the program that uses it and try again"};
  }
  return {TW(112), file, "the file cannot be opened", "check its permissions"};
}

// The systems' limit for the name of a file; a save makes companions of the
// database whose names have one character more.
constexpr std::size_t kLongestName = 255 - 1;

// True where the system says that nothing of that name can be.
bool IsImpossible(fs::path const& path) {
  std::error_code error;
  return fs::status(path, error).type() == fs::file_type::none;
}

}  // namespace

fs::path ToPath(std::string const& utf8) {
  return {std::u8string(utf8.begin(), utf8.end())};
}

fs::path ToPath(zWString const& path) { return ToPath(path.toUtf8()); }

std::string ToUtf8(fs::path const& path) {
  std::u8string const text = path.u8string();
  return {text.begin(), text.end()};
}

std::string NameToUtf8(char const* name) {
  return zWString::fromLatin1(name).toUtf8();
}

bool LetsIn(std::string const& file, Access access) {
  return TryToOpen(file, access).has_stream;
}

Problem WhyNotOpened(std::string const& file, Access access) {
  std::error_code error;
  if (!fs::exists(ToPath(file), error)) {
    if (access == Access::kReplace) return WhyNotMade(file);
    return {TW(110), file, "there is no such file",
            "check the path, or make the database with \"tabwerk build\""};
  }
  Probe const probe = TryToOpen(file, access);
  if (!probe.has_stream) return WhyNotRead(file, access);
  DatabaseFile content;
  if (!probe.is_open && !ReadDatabaseFile(file, &content) &&
      !content.IsDamaged() && content.tables.empty()) {
    return {TW(315), file, "the file has no tables",
            "build it from its script, or restore it from a backup"};
  }
  if (!probe.is_open) {
    return {TW(123), file,
            "this is no database file, or its list of tables is damaged",
            "restore it from a backup; \"tabwerk info\" shows what is left"};
  }
  return {TW(112), file, "the file could not be opened",
          "try again; another process may have held it for a moment"};
}

std::optional<Problem> WhyNotReplaced(std::string const& target) {
  std::error_code error;
  fs::path const path = ToPath(target);
  fs::path const folder = path.parent_path();
  if (path.filename().native().size() > kLongestName) {
    return Problem{TW(115), target, "its name is too long",
                   "use no more than 254 characters"};
  }
  bool const stands_in_the_way =
      fs::exists(path, error)
          ? !LetsIn(target, Access::kReplace)
          : IsImpossible(path) ||
                (!folder.empty() && !fs::is_directory(folder, error));
  if (!stands_in_the_way) return std::nullopt;
  return WhyNotOpened(target, Access::kReplace);
}

bool ReadWhole(fs::path const& path, std::string* content) {
  // A folder opens, and has no size.
  std::error_code error;
  if (fs::is_directory(path, error)) return false;
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  if (!file) return false;
  std::streamoff const size = file.tellg();
  if (size < 0) return false;
  content->resize(static_cast<std::size_t>(size));
  file.seekg(0);
  file.read(content->data(), size);
  return file.gcount() == size;
}

bool ReadInput(std::string const& path, std::string* content) {
  return path == "-" ? console::ReadIn(content)
                     : ReadWhole(ToPath(path), content);
}

std::string InputName(std::string const& path) {
  return path == "-" ? "standard-input" : path;
}

bool WriteWhole(fs::path const& path, std::string_view content) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  if (!file) return false;
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  if (file) return true;
  std::error_code ignored;  // what is left of it is no worse than the failure
  fs::remove(path, ignored);
  return false;
}

TemporaryFolder::TemporaryFolder() {
  std::error_code error;
  fs::path const parent = fs::temp_directory_path(error);
  std::random_device random;
  for (int i = 0; i < kFolderAttempts && !error; ++i) {
    fs::path const folder = parent / ("tabwerk" + std::to_string(random()));
    if (!fs::create_directory(folder, error)) continue;
    fs::permissions(folder, fs::perms::owner_all, error);
    path_ = folder;
    return;
  }
}

TemporaryFolder::~TemporaryFolder() {
  if (path_.empty()) return;
  std::error_code ignored;  // a folder that stays does no harm
  fs::remove_all(path_, ignored);
}

Problem TemporaryFolder::WhyMissing() {
  return {TW(118), "", "the folder for temporary files cannot be used",
          "let TMPDIR (on Windows: TEMP) name a folder that can be written"};
}

}  // namespace tabwerk::tool
