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

  bool Has(char16_t unit) {
    Page* const page = pages_[unit / kPageUnits].get();
    if (page == nullptr) return HasFirstInPage(unit);
    std::uint8_t const answer = (*page)[unit % kPageUnits];
    return answer == kUnknown ? Ask(page, unit) : answer == kYes;
  }

 private:
  static constexpr std::size_t kPageUnits = 256;
  static constexpr std::uint8_t kUnknown = 0;
  static constexpr std::uint8_t kNo = 1;
  static constexpr std::uint8_t kYes = 2;

  using Page = std::array<std::uint8_t, kPageUnits>;

  bool HasFirstInPage(char16_t unit);
  bool Ask(Page* page, char16_t unit);

  std::wregex expression_;
  std::array<std::unique_ptr<Page>, 0x10000 / kPageUnits> pages_;
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_PATTERN_UNITS_H
