// The life of the index file: read when it fits, rebuilt when it does not.
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "DBbase.h"
#include "base/index_file.h"
#include "base/manager_access.h"
#include "platform/guarded.h"
#include "platform/platform.h"
#include "schema/directory_access.h"
#include "table/section_source.h"
#include "table/table_access.h"

using tabwerk::BuildIndices;
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
  kUnreadable,  // it may still hold the user's order
};

void ApplyValid(MemorySource sections, std::vector<DBTabelle*> const& tables) {
  for (auto* table : tables) {
    TableAccess::ReadIds(*table, sections);
    TableAccess::ReadFolge(*table, sections, RowUpdate::kRowsToo);
    TableAccess::ReadStatus(*table, sections, RowUpdate::kRowsToo);
  }
}

// Carries the recorded order and status over to rows that have changed.
void ApplyStale(MemorySource sections, std::vector<DBTabelle*> const& tables) {
  auto* const splash = zSplashMessage::GetSplashMessage();
  for (auto* table : tables) {
    splash->Show(zWString(u"Updating database index"));
    TableAccess::ReadIds(*table, sections);
    TableAccess::ReadFolge(*table, sections, RowUpdate::kIndexOnly);
    TableAccess::ReadStatus(*table, sections, RowUpdate::kIndexOnly);
    table->ResortIndexID();
  }
  splash->Clear();
}

// The path to read the index from.  An index that waits for one of the stamps
// that the files now carry belongs to a save that was interrupted right before
// its last step: it is moved to its place, or read where it is.  Nothing when
// that cannot be found out.
std::optional<zWString> SettlePendingIndex(
    zWString const& path, std::vector<long long> const& stamps) {
  for (auto const stamp : stamps) {
    auto const pending = tabwerk::PendingIndexPath(path, stamp);
    bool missing = false;
    bool const readable =
        tabwerk::ReadIndexBytes(pending, &missing).has_value();
    if (missing) continue;
    if (!readable) return std::nullopt;
    auto const moved = platform::Replace(pending, path);
    return moved == platform::Error::kNone ? path : pending;
  }
  return path;
}

Finding ApplyIndex(zWString const& path, DBDirectory const& directory,
                   std::vector<DBTabelle*> const& tables) {
  auto const source = SettlePendingIndex(path, directory.GetTimeStamps());
  if (!source) return Finding::kUnreadable;
  bool missing = false;
  auto const content = tabwerk::ReadIndexBytes(*source, &missing);
  if (missing) return Finding::kNone;
  if (!content) return Finding::kUnreadable;
  std::span<std::byte const> const bytes(content->data(), content->size());
  auto const kind = tabwerk::CheckIndex(bytes, directory, tables);
  if (kind == IndexContent::kUnusable) return Finding::kNone;
  MemorySource const sections(bytes.subspan(tabwerk::StampBytes(directory)));
  if (kind == IndexContent::kValid) {
    ApplyValid(sections, tables);
    return Finding::kValidAndApplied;
  }
  ApplyStale(sections, tables);
  return Finding::kStaleAndApplied;
}

// False when another program has replaced a file that this one has read and
// closed: an index for the old file must not take the place of the new one's.
// A file that is open cannot be replaced.
bool FilesAreAsRead(DBDirectory const& directory) {
  auto const stamps = directory.GetTimeStamps();
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
    if (tabwerk::DirectoryAccess::IndexUnread(*directory) ||
        !FilesAreAsRead(*directory)) {
      return kIndexNotWritten;
    }
    auto const fresh = path + zWString(u"T");
    if (!tabwerk::WriteIndex(fresh, directory->GetTimeStamps(), tables)) {
      return kIndexNotWritten;
    }
    if (platform::Replace(fresh, path) == platform::Error::kNone) {
      return kIndexWritten;
    }
    // Not examined: what is left is overwritten by the next attempt.
    (void)platform::Delete(fresh);
    return kIndexNotWritten;
  });
}

int DBbase::MakeIndexFile(DBDirectory* directory) const {
  auto const path = IndexFileName(directory);
  if (path.isEmpty()) return kNoIndexFile;
  std::vector<DBTabelle*> tables;
  if (!tabwerk::LoadedTables(*directory, &tables)) {
    // The sections of the table that is missing stand nowhere else.
    BuildIndices(tables);
    return kIndexInMemoryOnly;
  }
  auto const finding = ApplyIndex(path, *directory, tables);
  tabwerk::DirectoryAccess::IndexUnread(*directory) =
      finding == Finding::kUnreadable;
  if (finding == Finding::kValidAndApplied) return kValidIndexRead;
  if (WriteIndexToFile(directory) != kIndexNotWritten) return kIndexRebuilt;
  BuildIndices(tables);
  return kIndexInMemoryOnly;
}
