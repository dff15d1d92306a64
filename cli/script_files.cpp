#include "cli/script_files.h"

#include <system_error>
#include <type_traits>

#include "DBInterpreter.h"
#include "cli/files.h"
#include "cli/options.h"
#include "cli/script_lines.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

namespace fs = std::filesystem;

// The systems' limit for the name of a file; a save makes companions of the
// database whose names have one character more.
constexpr std::size_t kLongestName = 255 - 1;

// True where the system says that nothing of that name can be.
bool IsImpossible(fs::path const& path) {
  std::error_code error;
  return fs::status(path, error).type() == fs::file_type::none;
}

}  // namespace

void AddFolderOption(Options& options, std::string* folder) {
  options
      .Add("-C", *folder,
           "Go to this folder first; all paths are relative to it")
      .Value("DIR");
}

std::optional<Problem> EnterFolder(std::string const& folder) {
  if (folder.empty()) return std::nullopt;
  std::error_code error;
  fs::current_path(ToPath(folder), error);
  if (!error) return std::nullopt;
  return Problem{TW(130), folder, "this is no folder to work in",
                 "check the path behind -C"};
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

fs::path DataPath(std::string const& bytes) {
  if constexpr (std::is_same_v<fs::path::value_type, char>) {
    return {bytes};
  } else {
    return ToPath(ScriptToUtf8(bytes));
  }
}

std::optional<Problem> WhyNotReadable(std::string const& bytes) {
  fs::path const path = DataPath(bytes);
  std::string const name = "the data file \"" + ScriptToUtf8(bytes) + "\"";
  std::error_code error;
  if (!fs::exists(path, error)) {
    return Problem{
        TW(213),
        {},
        "there is no data file \"" + ScriptToUtf8(bytes) + "\"",
        "paths are relative to the current folder; see the option -C"};
  }
  if (fs::is_directory(path, error)) {
    return Problem{
        TW(214), {}, name + " is no file", "name a file of table data"};
  }
  // A pipe, or another thing that is no file, would wait for somebody.
  if (!fs::is_regular_file(path, error)) return std::nullopt;
  if (DBInterpreter().OpenDatei(bytes.c_str(), "rb") == 1) return std::nullopt;
  return Problem{TW(116),
                 {},
                 name + " cannot be read",
                 "check its permissions, and that no other program holds it"};
}

}  // namespace tabwerk::tool
