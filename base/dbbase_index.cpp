// The life of the index file: read when it fits, rebuilt when it does not.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "DBbase.h"
#include "base/file_lock.h"
#include "base/index_file.h"
#include "base/manager_access.h"
#include "platform/guarded.h"
#include "platform/platform.h"
#include "schema/directory_access.h"
#include "table/row_walk.h"
#include "table/section_source.h"
#include "table/table_access.h"

using tabwerk::BuildIndices;
using tabwerk::DirectoryAccess;
using tabwerk::FileLock;
using tabwerk::Guarded;
using tabwerk::IndexContent;
using tabwerk::ManagerAccess;
using tabwerk::MemorySource;
using tabwerk::PointersTo;
using tabwerk::RebuiltCopiesOf;
using tabwerk::RowUpdate;
using tabwerk::TableAccess;

namespace {

namespace platform = tabwerk::platform;

// Results of MakeIndexFile and WriteIndexToFile; a success of the latter is 2.
constexpr int kNoIndexFile = 0;
constexpr int kValidIndexRead = -1;
constexpr int kIndexRebuilt = 1;
constexpr int kIndexInMemoryOnly = 2;
constexpr int kIndexNotWritten = 0;
constexpr int kIndexWritten = 2;

// What is known of a database's index file.
enum class Finding : std::uint8_t {
  kValid,
  kStale,       // its order and status are to be carried over
  kNone,        // there is none, or what is there counts as missing
  kUnreadable,  // it still holds, or may hold, the user's order
};

// False when memory was exhausted: the order is then not, or not wholly, in the
// tables.
bool ApplyValid(MemorySource sections, std::vector<DBTabelle*> const& tables) {
  bool ok = true;
  for (auto* table : tables) {
    ok = ok && TableAccess::ReadIds(*table, sections) &&
         TableAccess::ReadFolge(*table, sections, RowUpdate::kRowsToo) &&
         TableAccess::ReadStatus(*table, sections, RowUpdate::kRowsToo);
  }
  return ok;
}

// Carries the recorded order and status over to rows that have changed.
bool ApplyStale(MemorySource sections, std::vector<DBTabelle*> const& tables) {
  auto* const splash = zSplashMessage::GetSplashMessage();
  bool ok = true;
  for (auto* table : tables) {
    splash->Show(zWString(u"Updating database index"));
    ok = ok && TableAccess::ReadIds(*table, sections) &&
         TableAccess::ReadFolge(*table, sections, RowUpdate::kIndexOnly) &&
         TableAccess::ReadStatus(*table, sections, RowUpdate::kIndexOnly) &&
         TableAccess::Resort(*table);
  }
  splash->Clear();
  return ok;
}

std::span<std::byte const> BytesOf(platform::Block const& block) {
  return {block.data(), block.size()};
}

// An index file as it was found.
struct FoundIndex {
  Finding finding;
  bool missing = false;
  platform::Block content = {};
};

FoundIndex ReadIndex(zWString const& path, DBDirectory const& directory,
                     std::vector<DBTabelle*> const& tables) {
  bool missing = false;
  auto content = tabwerk::ReadIndexBytes(path, &missing);
  if (missing) return {Finding::kNone, true};
  if (!content) return {Finding::kUnreadable};
  auto const kind = tabwerk::CheckIndex(BytesOf(*content), directory, tables);
  if (kind == IndexContent::kUnusable) return {Finding::kNone};
  return {kind == IndexContent::kValid ? Finding::kValid : Finding::kStale,
          false, std::move(*content)};
}

// An index that waits for the stamp that a file now carries: it belongs to a
// save that was interrupted right before its last step, or is about to do it.
struct WaitingIndex {
  zWString path;
  std::size_t position;  // of the file
  FoundIndex index;
};

// Those of all files.  One that is not whole is deleted: its save ended before.
std::vector<WaitingIndex> FindWaiting(zWString const& path,
                                      DBDirectory const& directory,
                                      std::vector<DBTabelle*> const& tables) {
  std::vector<WaitingIndex> waiting;
  auto const stamps = tabwerk::TimeStamps(directory);
  for (std::size_t i = 0; i < stamps.size(); ++i) {
    auto const pending = tabwerk::PendingIndexPath(path, stamps[i]);
    auto index = ReadIndex(pending, directory, tables);
    if (index.missing) continue;
    if (index.finding == Finding::kNone) {
      tabwerk::DeleteLeftover(pending);
    } else {
      waiting.push_back({pending, i, std::move(index)});
    }
  }
  return waiting;
}

// The newest of several is the one that knows the other files' present stamps.
WaitingIndex* Newest(std::vector<WaitingIndex>& waiting,
                     std::vector<long long> const& stamps) {
  WaitingIndex* newest = nullptr;
  for (auto& one : waiting) {
    if (newest == nullptr || tabwerk::KnowsStampsBut(BytesOf(one.index.content),
                                                     stamps, one.position)) {
      newest = &one;
    }
  }
  return newest;
}

// The index that belongs to the files: the newest waiting one, which is moved
// to its place where possible, or the one that is there.
FoundIndex FindIndex(zWString const& path, DBDirectory const& directory,
                     std::vector<DBTabelle*> const& tables) {
  auto waiting = FindWaiting(path, directory, tables);
  // Behind the waiting ones, because another program may be moving them here.
  auto current = ReadIndex(path, directory, tables);
  bool unknown = current.finding == Finding::kUnreadable;
  for (auto const& one : waiting) {
    unknown = unknown || one.index.finding == Finding::kUnreadable;
  }
  if (unknown) return {Finding::kUnreadable};
  auto const stamps = tabwerk::TimeStamps(directory);
  // The index in place was written behind one whose stamp it knows.
  auto const is_outdated = [&](WaitingIndex const& one) {
    return tabwerk::KnowsStamp(BytesOf(current.content), stamps, one.position);
  };
  for (auto const& one : waiting) {
    if (is_outdated(one)) tabwerk::DeleteLeftover(one.path);
  }
  std::erase_if(waiting, is_outdated);
  auto* const newest = Newest(waiting, stamps);
  if (newest == nullptr) return current;
  // Not examined: it is as good where it is.
  (void)platform::Replace(newest->path, path);
  return std::move(newest->index);
}

// False when memory was exhausted: what the index holds is not in the tables.
bool ApplyIndex(FoundIndex const& index, DBDirectory const& directory,
                std::vector<DBTabelle*> const& tables) {
  if (index.finding == Finding::kNone) return true;
  MemorySource const sections(
      BytesOf(index.content).subspan(tabwerk::StampBytes(directory)));
  return index.finding == Finding::kValid ? ApplyValid(sections, tables)
                                          : ApplyStale(sections, tables);
}

// False when another program has replaced a file that this one has read and
// closed: an index for the old file must not take the place of the new one's.
// A file that is open cannot be replaced.
bool FilesAreAsRead(DBDirectory const& directory) {
  auto const stamps = tabwerk::TimeStamps(directory);
  for (std::size_t i = 0; i < stamps.size(); ++i) {
    if (directory.GetFile(i) != nullptr) continue;
    auto error = platform::Error::kNone;
    auto* const stream = platform::OpenFile(
        DirectoryAccess::Files(directory)[i].name, platform::Mode::kRead,
        platform::Share::kDenyNone, &error);
    if (stream == nullptr) return false;
    short version = 0;
    long long stamp = 0;
    (void)DBDirectory::ReadFileVersion(stream, version, stamp);
    (void)platform::Close(stream);  // only read
    if (stamp != stamps[i]) return false;
  }
  return true;
}

zWString LockPath(zWString const& path) { return path + zWString(u"L"); }

// Whether the indices that tables have are known to be those of their rows.
enum class Indices : std::uint8_t { kOfTheirRows, kToBeRebuilt };

// What rebuilding selects last.
void SelectLastStatus(DBTabelle& table) {
  (void)tabwerk::SelectInteger(table, "STATUS");
  tabwerk::SelectEveryRow(table);
}

// With the lock held: the index of these tables takes the place of the old one.
// The tables have it then, too.
bool ReplaceIndex(zWString const& path, DBDirectory const& directory,
                  std::vector<DBTabelle*> const& tables, Indices indices) {
  if (!FilesAreAsRead(directory)) return false;
  auto const fresh = path + zWString(u"T");
  auto const stamps = tabwerk::TimeStamps(directory);
  // Nothing that needs memory may follow the move.
  std::vector<zWString> older;
  older.reserve(stamps.size());
  for (auto const stamp : stamps) {
    older.push_back(tabwerk::PendingIndexPath(path, stamp));
  }
  std::vector<DBTabelle> built;
  if (indices == Indices::kToBeRebuilt) built = RebuiltCopiesOf(tables);
  if (!tabwerk::WriteIndex(fresh, stamps,
                           built.empty() ? tables : PointersTo(built))) {
    return false;
  }
  for (std::size_t i = 0; i < built.size(); ++i) {
    TableAccess::TakeIndices(*tables[i], built[i]);
  }
  for (auto* table : tables) SelectLastStatus(*table);
  auto const error = Guarded(platform::Error::kInputOutput,
                             [&] { return platform::Replace(fresh, path); });
  if (error != platform::Error::kNone) {
    tabwerk::DeleteLeftover(fresh);
    return false;
  }
  // One that could not be moved to its place is older than this one.
  for (auto const& waiting : older) tabwerk::DeleteLeftover(waiting);
  return true;
}

}  // namespace

