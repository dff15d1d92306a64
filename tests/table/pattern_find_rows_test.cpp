// Finding the rows whose text matches a pattern.
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "schema/bytes.h"
#include "tests/support/new_guard.h"
#include "tests/support/table_builder.h"
#include "tests/support/table_state.h"

namespace {

using tabwerk::TableAccess;
using tabwerk::test::NewGuard;
using tabwerk::test::Selected;
using tabwerk::test::Selection;
using tabwerk::test::TestTable;

using Found = std::vector<long>;

class FindRows : public testing::Test {
 protected:
  FindRows() : t_("integer ID,string NAME,integer N\n", 2) {
    t_.AddRows(0, {"5|Abc|1", "6|xAbc|2", "7|abc|3"});
    t_.AddRows(1, {"8|Ab|4"});
    t_.table.SelectColumn("N");
    t_.table.SelectZeile(0L);
  }

  Found Find(char16_t const* pattern, bool ids = false,
             char const* column = "NAME") {
    return t_.table.FindRows(column, zWString(pattern), ids);
  }

  TestTable t_;
};

TEST_F(FindRows, GivesRowsWhoseWholeTextMatchesInOrder) {
  EXPECT_EQ((Found{0, 3}), Find(u"Ab.*"));
  EXPECT_EQ("N follows , part 1 row 3, parts N@2 N@0", Selection(t_.table));
}

TEST_F(FindRows, GivesIdsWhenAsked) {
  EXPECT_EQ((Found{5, 8}), Find(u"Ab.*", true));
  EXPECT_EQ("N@3", Selected(t_.table));
}

TEST_F(FindRows, IdsOfATableWithoutIntegerIdAreLeftOut) {
  TestTable none("string NAME\n");
  none.AddRows(0, {"a"});
  EXPECT_EQ(Found{}, none.table.FindRows("NAME", zWString(u"a"), true));
  TestTable text("string ID\n");
  text.AddRows(0, {"a"});
  EXPECT_EQ(Found{}, text.table.FindRows("ID", zWString(u"a"), true));
}

TEST_F(FindRows, TextsAreMatchedInTheCurrentLanguage) {
  TestTable t("string NAME\n");
  t.AddRows(0, {"#TS(Haus\u00AChouse)TS~", "Haus"});
  EXPECT_EQ((Found{0, 1}), t.table.FindRows("NAME", zWString(u"Haus"), false));
}

TEST_F(FindRows, ColumnThatIsNoStringGivesNothing) {
  EXPECT_EQ(Found{}, Find(u".*", false, "ID"));
  EXPECT_EQ("N@3", Selected(t_.table));
}

TEST_F(FindRows, MissingColumnGivesNothingAndKeepsTheRow) {
  EXPECT_EQ(Found{}, Find(u".*", false, "X"));
  EXPECT_EQ(Found{}, Find(u".*", false, nullptr));
  EXPECT_EQ("N@0", Selected(t_.table));
}

TEST_F(FindRows, RowWithoutATextIsSkipped) {
  tabwerk::StoreValue(t_.Part(0).rows.data() + 4, std::int32_t{-1});
  EXPECT_EQ((Found{1, 2, 3}), Find(u".*"));
}

TEST_F(FindRows, MalformedPatternThrowsAndKeepsTheSelection) {
  t_.table.SelectZeile(1L);
  EXPECT_THROW(Find(u"(a"), std::regex_error);
  EXPECT_EQ("N follows , part 0 row 1, parts N@1 N@-1", Selection(t_.table));
}

TEST_F(FindRows, PatternThatTakesTooLongThrowsAndKeepsTheColumn) {
  t_.table.SelectColumn("NAME");
  std::u16string const text(100'000, u'a');
  t_.table.SetWert(text.c_str());
  t_.table.SelectColumn("N");
  // Each lookahead is asked at every place of the text.
  std::u16string pattern;
  for (int i = 0; i < 150; ++i) pattern += u"(?=b)";
  EXPECT_THROW(Find(pattern.c_str()), std::regex_error);
  EXPECT_EQ("N@0", Selected(t_.table));
}

TEST_F(FindRows, WithoutMemoryNothingIsFound) {
  bool fired = true;
  Found found;
  for (int n = 1; fired; ++n) {
    zWString const pattern(u"[A]b.*");
    bool thrown = false;
    {
      NewGuard guard(n);
      try {
        found = t_.table.FindRows("NAME", pattern, false);
      } catch (std::regex_error const&) {
        thrown = true;
      }
      fired = guard.Fired();
    }
    ASSERT_FALSE(thrown) << n;
    ASSERT_EQ(fired ? Found{} : (Found{0, 3}), found) << n;
    ASSERT_EQ("N", tabwerk::test::NameOf(TableAccess::Field(t_.table))) << n;
  }
}

}  // namespace
