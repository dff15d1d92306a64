#include "table/id_array.h"

#include <algorithm>
#include <limits>

namespace tabwerk {

IdArray::IdArray(std::int64_t first, std::int64_t last)
    : first_(first),
      rows_(static_cast<std::size_t>(last - first + 1), kNoRow),
      present_(rows_.size()) {}

IdArray IdArray::OverWindow(std::int64_t first, std::int64_t last) const {
  IdArray moved;
  auto const size = static_cast<std::size_t>(last - first + 1);
  moved.first_ = first;
  moved.rows_.resize(size, kNoRow);
  auto const from = std::max(first, first_);
  auto const behind =
      std::min(last + 1, first_ + static_cast<std::int64_t>(rows_.size()));
  if (from < behind) {
    std::copy(rows_.begin() + (from - first_),
              rows_.begin() + (behind - first_),
              moved.rows_.begin() + (from - first));
  }
  moved.present_ = present_.Shifted(first - first_, size);
  moved.count_ = count_;
  return moved;
}

bool IdArray::Remove(std::int32_t id) noexcept {
  if (!Has(id)) return false;
  present_.Remove(Position(id));
  rows_[Position(id)] = kNoRow;
  --count_;
  return true;
}

std::optional<std::int32_t> IdArray::LowestFreeId(
    std::int32_t from) const noexcept {
  if (!Covers(from)) return from;
  auto const position = present_.LowestMissing(Position(from));
  if (position) return IdAt(*position);
  std::int64_t const behind = first_ + static_cast<std::int64_t>(rows_.size());
  if (behind > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  return static_cast<std::int32_t>(behind);
}

}  // namespace tabwerk
