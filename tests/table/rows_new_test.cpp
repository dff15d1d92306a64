// New rows and the IDs that they get.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "table/table_access.h"
#include "tests/support/processor_time.h"
#include "tests/support/table_builder.h"

namespace {

using tabwerk::TableAccess;
using tabwerk::test::Indices;
using tabwerk::test::ProcessorTime;
using tabwerk::test::Rows;
using tabwerk::test::Selected;
using tabwerk::test::Store;
using tabwerk::test::TestTable;
using tabwerk::test::Value;

TEST(NeueZeile, FirstRowIsEmptyAndHasTextsOfItsOwn) {
  TestTable t("integer ID,string NAME,real PRICE,string TEXT\n");
  EXPECT_TRUE(t.table.NeueZeile(false));
  EXPECT_EQ("[0||0|]", Rows(*t.entry));
  EXPECT_EQ("^^", Store(t.Part(0)));
  EXPECT_EQ("-@0", Selected(t.table));
  t.table.SelectColumn("NAME");
  EXPECT_EQ(1, t.table.SetWert(L"Anna"));
  t.table.SelectColumn("TEXT");
  EXPECT_EQ("", Value(t.table));
}

TEST(NeueZeile, BlockGrowsByOneRecordStoreByOneUnitPerString) {
  TestTable t("integer ID,string NAME\n");
  for (std::int32_t row = 1; row <= 50; ++row) {
    EXPECT_TRUE(t.table.NeueZeile(false));
    EXPECT_EQ(8 * row, t.Part(0).row_block_size);
    EXPECT_EQ(static_cast<std::size_t>(8 * row), t.Part(0).rows.size());
    EXPECT_EQ(static_cast<std::uint32_t>(row), t.Part(0).strings->count());
    EXPECT_EQ(row, t.Part(0).row_count);
  }
}

TEST(NeueZeile, SelectedColumnStays) {
  TestTable t("integer ID,string NAME\n", 2);
  t.AddRows(0, {"1|Anna"});
  t.table.SelectColumn("ID");
  EXPECT_TRUE(t.table.NeueZeile(true));
  EXPECT_EQ("ID@1", Selected(t.table));
  EXPECT_EQ(1, t.table.SetWert(20000L));
  EXPECT_EQ("[1|Anna][20000|]", Rows(*t.entry));
}

TEST(NeueZeile, CurrentRowCountsAllPartsBefore) {
  TestTable t("integer ID\n", 2);
  t.AddRows(0, {"1", "2"});
  t.AddRows(1, {"20000"});
  EXPECT_TRUE(t.table.NeueZeile(true));
  EXPECT_EQ("-@3", Selected(t.table));
  EXPECT_EQ(1U, TableAccess::CurrentSubTable(t.table));
  EXPECT_TRUE(t.table.NeueZeile(false));
  EXPECT_EQ("-@2", Selected(t.table));
  EXPECT_EQ(0U, TableAccess::CurrentSubTable(t.table));
  EXPECT_EQ(5, t.table.GetAnzahlZeilen());
}

TEST(NeueZeile, ShiftsTheUsersRowsUnderTheIndices) {
  TestTable t("integer ID,integer FOLGE,integer STATUS\n", 2);
  t.AddRows(0, {"1|1|0"});
  t.AddRows(1, {"20000|2|0"});
  t.table.MakeIndexID();
  t.table.MakeIndexFolge();
  t.table.MakeIndexStatus();
  EXPECT_TRUE(t.table.NeueZeile(false));
  EXPECT_EQ("ID 1>0 20000>1 FOLGE -1 0 1 -1 STATUS 0 0 0", Indices(t.table));
  EXPECT_EQ("[1|1|0][0|0|0][20000|2|0]", Rows(*t.entry));
}

TEST(NeueZeile, WithoutABuiltFolgeIndexTheLastPlaceIsNotRecorded) {
  TestTable t("integer FOLGE\n");
  t.table.SelectColumn("FOLGE");
  for (long row = 1; row <= 3; ++row) {
    EXPECT_TRUE(t.table.NeueZeile(false));
    EXPECT_EQ(1, t.table.SetWert(row));
  }
  EXPECT_EQ("ID  FOLGE -1 -1 -1 STATUS 0 0 0", Indices(t.table));
  t.table.SelectZeile(1L);
  EXPECT_EQ(1, t.table.SetWert(2L));
  EXPECT_EQ("ID  FOLGE -1 -1 1 STATUS 0 0 0", Indices(t.table));
}

TEST(NeueZeile, WithoutThePartNothingChanges) {
  TestTable t("integer ID\n");
  t.AddRows(0, {"1"});
  t.table.SelectColumn("ID");
  t.table.SelectZeile(0L);
  EXPECT_FALSE(t.table.NeueZeile(true));
  EXPECT_EQ("ID  FOLGE  STATUS ", Indices(t.table));
  EXPECT_EQ("ID@0", Selected(t.table));
  EXPECT_EQ("1", Value(t.table));
  EXPECT_EQ("[1]", Rows(*t.entry));
}

TEST(NeueZeile, TableWithoutBytesInARowHasNoRows) {
  TestTable empty("");
  EXPECT_FALSE(empty.table.NeueZeile(false));
  TestTable unknown("blob DATA\n");
  EXPECT_FALSE(unknown.table.NeueZeile(false));
  EXPECT_EQ("ID  FOLGE  STATUS ", Indices(unknown.table));
}

TEST(NeueZeile, RowsThatAreNotInMemoryCannotBeAddedTo) {
  TestTable t("integer ID,string NAME\n");
  t.Part(0).row_count = 2;
  EXPECT_FALSE(t.table.NeueZeile(false));
  EXPECT_EQ(2, t.Part(0).row_count);
  EXPECT_EQ("", Store(t.Part(0)));
  ASSERT_NE(nullptr, t.table.SetMemory(15, 0));
  EXPECT_FALSE(t.table.NeueZeile(false));
  EXPECT_EQ(15, t.Part(0).row_block_size);
}

TEST(NeueZeile, DamagedPartCannotBeAddedTo) {
  TestTable t("integer ID\n");
  t.Part(0).damaged = true;
  EXPECT_FALSE(t.table.NeueZeile(false));
  EXPECT_EQ("ID  FOLGE  STATUS ", Indices(t.table));
}

TEST(NeueZeile, LargerBlockIsCutToTheRowsInUse) {
  TestTable t("integer ID\n");
  auto* const block = static_cast<std::byte*>(t.table.SetMemory(100, 0));
  ASSERT_NE(nullptr, block);
  std::fill_n(block, 100, std::byte{0xEE});
  EXPECT_TRUE(t.table.NeueZeile(false));
  EXPECT_EQ(4, t.Part(0).row_block_size);
  EXPECT_EQ("[0]", Rows(*t.entry));
}

TEST(NeueZeile, RowCountBeyond31BitsIsRefused) {
  TestTable t("integer ID\n", 2);
  t.Part(0).row_count = std::numeric_limits<std::int32_t>::max();
  EXPECT_FALSE(t.table.NeueZeile(true));
  EXPECT_FALSE(t.table.NeueZeile(false));
  EXPECT_EQ(0, t.Part(1).row_count);
}

TEST(NeueZeile, ManyAlternatingAppendsAreQuick) {
  TestTable t("integer ID,string NAME,string TEXT\n", 2);
  t.table.SelectColumn("NAME");
  ProcessorTime const time;
  for (int i = 0; i < 200000; ++i) {
    ASSERT_TRUE(t.table.NeueZeile(i % 2 == 1));
    ASSERT_EQ(1, t.table.SetWert(u"a name"));
  }
  double const seconds = time.Seconds();
  EXPECT_EQ(100000 * 12, t.Part(0).row_block_size);
  EXPECT_EQ(900000U, t.Part(1).strings->count());
  EXPECT_GT(5.0, seconds);
}

TEST(NewUserID, IsTheLargestPlusOneAndAtLeast20000) {
  TestTable t("integer ID\n");
  EXPECT_EQ(20000, t.table.NewUserID());
  TableAccess::Ids(t.table).Set(150, 0);
  EXPECT_EQ(20000, t.table.NewUserID());
  TableAccess::Ids(t.table).Set(19999, 0);
  EXPECT_EQ(20000, t.table.NewUserID());
  TableAccess::Ids(t.table).Set(20000, 0);
  EXPECT_EQ(20001, t.table.NewUserID());
}

TEST(NewUserID, TakesTheLowestFreeOneWhenTheLargestNumberIsTaken) {
  TestTable t("integer ID\n");
  TableAccess::Ids(t.table).Set(std::numeric_limits<std::int32_t>::max(), 0);
  EXPECT_EQ(20000, t.table.NewUserID());
  TableAccess::Ids(t.table).Set(20000, 1);
  TableAccess::Ids(t.table).Set(20001, 2);
  EXPECT_EQ(20002, t.table.NewUserID());
}

TEST(NewUserID, OfNegativeIdsOnlyIs20000) {
  TestTable t("integer ID\n");
  TableAccess::Ids(t.table).Set(-5, 0);
  EXPECT_EQ(20000, t.table.NewUserID());
}

}  // namespace
