// IDs that lie close together, with a row number each.
#ifndef TABWERK_TABLE_ID_ARRAY_H
#define TABWERK_TABLE_ID_ARRAY_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "table/bit_tree.h"

namespace tabwerk {

// A map from ID to row: an array over a window of IDs, 4 bytes and one bit
// each.
class IdArray {
 public:
  // An empty map over no window.
  IdArray() = default;
  // An empty map over the IDs from first to last.  Throws std::bad_alloc.
  IdArray(std::int64_t first, std::int64_t last);

  // The same entries over another window, which has all their IDs.  Throws
  // std::bad_alloc.
  IdArray OverWindow(std::int64_t first, std::int64_t last) const;

  std::size_t size() const noexcept { return count_; }
  // Number of IDs in the window.
  std::size_t WindowSize() const noexcept { return rows_.size(); }
  bool Covers(std::int32_t id) const noexcept {
    return id >= first_ && static_cast<std::size_t>(id - first_) < rows_.size();
  }
  // False, and *row unchanged, when the map does not have the ID.
  bool Find(std::int32_t id, std::int32_t* row) const noexcept {
    if (!Covers(id)) return false;
    std::size_t const position = Position(id);
    std::int32_t const found = rows_[position];
    // The one row number that stands for none, too, needs a second look.
    if (found == kNoRow && !present_.Has(position)) return false;
    *row = found;
    return true;
  }
  bool Has(std::int32_t id) const noexcept {
    std::int32_t row = 0;
    return Find(id, &row);
  }
  // Enters an ID of the window or replaces its row.
  void Set(std::int32_t id, std::int32_t row) noexcept {
    std::size_t const position = Position(id);
    rows_[position] = row;
    if (present_.Has(position)) return;
    present_.Insert(position);
    ++count_;
  }
  // Removes an ID; false when the map does not have it.
  bool Remove(std::int32_t id) noexcept;

  // The map must not be empty.
  std::int32_t LowestId() const noexcept { return IdAt(present_.Smallest()); }
  std::int32_t LargestId() const noexcept { return IdAt(present_.Largest()); }
  // Lowest ID from `from` on that the map does not have; nothing when all are
  // taken.
  std::optional<std::int32_t> LowestFreeId(std::int32_t from) const noexcept;

  // Calls visit(id, row) for every entry in ascending order of ID.
  template <typename Visit>
  void ForEach(Visit visit) const {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      if (present_.Has(i)) visit(IdAt(i), rows_[i]);
    }
  }

 private:
  // What an absent ID has in place of a row.
  static constexpr std::int32_t kNoRow =
      std::numeric_limits<std::int32_t>::min();

  std::size_t Position(std::int32_t id) const noexcept {
    return static_cast<std::size_t>(id - first_);
  }
  std::int32_t IdAt(std::size_t position) const noexcept {
    return static_cast<std::int32_t>(first_ +
                                     static_cast<std::int64_t>(position));
  }

  std::int64_t first_ = 0;
  std::vector<std::int32_t> rows_;
  BitTree present_;
  std::size_t count_ = 0;
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_ID_ARRAY_H
