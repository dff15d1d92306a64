// Numbers as texts.
#ifndef TABWERK_TESTS_SUPPORT_DECIMAL_H
#define TABWERK_TESTS_SUPPORT_DECIMAL_H

#include <array>
#include <charconv>
#include <string>

namespace tabwerk::test {

// The shortest text that reads as this number.
template <typename T>
std::string Decimal(T number) {
  std::array<char, 64> text{};
  auto const end =
      std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  return std::string(text.data(), end);
}

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_DECIMAL_H
