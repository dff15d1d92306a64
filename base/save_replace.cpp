// The second half of a save: the new file and its index take the place of the
// old ones.
#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include "base/file_lock.h"
#include "base/index_file.h"
#include "base/save.h"
#include "platform/block.h"
#include "platform/guarded.h"
#include "platform/platform.h"
#include "schema/directory_access.h"

namespace tabwerk {
namespace {

constexpr std::int64_t kPieceBytes = 262144;
// So much of a new file at a time is on its way to the disk while the rest is
// written.
constexpr std::int64_t kSyncBytes = 16 * kPieceBytes;

}  // namespace

bool Save::TempFile::Close() {
  auto* const closing = std::exchange(stream, nullptr);
  return closing == nullptr || platform::Close(closing);
}

// The stamp that the target carries now, so that the new one differs even when
// the file was not read by this directory.
std::int64_t Save::LastTimeStamp() const {
  auto* stream = directory_.GetFile(file_);
  auto error = platform::Error::kNone;
  FILE* opened = nullptr;
  if (stream == nullptr ||
      DirectoryAccess::Files(directory_)[file_].name != target_) {
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

// The current second, later than the target's last stamp, and another one than
// the other files': a waiting index belongs to the file that carries its stamp.
std::int64_t Save::NewTimeStamp() const {
  auto stamp = std::max(DirectoryAccess::NextTimeStamp(directory_, file_),
                        LastTimeStamp() + 1);
  auto const taken = TimeStamps(directory_);
  while (std::find(taken.begin(), taken.end(), stamp) != taken.end()) ++stamp;
  return stamp;
}

// An index that could not be read is carried over at the next opening.  That
// needs the tables in the order of its sections, which a save of the first file
// reverses, and the stamps that it waits for.
bool Save::MayForgetUnreadIndex() const {
  if (index_.isEmpty() || !DirectoryAccess::IndexUnread(directory_)) {
    return true;
  }
  if (position_ == 0U && tables_.size() > 1) return false;
  auto const stamps = TimeStamps(directory_);
  return std::none_of(stamps.begin(), stamps.end(), [this](auto const stamp) {
    return platform::Exists(PendingIndexPath(index_, stamp));
  });
}

// An index that was not read is carried over at the next opening: what is in
// memory does not know the user's order.  And an index is valid for files that
// have not changed, so a copy of the data under another name must not leave one
// that counts rows they do not have.
bool Save::MayReplaceIndex() const {
  if (DirectoryAccess::IndexUnread(directory_)) return false;
  if (position_) return true;
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
  auto copies = RebuiltCopiesOf(tables_);
  auto order = PointersTo(copies);
  // Reading a first file reverses the order of its tables.
  if (position_ == 0U) std::reverse(order.begin(), order.end());
  auto const stamps = TimeStamps(directory_);
  auto const pending = PendingIndexPath(index_, time_stamp_);
  older_indices_.reserve(stamps.size());
  unreachable_indices_.reserve(1);
  for (std::size_t i = 0; i < stamps.size(); ++i) {
    auto& outdated = i == position_ ? unreachable_indices_ : older_indices_;
    outdated.push_back(PendingIndexPath(index_, stamps[i]));
  }
  if (!WriteIndex(pending, stamps, order)) return false;
  pending_index_ = pending;
  return platform::SyncFolderOf(pending_index_);
}

bool Save::PrepareTrialCopy() {
  trial_copy_ = target_ + zWString(u"T");
  // Not examined: Copy fails when what is left of an older save stays.
  (void)platform::ClearReadOnly(trial_copy_);
  DeleteLeftover(trial_copy_);
  if (platform::Copy(directory_file_.path, trial_copy_) !=
          platform::Error::kNone ||
      !platform::ClearReadOnly(trial_copy_)) {
    return false;
  }
  auto error = platform::Error::kNone;
  auto* const stream = platform::OpenFile(trial_copy_, platform::Mode::kUpdate,
                                          platform::Share::kDenyAll, &error);
  if (stream == nullptr) return false;
  bool const written = AppendData(stream) && platform::Sync(stream) &&
                       !platform::Failed(stream) &&
                       platform::FileSize(stream) == data_start_ + data_size_;
  return platform::Close(stream) && written;
}

// Puts the data behind header and directory.
bool Save::AppendData(FILE* stream) const {
  if (!platform::Seek(stream, data_start_, platform::Origin::kStart) ||
      !platform::Seek(data_.stream, 0, platform::Origin::kStart)) {
    return false;
  }
  auto const piece_size = [this](std::int64_t done) {
    return static_cast<std::size_t>(std::min(data_size_ - done, kPieceBytes));
  };
  platform::Block piece;
  if (!piece.ResetUnset(piece_size(0))) return false;
  for (std::int64_t done = 0; done < data_size_;) {
    auto const size = piece_size(done);
    if (platform::Read(data_.stream, piece.data(), size) != size ||
        platform::Write(stream, piece.data(), size) != size) {
      return false;
    }
    done += static_cast<std::int64_t>(size);
    if (done % kSyncBytes == 0) {
      platform::BeginSync(stream, data_start_ + done - kSyncBytes, kSyncBytes);
    }
  }
  return true;
}

// Makes the second temporary file of a failed save the whole new file.  Not
// examined: what is left is for people to look at.
void Save::CompleteDirectoryFile() noexcept {
  if (data_start_ < 0) return;
  auto* const stream = Guarded<FILE*>(nullptr, [&] {
    auto error = platform::Error::kNone;
    return platform::OpenFile(directory_file_.path, platform::Mode::kUpdate,
                              platform::Share::kDenyAll, &error);
  });
  if (stream == nullptr) return;
  (void)AppendData(stream);
  (void)platform::Close(stream);
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
    // Where another program has taken the file meanwhile, the tables stay in
    // memory, but the file no longer counts as open for writing.
    if (!DirectoryAccess::ReopenStream(directory_, file)) {
      DirectoryAccess::Files(directory_)[file].write = false;
    }
  }
  return false;
}

void Save::FinishIndex() noexcept {
  if (pending_index_.isEmpty()) return;
  // No file carries the stamp any more that they wait for.
  for (auto const& waiting : unreachable_indices_) DeleteLeftover(waiting);
  // An index that does not move is found by its time stamp when the database is
  // opened next.
  auto const error = Guarded(platform::Error::kInputOutput, [&] {
    return platform::Replace(pending_index_, index_);
  });
  if (error != platform::Error::kNone) return;
  for (auto const& waiting : older_indices_) DeleteLeftover(waiting);
}

}  // namespace tabwerk
