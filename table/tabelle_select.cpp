// Selecting a column and a row, and counting rows.
#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>

#include "DBTabelle.h"
#include "platform/guarded.h"
#include "schema/layout.h"
#include "schema/names.h"
#include "schema/part.h"
#include "table/row_lookups.h"
#include "table/row_walk.h"
#include "table/sub_table.h"
#include "table/table_access.h"

using tabwerk::CountRows;
using tabwerk::DefinitionAccess;
using tabwerk::Guarded;
using tabwerk::NameKey;
using tabwerk::RowLookups;
using tabwerk::RowWalk;
using tabwerk::TableAccess;

int DBTabelle::SelectColumn(char const* name) {
  static constexpr NameKey kFolge("FOLGE");
  static constexpr NameKey kStatus("STATUS");
  static constexpr NameKey kId("ID");
  if (name == nullptr) {
    folge_selected_ = status_selected_ = id_selected_ = false;
    return 0;
  }
  NameKey const key(name);
  folge_selected_ = key.IsShort(kFolge);
  status_selected_ = key.IsShort(kStatus);
  id_selected_ = key.IsShort(kId);
  // Kept: the flag stays although the column does not change, so a value that
  // is set next goes to the old column and to the index of the missing one.
  if (definition_ == nullptr) return 0;
  DBFeld* field = DefinitionAccess::Fields(*definition_);
  while (field != nullptr && !key.IsNameOf(*field)) field = field->next;
  if (field == nullptr) return 0;
  current_field_ = field;
  for (DBSubTable& sub_table : sub_tables_) sub_table.field = field;
  return 1;
}

int DBTabelle::SelectZeile(long row) {
  if (row < 0) return 0;
  if (TableAccess::SelectInFirstPart(*this, row)) return 1;
  std::int64_t total = 0;
  for (std::size_t i = 0; i < sub_tables_.size(); ++i) {
    std::int64_t const first = total;
    total += sub_tables_[i].part->Rows();
    if (row >= total) continue;
    TableAccess::SetCurrent(*this, i, static_cast<std::int32_t>(row - first),
                            row);
    return 1;
  }
  // Kept: a row beyond the end selects the last one.
  current_row_ = static_cast<long>(total - 1);
  current_sub_table_ = 0;
  for (std::size_t i = sub_tables_.size(); i-- > 0;) {
    std::int32_t const rows = sub_tables_[i].part->Rows();
    if (rows <= 0) continue;
    sub_tables_[i].row = rows - 1;
    current_sub_table_ = i;
    break;
  }
  return 0;
}

int DBTabelle::GetAnzahlZeilen() {
  return static_cast<int>(std::min<std::int64_t>(
      CountRows(*this), std::numeric_limits<int>::max()));
}

namespace {

// Rows whose STATUS, the selected column, is 0; nothing when a row has none.
// The table is left as if every row had been selected in turn, up to the one
// where the count ended.
std::optional<int> CountActiveRows(DBTabelle& table) {
  // Without memory nothing is remembered.
  RowLookups* const lookups =
      Guarded(static_cast<RowLookups*>(nullptr),
              [&table] { return &TableAccess::NeedLookups(table); });
  if (lookups != nullptr) {
    if (auto const known = lookups->ActiveRows(table)) {
      tabwerk::SelectEveryRow(table);
      return known;
    }
  }
  auto* const field = TableAccess::Field(table);
  auto const status = tabwerk::ColumnOf(table, field, DBTypeInteger);
  int count = 0;
  RowWalk walk(table);
  while (walk.Next()) {
    std::int32_t value = 0;
    if (!walk.Read(status, &value)) {
      walk.Select();
      return std::nullopt;
    }
    if (value == 0) ++count;
  }
  walk.Select();
  if (lookups != nullptr && status.offset >= 0) {
    (void)Guarded(false, [&] {
      lookups->SetActiveRows(table, field, count);
      return true;
    });
  }
  return count;
}

}  // namespace

int DBTabelle::GetAnzahlAktiveZeilen() {
  char const* const column =
      current_field_ == nullptr ? "ID" : current_field_->name;
  long const row = current_row_;
  int count = 0;
  if (SelectColumn("STATUS") == 1) {
    auto const counted = CountActiveRows(*this);
    if (!counted) {
      // Kept: on this path the row is not selected again.
      SelectColumn(column);
      return 0;
    }
    count = *counted;
  }
  SelectColumn(column);
  SelectZeile(row);
  return count;
}
