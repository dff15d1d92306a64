// Regular expressions over texts of 16-bit units, judged by the standard
// library's.
#include "table/pattern.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <regex>
#include <string>

#include "tests/support/random_cases.h"
#include "tests/support/random_table.h"
#include "tests/support/standard_regex.h"

namespace {

using tabwerk::Pattern;
using tabwerk::test::JudgeRandomly;
using tabwerk::test::Random;
using tabwerk::test::Shortened;
using tabwerk::test::StandardRegex;
namespace codes = std::regex_constants;

bool Matches(std::u16string_view expression, std::u16string_view text) {
  return Pattern(expression).Matches(text);
}

std::optional<codes::error_type> ErrorOf(std::u16string_view expression) {
  try {
    Pattern const pattern(expression);
    return std::nullopt;
  } catch (std::regex_error const& error) {
    return error.code();
  }
}

TEST(Pattern, WholeTextHasToMatch) {
  EXPECT_TRUE(Matches(u"Ab.*", u"Abc"));
  EXPECT_TRUE(Matches(u"Ab.*", u"Ab"));
  EXPECT_FALSE(Matches(u"Ab.*", u"xAbc"));
  EXPECT_FALSE(Matches(u"Ab.*", u"abc"));
  EXPECT_FALSE(Matches(u"Ab", u"Abc"));
}

TEST(Pattern, EmptyExpressionMatchesTheEmptyText) {
  EXPECT_TRUE(Matches(u"", u""));
  EXPECT_FALSE(Matches(u"", u"a"));
  EXPECT_TRUE(Matches(u"a|", u""));
}

TEST(Pattern, AlternativeThatMatchesLessDoesNotHideTheOther) {
  EXPECT_TRUE(Matches(u"a|ab", u"ab"));
  EXPECT_TRUE(Matches(u"(a|ab)(c|bcd)", u"abcd"));
  EXPECT_TRUE(Matches(u"(a*)*b", u"aab"));
  EXPECT_TRUE(Matches(u"(?:a|b)*?c", u"abac"));
}

TEST(Pattern, CountsRepeatExactly) {
  EXPECT_TRUE(Matches(u"a{2,3}", u"aaa"));
  EXPECT_FALSE(Matches(u"a{2,3}", u"aaaa"));
  EXPECT_FALSE(Matches(u"a{2,3}", u"a"));
  EXPECT_TRUE(Matches(u"a{2,}", u"aaaaa"));
  EXPECT_TRUE(Matches(u"a{0}", u""));
  EXPECT_FALSE(Matches(u"a{0}", u"a"));
  EXPECT_TRUE(Matches(u"(ab?){2}", u"aba"));
}

TEST(Pattern, DotIsOneUnitButNoLineEnd) {
  EXPECT_TRUE(Matches(u".", u"\xD83D"));
  EXPECT_TRUE(Matches(u"..", u"\xD83D\xDE00"));
  EXPECT_FALSE(Matches(u".", u"\xD83D\xDE00"));
  EXPECT_FALSE(Matches(u".", u"\n"));
  EXPECT_FALSE(Matches(u".", u"\r"));
}

TEST(Pattern, LoneSurrogatesAreUnitsLikeOthers) {
  EXPECT_TRUE(Matches(u"\xDC00+", u"\xDC00\xDC00"));
  EXPECT_TRUE(Matches(u"[\xD800-\xDBFF].", u"\xD801\xFFFF"));
  EXPECT_TRUE(Matches(u"\\uD83D.", u"\xD83D\xDE00"));
}

TEST(Pattern, ClassesAndBracketsAreTheStandardLibrarys) {
  EXPECT_TRUE(Matches(u"\\d+\\s\\w*", u"12 a_9"));
  EXPECT_TRUE(Matches(u"[^a-c\\d]*", u"xyz"));
  EXPECT_FALSE(Matches(u"[^a-c\\d]*", u"x1"));
  EXPECT_TRUE(Matches(u"[[:upper:]][[:lower:]]+", u"Anna"));
  EXPECT_TRUE(Matches(u"[\\]\\-]+", u"-]"));
  EXPECT_TRUE(Matches(u"\\x41\\.\\t\\cA", u"A.\tA"));
  EXPECT_FALSE(Matches(u"[]", u"a"));
}

// What a regular expression of the standard library says of that text; nothing
// when it refuses the expression.
std::optional<bool> StandardMatch(std::u16string_view expression,
                                  std::u16string_view text) {
  try {
    return StandardRegex(expression).Matches(text);
  } catch (std::regex_error const&) {
    return std::nullopt;
  }
}

TEST(Pattern, WhatABackslashMakesOfAUnitIsTheStandardLibrarys) {
  for (char16_t unit = u'!'; unit <= u'\u00E9'; ++unit) {
    if (unit >= u'1' && unit <= u'9') continue;  // what a group matched
    std::u16string const expression = {u'\\', unit};
    std::u16string const text(1, unit);
    auto const expected = StandardMatch(expression, text);
    EXPECT_EQ(!expected, ErrorOf(expression).has_value()) << int{unit};
    if (expected) {
      EXPECT_EQ(*expected, Matches(expression, text)) << int{unit};
    }
  }
}

TEST(Pattern, HexadecimalDigitsOfBothCasesNameAUnit) {
  EXPECT_TRUE(Matches(u"\\x30\\x39", u"09"));
  EXPECT_TRUE(Matches(u"\\x4a\\x4A\\x4f\\x4F", u"JJOO"));
  EXPECT_TRUE(Matches(u"\\u00aA\\u00fF", u"\u00AA\u00FF"));
  for (char16_t const unit : u"/:@G`g") {
    std::u16string const expression = {u'\\', u'x', u'4', unit};
    EXPECT_EQ(codes::error_escape, ErrorOf(expression));
  }
}

TEST(Pattern, AssertionsLookAtTheTextAround) {
  EXPECT_TRUE(Matches(u"^a$", u"a"));
  EXPECT_FALSE(Matches(u"a^b", u"ab"));
  EXPECT_TRUE(Matches(u"a\\b \\bb", u"a b"));
  EXPECT_TRUE(Matches(u"a\\Bb", u"ab"));
  EXPECT_FALSE(Matches(u"a\\bb", u"ab"));
  EXPECT_FALSE(Matches(u"\\b", u""));
}

TEST(Pattern, LookaheadsMatchWithoutTakingText) {
  EXPECT_TRUE(Matches(u"(?=a)a.*", u"abc"));
  EXPECT_FALSE(Matches(u"(?=b)a.*", u"abc"));
  EXPECT_TRUE(Matches(u"(?!.*x)[a-z]*", u"abc"));
  EXPECT_FALSE(Matches(u"(?!.*x)[a-z]*", u"abxc"));
  EXPECT_TRUE(Matches(u"(a(?=b)|b(?!b))*", u"abab"));
  EXPECT_FALSE(Matches(u"(a(?=b)|b(?!b))*", u"abb"));
  EXPECT_TRUE(Matches(u"(?=a(?!c)).b", u"ab"));
  EXPECT_FALSE(Matches(u"(?=a(?!b)).b", u"ab"));
  EXPECT_TRUE(Matches(u"(?=.*$)ab", u"ab"));
}

// The standard library takes the place of a lookahead for the beginning.
TEST(Pattern, BeginningInALookaheadIsThatOfTheText) {
  EXPECT_FALSE(Matches(u"a(?=^b)b", u"ab"));
  EXPECT_TRUE(Matches(u".*(?!^)", u"baaa"));
  EXPECT_TRUE(Matches(u"(?=^a)a", u"a"));
}

TEST(Pattern, MalformedExpressionsGiveTheStandardLibrarysError) {
  EXPECT_EQ(codes::error_paren, ErrorOf(u"(a"));
  EXPECT_EQ(codes::error_paren, ErrorOf(u"a)"));
  EXPECT_EQ(codes::error_brack, ErrorOf(u"[a"));
  EXPECT_EQ(codes::error_range, ErrorOf(u"[z-a]"));
  EXPECT_EQ(codes::error_escape, ErrorOf(u"a\\"));
  EXPECT_EQ(codes::error_badbrace, ErrorOf(u"a{x}"));
  EXPECT_NE(std::nullopt, ErrorOf(u"[[:nosuch:]]"));
  EXPECT_NE(std::nullopt, ErrorOf(u"*a"));
  EXPECT_NE(std::nullopt, ErrorOf(u"(?<a)"));
}

TEST(Pattern, LongMalformedExpressionsAreErrorsToo) {
  std::u16string const start(1000, u'a');
  for (char16_t const* const wrong :
       {u"(a", u"a)", u"[a", u"[z-a]", u"a\\", u"a{x}", u"a{2", u"a{3,2}",
        u"a{2,", u"\\x4", u"[[:nosuch:]]", u"[[:x]", u"(?<a)", u"|*", u"\\1"}) {
    EXPECT_NE(std::nullopt, ErrorOf(start + wrong))
        << std::u16string_view(wrong).size();
  }
}

// --- Random expressions -----------------------------------------------------

// An expression over a and b.  Assertions only outside of lookaheads: there
// the standard library takes its start for the start of the text.
std::u16string RandomExpression(Random& random, int depth, bool ahead) {
  auto const inner = [&] { return RandomExpression(random, depth - 1, ahead); };
  if (depth == 0) {
    switch (random.Between(0, ahead ? 6 : 9)) {
      case 0:
        return u".";
      case 1:
        return u"[^b]";
      case 2:
        return u"";
      case 3:
        return u"\\w";
      case 4:
      case 5:
        return u"a";
      case 7:
        return random.OneIn(2) ? u"^" : u"$";
      case 8:
        return random.OneIn(2) ? u"\\b" : u"\\B";
      default:
        return u"b";
    }
  }
  switch (random.Between(0, 7)) {
    case 0:
      return u"(" + inner() + u"|" + inner() + u")";
    case 1:
      return u"(?:" + inner() + u")*";
    case 2:
      return u"(" + inner() + u")+";
    case 3:
      return u"(" + inner() + u")?";
    case 4:
      return u"(?:" + inner() + u"){1,2}";
    case 5:
      return (random.OneIn(2) ? u"(?=" : u"(?!") +
             RandomExpression(random, depth - 1, true) + u")";
    default:
      return inner() + inner();
  }
}

std::u16string RandomText(Random& random) {
  std::u16string text;
  for (int i = random.Between(0, 6); i > 0; --i) {
    text += random.OneIn(8) ? u' ' : random.OneIn(2) ? u'a' : u'b';
  }
  return text;
}

TEST(PatternRandom, EqualsTheStandardLibraryOnRandomExpressions) {
  constexpr int kTexts = 12;
  JudgeRandomly(4000 * kTexts, kTexts, [](std::uint32_t seed) {
    Random random(seed);
    auto const expression =
        RandomExpression(random, random.Between(0, 4), false);
    Pattern pattern(expression);
    // Back-tracking would take years for some of these.
    StandardRegex const judge(expression, StandardRegex::Way::kAutomaton);
    for (int i = 0; i < kTexts; ++i) {
      auto const text = RandomText(random);
      SCOPED_TRACE(zWString(expression).toUtf8() + " on '" +
                   zWString(text).toUtf8() + "'");
      bool const expected = judge.Matches(text);
      ASSERT_EQ(expected, pattern.Matches(text));
      ASSERT_EQ(expected, pattern.MatchesBySteps(text));
      // Stored texts have others behind them.
      auto const stored =
          pattern.MatchesStored(text + std::u16string(u"\0ab", 3));
      ASSERT_EQ(expected, stored.value_or(expected));
    }
  });
}

TEST(PatternRandom, AcceptsWhatTheStandardLibraryAccepts) {
  constexpr char16_t kUnits[] = u"ab()[]{}?*+|^$\\.,-:=!0123dcxub";
  JudgeRandomly(20'000, [&](std::uint32_t seed) {
    Random random(seed);
    std::u16string expression = u"z";
    for (int i = random.Between(1, 9); i > 0; --i) {
      expression +=
          kUnits[random.Between(0, static_cast<int>(std::size(kUnits)) - 2)];
    }
    auto const judged = StandardRegex::Refusal(expression);
    ASSERT_EQ(judged, ErrorOf(expression)) << zWString(expression).toUtf8();
    // Of long expressions the parser alone is the judge.
    std::u16string const longer = std::u16string(500, u'z') + expression;
    ASSERT_EQ(judged.has_value(), ErrorOf(longer).has_value())
        << zWString(expression).toUtf8();
  });
}

