// The check of an index file as a whole.
#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <string_view>

#include "base/index_file.h"
#include "schema/bytes.h"
#include "table/section_source.h"

namespace tabwerk {
namespace {

template <typename T>
std::optional<T> Next(MemorySource* source) {
  std::array<std::byte, sizeof(T)> bytes;
  if (source->Read(bytes.data(), bytes.size()) < bytes.size()) {
    return std::nullopt;
  }
  return LoadValue<T>(bytes.data());
}

// The size and the row numbers of one section.
struct Section {
  std::int32_t count = 0;
  std::int32_t smallest_row = std::numeric_limits<std::int32_t>::max();
  std::int32_t largest_row = std::numeric_limits<std::int32_t>::min();

  bool RowsLieBetween(std::int32_t lowest, std::int32_t row_count) const {
    return count == 0 || (smallest_row >= lowest && largest_row < row_count);
  }
};

// Reads a section whose entries have that many values, the last one of them a
// row number; nothing when it is not there whole.
std::optional<Section> ReadSection(MemorySource* source, std::string_view tag,
                                   std::int64_t values_per_entry) {
  std::array<char, 8> found{};
  auto const tag_size = source->Read(found.data(), tag.size());
  if (std::string_view(found.data(), tag_size) != tag) return std::nullopt;
  auto const count = Next<std::int32_t>(source);
  auto const entry_size =
      values_per_entry * static_cast<std::int64_t>(sizeof(std::int32_t));
  auto const remaining = static_cast<std::int64_t>(source->Remaining().size());
  if (!count || *count < 0 || *count * entry_size > remaining) {
    return std::nullopt;
  }
  Section section;
  section.count = *count;
  auto const bytes = static_cast<std::size_t>(*count * entry_size);
  auto const* const entries = source->Remaining().data();
  // Before the row of an entry of two values stands any ID.
  auto const step = static_cast<std::size_t>(entry_size);
  for (auto at = step; at <= bytes; at += step) {
    auto const row =
        LoadValue<std::int32_t>(entries + at - sizeof(std::int32_t));
    section.smallest_row = std::min(section.smallest_row, row);
    section.largest_row = std::max(section.largest_row, row);
  }
  source->Skip(bytes);
  return section;
}

// True when the next three sections can be those of one table.  With
// row_count, they must be those of a table of so many rows.
bool CheckTable(MemorySource* source, std::optional<int> row_count) {
  auto const ids = ReadSection(source, "ID", 2);
  if (!ids) return false;
  auto const folge = ReadSection(source, "FOLGE", 1);
  if (!folge) return false;
  auto const status = ReadSection(source, "STATUS", 1);
  if (!status) return false;
  auto const rows = status->count;
  return folge->count - 1 == rows && ids->count <= rows &&
         ids->RowsLieBetween(0, rows) && folge->RowsLieBetween(-1, rows) &&
         (!row_count || *row_count == rows);
}

}  // namespace

bool KnowsStamp(std::span<std::byte const> content,
                std::vector<long long> const& stamps, std::size_t position) {
  MemorySource source(content);
  std::optional<std::int64_t> stamp;
  for (std::size_t i = 0; i <= position; ++i) {
    stamp = Next<std::int64_t>(&source);
  }
  return stamp && *stamp == stamps[position];
}

bool KnowsStampsBut(std::span<std::byte const> content,
                    std::vector<long long> const& stamps,
                    std::size_t position) {
  MemorySource source(content);
  for (std::size_t i = 0; i < stamps.size(); ++i) {
    auto const stamp = Next<std::int64_t>(&source);
    if (i != position && stamp != stamps[i]) return false;
  }
  return true;
}

IndexContent CheckIndex(std::span<std::byte const> content,
                        DBDirectory const& directory,
                        std::vector<DBTabelle*> const& tables) {
  MemorySource source(content);
  bool same = true;
  for (auto const expected : TimeStamps(directory)) {
    auto const stamp = Next<std::int64_t>(&source);
    if (!stamp) return IndexContent::kUnusable;
    same = same && *stamp == expected;
  }
  for (auto* table : tables) {
    auto const rows =
        same ? std::optional(table->GetAnzahlZeilen()) : std::nullopt;
    if (!CheckTable(&source, rows)) return IndexContent::kUnusable;
  }
  if (!source.Remaining().empty()) return IndexContent::kUnusable;
  return same ? IndexContent::kValid : IndexContent::kStale;
}

}  // namespace tabwerk
