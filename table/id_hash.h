// IDs that lie far apart, with a row number each.
#ifndef TABWERK_TABLE_ID_HASH_H
#define TABWERK_TABLE_ID_HASH_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace tabwerk {

// A map from ID to row in one array (open addressing, linear probing), at most
// 15 bytes per entry plus a small constant.  Which IDs collide depends on where
// the array was made, so no file can choose IDs that all collide.
class IdHash {
 public:
  IdHash();

  std::size_t size() const noexcept { return count_; }
  // Row of that ID, or null; valid until the next change.
  std::int32_t* Find(std::int32_t id) noexcept;
  // The same as a copy; false, and *row unchanged, without the ID.
  bool Find(std::int32_t id, std::int32_t* row) const noexcept;
  // Enters an ID that the map does not have.  Throws std::bad_alloc, unchanged.
  void Insert(std::int32_t id, std::int32_t row);
  // Removes an ID; false when the map does not have it.
  bool Remove(std::int32_t id) noexcept;
  // Makes room for count entries.  Throws std::bad_alloc, unchanged.
  void Reserve(std::size_t count);
  // True when the next Insert has to make a larger array.
  bool IsFull() const noexcept;

  // Calls visit(id, row) for every entry, in no order.
  template <typename Visit>
  void ForEach(Visit visit) const {
    if (free_id_row_) visit(kFreeId, *free_id_row_);
    for (Slot const& slot : slots_) {
      if (slot.id != kFreeId) visit(slot.id, slot.row);
    }
  }

 private:
  // Marks a free slot; the entry of this very ID is kept apart.
  static constexpr std::int32_t kFreeId =
      std::numeric_limits<std::int32_t>::min();

  struct Slot {
    std::int32_t id = kFreeId;
    std::int32_t row = 0;
  };

  std::size_t Home(std::int32_t id) const noexcept;
  std::size_t Next(std::size_t slot) const noexcept {
    return slot + 1 == slots_.size() ? 0 : slot + 1;
  }
  // The slot that holds id, or the free one where it would go.
  std::size_t SlotOf(std::int32_t id) const noexcept;
  void Rebuild(std::size_t slot_count);

  std::vector<Slot> slots_;
  std::optional<std::int32_t> free_id_row_;
  std::size_t count_ = 0;
  std::uint64_t seed_;
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_ID_HASH_H
