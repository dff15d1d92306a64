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
