// Selecting a row by number, and counting rows.
#include <gtest/gtest.h>

#include <limits>

#include "tests/support/plain_table_search.h"
#include "tests/support/random_cases.h"
#include "tests/support/random_table.h"
#include "tests/support/table_builder.h"
#include "tests/support/table_state.h"

namespace {

namespace plain = tabwerk::test::plain;
using tabwerk::test::JudgeRandomly;
using tabwerk::test::RandomTable;
using tabwerk::test::Selected;
using tabwerk::test::Selection;
using tabwerk::test::State;
using tabwerk::test::TestTable;

constexpr char const* kDefinition = "integer ID,integer STATUS,string NAME\n";

TEST(SelectZeile, BeyondTheEndStandsOnTheLastRow) {
  TestTable t(kDefinition);
  t.AddRows(0, {"1", "2", "3"});
  EXPECT_EQ(0, t.table.SelectZeile(5L));
  EXPECT_EQ("- follows , part 0 row 2, parts -@2", Selection(t.table));
}

TEST(SelectZeile, NegativeRowChangesNothing) {
  TestTable t(kDefinition);
  t.AddRows(0, {"1", "2", "3"});
  t.table.SelectZeile(1L);
  EXPECT_EQ(0, t.table.SelectZeile(-1L));
  EXPECT_EQ("-@1", Selected(t.table));
}

TEST(SelectZeile, RowsOfLaterPartsFollowThoseOfEarlierOnes) {
  TestTable t("integer ID\n", 2);
  for (int i = 0; i < 10; ++i) t.AddRow(0, "1");
  for (int i = 0; i < 4; ++i) t.AddRow(1, "2");
  EXPECT_EQ(1, t.table.SelectZeile(12L));
  EXPECT_EQ("- follows , part 1 row 12, parts -@-1 -@2", Selection(t.table));
  EXPECT_EQ(1, t.table.SelectZeile(9L));
  EXPECT_EQ("- follows , part 0 row 9, parts -@9 -@2", Selection(t.table));
}

TEST(SelectZeile, BeyondTheEndSkipsEmptyPartsAtTheEnd) {
  TestTable t(kDefinition, 3);
  t.AddRows(1, {"1", "2"});
  EXPECT_EQ(0, t.table.SelectZeile(2L));
  EXPECT_EQ("- follows , part 1 row 1, parts -@-1 -@1 -@-1",
            Selection(t.table));
}

TEST(SelectZeile, EmptyTableHasNoRowToStandOn) {
  TestTable t(kDefinition, 2);
  EXPECT_EQ(0, t.table.SelectZeile(0L));
  EXPECT_EQ("- follows , part 0 row -1, parts -@-1 -@-1", Selection(t.table));
}

TEST(SelectZeile, TableWithoutPartsHasNoRow) {
  DBTabelle table;
  EXPECT_EQ(0, table.SelectZeile(0L));
  EXPECT_EQ("- follows , part 0 row -1, parts", Selection(table));
  EXPECT_EQ(0, table.GetAnzahlZeilen());
}

TEST(SelectZeile, LargestNumbersAreBeyondTheEnd) {
  TestTable t(kDefinition);
  t.AddRows(0, {"1"});
  EXPECT_EQ(0, t.table.SelectZeile(std::numeric_limits<long>::max()));
  EXPECT_EQ("-@0", Selected(t.table));
  EXPECT_EQ(0, t.table.SelectZeile(std::numeric_limits<long>::min()));
  EXPECT_EQ("-@0", Selected(t.table));
}

TEST(SelectZeile, DamagedPartHasNoRows) {
  TestTable t(kDefinition, 2);
  t.AddRows(0, {"1", "2"});
  t.AddRows(1, {"3"});
  t.Part(0).damaged = true;
  EXPECT_EQ(1, t.table.GetAnzahlZeilen());
  EXPECT_EQ(1, t.table.SelectZeile(0L));
  EXPECT_EQ("- follows , part 1 row 0, parts -@-1 -@0", Selection(t.table));
}

TEST(AnzahlZeilen, SumsAllParts) {
  TestTable t(kDefinition, 3);
  t.AddRows(0, {"1", "2"});
  t.AddRows(2, {"3"});
  EXPECT_EQ(3, t.table.GetAnzahlZeilen());
}

TEST(AnzahlAktiveZeilen, CountsStatusZeroAndRestoresTheSelection) {
  TestTable t(kDefinition, 2);
  t.AddRows(0, {"1|0", "2|1", "3|0"});
  t.AddRows(1, {"4|-1", "5|0"});
  t.table.SelectColumn("NAME");
  t.table.SelectZeile(1L);
  EXPECT_EQ(3, t.table.GetAnzahlAktiveZeilen());
  EXPECT_EQ("NAME follows , part 0 row 1, parts NAME@1 NAME@1",
            Selection(t.table));
}

TEST(AnzahlAktiveZeilen, ReadsTheRowsNotTheIndex) {
  TestTable t(kDefinition);
  t.AddRows(0, {"1|0"});
  tabwerk::TableAccess::Status(t.table) = {1};
  EXPECT_EQ(1, t.table.GetAnzahlAktiveZeilen());
}

TEST(AnzahlAktiveZeilen, SelectsIdWhenNoColumnWasSelected) {
  TestTable t(kDefinition);
  t.AddRows(0, {"1|0"});
  EXPECT_EQ(1, t.table.GetAnzahlAktiveZeilen());
  EXPECT_EQ("ID follows ID, part 0 row 0, parts ID@0", Selection(t.table));
}

TEST(AnzahlAktiveZeilen, IsZeroWithoutAStatusColumn) {
  TestTable t("integer ID\n");
  t.AddRows(0, {"1", "2"});
  t.table.SelectColumn("ID");
  t.table.SelectZeile(1L);
  EXPECT_EQ(0, t.table.GetAnzahlAktiveZeilen());
  EXPECT_EQ("ID follows ID, part 0 row 1, parts ID@1", Selection(t.table));
}

TEST(AnzahlAktiveZeilen, StatusThatIsNoIntegerLeavesRowZeroSelected) {
  TestTable t("integer ID,string STATUS\n");
  t.AddRows(0, {"1|0", "2|0"});
  t.table.SelectColumn("ID");
  t.table.SelectZeile(1L);
  EXPECT_EQ(0, t.table.GetAnzahlAktiveZeilen());
  EXPECT_EQ("ID@0", Selected(t.table));
}

TEST(AnzahlAktiveZeilen, EqualsThePlainFormOnRandomTables) {
  JudgeRandomly(1000, [](std::uint32_t seed) {
    auto const fast = RandomTable(seed, 12);
    auto const slow = RandomTable(seed, 12);
    ASSERT_EQ(plain::CountActive(slow->table),
              fast->table.GetAnzahlAktiveZeilen());
    ASSERT_EQ(State(*slow), State(*fast));
  });
}

}  // namespace
