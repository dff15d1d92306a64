// Random patterns: the matcher answers as the standard library does.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <string>

#include "table/pattern.h"
#include "tests/support/random_run.h"
#include "tests/support/standard_regex.h"
#include "tests/support/sweep.h"
#include "tests/support/table_builder.h"
#include "tests/sweeps/case_watch.h"
#include "tests/sweeps/pattern_source.h"

namespace tabwerk::test {
namespace {

namespace codes = std::regex_constants;

// As the matcher names what it will not do.
std::string NameOf(std::regex_error const& error) {
  return error.code() == codes::error_complexity ? "complexity" : "malformed";
}

template <typename Answer>
std::string Answered(Answer const& answer) {
  try {
    return answer() ? "match" : "no match";
  } catch (std::regex_error const& error) {
    return NameOf(error);
  }
}

std::string OfMatcher(std::u16string const& pattern,
                      std::u16string const& text) {
  return Answered([&] { return Pattern(pattern).Matches(text); });
}

std::string OfStandard(std::u16string const& pattern,
                       std::u16string const& text) {
  return Answered([&] {
    return StandardRegex(pattern, StandardRegex::Way::kAutomaton).Matches(text);
  });
}

// True when something behind the start of a lookahead may ask what stands
// before it: "^" or a word boundary.  The standard library takes the place of
// the lookahead for the beginning of the text then, so that "a(?=^b)b" matches
// "ab"; the matcher does not.
bool MayLookBack(std::u16string_view pattern) {
  auto const ahead = std::min(pattern.find(u"(?="), pattern.find(u"(?!"));
  if (ahead == std::u16string_view::npos) return false;
  for (auto i = ahead; i < pattern.size(); ++i) {
    if (pattern[i] == u'^' && pattern[i - 1] != u'[') return true;
    auto const two = pattern.substr(i, 2);
    if (two == u"\\b" || two == u"\\B") return true;
  }
  return false;
}

class SweepPatterns : public testing::Test {
 protected:
  // Compares count pairs; four texts for each pattern.
  void Compare(int count) {
    for (int i = 0; i < count / 4 && !HasFailure(); ++i) {
      ComparePattern(seed_ + static_cast<std::uint32_t>(i));
    }
  }

  void ComparePattern(std::uint32_t seed) {
    PatternSource source(seed);
    auto const pattern = source.Pattern();
    watch_.Run("seed " + std::to_string(seed) + ": " + Units(pattern), [&] {
      PatternSource texts(seed + 1);
      for (int k = 0; k < 4; ++k) CompareText(seed, pattern, texts.Text());
    });
  }

  void CompareText(std::uint32_t seed, std::u16string const& pattern,
                   std::u16string const& text) {
    auto const expected = OfStandard(pattern, text);
    auto const got = OfMatcher(pattern, text);
    // Behind an alternative that no text has, of a length from which on the
    // standard library is not asked whether the pattern is well formed.
    auto const unasked =
        OfMatcher(std::u16string(401, u'q') + u"|" + pattern, text);
    ++(expected == "match"       ? matched_
       : expected == "malformed" ? malformed_
                                 : others_);
    if (MayLookBack(pattern) && expected != got) {
      ++left_out_;
      EXPECT_NE("malformed", expected) << Units(pattern);
      EXPECT_NE("malformed", got) << Units(pattern);
      return;
    }
    EXPECT_EQ(expected, got)
        << "seed " << seed << ": " << Units(pattern) << " on " << Units(text);
    EXPECT_EQ(got, unasked)
        << "seed " << seed << ", unasked: " << Units(pattern) << " on "
        << Units(text);
  }

  std::uint32_t const seed_ = FirstSeed();
  CaseWatch watch_;
  std::int64_t matched_ = 0;
  std::int64_t malformed_ = 0;
  std::int64_t others_ = 0;
  std::int64_t left_out_ = 0;  // as MayLookBack says
};

TEST_F(SweepPatterns, AnswerAsTheStandardLibraryDoes) {
  Compare(WholeSweep() ? 1'000'000 : ShortCases(20'000));
  EXPECT_GT(matched_, 0);
  EXPECT_GT(malformed_, 0);
  ReportSweep("patterns, random",
              watch_.Figures() + ", from seed " + std::to_string(seed_) +
                  ", matches " + std::to_string(matched_) + ", malformed " +
                  std::to_string(malformed_) + ", no matches " +
                  std::to_string(others_) + ", left out " +
                  std::to_string(left_out_));
}

}  // namespace
}  // namespace tabwerk::test
