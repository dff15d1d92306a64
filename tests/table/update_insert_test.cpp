// Whole rows: inserting.
#include <gtest/gtest.h>

#include "tests/support/table_state.h"
#include "tests/table/update_table.h"

namespace {

using tabwerk::test::FolgeIndexOf;
using tabwerk::test::IdIndexOf;
using tabwerk::test::Rows;
using tabwerk::test::Selected;
using tabwerk::test::State;

class UpdateInsert : public tabwerk::test::UpdateTest {};

TEST_F(UpdateInsert, FreeIdIsKept) {
  auto const t = MakeOrdered(1);
  EXPECT_TRUE(Insert(*t, {{"ID", "17"}, {"NAME", "a"}}));
  EXPECT_EQ("[17|2|0|a]", Rows(*t->entry, 1));
  EXPECT_EQ("1>0 17>1", IdIndexOf(t->table));
}

TEST_F(UpdateInsert, TakenIdIsReplacedByTheNextUserId) {
  auto const t = Make("integer ID,string NAME\n", {"17|a"});
  EXPECT_TRUE(Insert(*t, {{"ID", "17"}, {"NAME", "b"}}));
  EXPECT_TRUE(Insert(*t, {{"ID", "17"}, {"NAME", "c"}}));
  EXPECT_EQ("[17|a][20000|b][20001|c]", Rows(*t->entry));
}

// Looking for the taken ID stands on its row, and only FOLGE, NAME and BEZ_DIN
// come back to the new one.  Hosts order their columns by that.
TEST_F(UpdateInsert, ColumnsBehindATakenIdGoIntoTheRowThatHoldsIt) {
  auto const t =
      Make("integer ID,integer N,string NAME,integer M\n", {"17|1|a|1"});
  EXPECT_TRUE(
      Insert(*t, {{"ID", "17"}, {"N", "5"}, {"NAME", "b"}, {"M", "6"}}));
  EXPECT_EQ("[17|5|a|1][20000|0|b|6]", Rows(*t->entry));
}

TEST_F(UpdateInsert, TakenPlaceIsGivenFree) {
  auto const t = MakeOrdered(5);
  EXPECT_TRUE(Insert(*t, {{"ID", "17"}, {"FOLGE", "3"}, {"NAME", "a"}}));
  EXPECT_EQ("[1|1|0|N1][2|2|0|N2][3|4|0|N3][4|5|0|N4][5|6|0|N5][17|3|0|a]",
            Rows(*t->entry));
  EXPECT_EQ("-1 0 1 5 2 3 4", FolgeIndexOf(t->table));
}

// The given place counts only when a row is there.
TEST_F(UpdateInsert, FreePlaceBecomesTheOneBehindTheActiveRows) {
  auto const t = MakeOrdered(5);
  EXPECT_TRUE(Insert(*t, {{"ID", "17"}, {"FOLGE", "9"}, {"NAME", "a"}}));
  EXPECT_EQ("[17|6|0|a]", Rows(*t->entry, 1));
}

// A built index names a row at place 0 when one has no place, so an insert
// without a place finds it taken like any other.
TEST_F(UpdateInsert, PlaceZeroIsTakenWhenARowStandsThere) {
  auto const t = Make(kUsual, {"1|1|0|a", "2|2|0|b", "3|0|0|c"});
  EXPECT_TRUE(Insert(*t, {{"ID", "17"}, {"NAME", "d"}}));
  EXPECT_EQ("[1|2|0|a][2|3|0|b][3|1|0|c][17|0|0|d]", Rows(*t->entry));
}

TEST_F(UpdateInsert, NegativePlaceIsFree) {
  auto const t = MakeOrdered(2);
  EXPECT_TRUE(Insert(*t, {{"ID", "17"}, {"FOLGE", "-1"}, {"NAME", "a"}}));
  EXPECT_EQ("[17|3|0|a]", Rows(*t->entry, 1));
}

TEST_F(UpdateInsert, Status2TakesNoPlace) {
  auto const t = MakeOrdered(2);
  EXPECT_TRUE(Insert(
      *t, {{"ID", "17"}, {"FOLGE", "1"}, {"STATUS", "2"}, {"NAME", "a"}}));
  EXPECT_EQ("[1|1|0|N1][2|2|0|N2][17|0|2|a]", Rows(*t->entry));
}

// The other states of an inactive row do not: the row is placed as an active
// one, because its STATUS is written only behind its FOLGE.
TEST_F(UpdateInsert, Status1TakesThePlaceOfAnActiveRow) {
  auto const t = MakeOrdered(2);
  EXPECT_TRUE(Insert(*t, {{"ID", "17"}, {"STATUS", "1"}, {"NAME", "a"}}));
  EXPECT_EQ("[17|3|1|a]", Rows(*t->entry, 1));
}

// The number of active rows is taken from the rows as they are then.
TEST_F(UpdateInsert, WithStatusBeforeFolgeTheNewRowsOwnStatusCounts) {
  auto const t =
      Make("integer ID,integer STATUS,integer FOLGE\n", {"1|0|1", "2|0|2"});
  EXPECT_TRUE(Insert(*t, {{"ID", "17"}, {"STATUS", "1"}, {"FOLGE", "9"}}));
  EXPECT_EQ("[17|1|2]", Rows(*t->entry, 1));
}

// Going back to the written row needs its ID, which is not known yet: the
// columns behind go into the row that was moved last.
TEST_F(UpdateInsert, WithFolgeBeforeIdTheNewRowIsLost) {
  auto const t =
      Make("integer FOLGE,integer ID,integer STATUS\n", {"1|5|0", "2|6|0"});
  EXPECT_TRUE(Insert(*t, {{"FOLGE", "1"}, {"ID", "9"}}));
  EXPECT_EQ("[1|9|0][3|6|0][0|0|0]", Rows(*t->entry));
}

TEST_F(UpdateInsert, WithNameBeforeIdTheRowOfIdZeroIsWritten) {
  auto const t = Make("string NAME,integer ID,integer N\n", {"a|0|1", "b|6|2"});
  EXPECT_TRUE(Insert(*t, {{"NAME", "c"}, {"ID", "9"}, {"N", "3"}}));
  EXPECT_EQ("[c|9|3][b|6|2][|0|0]", Rows(*t->entry));
}

// Without the column nobody is active, so the loop that moves rows does not
// run.
TEST_F(UpdateInsert, WithoutStatusATakenPlaceIsShared) {
  auto const t = Make("integer ID,integer FOLGE\n", {"1|1", "2|2"});
  EXPECT_TRUE(Insert(*t, {{"ID", "17"}, {"FOLGE", "1"}}));
  EXPECT_EQ("[1|1][2|2][17|1]", Rows(*t->entry));
}

TEST_F(UpdateInsert, TakenNameGetsNewAppendedUntilItIsFree) {
  auto const t = Make(kUsual, {"1|1|0|Pump", "2|2|0|Pump_NEW"});
  EXPECT_TRUE(Insert(*t, {{"ID", "17"}, {"NAME", "Pump"}}));
  EXPECT_EQ("[17|3|0|Pump_NEW_NEW]", Rows(*t->entry, 1));
}

TEST_F(UpdateInsert, BezDinIsKeptUniqueToo) {
  auto const t = Make("integer ID,string BEZ_DIN,string T\n", {"1|a|b"});
  EXPECT_TRUE(Insert(*t, {{"ID", "17"}, {"BEZ_DIN", "a"}, {"T", "b"}}));
  EXPECT_EQ("[17|a_NEW|b]", Rows(*t->entry, 1));
}

// Its own name is empty when the free one is looked for.
TEST_F(UpdateInsert, EmptyNameCollidesWithTheNewRowItself) {
  auto const t = MakeOrdered(1);
  EXPECT_TRUE(Insert(*t, {{"ID", "17"}}));
  EXPECT_EQ("[17|2|0|_NEW]", Rows(*t->entry, 1));
}

TEST_F(UpdateInsert, NamesAreComparedTranslatedAndStoredRaw) {
  auto const t = Make(kUsual, {"1|1|0|#TS(Yes\xC2\xACJa)TS~"});
  DBbase::SetSprache(1);
  EXPECT_TRUE(Insert(*t, {{"ID", "17"}, {"NAME", "Ja"}}));
  EXPECT_TRUE(Insert(*t, {{"ID", "18"}, {"NAME", "#TS(Yes\xC2\xACJa)TS~"}}));
  EXPECT_EQ("[17|2|0|Ja_NEW][18|3|0|#TS(Yes\xC2\xACJa)TS~]",
            Rows(*t->entry, 1));
}

TEST_F(UpdateInsert, LeavesTheWrittenRowAndTheLastColumnSelected) {
  auto const t = MakeOrdered(3);
  EXPECT_TRUE(Insert(*t, {{"ID", "17"}, {"FOLGE", "1"}, {"NAME", "a"}}));
  EXPECT_EQ("NAME@3", Selected(t->table));
}

// There is no user file that a new row could go to.
TEST_F(UpdateInsert, WithoutASecondPartNothingChanges) {
  auto const t = Make(kUsual, {"1|1|0|a"}, 1);
  auto const before = State(*t);
  EXPECT_FALSE(Insert(*t, {{"ID", "17"}, {"NAME", "b"}}));
  EXPECT_EQ(before, State(*t));
}

TEST_F(UpdateInsert, IdColumnOfAnotherTypeEndsTheWriting) {
  auto const t = Make("integer N,real ID,integer M\n", {});
  EXPECT_FALSE(Insert(*t, {{"N", "1"}, {"ID", "17"}, {"M", "2"}}));
  EXPECT_EQ("[1|0|0]", Rows(*t->entry));
}

}  // namespace
