#include "base/save.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "base/file_lock.h"
#include "base/index_file.h"
#include "base/manager_access.h"
#include "base/opened_tables.h"
#include "platform/block.h"
#include "platform/guarded.h"
#include "platform/platform.h"
#include "schema/directory_access.h"
#include "table/table_access.h"

namespace tabwerk {
namespace {

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

std::optional<std::size_t> PositionOf(zWString const& path,
                                      DBDirectory const& directory) {
  auto const& files = DirectoryAccess::Files(directory);
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (files[i].name == path || platform::SameFile(files[i].name, path)) {
      return i;
    }
  }
  return std::nullopt;
}

}  // namespace

Save::Save(DBDirectory& directory, std::size_t file, zWString target)
    : directory_(directory),
      current_table_(directory.GetAktuelleTabelle()),
      file_(file),
      target_(std::move(target)),
      position_(PositionOf(target_, directory)),
      index_(IndexPath(directory)) {}

Save::~Save() {
  if (!replaced_) CompleteDirectoryFile();
  // Not examined: these are temporary files, and what they hold is lost anyway
  // when the save has failed.
  (void)data_.Close();
  (void)directory_file_.Close();
  if (replaced_) return;
  DeleteLeftover(trial_copy_);
  DeleteLeftover(pending_index_);
  RestoreEntries();
}

bool Save::Run() {
  if (!LoadTables() || !MayForgetUnreadIndex()) return false;
  if (!TakeLocks() || !PrepareParts()) return false;
  if (!WriteTables() || !WriteDirectory()) return false;
  if (!PrepareIndex() || !PrepareTrialCopy()) return false;
  if (!ReplaceTarget()) return false;
  FinishIndex();
  (void)data_.Close();  // only read since it was checked
  DeleteLeftover(directory_file_.path);
  DeleteLeftover(data_.path);
  return true;
}

// Tables that are not in memory yet are read; one that cannot be forbids the
// save, because what the file has of it would be lost.  So do two tables of one
// name: of their records the last one counts when the file is read again, which
// is not the one that is in use.
bool Save::LoadTables() {
  std::unordered_set<std::string_view> names;
  for (auto* entry = directory_.GetEntries(); entry != nullptr;
       entry = entry->GetNext()) {
    if (!names.insert(entry->GetName()).second) return false;
    auto* table = OpenedTables::Current(*entry);
    if (table == nullptr || !AllPartsLoaded(*entry)) {
      DirectoryAccess::SetCurrentTable(directory_, entry);
      if (ManagerAccess::LoadTable(directory_, *entry, table) == 0) {
        return false;
      }
    }
    tables_.push_back(table);
  }
  return true;
}

bool Save::TakeLocks() {
  target_lock_.emplace(target_ + zWString(u"L"));
  if (!target_lock_->IsHeld()) return false;
  if (index_.isEmpty()) return true;
  index_lock_.emplace(index_ + zWString(u"L"));
  return index_lock_->IsHeld();
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
    // A table whose rows cannot be written ends the save: going on without it
    // would lose them.
    if (!WriteTable(*tables_[position], *entry, &end)) return false;
    ++position;
  }
  data_size_ = end;
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

bool Save::WriteDirectory() {
  time_stamp_ = NewTimeStamp();
  auto& file = directory_file_;
  if (!OpenTemp("dir", &file.path, &file.stream)) return false;
  if (!DirectoryAccess::WriteContainer(directory_, file.stream, file_,
                                       time_stamp_)) {
    return false;
  }
  auto const end = platform::Tell(file.stream);
  if (end < 0 || end + data_size_ > kLargestOffset ||
      !platform::Flush(file.stream) || platform::Failed(file.stream) ||
      platform::FileSize(file.stream) != end || !file.Close()) {
    return false;
  }
  data_start_ = end;
  return true;
}

void Save::RestoreEntries() noexcept {
  DirectoryAccess::SetCurrentTable(directory_, current_table_);
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
