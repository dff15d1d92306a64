#include "tests/sweeps/damages.h"

#include <array>
#include <cstdint>
#include <limits>
#include <utility>

#include "tests/support/container_bytes.h"

namespace tabwerk::test {
namespace {

constexpr std::size_t kNumberSize = sizeof(std::int32_t);
constexpr std::size_t kValues = 8;
// A prime that no count of points is a multiple of.
constexpr std::size_t kStride = 15'485'863;

std::array<std::int32_t, kValues> ValuesFor(std::size_t file_size) {
  using Limits = std::numeric_limits<std::int32_t>;
  auto const size = static_cast<std::int32_t>(file_size);
  return {-1, 0, 1, Limits::max(), Limits::min(), size - 1, size, size + 1};
}

}  // namespace

Damages::Damages(std::string bytes) : Damages(bytes, bytes.size()) {}

Damages::Damages(std::string bytes, std::size_t file_size)
    : bytes_(std::move(bytes)),
      file_size_(file_size),
      number_places_(
          bytes_.size() < kNumberSize ? 0 : bytes_.size() - kNumberSize + 1),
      count_(bytes_.size() + bytes_.size() * 8 + number_places_ * kValues) {}

Damages::Damage Damages::At(std::size_t point) const {
  auto number = point * kStride % count_;
  if (number < bytes_.size()) return Cut(number);
  number -= bytes_.size();
  if (number < bytes_.size() * 8) return Flip(number);
  return Set(number - bytes_.size() * 8);
}

Damages::Damage Damages::Cut(std::size_t length) const {
  return {bytes_.substr(0, length), "cut at " + std::to_string(length), length,
          bytes_.size()};
}

Damages::Damage Damages::Flip(std::size_t bit) const {
  auto const at = bit / 8;
  Damage damage{
      bytes_,
      "bit " + std::to_string(bit % 8) + " of byte " + std::to_string(at), at,
      at + 1};
  auto const flipped =
      static_cast<unsigned char>(damage.bytes[at]) ^ (1U << bit % 8);
  damage.bytes[at] = static_cast<char>(flipped);
  return damage;
}

Damages::Damage Damages::Set(std::size_t number) const {
  auto const at = number / kValues;
  auto const value = ValuesFor(file_size_)[number % kValues];
  Damage damage{bytes_,
                "number at byte " + std::to_string(at) + " set to " +
                    std::to_string(value),
                at, at + kNumberSize};
  damage.bytes.replace(at, kNumberSize, Le32(value));
  return damage;
}

}  // namespace tabwerk::test
