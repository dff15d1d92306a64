#include "table/row_walk.h"

#include <vector>

#include "schema/layout.h"

namespace tabwerk {
namespace {

std::int32_t RecordSize(DBTabelle& table) {
  DBDefinition const* const definition = TableAccess::Definition(table);
  return definition == nullptr ? 0 : DefinitionAccess::RecordSize(*definition);
}

}  // namespace

Column ColumnOf(DBTabelle& table, DBFeld const* field, DBType type) noexcept {
  if (field == nullptr || field->type != type) return {};
  if (!LiesInRecord(type, field->offset, RecordSize(table))) return {};
  return {field->offset};
}

Column SelectInteger(DBTabelle& table, char const* name) {
  if (table.SelectColumn(name) == 0) return {};
  return ColumnOf(table, TableAccess::Field(table), DBTypeInteger);
}

std::int64_t CountRows(DBTabelle& table) noexcept {
  std::int64_t count = 0;
  for (DBSubTable const& part : TableAccess::SubTables(table)) {
    count += part.part->Rows();
  }
  return count;
}

std::int64_t TableAccess::ValueRow(DBTabelle& table) noexcept {
  std::int64_t row = 0;
  for (std::size_t i = 0; i < table.current_sub_table_; ++i) {
    row += table.sub_tables_[i].part->Rows();
  }
  return row + table.sub_tables_[table.current_sub_table_].row;
}

void SelectEveryRow(DBTabelle& table) noexcept {
  RowWalk walk(table);
  if (walk.MoveTo(CountRows(table) - 1)) walk.Select();
}

RowWalk::RowWalk(DBTabelle& table) noexcept
    : table_(table),
      parts_(TableAccess::SubTables(table).data()),
      part_count_(TableAccess::SubTables(table).size()),
      record_size_(RecordSize(table)) {
  if (part_count_ != 0) EnterPart(0, -1);
}

void RowWalk::EnterPart(std::size_t part, std::int32_t part_row) noexcept {
  part_index_ = part;
  part_ = parts_[part].part;
  part_row_ = part_row;
  part_rows_ = part_->Rows();
  record_ = std::ptrdiff_t{part_row} * record_size_;
  whole_rows_ = part_rows_;
  if (record_size_ <= 0) return;  // no column lies in it
  auto const rows_in_block =
      part_->rows.size() / static_cast<std::size_t>(record_size_);
  if (rows_in_block < static_cast<std::size_t>(part_rows_)) {
    whole_rows_ = static_cast<std::int32_t>(rows_in_block);
  }
}

bool RowWalk::NextPart() noexcept {
  std::size_t next = part_index_ + 1;
  while (next < part_count_ && parts_[next].part->Rows() <= 0) ++next;
  if (next >= part_count_) return false;
  EnterPart(next, -1);
  return true;
}

bool RowWalk::MoveTo(std::int64_t row) noexcept {
  std::int64_t first = 0;
  for (std::size_t i = 0; row >= first && i < part_count_; ++i) {
    std::int32_t const rows = parts_[i].part->Rows();
    if (row - first < rows) {
      EnterPart(i, static_cast<std::int32_t>(row - first));
      row_ = row;
      return true;
    }
    first += rows;
  }
  return false;
}

void RowWalk::Select() const noexcept {
  if (row_ < 0) return;
  for (std::size_t i = 0; i < part_index_; ++i) {
    std::int32_t const rows = parts_[i].part->Rows();
    if (rows > 0) parts_[i].row = rows - 1;
  }
  TableAccess::SetCurrent(table_, part_index_, part_row_, row_);
}

}  // namespace tabwerk
