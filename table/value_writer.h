// Setting the values of one column row by row.
#ifndef TABWERK_TABLE_VALUE_WRITER_H
#define TABWERK_TABLE_VALUE_WRITER_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "DBTabelle.h"
#include "schema/bytes.h"
#include "schema/layout.h"
#include "schema/names.h"
#include "table/row_walk.h"
#include "table/table_access.h"

namespace tabwerk {

// Sets values of rows in the column that is selected when it is made, without
// the upkeep of an index.
class ValueWriter {
 public:
  explicit ValueWriter(DBTabelle& table)
      : table_(table),
        column_(ColumnOf(table, TableAccess::Field(table), DBTypeInteger)),
        record_size_(RecordSizeOf(table)) {
    bool const followed = *TableAccess::FollowingIndex(table) != '\0';
    auto const* const selected = TableAccess::Current(table);
    usable_ = followed && column_.offset >= 0 && selected != nullptr &&
              selected->field == TableAccess::Field(table) &&
              IsFieldOfIndex(table) && TableAccess::Lookups(table) == nullptr;
    if (usable_) FindFirstPart();
  }

  // Sets the value of a row of the first part, as most are, without selecting
  // it.  False, and nothing is set, where that takes more.
  bool WriteInFirstPart(std::int32_t row, std::int32_t value) {
    if (static_cast<std::uint32_t>(row) >= first_part_rows_) return false;
    StoreValue(first_part_ + std::ptrdiff_t{row} * record_size_, value);
    unselected_row_ = row;
    return true;
  }
  // Selects the row that was written last without it.
  void Select() {
    if (unselected_row_ < 0) return;
    (void)TableAccess::SelectInFirstPart(table_, unselected_row_);
    ++TableAccess::Current(table_)->part->revision;
    unselected_row_ = -1;
  }
  // Sets the value of the selected row.  False, and nothing is set, where that
  // takes SetWert.
  bool Write(std::int32_t value) {
    if (!usable_) return false;
    auto* const selected = TableAccess::Current(table_);
    auto* const record = selected->part->Row(selected->row, record_size_);
    if (record == nullptr) return false;
    StoreValue(record + column_.offset, value);
    ++selected->part->revision;
    return true;
  }

 private:
  void FindFirstPart() {
    auto& part = *TableAccess::SubTables(table_).front().part;
    if (part.rows.size() == 0) return;
    first_part_ = part.rows.data() + column_.offset;
    first_part_rows_ =
        std::min(static_cast<std::size_t>(part.Rows()),
                 part.rows.size() / static_cast<std::size_t>(record_size_));
  }
  static std::int32_t RecordSizeOf(DBTabelle& table) {
    auto const* const definition = TableAccess::Definition(table);
    return definition == nullptr ? 0
                                 : DefinitionAccess::RecordSize(*definition);
  }
  // The column that is missing keeps another one selected.
  static bool IsFieldOfIndex(DBTabelle& table) {
    return SameName(TableAccess::Field(table)->name,
                    TableAccess::FollowingIndex(table));
  }

  DBTabelle& table_;
  Column column_;
  std::int32_t record_size_;
  bool usable_ = false;
  std::byte* first_part_ = nullptr;  // its first value
  std::size_t first_part_rows_ = 0;  // that lie wholly in its block
  std::int32_t unselected_row_ = -1;
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_VALUE_WRITER_H
