// Numbers at the current row and column, and what has no value.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "table/row_walk.h"
#include "table/table_access.h"
#include "tests/support/table_builder.h"

namespace {

using tabwerk::CountRows;
using tabwerk::RowWalk;
using tabwerk::TableAccess;
using tabwerk::test::Indices;
using tabwerk::test::Rows;
using tabwerk::test::Selected;
using tabwerk::test::TestTable;
using tabwerk::test::Value;

constexpr char const* kValues = "integer ID,real PRICE,string NAME,blob DATA\n";

class TabelleValues : public testing::Test {
 protected:
  TabelleValues() : t_(kValues, 2) {
    t_.AddRows(0, {"1|1.5|Anna|", "2|2.5|Bert|"});
    t_.AddRows(1, {"3|3.5|Carl|"});
  }

  void Stand(char const* column, long row) {
    ASSERT_EQ(1, t_.table.SelectColumn(column));
    ASSERT_EQ(1, t_.table.SelectZeile(row));
  }

  TestTable t_;
};

TEST_F(TabelleValues, EveryTypeReadsFromItsColumn) {
  Stand("ID", 1);
  EXPECT_EQ("2", Value(t_.table));
  EXPECT_EQ(DBTypeInteger, t_.table.GetType());
  Stand("PRICE", 1);
  EXPECT_EQ("2.5", Value(t_.table));
  EXPECT_EQ(DBTypeReal, t_.table.GetType());
  Stand("NAME", 1);
  EXPECT_EQ("Bert", Value(t_.table));
  EXPECT_EQ(DBTypeString, t_.table.GetType());
}

TEST_F(TabelleValues, RowsOfTheSecondPartFollowTheFirst) {
  Stand("ID", 2);
  EXPECT_EQ("3", Value(t_.table));
  EXPECT_EQ(1U, TableAccess::CurrentSubTable(t_.table));
}

TEST_F(TabelleValues, NumbersAreStored) {
  Stand("ID", 0);
  EXPECT_EQ(1, t_.table.SetWert(-7L));
  Stand("PRICE", 2);
  EXPECT_EQ(1, t_.table.SetWert(0.25));
  EXPECT_EQ("[-7|1.5|Anna|][2|2.5|Bert|][3|0.25|Carl|]", Rows(*t_.entry));
}

TEST_F(TabelleValues, LongReadOfRealColumnLeavesTheArgument) {
  Stand("PRICE", 0);
  long value = 42;
  EXPECT_EQ(0, t_.table.GetWert(value));
  EXPECT_EQ(42, value);
}

TEST_F(TabelleValues, OtherTypesFailAndChangeNothing) {
  Stand("ID", 0);
  double real = 42;
  zWString text(u"old");
  EXPECT_EQ(0, t_.table.GetWert(real));
  EXPECT_EQ(42, real);
  EXPECT_EQ(0, t_.table.GetWert(text));
  EXPECT_EQ("old", text.toUtf8());
  EXPECT_EQ(0, t_.table.SetWert(1.0));
  Stand("PRICE", 0);
  EXPECT_EQ(0, t_.table.SetWert(9L));
  Stand("NAME", 0);
  long integer = 42;
  EXPECT_EQ(0, t_.table.GetWert(integer));
  EXPECT_EQ(42, integer);
  EXPECT_EQ(0, t_.table.SetWert(9L));
  EXPECT_EQ("[1|1.5|Anna|][2|2.5|Bert|][3|3.5|Carl|]", Rows(*t_.entry));
}

TEST_F(TabelleValues, ColumnOfUnknownTypeHasNoValue) {
  Stand("DATA", 0);
  EXPECT_EQ(DBTypeUnknown, t_.table.GetType());
  EXPECT_EQ("-", Value(t_.table));
  EXPECT_EQ(0, t_.table.SetWert(1L));
  EXPECT_EQ(0, t_.table.SetWert(1.0));
  // It stands behind the last byte of the record.
  EXPECT_EQ(0, t_.table.SetWert(L"x"));
  EXPECT_EQ("[1|1.5|Anna|][2|2.5|Bert|][3|3.5|Carl|]", Rows(*t_.entry));
}

// A host may change the type of a field that its record has no room for.
TEST_F(TabelleValues, ValueThatIsLongerThanItsRecordIsNone) {
  TestTable t("integer ID\n");
  t.AddRow(0, "7");
  t.table.SelectColumn("ID");
  t.table.SelectZeile(0L);
  t.table.GetAktuelleFeldDef()->type = DBTypeReal;
  EXPECT_EQ(0, t.table.SetWert(1.5));
  double value = 7;
  EXPECT_EQ(0, t.table.GetWert(value));
  EXPECT_EQ(7, value);
  t.table.GetAktuelleFeldDef()->type = DBTypeInteger;
  EXPECT_EQ("[7]", Rows(*t.entry));
}

TEST_F(TabelleValues, ATableWithoutADefinitionHasNoRows) {
  DBTabelle table;
  RowWalk walk(table);
  EXPECT_FALSE(walk.Next());
  EXPECT_FALSE(walk.MoveTo(0));
  EXPECT_EQ(0, CountRows(table));
}

TEST_F(TabelleValues, RowsWithoutBytesHaveNoValues) {
  TestTable t("blob DATA\n");
  t.Part(0).row_count = 2;
  RowWalk walk(t.table);
  EXPECT_TRUE(walk.MoveTo(1));
  EXPECT_FALSE(walk.MoveTo(2));
  EXPECT_FALSE(walk.MoveTo(-1));
}

TEST_F(TabelleValues, WithoutARowEveryAccessFails) {
  ASSERT_EQ(1, t_.table.SelectColumn("ID"));
  EXPECT_EQ("-", Value(t_.table));
  EXPECT_EQ(0, t_.table.SetWert(5L));
  ASSERT_EQ(1, t_.table.SelectColumn("NAME"));
  EXPECT_EQ("-", Value(t_.table));
  EXPECT_EQ(0, t_.table.SetWert(L"x"));
  EXPECT_EQ("[1|1.5|Anna|][2|2.5|Bert|][3|3.5|Carl|]", Rows(*t_.entry));
}

TEST_F(TabelleValues, WithoutAColumnEveryAccessFails) {
  ASSERT_EQ(1, t_.table.SelectZeile(0L));
  EXPECT_EQ(nullptr, t_.table.GetAktuelleFeldDef());
  EXPECT_EQ(DBTypeUnknown, t_.table.GetType());
  EXPECT_EQ("-", Value(t_.table));
  EXPECT_EQ(0, t_.table.SetWert(5L));
  EXPECT_EQ(0, t_.table.SetWert(5.0));
  EXPECT_EQ(0, t_.table.SetWert(L"x"));
}

TEST_F(TabelleValues, CurrentFieldIsTheDefinitions) {
  Stand("PRICE", 0);
  EXPECT_EQ(t_.entry->GetDefinition()->GetDefinition()->next,
            t_.table.GetAktuelleFeldDef());
}

TEST_F(TabelleValues, TheWholeRangeOf32BitsIsStored) {
  Stand("ID", 0);
  EXPECT_EQ(1,
            t_.table.SetWert(long{std::numeric_limits<std::int32_t>::min()}));
  EXPECT_EQ("-2147483648", Value(t_.table));
  EXPECT_EQ(1,
            t_.table.SetWert(long{std::numeric_limits<std::int32_t>::max()}));
  EXPECT_EQ("2147483647", Value(t_.table));
}

TEST_F(TabelleValues, ValueBeyond32BitsChangesNothing) {
  if (sizeof(long) == 4) GTEST_SKIP() << "no long value is that large here";
  t_.table.MakeIndexID();
  Stand("ID", 0);
  EXPECT_EQ(0, t_.table.SetWert(std::numeric_limits<long>::max()));
  EXPECT_EQ(0, t_.table.SetWert(std::numeric_limits<long>::min()));
  EXPECT_EQ("1", Value(t_.table));
  EXPECT_EQ("ID 1>0 2>1 3>2 FOLGE  STATUS ", Indices(t_.table));
}

TEST_F(TabelleValues, EveryChangeIsCounted) {
  Stand("ID", 0);
  std::uint64_t const before = t_.Part(0).revision;
  t_.table.SetWert(5L);
  std::uint64_t const after_integer = t_.Part(0).revision;
  EXPECT_NE(before, after_integer);
  Stand("PRICE", 0);
  t_.table.SetWert(5.0);
  std::uint64_t const after_real = t_.Part(0).revision;
  EXPECT_NE(after_integer, after_real);
  Stand("NAME", 0);
  t_.table.SetWert(L"x");
  EXPECT_NE(after_real, t_.Part(0).revision);
}

TEST(TabelleBlankField, ReadsAndWritesInsideTheRecord) {
  // The over-long name gives a blank field of unknown type at offset 0.
  std::string const definition =
      "integer " + std::string(64, 'x') + ",integer ID\n";
  TestTable t(definition.c_str());
  EXPECT_TRUE(t.table.NeueZeile(false));
  ASSERT_EQ(1, t.table.SelectColumn(""));
  EXPECT_EQ("-", Value(t.table));
  EXPECT_EQ(0, t.table.SetWert(1L));
  EXPECT_EQ("[|0]", Rows(*t.entry));
}

}  // namespace
