// Searches in texts of several languages: what stands before the first "#"
// decides most of them without a translation.  Judged by reading every row.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DBbase.h"
#include "schema/text_scan.h"
#include "table/pattern.h"
#include "tests/support/random_cases.h"
#include "tests/support/random_table.h"
#include "tests/support/table_builder.h"

namespace {

using tabwerk::Pattern;
using tabwerk::ScanText;
using tabwerk::test::JudgeRandomly;
using tabwerk::test::Random;
using tabwerk::test::TestTable;

// Texts that begin, end and interrupt sections in every way.
std::string AnySections(Random& random) {
  std::string text;
  for (int i = random.Between(0, 7); i > 0; --i) {
    text += random.PickOf({"a", "b", "#", "#T", "S(", "#TS(", ")TS~", ")",
                           "\u00AC", "ab",
                           "#TS(a\u00AC"
                           "b)TS~"});
  }
  return text;
}

class SectionSearch : public testing::Test {
 protected:
  ~SectionSearch() override { DBbase::SetSprache(0); }

  // What a host reads, row by row.
  static std::vector<zWString> Texts(DBTabelle& table) {
    std::vector<zWString> texts;
    table.SelectColumn("NAME");
    for (long row = 0; row < table.GetAnzahlZeilen(); ++row) {
      zWString text;
      EXPECT_EQ(1, table.SelectZeile(row));
      EXPECT_EQ(1, table.GetWert(text));
      texts.push_back(text);
    }
    return texts;
  }

  static void Fill(TestTable* t, Random& random) {
    for (int row = random.Between(1, 12); row > 0; --row) {
      t->AddRow(0, "1|" + AnySections(random));
    }
    DBbase::SetSprache(static_cast<short>(random.Between(0, 2)));
  }
};

TEST_F(SectionSearch, RandomTextIsFoundInTheFirstRowThatReadsSo) {
  JudgeRandomly(3000, [](std::uint32_t seed) {
    Random random(seed);
    TestTable t("integer ID,string NAME\n");
    Fill(&t, random);
    auto const texts = Texts(t.table);
    auto const wanted = random.OneIn(3)
                            ? zWString::fromUtf8(AnySections(random))
                            : texts[static_cast<std::size_t>(random.Between(
                                  0, static_cast<int>(texts.size()) - 1))];
    std::size_t expected = 0;
    while (expected < texts.size() && texts[expected] != wanted) ++expected;
    bool const there = expected < texts.size();
    ASSERT_EQ(there ? 1 : 0,
              t.table.SelectZeile("NAME", wanted.toStdWString().c_str()));
    if (!there) return;
    ASSERT_EQ(static_cast<long>(expected),
              tabwerk::TableAccess::CurrentRow(t.table));
  });
}

TEST_F(SectionSearch, PatternFindsTheRandomTextsThatReadSo) {
  JudgeRandomly(1500, [](std::uint32_t seed) {
    Random random(seed);
    TestTable t("integer ID,string NAME\n");
    Fill(&t, random);
    auto const expression = zWString::fromUtf8(random.PickOf(
        {"a.*", ".*b", "#.*", "(a|b)*", ".*T.*", "", "[ab]+", "a?b?"}));
    Pattern pattern(expression.view());
    std::vector<long> expected;
    auto const texts = Texts(t.table);
    for (std::size_t row = 0; row < texts.size(); ++row) {
      if (pattern.MatchesBySteps(texts[row].view())) {
        expected.push_back(static_cast<long>(row));
      }
    }
    ASSERT_EQ(expected, t.table.FindRows("NAME", expression, false));
  });
}

TEST(TextScan, OfRandomUnitsEndsAtTheNulAndTellsOfSectionsBeforeIt) {
  JudgeRandomly(20000, [](std::uint32_t seed) {
    Random random(seed);
    std::u16string units;
    for (int i = random.Between(0, 20); i > 0; --i) {
      constexpr char16_t kUnits[] = {u'a',   u'#', 0,      1,      0xFFFF,
                                     0x8000, u'#', 0x2300, 0x0100, 0x24};
      units += kUnits[random.OneIn(3) ? random.Between(0, 9) : 0];
    }
    std::u16string const expected = units.substr(0, units.find(u'\0'));
    auto const found = ScanText(units);
    ASSERT_EQ(expected, found.text);
    ASSERT_EQ(expected.find(u'#') != expected.npos, found.has_section_start);
  });
}

}  // namespace
