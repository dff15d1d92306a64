// Any pattern on any text: both are done with in bounded time, a short pattern
// is taken or refused as the standard library does it, and matches the same
// short texts.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <regex>
#include <span>
#include <string>

#include "fuzz/fuzz_support.h"
#include "table/pattern.h"
#include "tests/support/standard_regex.h"

namespace {

namespace codes = std::regex_constants;
using tabwerk::Pattern;
using tabwerk::fuzz::Require;
using tabwerk::test::StandardRegex;

// As far as the standard library judges: it takes stack and time for each unit.
constexpr std::size_t kMostJudgedPattern = 60;
constexpr std::size_t kMostJudgedText = 12;

// Bytes are ASCII, or one of few other units.
std::u16string Units(std::span<std::uint8_t const> bytes) {
  std::u16string units;
  for (std::uint8_t const byte : bytes) {
    units += byte == 0xFF   ? char16_t{0xD83D}
             : byte == 0xFE ? u'\u2028'
                            : static_cast<char16_t>(byte);
  }
  return units;
}

// Inside of a lookahead the standard library takes its start for the start of
// the text, so what looks back there is no matter for it.
bool LooksBackAhead(std::u16string const& pattern) {
  bool const ahead = pattern.find(u"(?=") != pattern.npos ||
                     pattern.find(u"(?!") != pattern.npos;
  bool const back = pattern.find(u'^') != pattern.npos ||
                    pattern.find(u"\\b") != pattern.npos ||
                    pattern.find(u"\\B") != pattern.npos;
  return ahead && back;
}

// A number of at least so many digits.
bool HasNumber(std::u16string const& pattern, int least_digits) {
  int digits = 0;
  for (char16_t const unit : pattern) {
    digits = unit >= u'0' && unit <= u'9' ? digits + 1 : 0;
    if (digits >= least_digits) return true;
  }
  return false;
}

// The standard library takes stack for every copy of what a count repeats.
bool HasManyCopies(std::u16string const& pattern) {
  return HasNumber(pattern, 3) || pattern.find(u'{') != pattern.rfind(u'{');
}

}  // namespace

// The first byte is the length of the pattern, the text follows it.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  if (size == 0) return 0;
  auto const length = std::min<std::size_t>(data[0], size - 1);
  auto const expression = Units({data + 1, length});
  auto const text = Units({data + 1 + length, size - 1 - length});

  bool const judged = expression.size() <= kMostJudgedPattern;
  auto const refusal =
      judged ? StandardRegex::Refusal(expression) : std::nullopt;
  try {
    Pattern pattern(expression);
    Require(!refusal, "what the standard library refuses is refused");
    bool const matches = pattern.Matches(text);
    Require(pattern.Matches(text) == matches, "a pattern can be used again");
    if (judged && text.size() <= kMostJudgedText &&
        !LooksBackAhead(expression) && !HasManyCopies(expression)) {
      StandardRegex const judge(expression, StandardRegex::Way::kAutomaton);
      Require(judge.Matches(text) == matches, "the standard library agrees");
    }
  } catch (std::regex_error const& error) {
    bool const bounded = error.code() == codes::error_complexity ||
                         error.code() == codes::error_stack;
    // Long numbers may be too large for the standard library, which is not
    // asked then: of several mistakes another one may be told.
    bool const same = refusal == error.code() ||
                      (refusal.has_value() && HasNumber(expression, 10));
    Require(!judged || bounded || same,
            "what the standard library takes is taken");
  }
  return 0;
}
