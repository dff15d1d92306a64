#include "base/translation.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <random>
#include <string>

#include "DBbase.h"
#include "tests/support/database_fixture.h"
#include "tests/support/random_cases.h"

namespace tabwerk::test {
namespace {

class Translation : public testing::Test {
 protected:
  ~Translation() override { DBbase::SetSprache(0); }

  static std::string In(short language, std::string const& text) {
    DBbase::SetSprache(language);
    auto translated = W(text);
    DBbase::DBTranslate(translated);
    return translated.toUtf8();
  }
};

// The steps as one would write them down first: replace a section, then start
// again with the whole text.
std::u16string PlainTranslation(std::u16string text, short language) {
  for (;;) {
    auto const opening = text.find(u"#TS(");
    if (opening == std::u16string::npos) return text;
    auto const closing = text.find(u")TS~", opening);
    if (closing == std::u16string::npos) return text;
    auto const inside = text.substr(opening + 4, closing - opening - 4);
    auto const pieces = zWString(inside).ToStringList(u'\u00AC', true);
    auto const wanted =
        static_cast<std::size_t>(static_cast<long long>(language));
    if (wanted >= pieces.size()) return text;
    text = text.substr(0, opening) + std::u16string(pieces[wanted].view()) +
           text.substr(closing + 4);
  }
}

TEST_F(Translation, TakesThePieceOfTheLanguage) {
  EXPECT_EQ("Name: Table", In(0, "Name: #TS(Table¬Tabelle)TS~"));
  EXPECT_EQ("Name: Tabelle", In(1, "Name: #TS(Table¬Tabelle)TS~"));
}

TEST_F(Translation, TranslatesEverySection) {
  EXPECT_EQ("Ja / Nein", In(1, "#TS(Yes¬Ja)TS~ / #TS(No¬Nein)TS~"));
}

TEST_F(Translation, LeavesATextThatLacksTheLanguage) {
  EXPECT_EQ("#TS(Yes¬Ja)TS~ / #TS(No¬Nein)TS~",
            In(2, "#TS(Yes¬Ja)TS~ / #TS(No¬Nein)TS~"));
}

TEST_F(Translation, LeavesAnUnclosedSection) {
  EXPECT_EQ("#TS(Yes¬Ja", In(1, "#TS(Yes¬Ja"));
}

TEST_F(Translation, IgnoresAClosingMarkerBeforeTheFirstOpeningOne) {
  EXPECT_EQ("a)TS~ b", In(0, "a)TS~ #TS(b¬c)TS~"));
}

TEST_F(Translation, LeavesATextWithoutMarkers) {
  EXPECT_EQ("plain ¬ text", In(0, "plain ¬ text"));
}

// Kept: stored texts rely on the first closing marker ending the section.
TEST_F(Translation, DoesNotNestSections) {
  EXPECT_EQ("xy", In(0, "#TS(x#TS(y)TS~¬z)TS~"));
}

TEST_F(Translation, TranslatesWhatAReplacementYields) {
  EXPECT_EQ("a", In(0, "#T#TS(S(a)TS~)TS~"));
  EXPECT_EQ("c", In(1, "#TS(x¬#TS()TS~b¬c)TS~"));
}

// Kept: the pass ends at the first section that lacks the piece.
TEST_F(Translation, StopsAtTheFirstSectionThatLacksTheLanguage) {
  EXPECT_EQ("#TS(a)TS~ #TS(b¬c)TS~", In(1, "#TS(a)TS~ #TS(b¬c)TS~"));
  EXPECT_EQ("c #TS(a)TS~", In(1, "#TS(b¬c)TS~ #TS(a)TS~"));
}

TEST_F(Translation, CountsEmptyPieces) {
  EXPECT_EQ("c", In(2, "#TS(a¬¬c)TS~"));
  EXPECT_EQ("", In(1, "#TS(a¬¬c)TS~"));
  EXPECT_EQ("", In(0, "#TS()TS~"));
  EXPECT_EQ("#TS()TS~", In(1, "#TS()TS~"));
}

// Kept: the number is compared as an unsigned one, so it is a very large one.
TEST_F(Translation, NegativeLanguageTranslatesNothing) {
  EXPECT_EQ("#TS(a¬b)TS~", In(-1, "#TS(a¬b)TS~"));
}

TEST_F(Translation, FirstUnitIsKnownWhereASectionBegins) {
  EXPECT_EQ(u'o', FirstTranslatedUnit(u"#TS(one\u00ACtwo)TS~", 0));
  EXPECT_EQ(u't', FirstTranslatedUnit(u"#TS(one\u00ACtwo)TS~", 1));
  EXPECT_EQ(std::nullopt, FirstTranslatedUnit(u"#TS(one\u00ACtwo)TS~", 2));
  EXPECT_EQ(std::nullopt, FirstTranslatedUnit(u"#TS(\u00ACtwo)TS~", 0));
  EXPECT_EQ(std::nullopt, FirstTranslatedUnit(u"#TS(#TS(a)TS~)TS~", 0));
  EXPECT_EQ(std::nullopt, FirstTranslatedUnit(u"one", 0));
}

std::u16string RandomText(std::mt19937* random) {
  static constexpr std::u16string_view kPieces[] = {
      u"#TS(", u")TS~", u"\u00AC",          u"#", u"T", u"S", u"(", u")",
      u"~",    u"x",    u"#TS(a\u00ACb)TS~"};
  std::u16string text;
  auto const count = (*random)() % 24;
  for (unsigned i = 0; i < count; ++i) {
    text += kPieces[(*random)() % std::size(kPieces)];
  }
  return text;
}

TEST_F(Translation, AgreesWithThePlainStepsOnRandomTexts) {
  constexpr int kTexts = 100;
  JudgeRandomly(100'000, kTexts, [](std::uint32_t seed) {
    std::mt19937 random(seed);
    for (int i = 0; i < kTexts; ++i) {
      auto text = RandomText(&random);
      auto const language =
          static_cast<short>(static_cast<int>(random() % 4) - 1);
      auto const expected = PlainTranslation(text, language);
      SCOPED_TRACE(zWString(text).toUtf8());
      DBbase::SetSprache(language);
      if (auto const first = FirstTranslatedUnit(text, language)) {
        ASSERT_FALSE(expected.empty());
        ASSERT_TRUE(expected.front() == *first || expected.front() == u'#');
      }
      TranslateText(text);
      ASSERT_EQ(zWString(expected).toUtf8(), zWString(text).toUtf8());
    }
  });
}

// Many sections, beside each other and inside each other.
TEST_F(Translation, CostsNoMoreThanTheLengthOfTheText) {
  auto const sections = static_cast<std::size_t>(Shortened(1'000'000));
  std::u16string flat;
  std::u16string nested;
  for (std::size_t i = 0; i < sections; ++i) flat += u"#TS(a\u00ACb)TS~";
  for (std::size_t i = 0; i < sections; ++i) nested += u"#TS(";
  for (std::size_t i = 0; i < sections; ++i) nested += u")TS~";
  TranslateText(flat);
  TranslateText(nested);
  EXPECT_EQ(std::u16string(sections, u'a'), flat);
  EXPECT_EQ(u"", nested);
}

TEST_F(Translation, APieceAndWhatFollowsItMayMakeAClosingMarker) {
  EXPECT_EQ("", In(0, "#TS(#TS()T¬x)TS~S~"));
  EXPECT_EQ("ab", In(0, "a#TS(#TS()¬x)TS~TS~b"));
  EXPECT_EQ("#TS()TX~", In(0, "#TS(#TS()T¬x)TS~X~"));
}

}  // namespace
}  // namespace tabwerk::test
