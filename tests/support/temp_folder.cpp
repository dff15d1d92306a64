#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <system_error>

namespace tabwerk::test {
namespace {

namespace fs = std::filesystem;

fs::path FromUtf8(std::string const& text) {
  return fs::path(std::u8string(text.begin(), text.end()));
}

std::string ToUtf8(fs::path const& path) {
  std::u8string const text = path.generic_u8string();
  return std::string(text.begin(), text.end());
}

// Read-only files in the way of remove_all on Windows.
void MakeWritable(fs::path const& folder) {
  std::error_code ignored;  // remove_all tells
  for (auto const& entry : fs::recursive_directory_iterator(folder, ignored)) {
    fs::permissions(entry.path(), fs::perms::owner_all, fs::perm_options::add,
                    ignored);
  }
}

}  // namespace

TempFolder::TempFolder() {
  std::random_device random;
  do {
    folder_ = fs::temp_directory_path() /
              ("tabwerk-test-" + std::to_string(random()));
  } while (!fs::create_directory(folder_));
}

TempFolder::~TempFolder() {
  MakeWritable(folder_);
  std::error_code error;
  fs::remove_all(folder_, error);
  EXPECT_FALSE(error) << "left behind: " << ToUtf8(folder_) << ": "
                      << error.message();
}

fs::path TempFolder::At(std::string const& name) const {
  return folder_ / FromUtf8(name);
}

std::string TempFolder::PathUtf8(std::string const& name) const {
  return ToUtf8(At(name));
}

zWString TempFolder::Path(std::string const& name) const {
  return zWString::fromUtf8(PathUtf8(name));
}

void TempFolder::WriteBytes(std::string const& name,
                            std::string_view bytes) const {
  // Over what is there: emptying a file first makes some systems wait for the
  // disk, and sweeps write thousands of times.
  std::ios::openmode const there =
      Exists(name) ? std::ios::in : std::ios::openmode{};
  std::fstream file(At(name), std::ios::out | std::ios::binary | there);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  std::error_code error;
  if (there == std::ios::in) fs::resize_file(At(name), bytes.size(), error);
  EXPECT_TRUE(file && !error) << "cannot write " << name;
}

std::string TempFolder::ReadBytes(std::string const& name) const {
  std::ifstream file(At(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

bool TempFolder::Exists(std::string const& name) const {
  return fs::exists(At(name));
}

void TempFolder::Remove(std::string const& name) const {
  EXPECT_TRUE(fs::remove(At(name))) << "cannot remove " << name;
}

void TempFolder::SetReadOnly(std::string const& name) const {
  constexpr fs::perms kWriters =
      fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  fs::permissions(At(name), kWriters, fs::perm_options::remove);
}

std::string TempFolder::Files() const {
  std::set<std::string> names;
  for (auto const& entry : fs::directory_iterator(folder_)) {
    names.insert(ToUtf8(entry.path().filename()));
  }
  std::string list;
  for (std::string const& name : names) {
    list += (list.empty() ? "" : " ") + name;
  }
  return list;
}

}  // namespace tabwerk::test
