// The sections of an index file: one index of one table each.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "DBTabelle.h"
#include "platform/guarded.h"
#include "platform/platform.h"
#include "table/id_index.h"
#include "table/row_walk.h"
#include "table/section_source.h"
#include "table/table_access.h"
#include "table/value_writer.h"

using tabwerk::Guarded;
using tabwerk::IdIndex;
using tabwerk::RowUpdate;
using tabwerk::RowWalk;
using tabwerk::SectionSource;
using tabwerk::SectionValues;
using tabwerk::StreamSource;
using tabwerk::TableAccess;
namespace platform = tabwerk::platform;

namespace {

using Numbers = std::vector<std::int32_t>;

constexpr std::string_view kIdTag = "ID";
constexpr std::string_view kFolgeTag = "FOLGE";
constexpr std::string_view kStatusTag = "STATUS";

constexpr std::size_t kValueSize = SectionValues::kValueSize;

// Results of writing and reading are not examined here: the caller asks the
// stream when all sections are done.
template <typename Entry>
void WriteSection(FILE* f, std::string_view tag,
                  std::vector<Entry> const& entries) {
  static_assert(std::is_standard_layout_v<Entry> &&
                sizeof(Entry) % kValueSize == 0);
  if (f == nullptr) return;
  auto const count = static_cast<std::int32_t>(entries.size());
  (void)platform::Write(f, tag.data(), tag.size());
  (void)platform::Write(f, &count, kValueSize);
  if (entries.empty()) return;
  (void)platform::Write(f, entries.data(), entries.size() * sizeof(Entry));
}

// True when the section has that tag; its bytes are consumed in either case.
bool ReadSectionTag(SectionSource& source, std::string_view tag) {
  std::array<char, 8> found{};
  std::size_t const size = source.Read(found.data(), tag.size());
  return std::string_view(found.data(), size) == tag;
}

// Number of entries; 0 where the source ends before it.
std::int32_t ReadCount(SectionSource& source) {
  std::int32_t count = 0;
  bool const read = source.Read(&count, kValueSize) == kValueSize;
  return read ? std::max(count, 0) : 0;
}

// Sets an index to as many entries of that value as its section announces, and
// reads the section's values.  A source that ends early gives an index of the
// announced size as long as that is small, else one for the values read.
// False, an empty index and no values without memory.
bool ReadEntries(SectionSource& source, Numbers* index, std::int32_t initial,
                 SectionValues* values) {
  index->clear();
  auto const count = static_cast<std::size_t>(ReadCount(source));
  return Guarded(false, [&] {
    SectionValues read(source, count);
    std::size_t const entries =
        std::min(count, std::max(read.size(), SectionValues::kPieceValues));
    // Rows that are added find room; the system makes it when it is used.
    index->reserve(entries + entries / 8);
    index->assign(entries, initial);
    *values = std::move(read);
    return true;
  });
}

// Makes room for entries of an ID and a row each.
void ReserveIds(SectionValues const& entries, IdIndex* ids) {
  if (entries.size() < 2) return;
  auto first = entries[0];
  auto last = entries[0];
  for (std::size_t i = 0; i + 1 < entries.size(); i += 2) {
    first = std::min(first, entries[i]);
    last = std::max(last, entries[i]);
  }
  ids->Reserve(entries.size() / 2, first, last);
}

// As SelectZeile.
bool SelectRow(DBTabelle& table, std::int64_t row) {
  return TableAccess::SelectInFirstPart(table, row) ||
         table.SelectZeile(static_cast<long>(row)) == 1;
}

// Selects the first count rows in turn; behind the last one that is the last.
void SelectRows(DBTabelle& table, std::size_t count) {
  auto const wanted = static_cast<std::int64_t>(count);
  auto const known = std::min(wanted, tabwerk::CountRows(table));
  RowWalk walk(table);
  if (walk.MoveTo(known - 1)) walk.Select();
  if (wanted > known) (void)SelectRow(table, wanted - 1);
}

}  // namespace

void DBTabelle::WriteIndexID(FILE* f) {
  static_assert(sizeof(IdIndex::Entry) == 2 * kValueSize);
  Guarded(0, [&] {
    WriteSection(f, kIdTag, id_index_->Entries());
    return 1;
  });
}

