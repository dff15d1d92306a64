#include "tests/support/standard_regex.h"

#include <string>

namespace tabwerk::test {

namespace codes = std::regex_constants;

namespace {

std::wstring Widened(std::u16string_view text) {
  return {text.begin(), text.end()};
}

}  // namespace

StandardRegex::StandardRegex(std::u16string_view expression, Way way)
    : regex_(std::make_unique<std::wregex>(
          Widened(expression), way == Way::kAutomaton
                                   ? codes::ECMAScript | codes::__polynomial
                                   : codes::ECMAScript)) {}

StandardRegex::~StandardRegex() = default;

bool StandardRegex::Matches(std::u16string_view text) const {
  return std::regex_match(Widened(text), *regex_);
}

std::optional<codes::error_type> StandardRegex::Refusal(
    std::u16string_view expression) {
  try {
    StandardRegex const regex(expression, Way::kAutomaton);
    return std::nullopt;
  } catch (std::regex_error const& error) {
    bool const too_large = error.code() == codes::error_space;
    return too_large ? codes::error_complexity : error.code();
  }
}

}  // namespace tabwerk::test
