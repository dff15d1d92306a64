// Little-endian values in memory.
//
// Row records, string stores and index sections are kept in memory byte for
// byte as in the files, so these functions are the whole codec.
#ifndef TABWERK_SCHEMA_BYTES_H
#define TABWERK_SCHEMA_BYTES_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

namespace tabwerk {

static_assert(std::endian::native == std::endian::little,
              "blocks are shared with the files byte for byte");
static_assert(sizeof(double) == 8 && std::numeric_limits<double>::is_iec559);

// Value at a place that need not be aligned.  The bytes must be there.
template <typename T>
T LoadValue(std::byte const* bytes) noexcept {
  T value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

template <typename T>
void StoreValue(std::byte* bytes, T value) noexcept {
  std::memcpy(bytes, &value, sizeof value);
}

// True when value fits into the 32 bits of a stored integer.
inline bool FitsInt32(long value) noexcept {
  return value >= std::numeric_limits<std::int32_t>::min() &&
         value <= std::numeric_limits<std::int32_t>::max();
}

}  // namespace tabwerk

#endif  // TABWERK_SCHEMA_BYTES_H
