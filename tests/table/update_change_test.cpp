// Whole rows: changing a row and appending one.
#include <gtest/gtest.h>

#include "tests/support/table_state.h"
#include "tests/table/update_table.h"

namespace {

using tabwerk::test::IdIndexOf;
using tabwerk::test::Rows;
using tabwerk::test::Selected;
using tabwerk::test::State;
using tabwerk::test::StatusIndexOf;

class UpdateChange : public tabwerk::test::UpdateTest {};
class UpdateAppend : public tabwerk::test::UpdateTest {};

TEST_F(UpdateChange, WritesTheRowOfThatId) {
  auto const t = MakeOrdered(3);
  EXPECT_TRUE(Update(*t, {{"ID", "2"}, {"NAME", "a"}}));
  EXPECT_EQ("[1|1|0|N1][2|2|0|a][3|3|0|N3]", Rows(*t->entry));
  EXPECT_EQ("NAME@1", Selected(t->table));
}

TEST_F(UpdateChange, UnknownIdAddsNoRow) {
  auto const t = MakeOrdered(1);
  EXPECT_FALSE(Update(*t, {{"ID", "7"}, {"NAME", "a"}}));
  EXPECT_EQ("[1|1|0|N1]", Rows(*t->entry));
}

TEST_F(UpdateChange, LeavesThePlaceAlone) {
  auto const t = MakeOrdered(2);
  EXPECT_TRUE(Update(*t, {{"ID", "1"}, {"FOLGE", "2"}, {"NAME", "a"}}));
  EXPECT_EQ("[1|1|0|a][2|2|0|N2]", Rows(*t->entry));
}

// The row itself counts as a row of that name.
TEST_F(UpdateChange, UnchangedNameGetsNewAppended) {
  auto const t = MakeOrdered(1);
  EXPECT_TRUE(Update(*t, {{"ID", "1"}, {"NAME", "N1"}}));
  EXPECT_EQ("[1|1|0|N1_NEW]", Rows(*t->entry));
}

TEST_F(UpdateChange, AbsentNameOfANamelessRowBecomesNew) {
  auto const t = Make(kUsual, {"1|1|0|"});
  EXPECT_TRUE(Update(*t, {{"ID", "1"}}));
  EXPECT_EQ("[1|1|0|_NEW]", Rows(*t->entry));
}

// A missing column reads as the empty text, whatever the row holds.
TEST_F(UpdateChange, MissingColumnsAreWrittenAsNothing) {
  auto const t = Make("integer ID,integer STATUS,integer N,real R,string T\n",
                      {"1|1|5|2.5|a"});
  EXPECT_TRUE(Update(*t, {{"ID", "1"}}));
  EXPECT_EQ("[1|0|0|0|]", Rows(*t->entry));
  EXPECT_EQ("0", StatusIndexOf(t->table));
}

TEST_F(UpdateChange, Status2TakesThePlaceAway) {
  auto const t = MakeOrdered(2);
  EXPECT_TRUE(Update(*t, {{"ID", "1"}, {"STATUS", "2"}, {"NAME", "a"}}));
  EXPECT_EQ("[1|0|2|a][2|2|0|N2]", Rows(*t->entry));
}

// An update never gives a place, so a row that comes back has none until the
// rows are numbered anew.
TEST_F(UpdateChange, BackFromStatus2TheRowStaysWithoutPlace) {
  auto const t = MakeOrdered(1);
  EXPECT_TRUE(Update(*t, {{"ID", "1"}, {"STATUS", "2"}, {"NAME", "a"}}));
  EXPECT_TRUE(Update(*t, {{"ID", "1"}, {"STATUS", "0"}, {"NAME", "b"}}));
  EXPECT_EQ("[1|0|0|b]", Rows(*t->entry));
}

// The row is known only from the column ID on.
TEST_F(UpdateChange, ColumnsBeforeIdGoIntoTheCurrentRow) {
  auto const t = Make("integer N,integer ID,integer M\n", {"1|5|1", "2|6|2"});
  t->table.SelectZeile(0L);
  EXPECT_TRUE(Update(*t, {{"N", "8"}, {"ID", "6"}, {"M", "9"}}));
  EXPECT_EQ("[8|5|1][2|6|9]", Rows(*t->entry));
}

TEST_F(UpdateChange, WorksWithoutASecondPart) {
  auto const t = Make(kUsual, {"1|1|0|a"}, 1);
  EXPECT_TRUE(Update(*t, {{"ID", "1"}, {"NAME", "b"}}));
  EXPECT_EQ("[1|1|0|b]", Rows(*t->entry));
}

TEST_F(UpdateChange, TextsBecomeValuesOfTheColumnsType) {
  auto const t = Make("integer ID,integer N,real R,string T\n", {"1|0|0|"});
  EXPECT_TRUE(Update(
      *t, {{"ID", " +1"}, {"N", "99999999999"}, {"R", "-1.5x"}, {"T", "7"}}));
  EXPECT_EQ("[1|2147483647|-1.5|7]", Rows(*t->entry));
}

// Only strings can get "_NEW".
TEST_F(UpdateChange, NameColumnsOfOtherTypesAreOrdinaryColumns) {
  auto const t =
      Make("integer ID,integer NAME,real BEZ_DIN\n", {"1|5|2.5", "2|6|0"});
  EXPECT_TRUE(Update(*t, {{"ID", "2"}, {"NAME", "5"}, {"BEZ_DIN", "2.5"}}));
  EXPECT_EQ("[1|5|2.5][2|5|2.5]", Rows(*t->entry));
}

// Behind "7_NEW" the first column reads 7 again, for ever.
TEST_F(UpdateChange, NameBehindAnIntegerOfThatNameEndsTheWriting) {
  auto const t = Make("integer ID,integer NAME,string NAME\n", {"1|5|a"});
  EXPECT_FALSE(Update(*t, {{"ID", "1"}, {"NAME", "7"}}));
  EXPECT_EQ("[1|7|a]", Rows(*t->entry));
}

TEST_F(UpdateChange, ColumnOfUnknownTypeEndsTheWritingAndKeepsWhatWasWritten) {
  auto const t = Make("integer ID,integer N,unknown X,integer M\n", {"1|0||0"});
  EXPECT_FALSE(Update(*t, {{"ID", "1"}, {"N", "5"}, {"M", "6"}}));
  EXPECT_EQ("[1|5||0]", Rows(*t->entry));
}

TEST_F(UpdateChange, StatusOfAnotherTypeEndsTheWriting) {
  auto const t = Make("integer ID,real STATUS,integer N\n", {"1|0|0"});
  EXPECT_FALSE(Update(*t, {{"ID", "1"}, {"STATUS", "1"}, {"N", "6"}}));
  EXPECT_EQ("[1|0|0]", Rows(*t->entry));
}

TEST_F(UpdateChange, MapValueOfAMissingKeyIsEmptyAndNotEntered) {
  DBTabelle table;
  std::map<std::string, std::wstring> values{{"A", L"x"}};
  EXPECT_EQ(L"x", table.mapGetString(values, "A"));
  EXPECT_EQ(L"", table.mapGetString(values, "B"));
  EXPECT_EQ(1U, values.size());
}

TEST_F(UpdateChange, TableWithoutPartsTakesNothing) {
  DBTabelle table;
  std::map<std::string, std::wstring> values;
  EXPECT_FALSE(table.SetZeileWerte(values, DBTabelle::ActionUpdate));
  EXPECT_FALSE(table.SetZeileWerte(values, DBTabelle::ActionAppend));
}

TEST_F(UpdateAppend, RowGetsAUserIdAndTheLastPlace) {
  auto const t = MakeOrdered(2);
  EXPECT_TRUE(Append(*t, {{"ID", "7"}, {"FOLGE", "1"}, {"NAME", "a"}}));
  EXPECT_EQ("[1|1|0|N1][2|2|0|N2][20000|3|0|a]", Rows(*t->entry));
  EXPECT_EQ("1>0 2>1 20000>2", IdIndexOf(t->table));
}

TEST_F(UpdateAppend, GivenStatusIsNotUsed) {
  auto const t = MakeOrdered(1);
  EXPECT_TRUE(Append(*t, {{"STATUS", "2"}, {"NAME", "a"}}));
  EXPECT_EQ("[20000|2|0|a]", Rows(*t->entry, 1));
}

TEST_F(UpdateAppend, InactiveRowsHaveNoPlaceBeforeTheNewOne) {
  auto const t = Make(kUsual, {"1|1|0|a", "2|0|1|b", "3|0|2|c"});
  EXPECT_TRUE(Append(*t, {{"NAME", "d"}}));
  EXPECT_EQ("[20000|2|0|d]", Rows(*t->entry, 1));
}

TEST_F(UpdateAppend, WithoutStatusTheRowGetsPlaceZero) {
  auto const t = Make("integer ID,integer FOLGE\n", {"1|1", "2|2"});
  EXPECT_TRUE(Append(*t, {}));
  EXPECT_EQ("[20000|0]", Rows(*t->entry, 1));
}

TEST_F(UpdateAppend, ManyRowsOfOneNameGetDifferentNames) {
  auto const t = Make("integer ID,string NAME\n", {});
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(Append(*t, {{"NAME", "a"}}));
  EXPECT_EQ("[20000|a][20001|a_NEW][20002|a_NEW_NEW]", Rows(*t->entry));
}

TEST_F(UpdateAppend, WithoutASecondPartNothingChanges) {
  auto const t = Make(kUsual, {"1|1|0|a"}, 1);
  auto const before = State(*t);
  EXPECT_FALSE(Append(*t, {{"NAME", "b"}}));
  EXPECT_EQ(before, State(*t));
}

}  // namespace
