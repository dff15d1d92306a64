// The languages of a text as the tool counts them, against the translation of
// the library.
#include "cli/translated_text.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/cli/translation.h"
#include "ztypes.h"

namespace tabwerk::test {
namespace {

TEST(TranslatedText, CountsPieces) {
  EXPECT_EQ(0, tool::LanguageCount(u""));
  EXPECT_EQ(0, tool::LanguageCount(u"Nut¬Mutter"));
  EXPECT_EQ(1, tool::LanguageCount(u"#TS()TS~"));
  EXPECT_EQ(2, tool::LanguageCount(u"#TS(Nut¬Mutter)TS~"));
  EXPECT_EQ(3, tool::LanguageCount(u"a #TS(b)TS~ c #TS(¬¬)TS~ d"));
  EXPECT_EQ(0, tool::LanguageCount(u"#TS(Nut¬Mutter"));
  EXPECT_EQ(2, tool::LanguageCount(u")TS~#TS(Nut¬Mutter)TS~¬#TS(¬¬"));
}

// A text of one closed section loses its markers in the languages that are
// counted, and in no other one.
TEST(TranslatedText, CountsTheLanguagesThatTheLibraryTranslates) {
  std::mt19937 random(20);
  for (int i = 0; i < 2000; ++i) {
    std::u16string text = u"x";
    for (auto left = random() % 12; left > 0; --left)
      text += u"ab¬¬#("[random() % 6];
    text = u"y#TS(" + text + u")TS~z";
    int const count = tool::LanguageCount(text);
    for (int language = 0; language < 9; ++language) {
      EXPECT_EQ(language >= count, Translated(text, language) == text)
          << zWString(std::u16string_view(text)).toUtf8() << " " << language;
    }
    EXPECT_EQ(text, Translated(text, tool::kAsStored));
  }
}

// In its last language a text of several sections still changes; behind it, it
// stays as it is stored.
TEST(TranslatedText, CountsTheSectionWithMostPieces) {
  std::mt19937 random(21);
  char16_t const* const parts[] = {u"a", u"¬", u"#TS(", u")TS~"};
  for (int i = 0; i < 5000; ++i) {
    std::u16string text;
    for (auto left = random() % 14; left > 0; --left)
      text += parts[random() % 4];
    int const count = tool::LanguageCount(text);
    for (int language = count; language < 12; ++language) {
      EXPECT_EQ(text, Translated(text, language))
          << zWString(std::u16string_view(text)).toUtf8() << " " << language;
    }
    EXPECT_EQ(text, Translated(text, tool::kAsStored));
  }
}

}  // namespace
}  // namespace tabwerk::test
