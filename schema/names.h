// Comparison of table and column names.
#ifndef TABWERK_SCHEMA_NAMES_H
#define TABWERK_SCHEMA_NAMES_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "DBDefinition.h"

namespace tabwerk {

// True when both NUL-terminated names are the same, as far as names go; a null
// pointer is no name.  Names are short and mostly differ in their first
// character, so this costs less than a call.
inline bool SameName(char const* name, char const* other) noexcept {
  if (name == nullptr || other == nullptr) return false;
  for (std::size_t i = 0; i < DBFeld::kNameSize; ++i) {
    if (name[i] != other[i]) return false;
    if (name[i] == '\0') return true;
  }
  return true;
}

// The same for a name that is known here: as many comparisons as it has
// characters, without a loop.
template <std::size_t kSize>
inline bool IsName(char const* name, char const (&known)[kSize]) noexcept {
  static_assert(kSize <= DBFeld::kNameSize);
  if (name == nullptr) return false;
  for (std::size_t i = 0; i < kSize; ++i) {
    if (name[i] != known[i]) return false;
  }
  return true;
}

// A name that is compared with many others: its first 8 characters as one
// number.
class NameKey {
 public:
  // name is borrowed, and not null.
  explicit constexpr NameKey(char const* name) noexcept : name_(name) {
    for (std::size_t i = 0; i < kKeySize && name[i] != '\0'; ++i) {
      key_ |= std::uint64_t{static_cast<unsigned char>(name[i])} << 8 * i;
      mask_ = mask_ << 8 | 0xFF;
    }
  }

  // True for the same name, where that has fewer than 8 characters.  The key
  // then tells the length as well, for no character is NUL.
  constexpr bool IsShort(NameKey const& other) const noexcept {
    return key_ == other.key_;
  }
  // True for a field of that name.
  bool IsNameOf(DBFeld const& field) const noexcept {
    std::uint64_t start = 0;
    std::memcpy(&start, field.name, sizeof start);
    return (start & mask_) == key_ &&
           (IsShort() || SameName(field.name, name_));
  }

 private:
  static constexpr std::size_t kKeySize = 8;
  static_assert(std::endian::native == std::endian::little);

  constexpr bool IsShort() const noexcept {
    return key_ >> 8 * (kKeySize - 1) == 0;
  }

  char const* name_;
  std::uint64_t key_ = 0;
  // The NUL of a short name counts, what a field has behind it does not.
  std::uint64_t mask_ = 0xFF;
};

}  // namespace tabwerk

#endif  // TABWERK_SCHEMA_NAMES_H
