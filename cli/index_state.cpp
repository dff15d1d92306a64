#include "cli/index_state.h"

#include <cstdint>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>

#include "cli/files.h"
#include "schema/bytes.h"
#include "schema/format.h"

namespace tabwerk::tool {
namespace {

namespace fs = std::filesystem;

// Walks an index file: heads are read, entries are skipped.
class IndexWalk {
 public:
  IndexWalk(std::ifstream& file, std::int64_t size)
      : file_(file), remaining_(size) {}

  std::int64_t Remaining() const { return remaining_; }

  bool Read(char* bytes, std::int64_t size) {
    if (size > remaining_ || !file_.read(bytes, size)) return false;
    remaining_ -= size;
    return true;
  }
  template <typename T>
  std::optional<T> Next() {
    char bytes[sizeof(T)];
    if (!Read(bytes, sizeof(T))) return std::nullopt;
    return LoadValue<T>(reinterpret_cast<std::byte const*>(bytes));
  }
  // The number of entries of a section, which is skipped.
  std::optional<std::int64_t> Section(std::string_view tag,
                                      std::int64_t entry_size) {
    std::string found(tag.size(), '\0');
    if (!Read(found.data(), static_cast<std::int64_t>(tag.size()))) {
      return std::nullopt;
    }
    auto const count = Next<std::int32_t>();
    if (found != tag || !count || *count < 0) return std::nullopt;
    std::int64_t const size = *count * entry_size;
    if (size > remaining_ || !file_.seekg(size, std::ios::cur)) {
      return std::nullopt;
    }
    remaining_ -= size;
    return *count;
  }

 private:
  std::ifstream& file_;
  std::int64_t remaining_;
};

// True when the next three sections can be those of a table.
bool SkipTable(IndexWalk& walk) {
  constexpr std::int64_t kNumber = sizeof(std::int32_t);
  auto const ids = walk.Section("ID", 2 * kNumber);
  if (!ids) return false;
  auto const folge = walk.Section("FOLGE", kNumber);
  if (!folge) return false;
  auto const status = walk.Section("STATUS", kNumber);
  return status && *folge == *status + 1 && *ids <= *status;
}

}  // namespace

fs::path IndexPath(std::string const& user_file,
                   std::string const& database_name) {
  return ToPath(user_file).parent_path() /
         ToPath(database_name + std::string(format::kIndexFileExtension));
}

std::string IndexState(fs::path const& index,
                       std::vector<DatabaseFile> const& files) {
  std::error_code error;
  if (!fs::exists(index, error)) return "missing; made at the next opening";
  auto const size = fs::file_size(index, error);
  std::ifstream file(index, std::ios::binary);
  if (error || !file) return "cannot be read";
  IndexWalk walk(file, static_cast<std::int64_t>(size));
  bool fits = true;
  bool same = true;
  for (DatabaseFile const& it : files) {
    auto const stamp = walk.Next<std::int64_t>();
    fits = fits && stamp.has_value();
    same = same && stamp == it.time_stamp;
  }
  for (std::size_t i = 0; fits && i < files.front().tables.size(); ++i) {
    fits = SkipTable(walk);
  }
  if (!fits || walk.Remaining() != 0) {
    return "does not fit these files; made anew at the next opening";
  }
  if (same) return "up to date";
  return "older than the files; brought up to date at the next opening";
}

}  // namespace tabwerk::tool
