// One place of a regular expression that stands for several units.
#ifndef TABWERK_TABLE_PATTERN_UNITS_H
#define TABWERK_TABLE_PATTERN_UNITS_H

#include <array>
#include <cstdint>
#include <memory>
#include <regex>
#include <string>
#include <string_view>

namespace tabwerk {

// Every 16-bit unit as one wchar_t, on every system.
std::wstring WidenUnits(std::u16string_view text);

// The units that an expression for one unit ("[a-z]", "\\d", ".", "\\x41")
// matches.  The standard library decides, once for each unit.
class UnitSet {
 public:
  // Throws std::regex_error when the expression is malformed.
  explicit UnitSet(std::u16string_view expression);

  enum class Answer : std::uint8_t { kUnknown, kNo, kYes };

  // What is known of a unit without asking the standard library.
  Answer Known(char16_t unit) const {
    Page const* const page = pages_[unit / kPageUnits].get();
    return page == nullptr ? Answer::kUnknown : (*page)[unit % kPageUnits];
  }
  // Asks it; the answer is known from then on.
  bool Ask(char16_t unit);
  // How long asking takes and how much memory the answers need, as a number of
  // steps of a matcher.
  std::uint64_t AskSteps() const { return ask_steps_; }

 private:
  static constexpr std::size_t kPageUnits = 256;

  using Page = std::array<Answer, kPageUnits>;

  std::wregex expression_;
  std::uint64_t ask_steps_;
  std::array<std::unique_ptr<Page>, 0x10000 / kPageUnits> pages_;
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_PATTERN_UNITS_H
