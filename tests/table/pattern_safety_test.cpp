// Hostile expressions and texts: a small stack, little time.
#include <gtest/gtest.h>

#include <optional>
#include <regex>
#include <string>

#include "table/pattern.h"
#include "tests/support/random_run.h"
#include "tests/support/small_stack.h"

namespace {

using tabwerk::Pattern;
using tabwerk::test::OnSmallStack;
using tabwerk::test::Shortened;
namespace codes = std::regex_constants;

std::u16string Times(int count, std::u16string_view text) {
  std::u16string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

// "(a?){6000}": twice as long a count takes four times as many steps.
int const kLongCount = Shortened(6000);
std::u16string Counted(std::u16string const& what) {
  auto const count = std::to_string(kLongCount);
  return what + u"{" + std::u16string(count.begin(), count.end()) + u"}";
}

std::string NameOf(std::regex_error const& error) {
  if (error.code() == codes::error_stack) return "stack";
  if (error.code() == codes::error_complexity) return "complexity";
  return "other " + std::to_string(static_cast<int>(error.code()));
}

// "match", "no match", or the error, found on a thread with 1 MiB of stack.
std::string Result(std::u16string const& expression,
                   std::u16string const& text) {
  std::string result;
  OnSmallStack([&] {
    try {
      result = Pattern(expression).Matches(text) ? "match" : "no match";
    } catch (std::regex_error const& error) {
      result = NameOf(error);
    }
  });
  return result;
}

class PatternSafety : public testing::TestWithParam<int> {
 protected:
  std::u16string text_ =
      std::u16string(static_cast<std::size_t>(GetParam()), u'a');
};

TEST_P(PatternSafety, LongTextsMatchInBoundedTime) {
  EXPECT_EQ("match", Result(u"(a|b)*", text_));
  EXPECT_EQ("match", Result(u".*", text_));
  EXPECT_EQ("no match", Result(u"(a*)*b", text_));
  EXPECT_EQ("no match", Result(u"(a|a)*b", text_));
  EXPECT_EQ("match", Result(u"(?=.*a)(?!.*b).*", text_));
  EXPECT_EQ("match", Result(u"((?=a*)a)*", text_));
  EXPECT_EQ("no match", Result(Counted(u"(a?)"), text_));
}

INSTANTIATE_TEST_SUITE_P(Units, PatternSafety, testing::Values(8095, 100'000));

TEST(PatternLimits, LongCountsMatch) {
  auto const text = Times(kLongCount, u"a");
  EXPECT_EQ("match", Result(Counted(u"(a?)"), text));
  EXPECT_EQ("match", Result(Counted(u"a"), text));
}

TEST(PatternLimits, TooManyStepsAreAnError) {
  EXPECT_EQ("complexity", Result(u"(.*a?){3000}", Times(100'000, u"a")));
}

TEST(PatternLimits, DeepNestingIsAnError) {
  for (char16_t const* const open : {u"(", u"(?:", u"(?=", u"(?!"}) {
    EXPECT_EQ("stack", Result(Times(15'000, open) + Times(15'000, u")"), u""));
    EXPECT_EQ("stack", Result(Times(300, open) + Times(300, u")"), u""));
  }
  EXPECT_EQ("stack", Result(Times(20'000, u"("), u""));
}

TEST(PatternLimits, NestingOfOrdinaryDepthMatches) {
  EXPECT_EQ("match",
            Result(Times(150, u"(a") + Times(150, u")*"), Times(150, u"a")));
}

TEST(PatternLimits, DeepRepetitionsAreAnError) {
  std::u16string const deep =
      Times(100, u"(") + u"a" + Times(100, Times(100, u"{0}") + u")");
  EXPECT_EQ("stack", Result(deep, u"a"));
  EXPECT_EQ("match", Result(u"a" + Times(20'000, u"*+"), u"aaa"));
}

TEST(PatternLimits, LargeRepetitionProductsAreAnError) {
  EXPECT_EQ("complexity", Result(u"((a{1000}){1000}){1000}", u"a"));
  EXPECT_EQ("complexity", Result(u"(?:){2000000000}", u""));
  EXPECT_EQ("complexity", Result(u"a{99999999999999999999}", u""));
  EXPECT_EQ("complexity", Result(u"a{0,100000}", u""));
  EXPECT_EQ("match", Result(u"a,12345678901234", u"a,12345678901234"));
}

TEST(PatternLimits, LongExpressionsMatchUpToALimit) {
  auto const text = Times(20'000, u"a");
  EXPECT_EQ("match", Result(text, text));
  EXPECT_EQ("match", Result(Times(5'000, u"a|b|") + u"c", u"c"));
  EXPECT_EQ("complexity", Result(Times(70'000, u"a"), u"a"));
  EXPECT_EQ("match", Result(Times(4'000, u"[a-z]"), Times(4'000, u"q")));
}

TEST(PatternLimits, WhatAGroupMatchedCannotBeReferredTo) {
  EXPECT_EQ("complexity", Result(u"(a)\\1", u"aa"));
  EXPECT_EQ("complexity", Result(Times(500, u"(a)") + u"\\1", u"aa"));
}

TEST(PatternLimits, TooManySetsAreAnError) {
  std::u16string sets;
  for (int i = 0; i < 4097; ++i) {
    sets += u"[" + std::u16string(1, static_cast<char16_t>(0x4E00 + i)) + u"]?";
  }
  EXPECT_EQ("complexity", Result(sets, u""));
  EXPECT_EQ("match", Result(sets.substr(0, 4 * 4096), u"\u4E01"));
}

}  // namespace
