#include "base/catalogue.h"

#include <algorithm>

namespace tabwerk {

DBDirectory* Catalogue::Add() {
  directories_.push_back(std::make_unique<DBDirectory>());
  return directories_.back().get();
}

bool Catalogue::Owns(DBDirectory const* directory) const noexcept {
  return std::any_of(
      directories_.begin(), directories_.end(),
      [directory](auto const& owned) { return owned.get() == directory; });
}

void Catalogue::Delete(DBDirectory* directory) noexcept {
  std::erase_if(directories_, [directory](auto const& owned) {
    return owned.get() == directory;
  });
}

void Catalogue::Clear() noexcept {
  // Newer directories stand in front of older ones in the chain.
  while (!directories_.empty()) directories_.pop_back();
}

}  // namespace tabwerk
