// The proof that an export rebuilds its database.
#include <algorithm>
#include <system_error>

#include "DBInterpreter.h"
#include "DBbase.h"
#include "cli/export_tables.h"
#include "cli/files.h"
#include "cli/progress.h"
#include "schema/format.h"

namespace tabwerk::tool {
namespace {

namespace fs = std::filesystem;

// Goes to a folder and back.
class InFolder {
 public:
  explicit InFolder(fs::path const& folder) {
    before_ = fs::current_path(error_);
    if (!error_) fs::current_path(folder, error_);
  }
  ~InFolder() {
    std::error_code ignored;  // the folder was there a moment ago
    fs::current_path(before_, ignored);
  }
  InFolder(InFolder const&) = delete;
  InFolder& operator=(InFolder const&) = delete;

  bool IsThere() const { return !error_; }

 private:
  std::error_code error_;
  fs::path before_;
};

// The first byte that differs, the time stamp at the end of the header aside.
std::optional<std::size_t> Difference(std::string const& left,
                                      std::string const& right) {
  constexpr std::size_t kStamp = format::kHeaderSize - sizeof(std::int64_t);
  std::size_t const common = std::min(left.size(), right.size());
  for (std::size_t i = 0; i < common; ++i) {
    bool const is_stamp = i >= kStamp && i < format::kHeaderSize;
    if (!is_stamp && left[i] != right[i]) return i;
  }
  if (left.size() == right.size()) return std::nullopt;
  return common;
}

bool Build(ExportedDatabase const& exported, fs::path const& folder) {
  InFolder const inside(folder);
  if (!inside.IsThere()) return false;
  Progress const progress("rebuilding " + exported.database_file);
  DBInterpreter interpreter;
  bool const built = interpreter.ReadScript(exported.files.front().name.c_str(),
                                            zWString()) != 0 &&
                     interpreter.GetError() == 0;
  // The manager lets go of the files.
  static_cast<void>(DBbase::Init({}, {}));
  return built;
}

}  // namespace

std::optional<Problem> CheckRebuilt(ExportedDatabase const& exported,
                                    std::string const& path,
                                    fs::path const& folder) {
  for (ExportedFile const& file : exported.files) {
    if (!WriteWhole(folder / ToPath(file.name), file.content)) {
      return TemporaryFolder::WhyMissing();
    }
  }
  if (!Build(exported, folder)) {
    return Problem{TW(154), path, "the script does not rebuild the file",
                   "look at it with \"tabwerk info\""};
  }
  std::string before;
  std::string after;
  if (!ReadWhole(ToPath(path), &before) ||
      !ReadWhole(folder / ToPath(exported.database_file), &after)) {
    return Problem{TW(116), path, "the file cannot be read",
                   "check its permissions"};
  }
  auto const byte = Difference(before, after);
  if (!byte) return std::nullopt;
  Problem problem{TW(154), path,
                  "the rebuilt file is another one from here on: rows and "
                  "texts do not lie as they are written now",
                  "write it anew with \"tabwerk convert\" and export that"};
  problem.where.byte = static_cast<std::int64_t>(*byte);
  return problem;
}

}  // namespace tabwerk::tool