void DBTabelle::WriteIndexFolge(FILE* f) {
  WriteSection(f, kFolgeTag, folge_index_);
}

void DBTabelle::WriteIndexStatus(FILE* f) {
  WriteSection(f, kStatusTag, status_index_);
}

void DBTabelle::ReadIndexID(FILE* f) {
  StreamSource source(f);
  (void)TableAccess::ReadIds(*this, source);
}

void DBTabelle::ReadIndexFolge(FILE* f) {
  StreamSource source(f);
  (void)TableAccess::ReadFolge(*this, source, RowUpdate::kRowsToo);
}

void DBTabelle::ReadIndexFolgeNoUpdate(FILE* f) {
  StreamSource source(f);
  (void)TableAccess::ReadFolge(*this, source, RowUpdate::kIndexOnly);
}

void DBTabelle::ReadIndexStatus(FILE* f) {
  StreamSource source(f);
  (void)TableAccess::ReadStatus(*this, source, RowUpdate::kRowsToo);
}

void DBTabelle::ReadIndexStatusNoUdate(FILE* f) {
  StreamSource source(f);
  (void)TableAccess::ReadStatus(*this, source, RowUpdate::kIndexOnly);
}

namespace tabwerk {

bool TableAccess::ReadIds(DBTabelle& table, SectionSource& source) {
  if (!ReadSectionTag(source, kIdTag)) return true;
  auto& ids = Ids(table);
  ids.Clear();
  bool const complete = Guarded(false, [&] {
    auto const count = static_cast<std::size_t>(ReadCount(source));
    SectionValues const values(source, 2 * count);
    ReserveIds(values, &ids);
    for (std::size_t i = 0; i + 1 < values.size(); i += 2) {
      ids.Set(values[i], values[i + 1]);
    }
    return true;
  });
  if (!complete) ids.Clear();
  return complete;
}

bool TableAccess::ReadFolge(DBTabelle& table, SectionSource& source,
                            RowUpdate update) {
  if (!ReadSectionTag(source, kFolgeTag)) return true;
  auto& index = Folge(table);
  SectionValues rows;
  bool const read = ReadEntries(source, &index, -1, &rows);
  bool const found = table.SelectColumn("FOLGE") == 1;
  if (update == RowUpdate::kIndexOnly) {
    rows.CopyTo(&index);
    return read;
  }
  ValueWriter writer(table);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    auto const folge = static_cast<std::int32_t>(i);
    bool written = writer.WriteInFirstPart(rows[i], folge);
    if (!written) {
      writer.Select();
      if (!SelectRow(table, rows[i])) continue;
      written = writer.Write(folge);
    }
    if (written) {
      if (i >= 1 && i < index.size()) index[i] = rows[i];
    } else if (found) {
      table.SetWert(static_cast<long>(folge));
    } else {
      // Without the column only the index gets the value.
      FollowValue(table, folge);
    }
  }
  writer.Select();
  return read;
}

bool TableAccess::ReadStatus(DBTabelle& table, SectionSource& source,
                             RowUpdate update) {
  if (!ReadSectionTag(source, kStatusTag)) return true;
  auto& index = Status(table);
  SectionValues values;
  bool const read = ReadEntries(source, &index, 0, &values);
  bool const found = table.SelectColumn("STATUS") == 1;
  if (update == RowUpdate::kIndexOnly) {
    values.CopyTo(&index);
    SelectRows(table, values.size());
    return read;
  }
  ValueWriter writer(table);
  for (std::size_t i = 0; i < values.size(); ++i) {
    auto const row = static_cast<std::int32_t>(i);
    bool written = writer.WriteInFirstPart(row, values[i]);
    if (!written) {
      writer.Select();
      // Kept: values beyond the last row fall on it, the last one winning.
      written = SelectRow(table, row) && writer.Write(values[i]);
    }
    if (written) {
      if (i < index.size()) index[i] = values[i];
    } else if (found) {
      table.SetWert(static_cast<long>(values[i]));
    } else {
      FollowValue(table, values[i]);
    }
  }
  writer.Select();
  return read;
}

}  // namespace tabwerk
