// Life, accessors and current table of directories.
#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

#include "DBDirectory.h"
#include "platform/guarded.h"
#include "schema/bytes.h"
#include "schema/directory_access.h"
#include "schema/format.h"
#include "schema/part.h"

using tabwerk::DirectoryAccess;
using tabwerk::FileRecord;
using tabwerk::Guarded;
using tabwerk::SharedStream;
using tabwerk::TablePart;

namespace {

// That part of the entry, or null.
TablePart* PartOf(DBDirEntry* entry, std::size_t part) {
  return entry == nullptr ? nullptr : DirectoryAccess::Part(*entry, part);
}

// The last characters of a path that an extension of this kind has.
std::u16string_view PathEnd(zWString const& path) {
  constexpr std::size_t kLength = tabwerk::format::kUserFileExtension.size();
  std::u16string_view const text = path.view();
  return text.size() < kLength ? std::u16string_view()
                               : text.substr(text.size() - kLength);
}

bool IsUserFile(std::u16string_view path_end) {
  constexpr std::string_view kExtension = tabwerk::format::kUserFileExtension;
  return std::equal(path_end.begin(), path_end.end(), kExtension.begin(),
                    kExtension.end(), [](char16_t unit, char letter) {
                      return unit == static_cast<unsigned char>(letter);
                    });
}

}  // namespace

DBDirectory::DBDirectory()
    : initialised_(false),
      entries_(nullptr),
      current_table_(nullptr),
      next_directory_(nullptr),
      file_version_(0),
      char_factor_(1),
      index_unread_(false) {}

DBDirectory::DBDirectory(DBDirectory const& other) : DBDirectory() {
  *this = other;
}

DBDirectory& DBDirectory::operator=(DBDirectory const& other) {
  if (this == &other) return *this;
  // What allocates comes first; without memory nothing changes.
  bool const copied = Guarded(false, [&] {
    zWString name = other.name_;
    std::vector<FileRecord> files = other.files_;
    name_ = std::move(name);
    files_.swap(files);
    return true;
  });
  if (!copied) return *this;
  initialised_ = other.initialised_;
  entries_ = other.entries_;
  entries_owner_ = other.entries_owner_;
  current_table_ = other.current_table_;
  next_directory_ = other.next_directory_;
  file_version_ = other.file_version_;
  char_factor_ = other.char_factor_;
  index_unread_ = other.index_unread_;
  return *this;
}

DBDirectory::~DBDirectory() = default;

void DBDirectory::Initialize(zWString const& name,
                             std::vector<zWString> const& files) {
  static_cast<void>(Guarded(false, [&] {
    std::vector<FileRecord> records(files.size());
    for (std::size_t i = 0; i < files.size(); ++i) records[i].name = files[i];
    zWString copy = name;
    name_ = std::move(copy);
    files_.swap(records);
    initialised_ = true;
    return true;
  }));
}

zWString DBDirectory::GetName() const {
  return Guarded(zWString(), [this] { return name_; });
}

std::size_t DBDirectory::GetNumberFiles() const { return files_.size(); }

std::size_t DBDirectory::GetNumberOfFiles() const { return files_.size(); }

zWString DBDirectory::GetFileiName(std::size_t file) const {
  if (file >= files_.size()) return zWString();
  return Guarded(zWString(), [&] { return files_[file].name; });
}

void DBDirectory::SetFileName(std::size_t file, zWString const& name) {
  if (file >= files_.size()) return;
  static_cast<void>(Guarded(false, [&] {
    files_[file].name = name;
    return true;
  }));
}

int DBDirectory::GetFileOpen(std::size_t file) const {
  return file < files_.size() && files_[file].open ? 1 : 0;
}

void DBDirectory::SetFileOpen(std::size_t file, bool open) {
  if (file < files_.size()) files_[file].open = open;
}

FILE* DBDirectory::GetFile(std::size_t file) const {
  if (file >= files_.size() || !files_[file].stream) return nullptr;
  return files_[file].stream->get();
}

