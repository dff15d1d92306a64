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

// A name that is compared with many others: its first 8 characters as one
// number.
class NameKey {
 public:
  // name is borrowed, and not null.
  explicit constexpr NameKey(char const* name) noexcept : name_(name) {
    for (; length_ < kKeySize && name[length_] != '\0'; ++length_) {
      key_ |= std::uint64_t{static_cast<unsigned char>(name[length_])}
              << 8 * length_;
    }
    // The NUL of a short name counts, what a field has behind it does not.
    if (length_ + 1 < kKeySize) {
      mask_ = (std::uint64_t{1} << 8 * (length_ + 1)) - 1;
    }
  }

  // True for a short name, fewer than 8 characters, that is the same.
  constexpr bool IsShort(NameKey const& other) const noexcept {
    return key_ == other.key_ && length_ == other.length_;
  }
  // True for a field of that name.
  bool IsNameOf(DBFeld const& field) const noexcept {
    std::uint64_t start = 0;
    std::memcpy(&start, field.name, sizeof start);
    return (start & mask_) == key_ &&
           (length_ < kKeySize || SameName(field.name, name_));
  }

 private:
  static constexpr std::size_t kKeySize = 8;
  static_assert(std::endian::native == std::endian::little);

  char const* name_;
  std::size_t length_ = 0;  // as far as it is part of the key
  std::uint64_t key_ = 0;
  std::uint64_t mask_ = ~std::uint64_t{0};
};

}  // namespace tabwerk

#endif  // TABWERK_SCHEMA_NAMES_H
