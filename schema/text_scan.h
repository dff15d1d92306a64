// Looking through stored texts, several units at a time.
#ifndef TABWERK_SCHEMA_TEXT_SCAN_H
#define TABWERK_SCHEMA_TEXT_SCAN_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tabwerk {

// The unit that every section of a translated text begins with.  What stands
// before the first one in a text is the same in every language.
inline constexpr char16_t kSectionStart = u'#';

// A text up to its NUL.
struct ScannedText {
  std::u16string_view text;
  bool has_section_start = false;
};

namespace scan {

inline constexpr std::size_t kUnitsPerWord = 4;
inline constexpr std::uint64_t kOnes = 0x0001'0001'0001'0001;
inline constexpr std::uint64_t kHighBits = 0x8000'8000'8000'8000;

// A high bit in every unit of a word of four that is 0, and perhaps in units
// above the lowest such one.
inline constexpr std::uint64_t ZeroUnits(std::uint64_t word) noexcept {
  return (word - kOnes) & ~word & kHighBits;
}

}  // namespace scan

// A text that ends with a NUL, wherever that is: nothing behind it may be read,
// so four comparisons at a time are the most.
inline std::u16string_view TextFrom(char16_t const* text) noexcept {
  char16_t const* end = text;
  for (;; end += scan::kUnitsPerWord) {
    if (end[0] == 0) break;
    if (end[1] == 0) {
      end += 1;
      break;
    }
    if (end[2] == 0) {
      end += 2;
      break;
    }
    if (end[3] == 0) {
      end += 3;
      break;
    }
  }
  return {text, static_cast<std::size_t>(end - text)};
}

// The text at the start of units: up to the first NUL, or all of them.
inline ScannedText ScanText(std::u16string_view units) noexcept {
  if (units.empty() || units.front() == 0) return {units.substr(0, 0), false};
  std::uint64_t found = 0;
  std::size_t length = 0;
  while (units.size() - length >= scan::kUnitsPerWord) {
    std::uint64_t word = 0;
    std::memcpy(&word, units.data() + length, sizeof word);
    auto const marks = scan::ZeroUnits(word ^ kSectionStart * scan::kOnes);
    if (auto const ends = scan::ZeroUnits(word); ends != 0) {
      found |= marks & (ends - 1);  // those below the NUL
      length += static_cast<std::size_t>(std::countr_zero(ends)) / 16;
      return {units.substr(0, length), found != 0};
    }
    found |= marks;
    length += scan::kUnitsPerWord;
  }
  for (; length < units.size() && units[length] != 0; ++length) {
    if (units[length] == kSectionStart) found = 1;
  }
  return {units.substr(0, length), found != 0};
}

}  // namespace tabwerk

#endif  // TABWERK_SCHEMA_TEXT_SCAN_H
