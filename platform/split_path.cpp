// The path splitter; it lies here because separators and drives are the
// system's.
#include <string_view>
#include <utility>

#include "ztypes.h"

namespace {

#ifdef _WIN32
constexpr std::u16string_view kSeparators = u"/\\";
constexpr bool kHasDrives = true;
#else
constexpr std::u16string_view kSeparators = u"/";
constexpr bool kHasDrives = false;
#endif

// Number of units of the drive at the start of path.
std::size_t DriveLength(std::u16string_view path) {
  return kHasDrives && path.size() >= 2 && path[1] == u':' ? 2 : 0;
}

// Position behind the last separator.
std::size_t DirectoryLength(std::u16string_view path) {
  std::size_t const last = path.find_last_of(kSeparators);
  return last == std::u16string_view::npos ? 0 : last + 1;
}

}  // namespace

zSplitPath::zSplitPath(zWString const& path) {
  std::u16string_view rest = path.view();
  std::size_t const drive_length = DriveLength(rest);
  drive_ = zWString(rest.substr(0, drive_length));
  rest.remove_prefix(drive_length);

  std::size_t const directory_length = DirectoryLength(rest);
  directory_ = zWString(rest.substr(0, directory_length));
  rest.remove_prefix(directory_length);

  std::size_t const dot = rest.rfind(u'.');
  file_name_ = zWString(rest.substr(0, dot));
  if (dot != std::u16string_view::npos) {
    extension_ = zWString(rest.substr(dot));
  }
}

zSplitPath::zSplitPath(zSplitPath const& other) = default;

zSplitPath& zSplitPath::operator=(zSplitPath const& other) {
  // All copies that may fail come first: half of one path and half of another
  // would name a third file.
  zSplitPath copy(other);
  drive_ = std::move(copy.drive_);
  directory_ = std::move(copy.directory_);
  file_name_ = std::move(copy.file_name_);
  extension_ = std::move(copy.extension_);
  return *this;
}

zSplitPath::~zSplitPath() = default;

zWString const& zSplitPath::GetDrive() const noexcept { return drive_; }

zWString const& zSplitPath::GetDirectory() const noexcept { return directory_; }

zWString const& zSplitPath::GetFileName() const noexcept { return file_name_; }

zWString const& zSplitPath::GetExtension() const noexcept { return extension_; }
