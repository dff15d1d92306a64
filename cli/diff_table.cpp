#include "cli/diff_table.h"

#include <algorithm>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

#include "cli/diff_values.h"
#include "cli/table_list.h"

namespace tabwerk::tool {
namespace {

struct RowKey {
  std::int32_t id;
  std::int32_t row;

  bool operator<(RowKey const& other) const {
    return std::tie(id, row) < std::tie(other.id, other.row);
  }
};

std::vector<RowKey> KeysOf(SnapshotTable const& table, DBFeld const& id) {
  std::vector<RowKey> keys;
  std::int64_t const count = table.RowCount();
  keys.reserve(static_cast<std::size_t>(count));
  for (std::int64_t row = 0; row < count; ++row) {
    keys.push_back({SnapshotRow(table, row).Integer(id.offset),
                    static_cast<std::int32_t>(row)});
  }
  // Most tables are in order already.
  if (!std::is_sorted(keys.begin(), keys.end())) {
    std::sort(keys.begin(), keys.end());
  }
  return keys;
}

// A table that both have.
class TableComparison {
 public:
  TableComparison(SnapshotTable const& before, SnapshotTable const& after,
                  DiffOptions const& options, DiffOut& out)
      : before_(before),
        after_(after),
        options_(options),
        out_(out),
        columns_before_(DiffColumns(before, options)),
        columns_after_(DiffColumns(after, options)) {
    head_.change = Change::kChanged;
    head_.name = before.name;
    head_.rows_before = before.RowCount();
    head_.rows_after = after.RowCount();
  }

  // True when they differ.
  bool Run() {
    MatchColumns();
    DBFeld const* const id_before = DiffId(before_, options_);
    DBFeld const* const id_after = DiffId(after_, options_);
    head_.by_id = id_before != nullptr && id_after != nullptr;
    if (!head_.columns.empty() || head_.reordered) Begin();
    if (head_.by_id) {
      CompareById(*id_before, *id_after);
    } else {
      CompareByNumber();
    }
    if (begun_) out_.EndTable(counts_);
    return begun_;
  }

 private:
  void Begin() {
    if (!std::exchange(begun_, true)) out_.BeginTable(head_);
  }

  void MatchColumns() {
    // Those of the second one that have no partner yet, with their places.
    std::map<std::string, std::size_t> rest;
    for (DiffColumn const& column : columns_after_) {
      rest.emplace(column.name, rest.size());
    }
    std::vector<std::size_t> places;  // of the partners
    for (DiffColumn const& column : columns_before_) {
      auto const found = rest.find(column.name);
      DBType const type = column.field->type;
      if (found == rest.end()) {
        head_.columns.push_back(
            {Change::kRemoved, column.name, TypeName(type), ""});
        continue;
      }
      DBFeld const& partner = *columns_after_[found->second].field;
      places.push_back(found->second);
      rest.erase(found);
      if (partner.type == type) {
        pairs_.push_back(
            {column.name, type, column.field->offset, partner.offset});
      } else {
        head_.columns.push_back({Change::kChanged, column.name, TypeName(type),
                                 TypeName(partner.type)});
      }
    }
    head_.reordered = !std::is_sorted(places.begin(), places.end());
    for (DiffColumn const& column : columns_after_) {
      if (!rest.contains(column.name)) continue;
      head_.columns.push_back(
          {Change::kAdded, column.name, "", TypeName(column.field->type)});
    }
  }

  void CompareById(DBFeld const& id_before, DBFeld const& id_after) {
    auto const keys_before = KeysOf(before_, id_before);
    auto const keys_after = KeysOf(after_, id_after);
    auto left = keys_before.begin();
    auto right = keys_after.begin();
    while (left != keys_before.end() || right != keys_after.end()) {
      bool const has_left = left != keys_before.end();
      bool const has_right = right != keys_after.end();
      if (has_left && has_right && left->id == right->id) {
        Both(left->id, left->row, right->row);
        ++left;
        ++right;
      } else if (has_left && (!has_right || left->id < right->id)) {
        Removed(left->id, left->row);
        ++left;
      } else {
        Added(right->id, right->row);
        ++right;
      }
    }
  }

