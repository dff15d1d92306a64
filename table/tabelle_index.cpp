// Building the row indices and looking rows up in them.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "DBTabelle.h"
#include "platform/guarded.h"
#include "schema/bytes.h"
#include "table/id_index.h"
#include "table/row_walk.h"
#include "table/table_access.h"

using tabwerk::Column;
using tabwerk::Guarded;
using tabwerk::RowWalk;
using tabwerk::TableAccess;

namespace {

// Selects the column and calls use(row, value) for every row; the last row is
// selected afterwards.  Kept: a row without a value has that of the row before
// it, 0 at first.
template <typename Use>
void ForEachValue(DBTabelle& table, char const* name, Use const& use) {
  Column const column = tabwerk::SelectInteger(table, name);
  RowWalk walk(table);
  std::int32_t value = 0;
  while (walk.Next()) {
    (void)walk.Read(column, &value);  // else the value before is meant
    use(static_cast<std::int32_t>(walk.row()), value);
  }
  walk.Select();
}

// count entries; none, where there is no memory for them.
std::vector<std::int32_t> MakeEntries(std::int64_t count, std::int32_t value) {
  return Guarded(std::vector<std::int32_t>(), [&] {
    return std::vector<std::int32_t>(static_cast<std::size_t>(count), value);
  });
}

}  // namespace

tabwerk::IdIndex tabwerk::IndexRows(DBTabelle& table, Column id_column) {
  IdIndex index;
  auto const count = static_cast<std::size_t>(CountRows(table));
  std::int32_t id = 0;
  std::int32_t first = std::numeric_limits<std::int32_t>::max();
  std::int32_t last = std::numeric_limits<std::int32_t>::min();
  for (RowWalk walk(table); walk.Next();) {
    (void)walk.Read(id_column, &id);
    first = std::min(first, id);
    last = std::max(last, id);
  }
  if (count > 0) index.Reserve(count, first, last);
  id = 0;
  for (RowWalk walk(table); walk.Next();) {
    (void)walk.Read(id_column, &id);  // else the ID before is meant
    index.Set(id, static_cast<std::int32_t>(walk.row()));
  }
  return index;
}

void DBTabelle::MakeIndexID() {
  id_index_->Clear();
  Column const column = tabwerk::SelectInteger(*this, "ID");
  (void)Guarded(false, [&] {
    *id_index_ = tabwerk::IndexRows(*this, column);
    return true;
  });
  tabwerk::SelectEveryRow(*this);
}

void DBTabelle::MakeIndexFolge() {
  TableAccess::MakeFolge(*this, MakeEntries(tabwerk::CountRows(*this) + 1, -1));
}

void DBTabelle::MakeIndexStatus() {
  TableAccess::MakeStatus(*this, MakeEntries(tabwerk::CountRows(*this), 0));
}

void tabwerk::TableAccess::MakeFolge(DBTabelle& table,
                                     std::vector<std::int32_t> entries) {
  ForEachValue(table, "FOLGE", [&](std::int32_t row, std::int32_t folge) {
    auto const place = static_cast<std::size_t>(folge);
    if (folge >= 0 && place < entries.size()) entries[place] = row;
  });
  table.folge_index_ = std::move(entries);
}

void tabwerk::TableAccess::MakeStatus(DBTabelle& table,
                                      std::vector<std::int32_t> entries) {
  ForEachValue(table, "STATUS", [&](std::int32_t row, std::int32_t status) {
    auto const place = static_cast<std::size_t>(row);
    if (place < entries.size()) entries[place] = status;
  });
  table.status_index_ = std::move(entries);
}

long DBTabelle::MaxFolge() const {
  return folge_index_.empty() ? 0 : static_cast<long>(folge_index_.size() - 1);
}

long DBTabelle::GetRowByID(long id) {
  if (id_index_->empty() || !tabwerk::FitsInt32(id)) return -1;
  auto const key = static_cast<std::int32_t>(id);
  if (auto const row = id_index_->Find(key)) return *row;
  // Kept: an unknown ID is entered with row 0, and so counts as given away.
  return Guarded(-1L, [&] {
    id_index_->Set(key, 0);
    return 0L;
  });
}

long DBTabelle::GetRowByFolge(long folge) const {
  if (folge < 0 || static_cast<std::size_t>(folge) >= folge_index_.size()) {
    return -1;
  }
  return folge_index_[static_cast<std::size_t>(folge)];
}
