#include "base/index_file.h"

#include <string>

#include "base/file_lock.h"
#include "base/opened_tables.h"
#include "platform/platform.h"
#include "schema/directory_access.h"
#include "schema/format.h"
#include "table/table_access.h"

namespace tabwerk {

zWString IndexPath(DBDirectory const& directory) {
  auto const user_file = directory.GetUserFile();
  if (user_file <= 0) return {};
  zSplitPath const path(
      DirectoryAccess::Files(directory)[static_cast<std::size_t>(user_file)]
          .name);
  return path.GetDrive() + path.GetDirectory() +
         DirectoryAccess::Name(directory) +
         zWString::fromLatin1(format::kIndexFileExtension);
}

zWString PendingIndexPath(zWString const& index_path, std::int64_t time_stamp) {
  return index_path + zWString::fromLatin1("." + std::to_string(time_stamp));
}

bool LoadedTables(DBDirectory const& directory,
                  std::vector<DBTabelle*>* tables) {
  bool all = true;
  for (auto* entry = directory.GetEntries(); entry != nullptr;
       entry = entry->GetNext()) {
    auto* const table = OpenedTables::Current(*entry);
    bool const loaded = table != nullptr && AllPartsLoaded(*entry);
    if (loaded) tables->push_back(table);
    all = all && loaded;
  }
  return all;
}

std::vector<long long> TimeStamps(DBDirectory const& directory) {
  std::vector<long long> stamps;
  for (auto const& file : DirectoryAccess::Files(directory)) {
    stamps.push_back(file.time_stamp);
  }
  return stamps;
}

std::size_t StampBytes(DBDirectory const& directory) {
  return directory.GetNumberFiles() * sizeof(std::int64_t);
}

namespace {

// Far more than any index has; a larger file is none.
constexpr std::int64_t kLargestIndex = std::int64_t{1} << 32U;

std::optional<platform::Block> ReadWhole(FILE* stream) {
  platform::Block content;
  auto const size = platform::FileSize(stream);
  if (size < 0) return std::nullopt;
  // Too much to be an index: nothing of it is needed to tell so.
  if (size > kLargestIndex) return content;
  auto const bytes = static_cast<std::size_t>(size);
  if (!content.ResetUnset(bytes) ||
      platform::Read(stream, content.data(), bytes) != bytes) {
    return std::nullopt;
  }
  return content;
}

}  // namespace

std::optional<platform::Block> ReadIndexBytes(zWString const& path,
                                              bool* missing) {
  auto error = platform::Error::kNone;
  // Another program holds an index only while it reads or moves it.
  auto* const stream = OpenPatiently(path, platform::Mode::kRead, &error);
  // Asked twice, because an index that counts as missing is written anew.
  *missing = stream == nullptr && error == platform::Error::kNotFound &&
             !platform::Exists(path);
  if (stream == nullptr) return std::nullopt;
  auto content = ReadWhole(stream);
  // Not examined: the stream was only read.
  (void)platform::Close(stream);
  return content;
}

void BuildIndices(DBTabelle& table) {
  table.MakeIndexID();
  table.MakeIndexFolge();
  table.MakeIndexStatus();
}

std::vector<DBTabelle> RebuiltCopiesOf(std::vector<DBTabelle*> const& tables) {
  std::vector<DBTabelle> copies;
  copies.reserve(tables.size());
  for (auto const* table : tables) BuildIndices(copies.emplace_back(*table));
  return copies;
}

std::vector<DBTabelle*> PointersTo(std::vector<DBTabelle>& tables) {
  std::vector<DBTabelle*> pointers;
  pointers.reserve(tables.size());
  for (auto& table : tables) pointers.push_back(&table);
  return pointers;
}

namespace {

// False when memory was exhausted while the indices were built.
bool IndicesAreWhole(DBTabelle& table) {
  auto const rows = static_cast<std::size_t>(table.GetAnzahlZeilen());
  return TableAccess::Folge(table).size() == rows + 1 &&
         TableAccess::Status(table).size() == rows &&
         (rows == 0 || !TableAccess::Ids(table).empty());
}

// Bytes of a table's three sections: tags, counts and entries.
std::size_t SectionBytes(DBTabelle& table) {
  constexpr std::size_t kTagsAndCounts = 2 + 5 + 6 + 3 * sizeof(std::int32_t);
  auto const values = 2 * TableAccess::Ids(table).size() +
                      TableAccess::Folge(table).size() +
                      TableAccess::Status(table).size();
  return kTagsAndCounts + values * sizeof(std::int32_t);
}

}  // namespace

bool WriteIndex(zWString const& path, std::vector<long long> const& time_stamps,
                std::vector<DBTabelle*> const& tables) {
  auto error = platform::Error::kNone;
  auto* const stream = platform::OpenFile(path, platform::Mode::kCreate,
                                          platform::Share::kDenyAll, &error);
  if (stream == nullptr) return false;
  for (auto const stamp : time_stamps) {
    platform::Write(stream, &stamp, sizeof stamp);
  }
  auto size = time_stamps.size() * sizeof(std::int64_t);
  bool ok = true;
  for (auto* table : tables) {
    table->WriteIndexID(stream);
    table->WriteIndexFolge(stream);
    table->WriteIndexStatus(stream);
    ok = ok && IndicesAreWhole(*table);
    size += SectionBytes(*table);
  }
  ok = ok && platform::Sync(stream) && !platform::Failed(stream) &&
       platform::FileSize(stream) == static_cast<std::int64_t>(size);
  ok = platform::Close(stream) && ok;
  // What cannot be deleted is overwritten by the next attempt.
  if (!ok) DeleteLeftover(path);
  return ok;
}

}  // namespace tabwerk
