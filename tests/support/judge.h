// What the judged random sequences share: how values are shown.
#ifndef TABWERK_TESTS_SUPPORT_JUDGE_H
#define TABWERK_TESTS_SUPPORT_JUDGE_H

#include <string>
#include <string_view>
#include <vector>

#include "DBTabelle.h"
#include "tests/support/plain_model.h"
#include "ztypes.h"

namespace tabwerk::test {

// What one operation did: its text, and what the plain model and the library
// answered.
struct Outcome {
  std::string what;
  std::string expected;
  std::string got;
};

std::wstring WideText(std::u16string const& units);
// ASCII as it is, other units as "<00AC>".
std::string Shown(std::u16string_view units);
// "1 2 3".
template <typename T>
std::string ShownNumbers(std::vector<T> const& numbers) {
  std::string text;
  for (auto const number : numbers) {
    text += (text.empty() ? "" : " ") + std::to_string(number);
  }
  return text;
}

// The value at the current row and column, by every way to read it.
std::string ValueOf(DBTabelle& table);
std::string ValueOf(model::Table const& table);
// As Selection of table_state.h.
std::string SelectionOf(model::Table const& table);
// As Indices of table_builder.h.
std::string IndicesOf(model::Table const& table);
// Row records and string stores of all parts, byte by byte.
std::string BlocksOf(DBTabelle& table);
std::string BlocksOf(model::Table const& table);

// The last operations of a sequence, the newest at the end.
std::string Tail(std::vector<std::string> const& log);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_JUDGE_H
