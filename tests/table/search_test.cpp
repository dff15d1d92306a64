// Selecting the row that has a value.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "schema/bytes.h"
#include "tests/support/table_builder.h"
#include "tests/support/table_state.h"

namespace {

using tabwerk::test::IdIndexOf;
using tabwerk::test::Selected;
using tabwerk::test::Selection;
using tabwerk::test::TestTable;

class Search : public testing::Test {
 protected:
  Search() : t_("integer ID,integer FOLGE,string NAME,real PRICE\n", 2) {
    t_.AddRows(0, {"5|2|Anna|1.5", "6|1|Bert|2.5"});
    t_.AddRows(1, {"7|3|Carl|1.5"});
    t_.table.MakeIndexID();
    t_.table.MakeIndexFolge();
    t_.table.SelectColumn("NAME");
    t_.table.SelectZeile(0L);
  }

  TestTable t_;
};

// --- By ID and FOLGE --------------------------------------------------------

TEST_F(Search, IdIsLookedUpInItsIndex) {
  EXPECT_EQ(1, t_.table.SelectZeile("ID", 7L));
  EXPECT_EQ("NAME follows , part 1 row 2, parts NAME@0 NAME@0",
            Selection(t_.table));
}

TEST_F(Search, UnknownIdIsNeitherFoundNorEntered) {
  EXPECT_EQ(0, t_.table.SelectZeile("ID", 99L));
  EXPECT_EQ("5>0 6>1 7>2", IdIndexOf(t_.table));
  EXPECT_EQ("NAME@0", Selected(t_.table));
}

TEST_F(Search, IdOfAStaleRowStandsOnTheLastRow) {
  tabwerk::TableAccess::Ids(t_.table).Set(8, 17);
  EXPECT_EQ(0, t_.table.SelectZeile("ID", 8L));
  EXPECT_EQ("NAME@2", Selected(t_.table));
}

TEST_F(Search, FolgeIsLookedUpInItsIndex) {
  EXPECT_EQ(1, t_.table.SelectZeile("FOLGE", 1L));
  EXPECT_EQ("NAME@1", Selected(t_.table));
}

TEST_F(Search, FolgeWithoutARowIsNotFound) {
  EXPECT_EQ(0, t_.table.SelectZeile("FOLGE", 0L));
  EXPECT_EQ(0, t_.table.SelectZeile("FOLGE", 4L));
  EXPECT_EQ(0, t_.table.SelectZeile("FOLGE", -1L));
  EXPECT_EQ("NAME@0", Selected(t_.table));
}

TEST_F(Search, FolgeZeroIsFoundWhereTheIndexNamesARow) {
  tabwerk::TableAccess::Folge(t_.table)[0] = 2;
  EXPECT_EQ(1, t_.table.SelectZeile("FOLGE", 0L));
  EXPECT_EQ("NAME@2", Selected(t_.table));
}

TEST_F(Search, NumbersBeyond32BitsAreNeverFound) {
  if (sizeof(long) == 4) GTEST_SKIP() << "long has 32 bits here";
  auto const beyond = static_cast<long>(std::int64_t{1} << 32);
  EXPECT_EQ(0, t_.table.SelectZeile("ID", beyond + 5));
  EXPECT_EQ(0, t_.table.SelectZeile("FOLGE", beyond + 1));
  EXPECT_EQ(-1, t_.table.GetRowByID(beyond + 5));
  EXPECT_EQ(-1, t_.table.GetRowByFolge(beyond + 1));
}

// --- By value ---------------------------------------------------------------

TEST_F(Search, IntegerSelectsTheFirstRowAndKeepsTheColumn) {
  TestTable t("integer N,string NAME\n");
  t.AddRows(0, {"4|a", "5|b", "5|c"});
  t.table.SelectColumn("NAME");
  EXPECT_EQ(1, t.table.SelectZeile("N", 5L));
  EXPECT_EQ("NAME@1", Selected(t.table));
  EXPECT_EQ(0, t.table.SelectZeile("N", 6L));
  EXPECT_EQ("NAME@2", Selected(t.table));
}

TEST_F(Search, SearchedColumnStaysWhenNoneWasSelected) {
  TestTable t("integer N,string NAME\n");
  t.AddRows(0, {"4|a"});
  EXPECT_EQ(1, t.table.SelectZeile("N", 4L));
  EXPECT_EQ("N@0", Selected(t.table));
}

TEST_F(Search, MissingColumnLeavesColumnAndRow) {
  t_.table.SelectZeile(1L);
  EXPECT_EQ(0, t_.table.SelectZeile("X", 1L));
  EXPECT_EQ(0, t_.table.SelectZeile("X", 1.0));
  EXPECT_EQ(0, t_.table.SelectZeile("X", L"1"));
  EXPECT_EQ(0, t_.table.SelectZeile(nullptr, 1L));
  EXPECT_EQ(0, t_.table.SelectZeile(nullptr, L"1"));
  EXPECT_EQ("NAME@1", Selected(t_.table));
}

TEST_F(Search, ColumnOfAnotherTypeStopsOnTheFirstRow) {
  t_.table.SelectZeile(1L);
  EXPECT_EQ(0, t_.table.SelectZeile("PRICE", 1L));
  EXPECT_EQ("NAME@0", Selected(t_.table));
  t_.table.SelectZeile(1L);
  EXPECT_EQ(0, t_.table.SelectZeile("ID", 5.0));
  EXPECT_EQ("NAME@0", Selected(t_.table));
}

TEST_F(Search, ColumnIsSelectedAgainByItsName) {
  TestTable t("string NAME,integer A,real NAME\n");
  t.AddRows(0, {"a|1|1"});
  // A host may hold the second column of that name only by a field of its own.
  t.table.SelectColumn("A");
  DBFeld* const second = t.entry->GetDefinition()->GetDefinition()->next->next;
  tabwerk::TableAccess::SubTables(t.table)[0].field = second;
  EXPECT_EQ(1, t.table.SelectZeile("A", 1L));
  EXPECT_EQ(DBTypeString, t.table.GetType());
}

TEST_F(Search, FlagFollowsTheColumnThatIsSelectedAgain) {
  t_.table.SelectColumn("FOLGE");
  t_.table.SelectColumn("STATUS");
  t_.table.SelectZeile("PRICE", 1.5);
  EXPECT_STREQ("FOLGE", tabwerk::TableAccess::FollowingIndex(t_.table));
}

TEST_F(Search, RealNeedsExactEquality) {
  EXPECT_EQ(1, t_.table.SelectZeile("PRICE", 2.5));
  EXPECT_EQ("NAME@1", Selected(t_.table));
  EXPECT_EQ(0, t_.table.SelectZeile("PRICE", 2.5000000001));
  EXPECT_EQ(0, t_.table.SelectZeile("PRICE", std::nan("")));
}

// --- The reach of the search for reals --------------------------------------

// The last row that the search for a real looks at.
long LastSearched(int rows) {
  TestTable t("real PRICE\n", 2);
  for (int i = 0; i < rows; ++i) t.AddRow(i < rows / 2 ? 0 : 1, "1");
  EXPECT_EQ(0, t.table.SelectZeile("PRICE", 2.0));
  return tabwerk::TableAccess::CurrentRow(t.table);
}

TEST(SearchReach, FewerThan32RowsAreSearchedWhole) {
  EXPECT_EQ(0, LastSearched(1));
  EXPECT_EQ(4, LastSearched(5));
  EXPECT_EQ(30, LastSearched(31));
}

TEST(SearchReach, FromThere2ToThePowerOfTheRowsMod32AreSearched) {
  EXPECT_EQ(0, LastSearched(32));
  EXPECT_EQ(1, LastSearched(33));
  EXPECT_EQ(3, LastSearched(34));
  EXPECT_EQ(31, LastSearched(37));
  EXPECT_EQ(37, LastSearched(38));
  EXPECT_EQ(39, LastSearched(40));
  EXPECT_EQ(62, LastSearched(63));
  EXPECT_EQ(0, LastSearched(64));
}

TEST(SearchReach, ValueInRow5Of32RowsIsNotFound) {
  TestTable t("real NAME\n");
  for (int i = 0; i < 32; ++i) t.AddRow(0, i == 5 ? "3.5" : "1");
  EXPECT_EQ(0, t.table.SelectZeile("NAME", 3.5));
  EXPECT_EQ(1, t.table.SelectZeile("NAME", L"3.5"));
  EXPECT_EQ("NAME@5", Selected(t.table));
}

// --- By text ----------------------------------------------------------------

TEST_F(Search, TextIsComparedByTheTypeOfTheColumn) {
  EXPECT_EQ(1, t_.table.SelectZeile("ID", L" 6x"));
  EXPECT_EQ("NAME@1", Selected(t_.table));
  EXPECT_EQ(1, t_.table.SelectZeile("PRICE", L"25e-1"));
  EXPECT_EQ("NAME@1", Selected(t_.table));
  EXPECT_EQ(1, t_.table.SelectZeile("NAME", L"Carl"));
  EXPECT_EQ("NAME@2", Selected(t_.table));
  EXPECT_EQ(0, t_.table.SelectZeile("NAME", L"Car"));
  EXPECT_EQ("NAME@2", Selected(t_.table));
}

TEST_F(Search, NanTextMatchesNothing) {
  TestTable t("real PRICE\n");
  t.AddRows(0, {"nan", "0"});
  EXPECT_EQ(0, t.table.SelectZeile("PRICE", L"nan"));
  EXPECT_EQ("PRICE@1", Selected(t.table));
  EXPECT_EQ(1, t.table.SelectZeile("PRICE", L"-0.0"));
}

TEST_F(Search, TextIsComparedInTheCurrentLanguage) {
  TestTable t("string NAME\n");
  t.AddRows(0, {"#TS(Haus\u00AChouse)TS~"});
  EXPECT_EQ(1, t.table.SelectZeile("NAME", L"Haus"));
  EXPECT_EQ(0, t.table.SelectZeile("NAME", L"house"));
}

TEST_F(Search, SurrogatesAreComparedAsUnits) {
  TestTable t("string NAME\n");
  t.AddRows(0, {"\U0001F600"});
  EXPECT_EQ(1, t.table.SelectZeile("NAME", L"\U0001F600"));
}

TEST_F(Search, BrokenTextEndsTheSearch) {
  // Bert's place in the store, behind Anna's record of 20 bytes.
  tabwerk::StoreValue(t_.Part(0).rows.data() + 20 + 8, std::int32_t{-5});
  EXPECT_EQ(0, t_.table.SelectZeile("NAME", L"Carl"));
  EXPECT_EQ("NAME@1", Selected(t_.table));
}

TEST_F(Search, NullTextIsTheEmptyText) {
  TestTable t("string NAME\n");
  t.AddRows(0, {"a", ""});
  wchar_t const* const none = nullptr;
  EXPECT_EQ(1, t.table.SelectZeile("NAME", none));
  EXPECT_EQ("NAME@1", Selected(t.table));
}

TEST_F(Search, ColumnOfUnknownTypeIsNotSearched) {
  TestTable t("blob B,integer N\n");
  t.AddRows(0, {"|1", "|2"});
  t.table.SelectColumn("N");
  t.table.SelectZeile(1L);
  EXPECT_EQ(0, t.table.SelectZeile("B", L""));
  EXPECT_EQ("N@1", Selected(t.table));
}

TEST_F(Search, EmptyTableHasNothingToFind) {
  TestTable t("string NAME,integer N,real R\n");
  EXPECT_EQ(0, t.table.SelectZeile("NAME", L""));
  EXPECT_EQ("NAME@-1", Selected(t.table));
  EXPECT_EQ(0, t.table.SelectZeile("N", 0L));
  EXPECT_EQ(0, t.table.SelectZeile("R", 0.0));
}

TEST(SearchLookups, GetRowByIdEntersAnUnknownIdWithRowZero) {
  TestTable t("integer ID\n");
  EXPECT_EQ(-1, t.table.GetRowByID(7));
  t.AddRows(0, {"4", "5"});
  t.table.MakeIndexID();
  EXPECT_EQ(1, t.table.GetRowByID(5));
  EXPECT_EQ(0, t.table.SelectZeile("ID", 7L));
  EXPECT_EQ("4>0 5>1", IdIndexOf(t.table));
  EXPECT_EQ(0, t.table.GetRowByID(7));
  EXPECT_EQ("4>0 5>1 7>0", IdIndexOf(t.table));
  EXPECT_EQ(1, t.table.SelectZeile("ID", 7L));
}

TEST(SearchLookups, FolgeLookupsReadTheIndex) {
  TestTable t("integer FOLGE\n");
  EXPECT_EQ(0, t.table.MaxFolge());
  EXPECT_EQ(-1, t.table.GetRowByFolge(0));
  t.table.MakeIndexFolge();
  EXPECT_EQ(0, t.table.MaxFolge());
  t.AddRows(0, {"2", "1"});
  t.table.MakeIndexFolge();
  EXPECT_EQ(2, t.table.MaxFolge());
  EXPECT_EQ(1, t.table.GetRowByFolge(1));
  EXPECT_EQ(-1, t.table.GetRowByFolge(0));
  EXPECT_EQ(-1, t.table.GetRowByFolge(3));
  EXPECT_EQ(-1, t.table.GetRowByFolge(-1));
}

}  // namespace