// Each of the units in turn, in an expression that tells them apart.
std::u16string AnyOf(int count) {
  std::u16string expression = u"(";
  for (int i = 0; i < count; ++i) {
    if (i > 0) expression += u'|';
    expression += static_cast<char16_t>(0x400 + i);
  }
  return expression + u")*";
}

TEST(Pattern, ManyKindsOfUnitsAreToldApart) {
  for (int const count : {62, 63, 64, 65, 100}) {
    Pattern pattern(AnyOf(count));
    std::u16string text;
    for (int i = 0; i < count; ++i) text += static_cast<char16_t>(0x400 + i);
    EXPECT_TRUE(pattern.Matches(text)) << count;
    EXPECT_TRUE(pattern.MatchesBySteps(text)) << count;
    text += static_cast<char16_t>(0x400 + count);
    EXPECT_FALSE(pattern.Matches(text)) << count;
    EXPECT_NE(true, pattern.MatchesStored(text)) << count;
  }
}

// The expression has more states than are remembered.
TEST(Pattern, ManyStatesAreToldApartOnRandomTexts) {
  constexpr int kTexts = 400;
  int const texts = Shortened(kTexts);
  JudgeRandomly(kTexts, texts, [texts](std::uint32_t seed) {
    Pattern pattern(u"(a|b)*a(a|b){12}");
    std::mt19937 random(seed);
    std::u16string text;
    for (int i = 0; i < 7 * kTexts; ++i) {
      text += random() % 2 == 0 ? u'a' : u'b';
    }
    auto const distance = text.size() / static_cast<std::size_t>(texts);
    for (std::size_t size = 13; size <= text.size(); size += distance) {
      auto const start = text.substr(0, size);
      bool const expected = start[size - 13] == u'a';
      ASSERT_EQ(expected, pattern.Matches(start)) << size;
      auto const stored = pattern.MatchesStored(start);
      ASSERT_TRUE(!stored || *stored == expected) << size;
    }
  });
}

}  // namespace