zWString DBbase::IndexFileName(DBDirectory* directory) const {
  return directory == nullptr ? zWString() : tabwerk::IndexPath(*directory);
}

int DBbase::WriteIndexToFile(DBDirectory* directory) const {
  return Guarded(kIndexNotWritten, [&] {
    if (directory == nullptr) directory = ManagerAccess::Current(*this);
    auto const path = IndexFileName(directory);
    if (path.isEmpty()) return kIndexNotWritten;
    std::vector<DBTabelle*> tables;
    if (!tabwerk::LoadedTables(*directory, &tables)) return kIndexNotWritten;
    FileLock const lock(LockPath(path));
    if (!lock.IsHeld() || DirectoryAccess::IndexUnread(*directory)) {
      return kIndexNotWritten;
    }
    return ReplaceIndex(path, *directory, tables, Indices::kToBeRebuilt)
               ? kIndexWritten
               : kIndexNotWritten;
  });
}

int DBbase::MakeIndexFile(DBDirectory* directory) const {
  // Until it is known what the file holds, nothing is written over it.
  DirectoryAccess::IndexUnread(*directory) = true;
  auto const path = IndexFileName(directory);
  if (path.isEmpty()) return kNoIndexFile;
  std::vector<DBTabelle*> tables;
  if (!tabwerk::LoadedTables(*directory, &tables)) {
    // The sections of the table that is missing stand nowhere else.
    for (auto* table : tables) BuildIndices(*table);
    return kIndexInMemoryOnly;
  }
  auto index = FindIndex(path, *directory, tables);
  std::optional<FileLock> lock;
  if (index.finding == Finding::kStale || index.finding == Finding::kNone) {
    // Whoever has the lock writes the index, and may wait for the files that
    // are open here.
    lock.emplace(LockPath(path), FileLock::Patience::kNone);
    // Another program may have written it before the lock was had.
    if (lock->IsHeld()) index = FindIndex(path, *directory, tables);
  }
  bool const applied = index.finding != Finding::kUnreadable &&
                       ApplyIndex(index, *directory, tables);
  DirectoryAccess::IndexUnread(*directory) = !applied;
  if (applied && index.finding == Finding::kValid) return kValidIndexRead;
  // Renumbering has made them.
  auto const indices = index.finding == Finding::kStale ? Indices::kOfTheirRows
                                                        : Indices::kToBeRebuilt;
  bool const written = applied && lock && lock->IsHeld() && Guarded(false, [&] {
                         return ReplaceIndex(path, *directory, tables, indices);
                       });
  if (written) return kIndexRebuilt;
  for (auto* table : tables) BuildIndices(*table);
  return kIndexInMemoryOnly;
}
