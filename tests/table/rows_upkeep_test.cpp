// The indices follow the values that are set.
#include <gtest/gtest.h>

#include "table/table_access.h"
#include "tests/support/table_builder.h"

namespace {

using tabwerk::TableAccess;
using tabwerk::test::FolgeIndexOf;
using tabwerk::test::IdIndexOf;
using tabwerk::test::Indices;
using tabwerk::test::Rows;
using tabwerk::test::StatusIndexOf;
using tabwerk::test::TestTable;

class TabelleUpkeep : public testing::Test {
 protected:
  TabelleUpkeep() : t_("integer ID,integer FOLGE,integer STATUS\n", 2) {
    t_.AddRows(0, {"5|1|0", "6|2|0"});
    t_.AddRows(1, {"7|3|2"});
    t_.table.MakeIndexID();
    t_.table.MakeIndexFolge();
    t_.table.MakeIndexStatus();
  }

  int Set(char const* column, long row, long value) {
    t_.table.SelectColumn(column);
    t_.table.SelectZeile(row);
    return t_.table.SetWert(value);
  }

  TestTable t_;
};

TEST_F(TabelleUpkeep, FolgeEntryNamesTheCurrentRow) {
  EXPECT_EQ(1, Set("FOLGE", 2, 1));
  EXPECT_EQ("-1 2 1 2", FolgeIndexOf(t_.table));
  EXPECT_EQ("[5|1|0][6|2|0][7|1|2]", Rows(*t_.entry));
}

TEST_F(TabelleUpkeep, FolgeZeroIsWrittenButNotIndexed) {
  EXPECT_EQ(1, Set("FOLGE", 0, 0));
  EXPECT_EQ("-1 0 1 2", FolgeIndexOf(t_.table));
  EXPECT_EQ("[5|0|0][6|2|0][7|3|2]", Rows(*t_.entry));
}

TEST_F(TabelleUpkeep, FolgeBeyondTheIndexIsWrittenButNotIndexed) {
  EXPECT_EQ(1, Set("FOLGE", 0, 4));
  EXPECT_EQ(1, Set("FOLGE", 1, -1));
  EXPECT_EQ("-1 0 1 2", FolgeIndexOf(t_.table));
  EXPECT_EQ("[5|4|0][6|-1|0][7|3|2]", Rows(*t_.entry));
}

TEST_F(TabelleUpkeep, StatusEntryFollows) {
  EXPECT_EQ(1, Set("STATUS", 2, -9));
  EXPECT_EQ("0 0 -9", StatusIndexOf(t_.table));
}

TEST_F(TabelleUpkeep, StatusOfARowBeyondTheIndexIsWrittenButNotIndexed) {
  t_.AddRows(1, {"8|4|0"});
  EXPECT_EQ(1, Set("STATUS", 3, 1));
  EXPECT_EQ("0 0 2", StatusIndexOf(t_.table));
  EXPECT_EQ("[7|3|2][8|4|1]", Rows(*t_.entry, 1));
}

TEST_F(TabelleUpkeep, IdEntryMovesToTheNewId) {
  EXPECT_EQ(1, Set("ID", 2, 3));
  EXPECT_EQ("3>2 5>0 6>1", IdIndexOf(t_.table));
}

TEST_F(TabelleUpkeep, SameIdLeavesTheIndex) {
  TableAccess::Ids(t_.table).Set(5, 2);
  EXPECT_EQ(1, Set("ID", 0, 5));
  EXPECT_EQ("5>2 6>1 7>2", IdIndexOf(t_.table));
}

TEST_F(TabelleUpkeep, EntryOfTheOldIdGoesWhicheverRowItNames) {
  EXPECT_EQ(1, Set("ID", 1, 5));
  EXPECT_EQ("5>1 7>2", IdIndexOf(t_.table));
  EXPECT_EQ(1, Set("ID", 0, 9));
  EXPECT_EQ("7>2 9>0", IdIndexOf(t_.table));
}

TEST_F(TabelleUpkeep, FirstIdOfANewRowRemovesTheEntryOfIdZero) {
  EXPECT_EQ(1, Set("ID", 0, 0));
  EXPECT_EQ("0>0 6>1 7>2", IdIndexOf(t_.table));
  EXPECT_TRUE(t_.table.NeueZeile(true));
  EXPECT_EQ(1, t_.table.SetWert(20000L));
  EXPECT_EQ("6>1 7>2 20000>3", IdIndexOf(t_.table));
}

TEST_F(TabelleUpkeep, OtherColumnsTouchNoIndex) {
  TestTable t("integer ID,integer STATUSX\n");
  t.AddRows(0, {"1|0"});
  t.table.MakeIndexID();
  t.table.SelectColumn("STATUSX");
  t.table.SelectZeile(0L);
  EXPECT_EQ(1, t.table.SetWert(7L));
  EXPECT_EQ("ID 1>0 FOLGE  STATUS ", Indices(t.table));
}

TEST(TabelleUpkeepBeforeType, RealFolgeColumnChangesTheIndexAndFails) {
  TestTable t("real FOLGE\n");
  t.AddRows(0, {"1.5"});
  TableAccess::Folge(t.table) = {-1, -1};
  t.table.SelectColumn("FOLGE");
  t.table.SelectZeile(0L);
  EXPECT_EQ(0, t.table.SetWert(1L));
  EXPECT_EQ("-1 0", FolgeIndexOf(t.table));
  EXPECT_EQ("[1.5]", Rows(*t.entry));
}

TEST(TabelleUpkeepBeforeType, RealStatusColumnChangesTheIndexAndFails) {
  TestTable t("real STATUS\n");
  t.AddRows(0, {"1.5"});
  TableAccess::Status(t.table) = {0};
  t.table.SelectColumn("STATUS");
  t.table.SelectZeile(0L);
  EXPECT_EQ(0, t.table.SetWert(2L));
  EXPECT_EQ("2", StatusIndexOf(t.table));
}

TEST(TabelleUpkeepBeforeType, StringIdColumnCountsAsOldIdZero) {
  TestTable t("string ID\n");
  t.AddRows(0, {"x"});
  TableAccess::Ids(t.table).Set(0, 9);
  t.table.SelectColumn("ID");
  t.table.SelectZeile(0L);
  EXPECT_EQ(0, t.table.SetWert(4L));
  EXPECT_EQ("4>0", IdIndexOf(t.table));
  EXPECT_EQ(0, t.table.SetWert(0L));
  EXPECT_EQ("4>0", IdIndexOf(t.table));
  EXPECT_EQ("[x]", Rows(*t.entry));
}

TEST(TabelleUpkeepBeforeType, UnknownTypeNeedsNoBytes) {
  TestTable t("integer N,blob STATUS\n");
  t.AddRows(0, {"1|"});
  TableAccess::Status(t.table) = {0};
  t.table.SelectColumn("STATUS");
  t.table.SelectZeile(0L);
  EXPECT_EQ(0, t.table.SetWert(2L));
  EXPECT_EQ("2", StatusIndexOf(t.table));
  EXPECT_EQ("[1|]", Rows(*t.entry));
}

TEST(TabelleUpkeepBeforeType, FailedSelectionFollowsOneColumnWritesTheOther) {
  TestTable t("integer N\n");
  t.AddRows(0, {"1"});
  TableAccess::Status(t.table) = {0};
  t.table.SelectColumn("N");
  t.table.SelectZeile(0L);
  EXPECT_EQ(0, t.table.SelectColumn("STATUS"));
  EXPECT_EQ(1, t.table.SetWert(2L));
  EXPECT_EQ("2", StatusIndexOf(t.table));
  EXPECT_EQ("[2]", Rows(*t.entry));
}

TEST(TabelleUpkeepBeforeType, WithoutARowNothingHappens) {
  TestTable t("real FOLGE,real STATUS,string ID\n");
  t.AddRows(0, {"1|1|1"});
  TableAccess::Folge(t.table) = {-1, -1};
  TableAccess::Status(t.table) = {0};
  for (char const* const column : {"FOLGE", "STATUS", "ID"}) {
    t.table.SelectColumn(column);
    EXPECT_EQ(0, t.table.SetWert(1L));
  }
  EXPECT_EQ("ID  FOLGE -1 -1 STATUS 0", Indices(t.table));
}

TEST(TabelleUpkeepBeforeType, WithoutAColumnNothingHappens) {
  TestTable t("integer N\n");
  t.AddRows(0, {"1"});
  TableAccess::Status(t.table) = {0};
  t.table.SelectZeile(0L);
  EXPECT_EQ(0, t.table.SelectColumn("STATUS"));
  EXPECT_EQ(0, t.table.SetWert(1L));
  EXPECT_EQ("0", StatusIndexOf(t.table));
}

TEST(TabelleUpkeepBeforeType, WithoutRoomForTheFieldNothingHappens) {
  TestTable t("integer STATUS\n");
  t.AddRows(0, {"3"});
  TableAccess::Status(t.table) = {0};
  t.table.SelectColumn("STATUS");
  t.table.SelectZeile(0L);
  DBFeld* const field = t.table.GetAktuelleFeldDef();
  for (std::int32_t const offset : {-1, 1, 4, 0x7FFFFFFF}) {
    field->offset = offset;
    EXPECT_EQ(0, t.table.SetWert(1L)) << offset;
  }
  field->offset = 0;
  EXPECT_EQ("0", StatusIndexOf(t.table));
  EXPECT_EQ("[3]", Rows(*t.entry));
}

}  // namespace
