#include "table/pattern_states.h"

#include <algorithm>
#include <utility>

#include "schema/text_scan.h"

namespace tabwerk {

PatternStates::PatternStates(Places start, KindsOf kinds_of, Follow follow)
    : kinds_of_(std::move(kinds_of)), follow_(std::move(follow)), kinds_(1) {
  (void)NumberOf(std::move(start));  // state 0
}

PatternStates::Verdict PatternStates::Matches(std::u16string_view text) {
  std::int32_t state = 0;
  for (char16_t const unit : text) {
    state = Next(state, unit);
    if (state >= 0) continue;
    return state == kDead ? Verdict::kDoesNot : Verdict::kUnknown;
  }
  return AtEnd(state);
}

PatternStates::Verdict PatternStates::MatchesStored(std::u16string_view units) {
  std::int32_t state = 0;
  for (char16_t const unit : units) {
    if (unit == 0) break;
    if (unit == kSectionStart) return Verdict::kSection;
    state = Next(state, unit);
    if (state >= 0) continue;
    return state == kDead ? Verdict::kDoesNot : Verdict::kUnknown;
  }
  return AtEnd(state);
}

// The class of a unit that is met for the first time; kNoClass when there are
// too many.
PatternStates::Class PatternStates::FindClass(char16_t unit) {
  auto const kinds = kinds_of_(unit);
  auto const known = std::find(kinds_.begin() + 1, kinds_.end(), kinds);
  auto const number = static_cast<std::size_t>(known - kinds_.begin());
  if (number == kMostClasses) return kNoClass;
  auto& page = pages_[unit / 256U];
  if (page == nullptr) page = std::make_unique<Page>();
  if (known == kinds_.end()) kinds_.push_back(kinds);
  return (*page)[unit % 256U] = static_cast<Class>(number);
}

std::int32_t PatternStates::Make(std::int32_t state, Class unit_class) {
  auto const& from = places_[static_cast<std::size_t>(state) / kMostClasses];
  auto places = follow_(from, kinds_[unit_class]);
  bool const dead = places.waiting.empty() && !places.accepted;
  auto const next = dead ? kDead : NumberOf(std::move(places));
  if (next != kTooMany) {
    next_[static_cast<std::size_t>(state) + unit_class] = next;
  }
  return next;
}

// The state of those places, made where there is none; kTooMany when there are
// too many.
std::int32_t PatternStates::NumberOf(Places places) {
  auto const known = numbers_.find(places);
  if (known != numbers_.end()) return known->second;
  if (places_.size() == kMostStates) return kTooMany;
  auto const state = static_cast<std::int32_t>(places_.size() * kMostClasses);
  next_.resize(next_.size() + kMostClasses, kUnmade);
  places_.push_back(places);
  numbers_.emplace(std::move(places), state);
  return state;
}

}  // namespace tabwerk
