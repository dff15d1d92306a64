// A set of small numbers with fast searches.
#ifndef TABWERK_TABLE_BIT_TREE_H
#define TABWERK_TABLE_BIT_TREE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tabwerk {

// A set of numbers below size(), one bit each.  Above the bits lie levels that
// tell which words are empty and which are full, so that every operation looks
// at one word per level (a factor of 64).
class BitTree {
 public:
  BitTree() = default;
  // An empty set.  Throws std::bad_alloc.
  explicit BitTree(std::size_t size);

  std::size_t size() const noexcept { return size_; }
  bool Has(std::size_t number) const noexcept {
    return (bits_[number / 64] >> (number % 64) & 1) != 0;
  }
  // The set of the same numbers, each less by that much, below another size.
  // All of them must lie there.  Word by word.  Throws std::bad_alloc.
  BitTree Shifted(std::int64_t less, std::size_t size) const;
  void Insert(std::size_t number) noexcept {
    std::uint64_t& word = bits_[number / 64];
    bool const was_used = word != 0;
    word |= std::uint64_t{1} << (number % 64);
    // Few numbers are the first or the last one of their word.
    bool const is_full = word == ~std::uint64_t{0};
    if (!was_used || is_full) NoteInserted(number / 64, is_full);
  }
  void Remove(std::size_t number) noexcept;
  // Largest and smallest number of the set, which must not be empty.
  std::size_t Largest() const noexcept;
  std::size_t Smallest() const noexcept;
  // Lowest number from `from` on, below size(), that the set does not have.
  std::optional<std::size_t> LowestMissing(std::size_t from) const noexcept;

 private:
  using Words = std::vector<std::uint64_t>;

  // The bits of 64 numbers from first on; no number beyond the set's is in it.
  std::uint64_t BitsFrom(std::int64_t first) const noexcept;
  void FillLevels() noexcept;
  // Enters into the levels that a word has bits now, or all of them.
  void NoteInserted(std::size_t word, bool is_full) noexcept;

  std::size_t size_ = 0;
  Words bits_;
  // Level k has a bit for each word of level k - 1 (of bits_ for k = 0): in
  // used_ for one that is not 0, in full_ for one without a 0.
  std::vector<Words> used_;
  std::vector<Words> full_;
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_BIT_TREE_H
