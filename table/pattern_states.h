// The states that a pattern can be in, made as they are met.
#ifndef TABWERK_TABLE_PATTERN_STATES_H
#define TABWERK_TABLE_PATTERN_STATES_H

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

namespace tabwerk {

// A deterministic automaton over 16-bit units that grows while texts are
// matched: one step a unit, whatever the expression.
//
// A state is the set of places in a pattern's program that are reached at the
// same time.  Units that no place tells apart share a class, so a state has one
// entry for each class.  The owner says what a unit is to the places and where
// a set of places leads; both are asked once and remembered.
class PatternStates {
 public:
  // The places of a state, in ascending order, and whether a text may end here.
  struct Places {
    std::vector<std::int32_t> waiting;
    bool accepted = false;
    bool operator<(Places const& other) const {
      return accepted != other.accepted ? accepted < other.accepted
                                        : waiting < other.waiting;
    }
  };
  // Which of the program's kinds of consuming instructions take that unit: one
  // bit each.
  using KindsOf = std::function<std::uint64_t(char16_t unit)>;
  // The places that are reached from those by a unit of those kinds.
  using Follow = std::function<Places(Places const&, std::uint64_t kinds)>;

  enum class Verdict : std::uint8_t {
    kMatches,
    kDoesNot,
    kUnknown,  // the states or classes became too many: match in another way
    kSection,  // a section of a translated text may begin here
  };

  PatternStates(Places start, KindsOf kinds_of, Follow follow);

  // A whole text.
  Verdict Matches(std::u16string_view text);
  // A text as it is stored: it ends at the first NUL or the end of units.  What
  // stands before the first "#" is the same in every language, so most texts
  // are decided without being translated, and those that do not match mostly
  // at their first units.
  Verdict MatchesStored(std::u16string_view units);

 private:
  using Class = std::uint8_t;
  using Page = std::array<Class, 256>;

  static constexpr std::size_t kMostClasses = 64;
  static constexpr std::size_t kMostStates = 1024;
  static constexpr Class kNoClass = 0;
  // States are named by where their entries begin in next_.
  static constexpr std::int32_t kUnmade = -1;
  static constexpr std::int32_t kDead = -2;
  static constexpr std::int32_t kTooMany = -3;

  Class ClassOf(char16_t unit) {
    Page const* const page = pages_[unit / 256U].get();
    Class const known = page == nullptr ? kNoClass : (*page)[unit % 256U];
    return known == kNoClass ? FindClass(unit) : known;
  }
  std::int32_t Next(std::int32_t state, char16_t unit) {
    auto const unit_class = ClassOf(unit);
    if (unit_class == kNoClass) return kTooMany;
    auto const next = next_[static_cast<std::size_t>(state) + unit_class];
    return next == kUnmade ? Make(state, unit_class) : next;
  }
  Verdict AtEnd(std::int32_t state) const {
    auto const number = static_cast<std::size_t>(state) / kMostClasses;
    return places_[number].accepted ? Verdict::kMatches : Verdict::kDoesNot;
  }
  Class FindClass(char16_t unit);
  std::int32_t Make(std::int32_t state, Class unit_class);
  std::int32_t NumberOf(Places places);

  KindsOf kinds_of_;
  Follow follow_;
  std::array<std::unique_ptr<Page>, 256> pages_;  // classes of units
  std::vector<std::uint64_t> kinds_;              // by class; that of 0 is none
  std::vector<std::int32_t> next_;  // kMostClasses entries for each state
  std::vector<Places> places_;      // by state
  std::map<Places, std::int32_t> numbers_;
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_PATTERN_STATES_H
