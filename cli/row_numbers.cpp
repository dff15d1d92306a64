#include "cli/row_numbers.h"

#include <algorithm>

namespace tabwerk::tool {

std::optional<RowPlace> RowNumbers::Add(Rows* rows, std::int32_t number,
                                        RowPlace const& row) {
  auto const [it, is_new] = rows->emplace(number, row);
  if (is_new) return std::nullopt;
  return it->second;
}

std::optional<RowPlace> RowNumbers::AddId(std::int32_t id,
                                          RowPlace const& row) {
  return Add(&ids_, id, row);
}

std::optional<RowPlace> RowNumbers::AddFolge(std::int32_t folge,
                                             RowPlace const& row) {
  if (folge == 0) return std::nullopt;
  return Add(&places_, folge, row);
}

RowNumbers::Gaps RowNumbers::FindGaps() const {
  Gaps gaps;
  std::int32_t largest = 0;
  long long used = 0;
  for (auto const& [place, row] : places_) {
    if (place <= 0) continue;
    ++used;
    largest = std::max(largest, place);
  }
  gaps.count = largest - used;
  if (gaps.count == 0) return gaps;
  gaps.first = 1;
  while (places_.contains(gaps.first)) ++gaps.first;
  // The smallest place behind it, without walking through a wide gap.
  auto const* next = static_cast<Rows::value_type const*>(nullptr);
  for (auto const& entry : places_) {
    bool const behind = entry.first > gaps.first;
    if (behind && (next == nullptr || entry.first < next->first)) {
      next = &entry;
    }
  }
  gaps.next = next->first;
  gaps.row = next->second;
  return gaps;
}

}  // namespace tabwerk::tool
