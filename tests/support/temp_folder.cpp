#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <system_error>

namespace tabwerk::test {
namespace {

namespace fs = std::filesystem;

constexpr fs::perms kWriters =
    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;

fs::path FromUtf8(std::string const& text) {
  return fs::path(std::u8string(text.begin(), text.end()));
}

std::string ToUtf8(fs::path const& path) {
  std::u8string const text = path.u8string();
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

zWString TempFolder::Make(std::string const& name,
                          std::string_view bytes) const {
  WriteBytes(name, bytes);
  return Path(name);
}

void TempFolder::MakeFolder(std::string const& name) const {
  EXPECT_TRUE(fs::create_directory(At(name))) << "cannot make " << name;
}

std::string TempFolder::ReadBytes(std::string const& name) const {
  std::ifstream file(At(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string TempFolder::Content(std::string const& name) const {
  return Exists(name) ? ReadBytes(name) : "(none)";
}

bool TempFolder::Exists(std::string const& name) const {
  return fs::exists(At(name));
}

void TempFolder::SetReadOnly(std::string const& name, bool read_only) const {
  if (read_only) {
    fs::permissions(At(name), kWriters, fs::perm_options::remove);
  } else {
    fs::permissions(At(name), fs::perms::owner_write, fs::perm_options::add);
  }
}

bool TempFolder::IsReadOnly(std::string const& name) const {
  return (fs::status(At(name)).permissions() & kWriters) == fs::perms::none;
}

std::vector<std::string> TempFolder::Names() const {
  std::vector<std::string> names;
  for (auto const& entry : fs::directory_iterator(folder_)) {
    names.push_back(ToUtf8(entry.path().filename()));
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace tabwerk::test
