#include "tests/support/scratch_folder.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <system_error>

namespace tabwerk::test {
namespace {

namespace fs = std::filesystem;

constexpr fs::perms kAllWrites =
    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;

fs::path MakeUniqueFolder() {
  static int number = 0;
  auto const stamp =
      std::chrono::system_clock::now().time_since_epoch().count();
  for (;;) {
    fs::path folder =
        fs::temp_directory_path() /
        ("tw" + std::to_string(stamp) + "_" + std::to_string(++number));
    if (fs::create_directory(folder)) {
      return folder;
    }
  }
}

}  // namespace

ScratchFolder::ScratchFolder() : folder_(MakeUniqueFolder()) {}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;  // a file that is still open fails its own test
  for (auto const& entry : fs::directory_iterator(folder_, ignored)) {
    if (entry.is_regular_file(ignored)) {
      fs::permissions(entry.path(), fs::perms::owner_write,
                      fs::perm_options::add, ignored);
    }
  }
  fs::remove_all(folder_, ignored);
}

fs::path ScratchFolder::Entry(std::string_view name) const {
  return folder_ / fs::path(std::u8string(name.begin(), name.end()));
}

zWString ScratchFolder::Path(std::string_view name) const {
  return zWString(Entry(name).u16string());
}

zWString ScratchFolder::Make(std::string_view name,
                             std::string_view content) const {
  std::ofstream file(Entry(name), std::ios::binary | std::ios::trunc);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  return Path(name);
}

std::string ScratchFolder::Content(std::string_view name) const {
  std::ifstream file(Entry(name), std::ios::binary);
  if (!file) {
    return "(none)";
  }
  return std::string(std::istreambuf_iterator<char>(file), {});
}

void ScratchFolder::SetReadOnly(std::string_view name, bool read_only) const {
  if (read_only) {
    fs::permissions(Entry(name), kAllWrites, fs::perm_options::remove);
  } else {
    fs::permissions(Entry(name), fs::perms::owner_write, fs::perm_options::add);
  }
}

bool ScratchFolder::IsReadOnly(std::string_view name) const {
  return (fs::status(Entry(name)).permissions() & kAllWrites) ==
         fs::perms::none;
}

void ScratchFolder::MakeFolder(std::string_view name) const {
  fs::create_directory(Entry(name));
}

std::vector<std::string> ScratchFolder::Names() const {
  std::vector<std::string> names;
  for (auto const& entry : fs::directory_iterator(folder_)) {
    names.push_back(zWString(entry.path().filename().u16string()).toUtf8());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace tabwerk::test
