#include "schema/string_memory.h"

#include <cassert>
#include <cstring>
#include <functional>
#include <limits>
#include <utility>

#include "schema/bytes.h"

namespace {

constexpr std::size_t kUnitSize = sizeof(char16_t);
constexpr std::size_t kLimit = std::numeric_limits<std::int32_t>::max();

char16_t const* Units(tabwerk::platform::Block const& block) noexcept {
  return static_cast<char16_t const*>(static_cast<void const*>(block.data()));
}

// True when text lies in the block, so that growing the block may move it.
bool LiesIn(tabwerk::platform::Block const& block,
            std::u16string_view text) noexcept {
  char16_t const* const begin = Units(block);
  std::less_equal<char16_t const*> const not_after;
  return begin != nullptr && not_after(begin, text.data()) &&
         not_after(text.data(), begin + block.size() / kUnitSize);
}

}  // namespace

bool DBStringMemory::CopyFrom(DBStringMemory const& other) {
  if (this == &other) return true;
  tabwerk::platform::Block copy;
  if (other.count() != 0) {
    if (!copy.ResetUnset(other.units_.size())) return false;
    std::memcpy(copy.data(), other.units_.data(), copy.size());
  }
  units_ = std::move(copy);
  return true;
}

void DBStringMemory::Adopt(tabwerk::platform::Block units) noexcept {
  assert(units.size() % kUnitSize == 0);
  units_ = std::move(units);
}

bool DBStringMemory::Append(std::u16string_view text) {
  std::size_t const index = count();
  if (index > kLimit || text.size() >= kLimit - index) return false;
  bool const inside = LiesIn(units_, text);
  auto const place =
      inside ? static_cast<std::size_t>(text.data() - Units(units_)) : 0;
  if (!units_.ResizeUnset((index + text.size() + 1) * kUnitSize)) return false;
  std::byte* const to = units_.data() + index * kUnitSize;
  std::size_t const bytes = text.size() * kUnitSize;
  if (bytes != 0) {
    std::memcpy(to, inside ? Units(units_) + place : text.data(), bytes);
  }
  tabwerk::StoreValue(to + bytes, char16_t{0});
  return true;
}

bool DBStringMemory::AppendEmpty(std::uint32_t text_count) {
  std::size_t const index = count();
  return index <= kLimit && text_count <= kLimit - index &&
         units_.Resize((index + text_count) * kUnitSize);
}

void DBStringMemory::Overwrite(std::int32_t index,
                               std::u16string_view text) noexcept {
  auto const old = Text(index);
  assert(old && text.size() <= old->size());
  if (!old || text.size() > old->size()) return;
  auto const first = static_cast<std::size_t>(index);
  if (!text.empty()) {
    std::memmove(units_.data() + first * kUnitSize, text.data(),
                 text.size() * kUnitSize);
  }
  // The last text may have no NUL and no room for one.
  std::size_t const end = first + text.size();
  if (end < count()) {
    std::memset(units_.data() + end * kUnitSize, 0, kUnitSize);
  }
}

void DBStringMemory::Truncate(std::uint32_t count_units) noexcept {
  if (count_units >= count()) return;
  // A block never fails to become smaller.
  static_cast<void>(units_.Resize(count_units * kUnitSize));
}
