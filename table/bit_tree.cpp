#include "table/bit_tree.h"

#include <bit>

namespace tabwerk {
namespace {

constexpr std::uint64_t kFull = ~std::uint64_t{0};

std::uint64_t BitOf(std::size_t number) {
  return std::uint64_t{1} << (number % 64);
}

std::size_t WordsFor(std::size_t bits) { return bits / 64 + (bits % 64 != 0); }

// Lowest 0 bit of words at or above position from; nothing when there is none
// in from's word.
std::optional<std::size_t> LowestZeroInWord(
    std::vector<std::uint64_t> const& words, std::size_t from) {
  if (from / 64 >= words.size()) return std::nullopt;
  std::uint64_t const zeros = ~words[from / 64] & (kFull << (from % 64));
  if (zeros == 0) return std::nullopt;
  return from / 64 * 64 + static_cast<std::size_t>(std::countr_zero(zeros));
}

}  // namespace

BitTree::BitTree(std::size_t size) : size_(size), bits_(WordsFor(size)) {
  for (std::size_t words = bits_.size(); words > 1; words = WordsFor(words)) {
    used_.emplace_back(WordsFor(words));
    full_.emplace_back(WordsFor(words));
  }
}

std::uint64_t BitTree::BitsFrom(std::int64_t first) const noexcept {
  if (first <= -64 || bits_.empty()) return 0;
  if (first < 0) return bits_[0] << -first;
  auto const word = static_cast<std::size_t>(first) / 64;
  auto const shift = static_cast<std::size_t>(first) % 64;
  if (word >= bits_.size()) return 0;
  std::uint64_t bits = bits_[word] >> shift;
  if (shift != 0 && word + 1 < bits_.size()) {
    bits |= bits_[word + 1] << (64 - shift);
  }
  return bits;
}

void BitTree::FillLevels() noexcept {
  Words const* below_used = &bits_;
  Words const* below_full = &bits_;
  for (std::size_t level = 0; level < used_.size(); ++level) {
    for (std::size_t word = 0; word < below_used->size(); ++word) {
      if ((*below_used)[word] != 0) used_[level][word / 64] |= BitOf(word);
      if ((*below_full)[word] == kFull) full_[level][word / 64] |= BitOf(word);
    }
    below_used = &used_[level];
    below_full = &full_[level];
  }
}

BitTree BitTree::Shifted(std::int64_t less, std::size_t size) const {
  BitTree shifted(size);
  std::int64_t first = less;
  for (std::uint64_t& word : shifted.bits_) {
    word = BitsFrom(first);
    first += 64;
  }
  shifted.FillLevels();
  return shifted;
}

void BitTree::NoteInserted(std::size_t word, bool is_full) noexcept {
  for (std::size_t level = 0; level < used_.size(); ++level) {
    std::uint64_t& used = used_[level][word / 64];
    std::uint64_t& full = full_[level][word / 64];
    bool const was_used = used != 0;
    used |= BitOf(word);
    if (is_full) full |= BitOf(word);
    is_full = is_full && full == kFull;
    if (was_used && !is_full) return;
    word /= 64;
  }
}

void BitTree::Remove(std::size_t number) noexcept {
  std::uint64_t* word = &bits_[number / 64];
  bool was_full = *word == kFull;
  *word &= ~BitOf(number);
  bool is_empty = *word == 0;
  for (std::size_t level = 0; level < used_.size(); ++level) {
    if (!was_full && !is_empty) return;
    number /= 64;
    std::uint64_t& full = full_[level][number / 64];
    bool const level_was_full = was_full && full == kFull;
    if (was_full) full &= ~BitOf(number);
    was_full = level_was_full;
    std::uint64_t& used = used_[level][number / 64];
    if (is_empty) used &= ~BitOf(number);
    is_empty = is_empty && used == 0;
  }
}

std::size_t BitTree::Largest() const noexcept {
  // The topmost level is one word.
  std::size_t position = 0;
  auto const descend = [&position](Words const& words) {
    auto const zeros = std::countl_zero(words[position]);
    position = position * 64 + 63 - static_cast<std::size_t>(zeros);
  };
  for (std::size_t level = used_.size(); level-- > 0;) descend(used_[level]);
  descend(bits_);
  return position;
}

std::size_t BitTree::Smallest() const noexcept {
  std::size_t position = 0;
  auto const descend = [&position](Words const& words) {
    auto const zeros = std::countr_zero(words[position]);
    position = position * 64 + static_cast<std::size_t>(zeros);
  };
  for (std::size_t level = used_.size(); level-- > 0;) descend(used_[level]);
  descend(bits_);
  return position;
}

std::optional<std::size_t> BitTree::LowestMissing(
    std::size_t from) const noexcept {
  if (from >= size_) return std::nullopt;
  auto found = LowestZeroInWord(bits_, from);
  // Up to the first level where a word behind from's is not full …
  std::size_t level = 0;
  for (; !found; ++level) {
    if (level >= full_.size()) return std::nullopt;
    from = from / 64 + 1;
    found = LowestZeroInWord(full_[level], from);
  }
  // … and down again.
  while (level-- > 0) {
    Words const& below = level == 0 ? bits_ : full_[level - 1];
    if (*found >= below.size()) return std::nullopt;
    found = LowestZeroInWord(below, *found * 64);
  }
  return found && *found < size_ ? found : std::nullopt;
}

}  // namespace tabwerk
