// A table and the entry whose rows it shows.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "schema/bytes.h"
#include "table/table_access.h"
#include "tests/support/table_builder.h"

namespace {

using tabwerk::TableAccess;
using tabwerk::test::Indices;
using tabwerk::test::Rows;
using tabwerk::test::Selected;
using tabwerk::test::TestTable;
using tabwerk::test::Value;

TEST(TabelleBinding, NewTableIsEmptyAndOpen) {
  DBTabelle table;
  EXPECT_EQ(1, table.is_open());
  EXPECT_EQ(0, table.GetAnzahlZeilen());
  EXPECT_EQ("ID  FOLGE  STATUS ", Indices(table));
  EXPECT_EQ("-@0", Selected(table));
  EXPECT_EQ(nullptr, table.GetDirEntry(false));
  EXPECT_EQ(DBTypeUnknown, table.GetType());
}

TEST(TabelleBinding, NewTableRefusesEveryAccess) {
  DBTabelle table;
  EXPECT_EQ("-", Value(table));
  EXPECT_EQ(0, table.SetWert(1L));
  EXPECT_EQ(0, table.SetWert(1.0));
  EXPECT_EQ(0, table.SetWert(L"a"));
  EXPECT_EQ(0, table.SetWert("a"));
  EXPECT_FALSE(table.NeueZeile(false));
  EXPECT_FALSE(table.NeueZeile(true));
  EXPECT_EQ(nullptr, table.SetMemory(8, 0));
  table.SetOpen(true, 0);
  EXPECT_EQ(1, table.is_open());
}

TEST(TabelleBinding, EntryGivenAtConstructionTakesNoEffect) {
  TestTable t("integer ID\n");
  DBTabelle table(t.entry);
  EXPECT_EQ(nullptr, table.GetDirEntry(false));
  EXPECT_FALSE(table.NeueZeile(false));
}

TEST(TabelleBinding, OneSubTableForEveryPart) {
  TestTable t("integer ID\n", 2);
  EXPECT_EQ(t.entry, t.table.GetDirEntry(false));
  EXPECT_EQ(t.entry, t.table.GetDirEntry(true));
  TestTable one("integer ID\n", 1);
  EXPECT_EQ(nullptr, one.table.GetDirEntry(true));
}

TEST(TabelleBinding, SecondCallAddsFurtherSubTables) {
  TestTable t("integer ID\n");
  t.AddRows(0, {"1", "2"});
  t.table.SetDirEntry(t.entry);
  EXPECT_EQ(2U, TableAccess::SubTables(t.table).size());
  EXPECT_EQ(4, t.table.GetAnzahlZeilen());
  t.table.SetDirEntry(nullptr);
  EXPECT_EQ(4, t.table.GetAnzahlZeilen());
}

TEST(TabelleBinding, IsOpenWhenEveryPartIs) {
  TestTable t("integer ID\n", 2);
  EXPECT_EQ(1, t.table.is_open());
  t.table.SetOpen(false, 1);
  EXPECT_EQ(0, t.table.is_open());
  EXPECT_TRUE(t.entry->GetPartLoaded(0));
  EXPECT_FALSE(t.entry->GetPartLoaded(1));
  t.table.SetOpen(true, 1);
  EXPECT_EQ(1, t.table.is_open());
  t.table.SetOpen(false, 2);
  EXPECT_EQ(1, t.table.is_open());
}

TEST(TabelleBinding, SetMemoryReplacesTheBlockAndKeepsTheRowCount) {
  TestTable t("integer ID\n");
  t.AddRows(0, {"1", "2"});
  void* const block = t.table.SetMemory(12, 0);
  ASSERT_NE(nullptr, block);
  EXPECT_EQ(block, t.Part(0).rows.data());
  EXPECT_EQ(12, t.Part(0).row_block_size);
  EXPECT_EQ("[0][0]", Rows(*t.entry));
}

TEST(TabelleBinding, SetMemoryOfNoBytesIsABlock) {
  TestTable t("integer ID\n");
  EXPECT_NE(nullptr, t.table.SetMemory(0, 0));
  EXPECT_EQ(0U, t.Part(0).rows.size());
}

TEST(TabelleBinding, SetMemoryBeyond31BitsFails) {
  TestTable t("integer ID\n");
  t.AddRows(0, {"1"});
  constexpr std::size_t kTooLarge = std::size_t{1} << 31U;
  EXPECT_EQ(nullptr, t.table.SetMemory(kTooLarge, 0));
  EXPECT_EQ(nullptr, t.table.SetMemory(4, 1));
  EXPECT_EQ("[1]", Rows(*t.entry));
}

TEST(TabelleBinding, RowOutsideTheBlockCannotBeRead) {
  TestTable t("integer ID\n");
  t.AddRows(0, {"1", "2"});
  t.table.SelectColumn("ID");
  EXPECT_EQ(1, t.table.SelectZeile(1L));
  EXPECT_NE(nullptr, t.table.SetMemory(7, 0));
  EXPECT_EQ("-", Value(t.table));
  EXPECT_EQ(0, t.table.SetWert(5L));
}

TEST(TabelleBinding, RowsAddedThroughOneTableAreSeenByTheOther) {
  TestTable t("integer ID,string NAME\n");
  t.AddRows(0, {"1|Anna"});
  DBTabelle other;
  other.SetDirEntry(t.entry);
  other.SelectColumn("ID");
  EXPECT_EQ(1, other.SelectZeile(0L));
  for (int i = 0; i < 100; ++i) EXPECT_TRUE(t.table.NeueZeile(false));
  EXPECT_EQ(101, other.GetAnzahlZeilen());
  EXPECT_EQ("1", Value(other));
  EXPECT_EQ(1, other.SelectZeile(100L));
  EXPECT_EQ(1, other.SetWert(5L));
  t.table.SelectColumn("ID");
  EXPECT_EQ("5", Value(t.table));
}

TEST(TabelleBinding, CopySharesRowsButNotIndicesAndSelection) {
  TestTable t("integer ID\n");
  t.AddRows(0, {"1", "2"});
  t.table.MakeIndexID();
  DBTabelle copy(t.table);
  EXPECT_EQ("ID@1", Selected(copy));
  EXPECT_EQ(1, copy.SelectZeile(0L));
  EXPECT_EQ(1, copy.SetWert(7L));
  EXPECT_TRUE(copy.NeueZeile(false));
  EXPECT_EQ("ID 2>1 7>0 FOLGE -1 STATUS 0", Indices(copy));
  EXPECT_EQ("ID 1>0 2>1 FOLGE  STATUS ", Indices(t.table));
  EXPECT_EQ("ID@1", Selected(t.table));
  EXPECT_EQ("[7][2][0]", Rows(*t.entry));
}

TEST(TabelleBinding, AssignmentReplacesEverything) {
  TestTable t("integer ID\n");
  t.AddRows(0, {"1"});
  t.table.MakeIndexID();
  DBTabelle assigned;
  assigned = t.table;
  EXPECT_EQ("ID 1>0 FOLGE  STATUS ", Indices(assigned));
  EXPECT_EQ("1", Value(assigned));
  DBTabelle& self = assigned;
  assigned = self;
  EXPECT_EQ("ID 1>0 FOLGE  STATUS ", Indices(assigned));
  assigned = DBTabelle();
  EXPECT_EQ("-@0", Selected(assigned));
  EXPECT_EQ("[1]", Rows(*t.entry));
}

TEST(TabelleBinding, RowsOutliveTheTable) {
  TestTable t("integer ID\n");
  {
    DBTabelle other;
    other.SetDirEntry(t.entry);
    EXPECT_TRUE(other.NeueZeile(false));
  }
  EXPECT_EQ("[0]", Rows(*t.entry));
}

}  // namespace
