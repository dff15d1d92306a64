// The standard library's regular expressions over 16-bit units: the judge of
// our own matcher.  They are compiled in one file only, which takes long.
#ifndef TABWERK_TESTS_SUPPORT_STANDARD_REGEX_H
#define TABWERK_TESTS_SUPPORT_STANDARD_REGEX_H

#include <memory>
#include <optional>
#include <regex>
#include <string_view>

namespace tabwerk::test {

class StandardRegex {
 public:
  enum class Way {
    kBacktracking,  // as the standard library does it unless told
    // Without, because a short expression may take it for ever, or all of the
    // stack; back-references are refused.
    kAutomaton,
  };

  // Throws std::regex_error.
  explicit StandardRegex(std::u16string_view expression,
                         Way way = Way::kBacktracking);
  ~StandardRegex();
  StandardRegex(StandardRegex const&) = delete;
  StandardRegex& operator=(StandardRegex const&) = delete;

  // Of the whole text.
  bool Matches(std::u16string_view text) const;

  // Why an expression is refused as an automaton, nothing when it is not.  One
  // that is too large counts as too complex.
  static std::optional<std::regex_constants::error_type> Refusal(
      std::u16string_view expression);

 private:
  std::unique_ptr<std::wregex> regex_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_STANDARD_REGEX_H