  void CompareByNumber() {
    std::int64_t const common = std::min(head_.rows_before, head_.rows_after);
    for (std::int64_t row = 0; row < common; ++row) Both(row, row, row);
    for (std::int64_t row = common; row < head_.rows_before; ++row) {
      Removed(row, row);
    }
    for (std::int64_t row = common; row < head_.rows_after; ++row) {
      Added(row, row);
    }
  }

  void Both(std::int64_t key, std::int64_t row_before, std::int64_t row_after) {
    Count(key);
    SnapshotRow const before(before_, row_before);
    SnapshotRow const after(after_, row_after);
    if (SameValues(before, after, pairs_)) {
      ++counts_.same;
      return;
    }
    ++counts_.changed;
    if (!Wants()) return;
    out_.Row({Change::kChanged,
              key,
              occurrence_,
              ChangedCells(before, after, pairs_),
              {}});
  }

  void Removed(std::int64_t key, std::int64_t row) {
    Count(key);
    ++counts_.removed;
    if (!Wants()) return;
    out_.Row({Change::kRemoved,
              key,
              occurrence_,
              {},
              ValuesOf(SnapshotRow(before_, row), columns_before_)});
  }

  void Added(std::int64_t key, std::int64_t row) {
    Count(key);
    ++counts_.added;
    if (!Wants()) return;
    out_.Row({Change::kAdded,
              key,
              occurrence_,
              {},
              ValuesOf(SnapshotRow(after_, row), columns_after_)});
  }

  // Counts the rows with one key, which come one behind the other.
  void Count(std::int64_t key) {
    occurrence_ = last_key_ == key ? occurrence_ + 1 : 1;
    last_key_ = key;
  }

  // Whether one more row that differs is to be handed out.
  bool Wants() {
    Begin();
    if (options_.summary || !out_.WantsMore()) return false;
    return !options_.limit ||
           counts_.changed + counts_.removed + counts_.added <= *options_.limit;
  }

  static std::vector<ColumnCell> ValuesOf(
      SnapshotRow const& row, std::vector<DiffColumn> const& columns) {
    std::vector<ColumnCell> values;
    values.reserve(columns.size());
    for (DiffColumn const& column : columns) {
      values.push_back({column.name, ValueOf(row, column.field->type,
                                             column.field->offset)});
    }
    return values;
  }

  SnapshotTable const& before_;
  SnapshotTable const& after_;
  DiffOptions const& options_;
  DiffOut& out_;
  std::vector<DiffColumn> columns_before_;
  std::vector<DiffColumn> columns_after_;
  std::vector<ColumnPair> pairs_;
  TableChange head_;
  ChangeCounts counts_;
  bool begun_ = false;
  std::optional<std::int64_t> last_key_;
  int occurrence_ = 0;
};

}  // namespace

bool CompareTables(SnapshotTable const& before, SnapshotTable const& after,
                   DiffOptions const& options, DiffOut& out) {
  return TableComparison(before, after, options, out).Run();
}

void HandOutLoneTable(SnapshotTable const& table, Change change,
                      DiffOptions const& options, DiffOut& out) {
  TableChange head;
  head.change = change;
  head.name = table.name;
  head.by_id = DiffId(table, options) != nullptr;
  bool const is_added = change == Change::kAdded;
  (is_added ? head.rows_after : head.rows_before) = table.RowCount();
  for (DiffColumn const& column : DiffColumns(table, options)) {
    char const* const type = TypeName(column.field->type);
    head.columns.push_back(
        {change, column.name, is_added ? "" : type, is_added ? type : ""});
  }
  out.BeginTable(head);
  ChangeCounts counts;
  (is_added ? counts.added : counts.removed) = table.RowCount();
  out.EndTable(counts);
}

}  // namespace tabwerk::tool
