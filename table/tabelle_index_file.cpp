// The sections of an index file: one index of one table each.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "DBTabelle.h"
#include "platform/guarded.h"
#include "platform/platform.h"
#include "schema/bytes.h"
#include "schema/layout.h"
#include "schema/names.h"
#include "table/id_index.h"
#include "table/row_walk.h"
#include "table/section_source.h"
#include "table/table_access.h"

using tabwerk::Guarded;
using tabwerk::IdIndex;
using tabwerk::RowUpdate;
using tabwerk::SectionSource;
using tabwerk::StreamSource;
using tabwerk::TableAccess;
namespace platform = tabwerk::platform;

namespace {

using Values = std::vector<std::int32_t>;

constexpr std::string_view kIdTag = "ID";
constexpr std::string_view kFolgeTag = "FOLGE";
constexpr std::string_view kStatusTag = "STATUS";

// Values are read in pieces of this many, so that a count that is not true of
// the file takes no memory.
constexpr std::size_t kPieceValues = std::size_t{1} << 16;

constexpr std::size_t kValueSize = sizeof(std::int32_t);

// Results of writing and reading are not examined here: the caller asks the
// stream when all sections are done.
void WriteSection(FILE* f, std::string_view tag, std::size_t count,
                  Values const& values) {
  if (f == nullptr) return;
  auto const stored_count = static_cast<std::int32_t>(count);
  (void)platform::Write(f, tag.data(), tag.size());
  (void)platform::Write(f, &stored_count, kValueSize);
  if (values.empty()) return;
  (void)platform::Write(f, values.data(), values.size() * kValueSize);
}

// True when the section has that tag; its bytes are consumed in either case.
bool ReadTag(SectionSource& source, std::string_view tag) {
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

// The next count values, or as many of them as the source has.
Values ReadValues(SectionSource& source, std::size_t count) {
  Values values;
  while (values.size() < count) {
    std::size_t const have = values.size();
    std::size_t const piece = std::min(count - have, kPieceValues);
    values.resize(have + piece);
    std::size_t const read =
        source.Read(values.data() + have, piece * kValueSize);
    if (read == piece * kValueSize) continue;
    values.resize(have + read / kValueSize);
    break;
  }
  return values;
}

// Sets an index to as many entries of that value as its section announces, and
// reads the section's values.  A source that ends early gives an index of the
// announced size as long as that is small, else one for the values read.
// False, an empty index and no values without memory.
bool ReadEntries(SectionSource& source, Values* index, std::int32_t initial,
                 Values* values) {
  index->clear();
  auto const count = static_cast<std::size_t>(ReadCount(source));
  return Guarded(false, [&] {
    Values read = ReadValues(source, count);
    index->assign(std::min(count, std::max(read.size(), kPieceValues)),
                  initial);
    *values = std::move(read);
    return true;
  });
}

// Makes room for entries of an ID and a row each.
void ReserveIds(Values const& entries, IdIndex* ids) {
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

// Sets values in the selected rows, in the column that is selected when it is
// made, without the upkeep of an index.
class ValueWriter {
 public:
  explicit ValueWriter(DBTabelle& table)
      : table_(table),
        column_(
            tabwerk::ColumnOf(table, TableAccess::Field(table), DBTypeInteger)),
        record_size_(RecordSizeOf(table)) {
    bool const followed = *TableAccess::FollowingIndex(table) != '\0';
    auto const* const selected = TableAccess::Current(table);
    usable_ = followed && column_.offset >= 0 && selected != nullptr &&
              selected->field == TableAccess::Field(table) &&
              IsFieldOfIndex(table) && TableAccess::Lookups(table) == nullptr;
  }

  // False, and nothing is set, where that takes SetWert.
  bool Write(std::int32_t value) {
    if (!usable_) return false;
    auto* const selected = TableAccess::Current(table_);
    auto* const record = selected->part->Row(selected->row, record_size_);
    if (record == nullptr) return false;
    tabwerk::StoreValue(record + column_.offset, value);
    ++selected->part->revision;
    return true;
  }

 private:
  static std::int32_t RecordSizeOf(DBTabelle& table) {
    auto const* const definition = TableAccess::Definition(table);
    return definition == nullptr
               ? 0
               : tabwerk::DefinitionAccess::RecordSize(*definition);
  }
  // The column that is missing keeps another one selected.
  static bool IsFieldOfIndex(DBTabelle& table) {
    return tabwerk::SameName(TableAccess::Field(table)->name,
                             TableAccess::FollowingIndex(table));
  }

  DBTabelle& table_;
  tabwerk::Column column_;
  std::int32_t record_size_;
  bool usable_ = false;
};

}  // namespace

void DBTabelle::WriteIndexID(FILE* f) {
  Guarded(0, [&] {
    auto const entries = id_index_->Entries();
    Values values;
    values.reserve(2 * entries.size());
    for (auto const& [id, row] : entries) {
      values.push_back(id);
      values.push_back(row);
    }
    WriteSection(f, kIdTag, entries.size(), values);
    return 1;
  });
}

void DBTabelle::WriteIndexFolge(FILE* f) {
  WriteSection(f, kFolgeTag, folge_index_.size(), folge_index_);
}

void DBTabelle::WriteIndexStatus(FILE* f) {
  WriteSection(f, kStatusTag, status_index_.size(), status_index_);
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
  if (!ReadTag(source, kIdTag)) return true;
  auto& ids = Ids(table);
  ids.Clear();
  bool const complete = Guarded(false, [&] {
    auto const count = static_cast<std::size_t>(ReadCount(source));
    Values const values = ReadValues(source, 2 * count);
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
  if (!ReadTag(source, kFolgeTag)) return true;
  auto& index = Folge(table);
  Values rows;
  bool const read = ReadEntries(source, &index, -1, &rows);
  bool const found = table.SelectColumn("FOLGE") == 1;
  if (update == RowUpdate::kIndexOnly) {
    std::copy(rows.begin(), rows.end(), index.begin());
    return read;
  }
  ValueWriter writer(table);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (!SelectRow(table, rows[i])) continue;
    auto const folge = static_cast<std::int32_t>(i);
    if (writer.Write(folge)) {
      if (i >= 1 && i < index.size()) index[i] = rows[i];
    } else if (found) {
      table.SetWert(static_cast<long>(folge));
    } else {
      // Without the column only the index gets the value.
      (void)FollowValue(table, 0, folge);
    }
  }
  return read;
}

bool TableAccess::ReadStatus(DBTabelle& table, SectionSource& source,
                             RowUpdate update) {
  if (!ReadTag(source, kStatusTag)) return true;
  auto& index = Status(table);
  Values values;
  bool const read = ReadEntries(source, &index, 0, &values);
  bool const found = table.SelectColumn("STATUS") == 1;
  bool const index_only = update == RowUpdate::kIndexOnly;
  if (index_only) std::copy(values.begin(), values.end(), index.begin());
  ValueWriter writer(table);
  for (std::size_t i = 0; i < values.size(); ++i) {
    // Kept: values beyond the last row fall on it, the last one winning.
    bool const is_row = SelectRow(table, static_cast<std::int64_t>(i));
    if (index_only) continue;
    if (is_row && writer.Write(values[i])) {
      if (i < index.size()) index[i] = values[i];
    } else if (found) {
      table.SetWert(static_cast<long>(values[i]));
    } else {
      (void)FollowValue(table, 0, values[i]);
    }
  }
  return read;
}

}  // namespace tabwerk
