// The life of the index file: read when it fits, rebuilt when it does not.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "DBbase.h"
#include "base/file_lock.h"
#include "base/index_file.h"
#include "base/manager_access.h"
#include "platform/guarded.h"
#include "platform/platform.h"
#include "schema/directory_access.h"
#include "table/section_source.h"
#include "table/table_access.h"

using tabwerk::BuildIndices;
using tabwerk::DirectoryAccess;
using tabwerk::FileLock;
using tabwerk::Guarded;
using tabwerk::IndexContent;
using tabwerk::ManagerAccess;
using tabwerk::MemorySource;
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
  kValidAndApplied,
  kStaleAndApplied,
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

// What is found of the indices that wait for the stamps of a database's files.
struct Waiting {
  bool unknown = false;            // one of them could not be read
  std::optional<zWString> newest;  // path
};

// An index that waits for one of the stamps that the files now carry belongs to
// a save that was interrupted right before its last step.  Of several, the
// newest is the one that knows the other files' present stamps.
Waiting FindWaiting(zWString const& path, DBDirectory const& directory,
                    std::vector<DBTabelle*> const& tables) {
  Waiting waiting;
  auto const stamps = tabwerk::TimeStamps(directory);
  for (std::size_t i = 0; i < stamps.size(); ++i) {
    auto const pending = tabwerk::PendingIndexPath(path, stamps[i]);
    bool missing = false;
    auto const content = tabwerk::ReadIndexBytes(pending, &missing);
    if (missing) continue;
    if (!content) {
      waiting.unknown = true;
      continue;
    }
    auto const bytes = BytesOf(*content);
    if (tabwerk::CheckIndex(bytes, directory, tables) ==
        IndexContent::kUnusable) {
      tabwerk::DeleteLeftover(pending);  // its save ended before it was whole
      continue;
    }
    if (!waiting.newest || tabwerk::KnowsStampsBut(bytes, stamps, i)) {
      waiting.newest = pending;
    }
  }
  return waiting;
}

// The path to read the index from: a waiting index is moved to its place, or
// read where it is.  Nothing when that cannot be found out.
std::optional<zWString> SettlePendingIndex(
    zWString const& path, DBDirectory const& directory,
    std::vector<DBTabelle*> const& tables) {
  auto const waiting = FindWaiting(path, directory, tables);
  if (waiting.unknown) return std::nullopt;
  if (!waiting.newest) return path;
  auto const moved = platform::Replace(*waiting.newest, path);
  return moved == platform::Error::kNone ? path : *waiting.newest;
}

Finding ApplyIndex(zWString const& path, DBDirectory const& directory,
                   std::vector<DBTabelle*> const& tables) {
  auto const source = SettlePendingIndex(path, directory, tables);
  if (!source) return Finding::kUnreadable;
  bool missing = false;
  auto const content = tabwerk::ReadIndexBytes(*source, &missing);
  if (missing) return Finding::kNone;
  if (!content) return Finding::kUnreadable;
  auto const bytes = BytesOf(*content);
  auto const kind = tabwerk::CheckIndex(bytes, directory, tables);
  if (kind == IndexContent::kUnusable) return Finding::kNone;
  MemorySource const sections(bytes.subspan(tabwerk::StampBytes(directory)));
  if (kind == IndexContent::kValid) {
    return ApplyValid(sections, tables) ? Finding::kValidAndApplied
                                        : Finding::kUnreadable;
  }
  return ApplyStale(sections, tables) ? Finding::kStaleAndApplied
                                      : Finding::kUnreadable;
}

// False when another program has replaced a file that this one has read and
// closed: an index for the old file must not take the place of the new one's.
// A file that is open cannot be replaced.
bool FilesAreAsRead(DBDirectory const& directory) {
  auto const stamps = tabwerk::TimeStamps(directory);
  for (std::size_t i = 0; i < stamps.size(); ++i) {
    if (directory.GetFile(i) != nullptr) continue;
    auto error = platform::Error::kNone;
    auto* const stream =
        platform::OpenFile(directory.GetFileiName(i), platform::Mode::kRead,
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
    FileLock const lock(path + zWString(u"L"));
    if (!lock.IsHeld() || DirectoryAccess::IndexUnread(*directory) ||
        !FilesAreAsRead(*directory)) {
      return kIndexNotWritten;
    }
    auto const fresh = path + zWString(u"T");
    auto const stamps = tabwerk::TimeStamps(*directory);
    // Nothing that needs memory may follow the move.
    std::vector<zWString> older;
    for (auto const stamp : stamps) {
      older.push_back(tabwerk::PendingIndexPath(path, stamp));
    }
    auto built = tabwerk::CopiesOf(tables);
    if (!tabwerk::WriteIndex(fresh, stamps, tabwerk::PointersTo(built))) {
      return kIndexNotWritten;
    }
    for (std::size_t i = 0; i < tables.size(); ++i) {
      TableAccess::TakeIndices(*tables[i], built[i]);
    }
    auto const error = Guarded(platform::Error::kInputOutput,
                               [&] { return platform::Replace(fresh, path); });
    if (error != platform::Error::kNone) {
      tabwerk::DeleteLeftover(fresh);
      return kIndexNotWritten;
    }
    // One that could not be moved to its place is older than this one.
    for (auto const& waiting : older) tabwerk::DeleteLeftover(waiting);
    return kIndexWritten;
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
  auto const finding = ApplyIndex(path, *directory, tables);
  DirectoryAccess::IndexUnread(*directory) = finding == Finding::kUnreadable;
  if (finding == Finding::kValidAndApplied) return kValidIndexRead;
  if (WriteIndexToFile(directory) != kIndexNotWritten) return kIndexRebuilt;
  for (auto* table : tables) BuildIndices(*table);
  return kIndexInMemoryOnly;
}
