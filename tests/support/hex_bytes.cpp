// Needs nothing of the test framework: fuzz targets read golden files, too.
#include <algorithm>

#include "tests/support/hex_file.h"

namespace tabwerk::test {
namespace {

// Value of a hex digit; -1 for another character.
int DigitValue(char digit) {
  constexpr std::string_view kDigits = "0123456789abcdef0123456789ABCDEF";
  auto const place = kDigits.find(digit);
  return place == std::string_view::npos ? -1 : static_cast<int>(place % 16);
}

bool IsSpace(char character) {
  return std::string_view(" \t\r\n").find(character) != std::string_view::npos;
}

}  // namespace

std::string BytesOfHex(std::string_view text, bool* sound) {
  std::string bytes;
  *sound = true;
  for (std::size_t i = 0; i < text.size();) {
    if (text[i] == '#') {
      i = std::min(text.find('\n', i), text.size());
    } else if (IsSpace(text[i])) {
      ++i;
    } else {
      int const high = DigitValue(text[i]);
      int const low = i + 1 < text.size() ? DigitValue(text[i + 1]) : -1;
      if (high < 0 || low < 0) {
        *sound = false;
        return std::string();
      }
      bytes.push_back(static_cast<char>(high * 16 + low));
      i += 2;
    }
  }
  return bytes;
}

}  // namespace tabwerk::test
