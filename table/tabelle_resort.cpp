// Numbering the rows anew after rows came or went.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "DBTabelle.h"
#include "platform/guarded.h"
#include "schema/bytes.h"
#include "table/id_index.h"
#include "table/row_walk.h"
#include "table/table_access.h"

using tabwerk::Column;
using tabwerk::IdIndex;
using tabwerk::RowWalk;

namespace {

using Numbers = std::vector<std::int32_t>;

// Makes room for these numbers as keys.
void ReserveKeys(Numbers const& keys, IdIndex* index) {
  if (keys.empty()) return;
  auto const [least, most] = std::minmax_element(keys.begin(), keys.end());
  index->Reserve(keys.size(), *least, *most);
}

// Two orders of IDs merged into one.
//
// The merged order is a sequence whose entry 0 is the ID 0 and never moves.
// It begins with the recorded order, whose gaps are 0, too; every further ID
// that it lacks goes behind the ID given before.  A linked list does that
// without shifting: positions do not matter, only neighbours.
class MergedOrder {
 public:
  // recorded holds an ID, or 0, for every place from 1 on; entry 0 is 0.
  explicit MergedOrder(Numbers recorded);

  // Takes the next ID of the second order.
  void Add(std::int32_t id);
  // Calls use(id) for all entries but the first.
  template <typename Use>
  void ForEach(Use const& use) const {
    for (std::int32_t i = next_[0]; i >= 0; i = next_[Index(i)]) {
      use(ids_[Index(i)]);
    }
  }

 private:
  static std::size_t Index(std::int32_t entry) {
    return static_cast<std::size_t>(entry);
  }

  Numbers ids_;
  Numbers next_;  // -1 behind the last
  IdIndex entry_of_id_;
  std::int32_t last_ = 0;
};

MergedOrder::MergedOrder(Numbers recorded)
    : ids_(std::move(recorded)), next_(ids_.size()) {
  ReserveKeys(ids_, &entry_of_id_);
  // Backwards, so that the first entry of an ID is the one that is kept: for
  // the ID 0 that is entry 0.
  for (std::size_t i = ids_.size(); i-- > 0;) {
    auto const entry = static_cast<std::int32_t>(i);
    next_[i] = i + 1 < ids_.size() ? entry + 1 : -1;
    entry_of_id_.Set(ids_[i], entry);
  }
}

void MergedOrder::Add(std::int32_t id) {
  if (auto const known = entry_of_id_.Find(id)) {
    // Kept: for a gap this is entry 0, so unknown IDs behind it go in front.
    last_ = *known;
    return;
  }
  auto const entry = static_cast<std::int32_t>(ids_.size());
  ids_.push_back(id);
  next_.push_back(next_[Index(last_)]);
  next_[Index(last_)] = entry;
  entry_of_id_.Set(id, entry);
  last_ = entry;
}

// The order that the indices record: for every place the ID of its row.  A row
// has the first place from 1 on that names it; of several IDs of one row the
// largest counts.
Numbers RecordedOrder(IdIndex const& ids, Numbers const& folge_index) {
  IdIndex place_of_row;
  ReserveKeys(folge_index, &place_of_row);
  for (std::size_t place = folge_index.size(); place-- > 1;) {
    place_of_row.Set(folge_index[place], static_cast<std::int32_t>(place));
  }
  Numbers recorded(1, 0);
  for (auto const& [id, row] : ids.Entries()) {
    auto const place = place_of_row.Find(row);
    if (!place) continue;
    auto const position = static_cast<std::size_t>(*place);
    if (position >= recorded.size()) recorded.resize(position + 1, 0);
    recorded[position] = id;
  }
  return recorded;
}

// The order of the rows' own FOLGE values: for every place an ID, or 0.  Values
// outside the places are left out.
Numbers FieldOrder(DBTabelle& table, Column id_column, Column folge_column) {
  Numbers order(static_cast<std::size_t>(tabwerk::CountRows(table)) + 1, 0);
  std::int32_t id = 0;
  std::int32_t folge = 0;
  for (RowWalk walk(table); walk.Next();) {
    // A row without a value has that of the row before it.
    (void)walk.Read(id_column, &id);
    (void)walk.Read(folge_column, &folge);
    if (folge < 0 || static_cast<std::size_t>(folge) >= order.size()) continue;
    order[static_cast<std::size_t>(folge)] = id;
  }
  return order;
}

// Gives active rows the STATUS that the index records for their ID, and every
// STATUS that is none the value 1.
void RepairStatus(DBTabelle& table, Column id_column, Column status_column,
                  IdIndex const& ids, Numbers const& recorded) {
  std::int32_t id = 0;
  std::int32_t status = 0;
  for (RowWalk walk(table); walk.Next();) {
    (void)walk.Read(id_column, &id);
    auto const row = ids.Find(id);
    if (!row || *row < 0) continue;
    auto const position = static_cast<std::size_t>(*row);
    if (position >= recorded.size()) continue;
    (void)walk.Read(status_column, &status);
    if (status == 0) {
      walk.Write(status_column, recorded[position]);
    } else if (status != 1 && status != 2) {
      walk.Write(status_column, std::int32_t{1});
    }
  }
}

// Numbers the rows in that order, as far as they are active.
void Renumber(DBTabelle& table, IdIndex const& ids, Column folge_column,
              Column status_column, MergedOrder const& order) {
  RowWalk walk(table);
  while (walk.Next()) walk.Write(folge_column, std::int32_t{0});
  std::int32_t status = 0;
  std::int64_t next = 1;
  order.ForEach([&](std::int32_t id) {
    // Kept: for an ID that no row has, the row before is numbered again.
    if (auto const row = ids.Find(id)) (void)walk.MoveTo(*row);
    (void)walk.Read(status_column, &status);
    if (status != 0) return;
    if (next <= std::numeric_limits<std::int32_t>::max()) {
      walk.Write(folge_column, static_cast<std::int32_t>(next));
    }
    ++next;
  });
}

}  // namespace

void DBTabelle::ResortIndexID() { (void)tabwerk::TableAccess::Resort(*this); }

bool tabwerk::TableAccess::Resort(DBTabelle& table) {
  // Kept: a missing column is not selected, the one before it stays.  From here
  // on nothing depends on the selection until the indices are built.
  Column const id = tabwerk::SelectInteger(table, "ID");
  Column const status = tabwerk::SelectInteger(table, "STATUS");
  Column const folge = tabwerk::SelectInteger(table, "FOLGE");
  // Everything that needs memory comes before the first change.
  IdIndex fresh_ids;
  std::optional<MergedOrder> order;
  Numbers fresh_folge;
  Numbers fresh_status;
  bool const prepared = Guarded(false, [&] {
    fresh_ids = tabwerk::IndexRows(table, id);
    order.emplace(RecordedOrder(*table.id_index_, table.folge_index_));
    Numbers const field_order = FieldOrder(table, id, folge);
    for (std::size_t i = 1; i < field_order.size(); ++i) {
      order->Add(field_order[i]);
    }
    fresh_status.resize(field_order.size() - 1, 0);
    fresh_folge.resize(field_order.size(), -1);
    return true;
  });
  if (!prepared) return false;
  RepairStatus(table, id, status, *table.id_index_, table.status_index_);
  *table.id_index_ = std::move(fresh_ids);
  Renumber(table, *table.id_index_, folge, status, *order);
  MakeStatus(table, std::move(fresh_status));
  MakeFolge(table, std::move(fresh_folge));
  return true;
}
