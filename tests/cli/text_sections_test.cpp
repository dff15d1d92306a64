// What is said of texts in several languages, against what the library's
// translation makes of them.
#include "cli/text_sections.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>

#include "tests/cli/translation.h"
#include "ztypes.h"

namespace tabwerk::test {
namespace {

using tool::SectionState;
using tool::TextSections;

constexpr std::size_t kLanguages = 5;

std::string States(std::u16string const& text, std::size_t language) {
  TextSections sections;
  sections.Read(text);
  std::vector<SectionState> states;
  sections.GetStates(language, &states);
  std::string names;
  for (SectionState const state : states) {
    names += (names.empty() ? "" : " ") + std::string(SectionStateName(state));
  }
  return names;
}

// The same, found with the plainest of means: the text is translated step by
// step, and what stays behind is split.
std::string PlainStates(std::u16string text, std::size_t language,
                        std::u16string* translated) {
  std::string names;
  bool stopped = false;
  *translated = text;
  for (std::size_t at = 0; (at = text.find(u"#TS(", at)) != text.npos;) {
    std::size_t const end = text.find(u")TS~", at);
    if (end == text.npos) return names + "unclosed ";
    auto const pieces = zWString(text.substr(at + 4, end - at - 4))
                            .ToStringList(u'\u00AC', true);
    if (language >= pieces.size()) {
      names += "missing ";
      stopped = true;
    } else if (stopped) {
      names += "blocked ";
    } else {
      names += pieces[language].isEmpty() ? "empty " : "complete ";
      text = text.substr(0, at) + std::u16string(pieces[language].view()) +
             text.substr(end + 4);
      *translated = text;
      at = 0;
      continue;
    }
    at = end + 4;
  }
  return names;
}

std::u16string RandomText(std::mt19937& random) {
  static constexpr std::array<std::u16string_view, 16> kParts = {
      u"#TS(",
      u")TS~",
      u"\u00AC",
      u"\u00AC",
      u"#",
      u"TS(",
      u")",
      u"TS~",
      u"a",
      u"bc",
      u"#TS(a\u00ACb)TS~",
      u"#TS(a\u00AC\u00ACc\u00ACd)TS~",
      u"#TS()TS~",
      u" ",
      u"#T",
      u"S("};
  std::u16string text;
  for (std::size_t i = random() % 14; i > 0; --i) {
    text += kParts[random() % kParts.size()];
  }
  return text;
}

TEST(TextSections, NamesTheStateOfEverySection) {
  EXPECT_EQ("", States(u"plain", 0));
  EXPECT_EQ("complete", States(u"a #TS(b\u00ACc)TS~ d", 1));
  EXPECT_EQ("missing", States(u"#TS(b\u00ACc)TS~", 2));
  EXPECT_EQ("empty", States(u"#TS(b\u00AC)TS~", 1));
  EXPECT_EQ("empty", States(u"#TS()TS~", 0));
  EXPECT_EQ("unclosed", States(u"#TS(b\u00ACc", 0));
  EXPECT_EQ(
      "complete missing blocked missing unclosed",
      States(u"#TS(a\u00ACb)TS~#TS(a)TS~#TS(a\u00ACb)TS~#TS(a)TS~#TS(", 1));
}

TEST(TextSections, FollowsSectionsThatAreMadeOnTheWay) {
  std::u16string const text = u"x#TS(y#TS(y)TS~\u00ACz)TS~";
  EXPECT_EQ("complete complete", States(text, 0));
  EXPECT_EQ("missing", States(text, 1));
}

TEST(TextSections, CountsPieces) {
  TextSections sections;
  std::u16string const text =
      u"#TS(a\u00ACb\u00AC\u00ACd)TS~ #TS(a\u00ACb\u00ACc)TS~";
  sections.Read(text);
  EXPECT_TRUE(sections.HasSections());
  EXPECT_EQ(4U, sections.MostPieces());
  EXPECT_EQ(1U, sections.CountPieces(2));
  EXPECT_EQ(1U, sections.CountPieces(3));
  EXPECT_EQ(0U, sections.CountPieces(4));
}

TEST(TextSections, SaysWhatTheTranslationDoes) {
  std::mt19937 random(1);
  unsigned incomplete = 0;
  for (int i = 0; i < 20000; ++i) {
    std::u16string const text = RandomText(random);
    for (std::size_t language = 0; language < kLanguages; ++language) {
      std::u16string translated;
      std::string expected = PlainStates(text, language, &translated);
      ASSERT_EQ(
          zWString(translated).toUtf8(),
          zWString(Translated(text, static_cast<int>(language))).toUtf8());
      if (!expected.empty()) expected.pop_back();
      std::string const found = States(text, language);
      ASSERT_EQ(expected, found) << zWString(text).toUtf8() << language;
      // A text is translated wholly exactly where nothing stops it.
      bool const whole = translated.find(u"#TS(") == translated.npos;
      ASSERT_EQ(whole, found.find("missing") == found.npos &&
                           found.find("unclosed") == found.npos);
      incomplete += whole ? 0U : 1U;
    }
  }
  EXPECT_LT(1000U, incomplete);
}

}  // namespace
}  // namespace tabwerk::test
