// Selecting a column.
#include <gtest/gtest.h>

#include "tests/support/table_builder.h"
#include "tests/support/table_state.h"

namespace {

using tabwerk::TableAccess;
using tabwerk::test::Indices;
using tabwerk::test::Rows;
using tabwerk::test::Selected;
using tabwerk::test::Selection;
using tabwerk::test::TestTable;

class SelectColumn : public testing::Test {
 protected:
  SelectColumn() : t_("integer ID,integer N,string NAME\n", 2) {
    t_.AddRows(0, {"5|1|a"});
    t_.AddRows(1, {"6|2|b"});
  }

  TestTable t_;
};

TEST_F(SelectColumn, StoresTheFieldInEveryPart) {
  EXPECT_EQ(1, t_.table.SelectColumn("NAME"));
  EXPECT_EQ("NAME follows , part 0 row 0, parts NAME@-1 NAME@-1",
            Selection(t_.table));
}

TEST_F(SelectColumn, NamesCompareExactly) {
  EXPECT_EQ(0, t_.table.SelectColumn("name"));
  EXPECT_EQ(0, t_.table.SelectColumn("NAM"));
  EXPECT_EQ(0, t_.table.SelectColumn(""));
  EXPECT_EQ(0, t_.table.SelectColumn(nullptr));
  EXPECT_EQ("- follows , part 0 row 0, parts -@-1 -@-1", Selection(t_.table));
}

TEST_F(SelectColumn, FixedNamesSetTheirFlagAndOthersClearIt) {
  EXPECT_EQ(1, t_.table.SelectColumn("ID"));
  EXPECT_STREQ("ID", TableAccess::FollowingIndex(t_.table));
  EXPECT_EQ(1, t_.table.SelectColumn("N"));
  EXPECT_STREQ("", TableAccess::FollowingIndex(t_.table));
}

TEST_F(SelectColumn, LongerNameSetsNoFlag) {
  EXPECT_EQ(0, t_.table.SelectColumn("STATUSX"));
  EXPECT_STREQ("", TableAccess::FollowingIndex(t_.table));
}

TEST_F(SelectColumn, MissingFixedColumnSetsItsFlagAndKeepsTheField) {
  t_.table.SelectColumn("N");
  EXPECT_EQ(0, t_.table.SelectColumn("STATUS"));
  EXPECT_EQ("N follows STATUS, part 0 row 0, parts N@-1 N@-1",
            Selection(t_.table));
  EXPECT_EQ(0, t_.table.SelectColumn("FOLGE"));
  EXPECT_STREQ("FOLGE", TableAccess::FollowingIndex(t_.table));
}

TEST_F(SelectColumn, ValueBehindAMissingColumnGoesToItsIndexAndTheOldField) {
  t_.table.MakeIndexStatus();
  t_.table.SelectColumn("N");
  t_.table.SelectZeile(1L);
  t_.table.SelectColumn("STATUS");
  EXPECT_EQ(1, t_.table.SetWert(9L));
  EXPECT_EQ("[5|1|a][6|9|b]", Rows(*t_.entry));
  EXPECT_EQ("ID  FOLGE  STATUS 0 9", Indices(t_.table));
}

TEST_F(SelectColumn, FirstOfTwoColumnsOfOneNameCounts) {
  TestTable twice("integer A,integer N,string N\n");
  twice.table.SelectColumn("N");
  EXPECT_EQ(DBTypeInteger, twice.table.GetType());
}

TEST(SelectColumnUnbound, FailsWithoutADefinition) {
  DBTabelle table;
  EXPECT_EQ(0, table.SelectColumn("ID"));
  EXPECT_STREQ("ID", TableAccess::FollowingIndex(table));
  EXPECT_EQ("-@0", Selected(table));
}

}  // namespace
