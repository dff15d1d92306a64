#include "base/save.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

#include "base/index_file.h"
#include "platform/block.h"
#include "platform/guarded.h"
#include "platform/platform.h"
#include "schema/directory_access.h"
#include "table/table_access.h"

namespace tabwerk {
namespace {

constexpr std::size_t kChunkBytes = 65536;
constexpr std::int64_t kLargestOffset =
    std::numeric_limits<std::int32_t>::max();

// An empty file in the system's folder for temporary files, open for writing.
bool OpenTemp(char const* prefix, zWString* path, FILE** stream) {
  auto const folder = platform::TempFolder();
  if (folder.isEmpty()) return false;
  *path = platform::MakeTempFile(folder, prefix);
  if (path->isEmpty()) return false;
  auto error = platform::Error::kNone;
  *stream = platform::OpenFile(*path, platform::Mode::kCreateUpdate,
                               platform::Share::kDenyAll, &error);
  return *stream != nullptr;
}

bool CloseStream(FILE*& stream) {
  auto* const closing = std::exchange(stream, nullptr);
  return closing == nullptr || platform::Close(closing);
}

// Appends the whole of one stream to another; the number of bytes, or -1.
std::int64_t Append(FILE* from, FILE* to) {
  if (!platform::Seek(from, 0, platform::Origin::kStart)) return -1;
  auto const chunk = std::make_unique<std::byte[]>(kChunkBytes);
  std::int64_t total = 0;
  for (;;) {
    auto const size = platform::Read(from, chunk.get(), kChunkBytes);
    if (platform::Write(to, chunk.get(), size) != size) return -1;
    total += static_cast<std::int64_t>(size);
    if (size < kChunkBytes) break;
  }
  return platform::Failed(from) ? -1 : total;
}

// For files that are in nobody's way: what cannot be deleted stays.
void DeleteLeftover(zWString const& path) noexcept {
  if (path.isEmpty()) return;
  (void)Guarded(platform::Error::kInputOutput,
                [&] { return platform::Delete(path); });
}

bool SyncPath(zWString const& path) {
  auto error = platform::Error::kNone;
  auto* const stream = platform::OpenFile(path, platform::Mode::kUpdate,
                                          platform::Share::kDenyAll, &error);
  if (stream == nullptr) return false;
  bool const synced = platform::Sync(stream);
  return platform::Close(stream) && synced;
}

}  // namespace

Save::Save(DBDirectory& directory, std::size_t file, zWString target)
    : directory_(directory),
      file_(file),
      target_(std::move(target)),
      index_(IndexPath(directory)) {}

Save::~Save() {
  // Not examined: these are temporary files, and what they hold is lost anyway
  // when the save has failed.
  (void)CloseStream(data_.stream);
  (void)CloseStream(container_.stream);
  if (replaced_) return;
  DeleteLeftover(trial_copy_);
  DeleteLeftover(pending_index_);
  RestoreEntries();
}

bool Save::Run() {
  if (!LoadedTables(directory_, &tables_) || !PrepareParts()) return false;
  if (!WriteTables() || !WriteDatabaseFile()) return false;
  if (!PrepareIndex() || !PrepareTrialCopy()) return false;
  if (!ReplaceTarget()) return false;
  FinishIndex();
  DeleteLeftover(container_.path);
  DeleteLeftover(data_.path);
  return true;
}

// Gives every table a part for the file and remembers what was there before.
bool Save::PrepareParts() {
  for (auto* entry = directory_.GetEntries(); entry != nullptr;
       entry = entry->GetNext()) {
    EntryState state{entry->GetNumberOfParts(), 0, 0, 0, 0};
    if (auto const* part = DirectoryAccess::Part(*entry, file_)) {
      state.row_block_size = part->row_block_size;
      state.row_block_offset = part->row_block_offset;
      state.string_block_offset = part->string_block_offset;
      state.string_block_size = part->string_block_size;
    }
    entries_.push_back(state);
  }
  return DirectoryAccess::PadParts(directory_, file_);
}

bool Save::WriteTables() {
  if (!OpenTemp("dta", &data_.path, &data_.stream)) return false;
  std::int64_t end = 0;
  std::size_t position = 0;
  for (auto* entry = directory_.GetEntries(); entry != nullptr;
       entry = entry->GetNext()) {
    if (!WriteTable(*tables_[position], *entry, &end)) return false;
    ++position;
  }
  return platform::Flush(data_.stream) && !platform::Failed(data_.stream) &&
         platform::FileSize(data_.stream) == end;
}

// Writes one table's texts and rows at *end and stores where they lie.
bool Save::WriteTable(DBTabelle& table, DBDirEntry& entry, std::int64_t* end) {
  auto& part = *DirectoryAccess::Part(entry, file_);
  auto const texts_start = *end;
  platform::Block rows;
  // A table that the file does not have yet gets an empty part.
  bool const has_rows = file_ < TableAccess::SubTables(table).size();
  if (has_rows && !TableAccess::WriteTexts(table, file_, data_.stream, &rows)) {
    return false;
  }
  auto const rows_start = platform::Tell(data_.stream);
  if (rows_start < texts_start) return false;
  auto const written = platform::Write(data_.stream, rows.data(), rows.size());
  if (written != rows.size()) return false;
  *end = rows_start + static_cast<std::int64_t>(rows.size());
  if (*end > kLargestOffset) return false;
  part.string_block_offset = static_cast<std::int32_t>(texts_start);
  part.string_block_size =
      static_cast<std::int32_t>((rows_start - texts_start) / 2);
  part.row_block_offset = static_cast<std::int32_t>(rows_start);
  part.row_block_size = static_cast<std::int32_t>(rows.size());
  return true;
}

bool Save::WriteDatabaseFile() {
  time_stamp_ = std::max(DirectoryAccess::NextTimeStamp(directory_, file_),
                         LastTimeStamp() + 1);
  if (!OpenTemp("dir", &container_.path, &container_.stream)) return false;
  if (!DirectoryAccess::WriteContainer(directory_, container_.stream, file_,
                                       time_stamp_)) {
    return false;
  }
  auto const data_start = platform::Tell(container_.stream);
  auto const data_size = Append(data_.stream, container_.stream);
  if (data_start < 0 || data_size < 0) return false;
  auto const size = data_start + data_size;
  if (size > kLargestOffset) return false;
  if (!platform::Flush(container_.stream) ||
      platform::Failed(container_.stream) ||
      platform::FileSize(container_.stream) != size) {
    return false;
  }
  (void)CloseStream(data_.stream);  // its whole content has been read
  return CloseStream(container_.stream);
}

// The stamp that the target carries now, so that the new one differs even when
// the file was not read by this directory.
std::int64_t Save::LastTimeStamp() const {
  auto* stream = directory_.GetFile(file_);
  auto error = platform::Error::kNone;
  FILE* opened = nullptr;
  if (stream == nullptr || !(directory_.GetFileiName(file_) == target_)) {
    stream = opened = platform::OpenFile(target_, platform::Mode::kRead,
                                         platform::Share::kDenyNone, &error);
  }
  short version = 0;
  long long stamp = 0;
  if (stream != nullptr) {
    (void)DBDirectory::ReadFileVersion(stream, version, stamp);
  }
  if (opened != nullptr) (void)platform::Close(opened);
  constexpr auto kEndOfTime = std::numeric_limits<std::int64_t>::max();
  return stamp == kEndOfTime ? 0 : stamp;
}

// An index that was not read is carried over at the next opening: what is in
// memory does not know the user's order.  And an index is valid for files that
// have not changed, so a copy of the data under another name must not leave one
// that counts rows they do not have.
bool Save::MayReplaceIndex() const {
  if (DirectoryAccess::IndexUnread(directory_)) return false;
  if (directory_.GetFileiName(file_) == target_) return true;
  for (auto* entry = directory_.GetEntries(); entry != nullptr;
       entry = entry->GetNext()) {
    for (auto const& part : DirectoryAccess::Parts(*entry)) {
      if (part->row_count != part->file_rows) return false;
    }
  }
  return true;
}

bool Save::PrepareIndex() {
  if (index_.isEmpty() || !MayReplaceIndex()) return true;
  // Built from copies: the tables keep their indices and their selection.
  std::vector<DBTabelle> copies;
  copies.reserve(tables_.size());
  for (auto* table : tables_) copies.emplace_back(*table);
  std::vector<DBTabelle*> order;
  for (auto& copy : copies) order.push_back(&copy);
  // Reading a first file reverses the order of its tables.
  bool const is_first_file = directory_.GetFileiName(0) == target_;
  if (is_first_file) std::reverse(order.begin(), order.end());
  auto const stamps = directory_.GetTimeStamps();
  auto const pending = PendingIndexPath(index_, time_stamp_);
  for (auto const stamp : stamps) {
    auto const outdated = PendingIndexPath(index_, stamp);
    // Another file may carry the second that this one is about to get.
    if (outdated != pending) outdated_indices_.push_back(outdated);
  }
  if (!WriteIndex(pending, stamps, order)) return false;
  pending_index_ = pending;
  return platform::SyncFolderOf(pending_index_);
}

bool Save::PrepareTrialCopy() {
  trial_copy_ = target_ + zWString(u"T");
  // Not examined: Copy fails when what is left of an older save stays.
  (void)platform::Delete(trial_copy_);
  return platform::Copy(container_.path, trial_copy_) ==
             platform::Error::kNone &&
         platform::ClearReadOnly(trial_copy_) && SyncPath(trial_copy_);
}

bool Save::ReplaceTarget() {
  std::vector<std::size_t> open_files;
  for (std::size_t i = 0; i < directory_.GetNumberFiles(); ++i) {
    if (directory_.GetFile(i) != nullptr) open_files.push_back(i);
  }
  directory_.CloseDBdatei();
  auto const error = Guarded(platform::Error::kInputOutput, [&] {
    return platform::Replace(trial_copy_, target_);
  });
  replaced_ = error == platform::Error::kNone;
  if (replaced_) return true;
  for (auto const file : open_files) {
    // Not examined: without its stream a file stays readable in memory.
    (void)DirectoryAccess::ReopenStream(directory_, file);
  }
  return false;
}

void Save::FinishIndex() noexcept {
  if (pending_index_.isEmpty()) return;
  // Not examined: an index that did not move is found by its time stamp when
  // the database is opened next.
  (void)Guarded(platform::Error::kInputOutput,
                [&] { return platform::Replace(pending_index_, index_); });
  // Those that earlier saves could not move, either.
  for (auto const& outdated : outdated_indices_) DeleteLeftover(outdated);
}

void Save::RestoreEntries() noexcept {
  auto state = entries_.begin();
  for (auto* entry = directory_.GetEntries();
       entry != nullptr && state != entries_.end(); entry = entry->GetNext()) {
    DirectoryAccess::Parts(*entry).resize(
        std::min(entry->GetNumberOfParts(), state->part_count));
    if (auto* const part = DirectoryAccess::Part(*entry, file_)) {
      part->row_block_size = state->row_block_size;
      part->row_block_offset = state->row_block_offset;
      part->string_block_offset = state->string_block_offset;
      part->string_block_size = state->string_block_size;
    }
    ++state;
  }
}

}  // namespace tabwerk