void DBDirectory::SetFile(std::size_t file, FILE* stream) {
  if (file >= files_.size() || GetFile(file) == stream) return;
  static_cast<void>(Guarded(false, [&] {
    auto shared = std::make_shared<SharedStream>(stream);
    FileRecord& record = files_[file];
    if (record.stream) record.stream->Release();
    record.stream = std::move(shared);
    return true;
  }));
}

DBDirectory* DBDirectory::Getnextdbdir() const { return next_directory_; }

int DBDirectory::Setnextdbdir(DBDirectory* next) {
  next_directory_ = next;
  return 1;
}

short DBDirectory::GetCharFactor() const { return char_factor_; }

bool DBDirectory::FileIsOpen(bool write, bool /*create*/) const {
  if (!initialised_) return false;
  // Kept: the flags decide, and they stay when a stream is closed.  A database
  // that was read into memory counts as open without its files.
  return std::all_of(files_.begin(), files_.end(), [=](FileRecord const& it) {
    if (!it.open) return false;
    zWString end(PathEnd(it.name));
    return !write || it.write || !IsUserFile(end.ToUpper().view());
  });
}

int DBDirectory::GetUserFile() const {
  // Kept: case counts here, other than in FileIsOpen; a file ".udb" is opened
  // for writing but is not the user file.
  auto const it = std::find_if(
      files_.begin(), files_.end(),
      [](FileRecord const& file) { return IsUserFile(PathEnd(file.name)); });
  return it == files_.end() ? -1 : static_cast<int>(it - files_.begin());
}

std::vector<long long> DBDirectory::GetTimeStamps() const {
  return Guarded(std::vector<long long>(), [this] {
    std::vector<long long> stamps;
    stamps.reserve(files_.size());
    for (FileRecord const& file : files_) stamps.push_back(file.time_stamp);
    return stamps;
  });
}

bool DBDirectory::SelectTabelle(char const* name) {
  current_table_ = FindTable(name, entries_);
  return current_table_ != nullptr;
}

DBDirEntry* DBDirectory::GetEntries() const { return entries_; }

DBDirEntry* DBDirectory::GetAktuelleTabelle() const { return current_table_; }

DBDefinition* DBDirectory::GetDefinition() const {
  return current_table_ == nullptr ? nullptr : current_table_->GetDefinition();
}

int DBDirectory::GetAnzahlZeilen() const {
  if (current_table_ == nullptr) return 0;
  std::int64_t rows = 0;
  for (auto const& part : DirectoryAccess::Parts(*current_table_)) {
    rows += part->Rows();
  }
  constexpr std::int64_t kMost = std::numeric_limits<int>::max();
  constexpr std::int64_t kLeast = std::numeric_limits<int>::min();
  return static_cast<int>(std::clamp(rows, kLeast, kMost));
}

long DBDirectory::GetOffsetTabelle(std::size_t part) const {
  TablePart const* it = PartOf(current_table_, part);
  return it == nullptr ? 0 : it->row_block_offset;
}

void DBDirectory::SetOffsetTabelle(long offset, std::size_t part) {
  TablePart* it = PartOf(current_table_, part);
  if (it == nullptr || !tabwerk::FitsInt32(offset)) return;
  it->row_block_offset = static_cast<std::int32_t>(offset);
}

long DBDirectory::GetOffsetStrings(std::size_t part) const {
  TablePart const* it = PartOf(current_table_, part);
  return it == nullptr ? 0 : it->string_block_offset;
}

void DBDirectory::SetOffsetStrings(long offset, std::size_t part) {
  TablePart* it = PartOf(current_table_, part);
  if (it == nullptr || !tabwerk::FitsInt32(offset)) return;
  it->string_block_offset = static_cast<std::int32_t>(offset);
}

long DBDirectory::GetSizeStrings(std::size_t part) const {
  TablePart const* it = PartOf(current_table_, part);
  return it == nullptr ? 0 : it->string_block_size;
}
