// The rows of a table one after the other, without selecting each of them.
#ifndef TABWERK_TABLE_ROW_WALK_H
#define TABWERK_TABLE_ROW_WALK_H

#include <cstddef>
#include <cstdint>

#include "DBTabelle.h"
#include "schema/bytes.h"
#include "schema/part.h"
#include "table/id_index.h"
#include "table/sub_table.h"
#include "table/table_access.h"

namespace tabwerk {

// Where the values of one field lie in a row record.
struct Column {
  std::int32_t offset = -1;  // bytes; -1 when the column cannot be read
};

// The place of field as a column of that type; one that cannot be read when
// field is null, has another type or does not lie inside the record.
Column ColumnOf(DBTabelle& table, DBFeld const* field, DBType type) noexcept;

// The integer column of that name, selected; one that cannot be read when
// there is none.  The selection is SelectColumn's in either case.
Column SelectInteger(DBTabelle& table, char const* name);

// Number of rows in all parts.
std::int64_t CountRows(DBTabelle& table) noexcept;

// Leaves the table as if every row had been selected in turn.
void SelectEveryRow(DBTabelle& table) noexcept;

// The index of the IDs in that column.  A row without a value has the ID of
// the row before it, 0 at first.  Throws std::bad_alloc.
IdIndex IndexRows(DBTabelle& table, Column id_column);

// Goes through the rows in order.
//
// The table must not get or lose rows meanwhile.  The selection stays until
// Select(), which leaves the table as if every row up to the present one had
// been selected in turn.
class RowWalk {
 public:
  // Stands before the first row.
  explicit RowWalk(DBTabelle& table) noexcept;

  // To the next row; false when there is none.  The walk then stays.
  bool Next() noexcept {
    if (part_row_ + 1 >= part_rows_ && !NextPart()) return false;
    ++part_row_;
    ++row_;
    record_ += record_size_;
    return true;
  }
  // Over the next rows of the part, as long as skips(value) is true of their
  // value in that column; ends before a row whose value cannot be read.
  template <typename T, typename Skips>
  void SkipWhile(Column column, Skips const& skips) noexcept {
    if (column.offset < 0 || part_row_ < 0) return;
    std::byte const* const start = part_->rows.data() + record_ + column.offset;
    std::ptrdiff_t const most = whole_rows_ - 1 - part_row_;
    std::ptrdiff_t skipped = 0;
    while (skipped < most &&
           skips(LoadValue<T>(start + (skipped + 1) * record_size_))) {
      ++skipped;
    }
    part_row_ += static_cast<std::int32_t>(skipped);
    row_ += skipped;
    record_ += skipped * record_size_;
  }
  // To any row, given by its number over all parts; false, and no move, when
  // there is no such row.
  bool MoveTo(std::int64_t row) noexcept;
  // Number over all parts; -1 before the first row.
  std::int64_t row() const noexcept { return row_; }
  TablePart& part() const noexcept { return *part_; }

  // Value of the present row; false, and *value unchanged, when its bytes do
  // not lie inside the row block.
  template <typename T>
  bool Read(Column column, T* value) const noexcept {
    std::byte const* const place = Place(column);
    if (place == nullptr) return false;
    *value = LoadValue<T>(place);
    return true;
  }
  // Stores a value in the present row, if it can be read.
  template <typename T>
  void Write(Column column, T value) const noexcept {
    std::byte* const place = Place(column);
    if (place == nullptr) return;
    StoreValue(place, value);
    ++part().revision;
  }
  std::byte* Place(Column column) const noexcept {
    if (column.offset < 0 || part_row_ < 0 || part_row_ >= whole_rows_) {
      return nullptr;
    }
    return part_->rows.data() + record_ + column.offset;
  }

  // Selects the present row; nothing happens before the first one.
  void Select() const noexcept;

 private:
  bool NextPart() noexcept;
  void EnterPart(std::size_t part, std::int32_t part_row) noexcept;

  DBTabelle& table_;
  DBSubTable* parts_;
  std::size_t part_count_;
  std::int32_t record_size_;
  std::size_t part_index_ = 0;
  TablePart* part_ = nullptr;
  std::int32_t part_row_ = -1;
  std::int32_t part_rows_ = 0;
  std::int32_t whole_rows_ = 0;  // those that lie wholly inside the row block
  std::ptrdiff_t record_ = 0;    // of the present row, in bytes from the first
  std::int64_t row_ = -1;
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_ROW_WALK_H
