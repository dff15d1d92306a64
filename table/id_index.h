// The index of the IDs of a table.
#ifndef TABWERK_TABLE_ID_INDEX_H
#define TABWERK_TABLE_ID_INDEX_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace tabwerk {

// An ordered map from ID to row number.
//
// IDs that lie close together are kept in an array that the ID itself
// addresses, others in a hash; the index changes its form as entries come and
// go, at amortised constant cost.  Memory stays below about 32 bytes per entry
// whatever the IDs are.
class IdIndex {
 public:
  using Entry = std::pair<std::int32_t, std::int32_t>;  // ID, row

  IdIndex();
  IdIndex(IdIndex const& other);
  IdIndex(IdIndex&& other) noexcept
      : storage_(std::exchange(other.storage_, nullptr)) {}
  IdIndex& operator=(IdIndex const& other);
  IdIndex& operator=(IdIndex&& other) noexcept {
    std::swap(storage_, other.storage_);
    return *this;
  }
  ~IdIndex();

  void Clear() noexcept;
  std::size_t size() const noexcept;
  bool empty() const noexcept { return size() == 0; }

  // Row of that ID, if the index has it.
  std::optional<std::int32_t> Find(std::int32_t id) const noexcept {
    std::int32_t row = 0;
    return Find(id, &row) ? std::optional(row) : std::nullopt;
  }
  // The same; false, and *row unchanged, without it.  Costs less than an
  // optional that is handed over in two pieces and read in one.
  bool Find(std::int32_t id, std::int32_t* row) const noexcept;
  // Enters an ID or replaces its row.  Throws std::bad_alloc, unchanged.
  void Set(std::int32_t id, std::int32_t row);
  // Removes an ID; nothing happens when the index does not have it.
  void Erase(std::int32_t id) noexcept;
  // Expects count entries in all.
  void Reserve(std::size_t count);
  // Expects count entries in all, with IDs from first to last; the index must
  // be empty.
  void Reserve(std::size_t count, std::int32_t first, std::int32_t last);

  // Largest ID; the index must not be empty.  Amortised logarithmic.
  std::int32_t LargestId() const;
  // Lowest ID from `from` on that the index does not have; nothing when all
  // are taken.  Amortised logarithmic as long as `from` stays the same.
  std::optional<std::int32_t> LowestFreeId(std::int32_t from) const;
  // All entries in ascending order of ID.
  std::vector<Entry> Entries() const;

 private:
  struct Storage;
  Storage* storage_;
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_ID_INDEX_H
