// Which part and which row a new row and its values go to.
#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <string>

#include "DBbase.h"
#include "table/table_access.h"
#include "tests/table/update_table.h"

namespace tabwerk::test {
namespace {

class RowParts : public UpdateTest {};

// Sub-table 1 is the second file, whichever file is the user's.
TEST_F(RowParts, NewRowOfThreePartsGoesIntoTheSecond) {
  TestTable t("integer ID,string NAME\n", 3);
  t.AddRow(0, "1|main");
  t.AddRow(1, "2|second");
  t.AddRow(2, "3|third");
  EXPECT_TRUE(t.table.NeueZeile(true));
  EXPECT_EQ(2, TableAccess::CurrentRow(t.table));
  t.table.SelectColumn("NAME");
  EXPECT_EQ(1, t.table.SetWert(L"new"));
  EXPECT_EQ("[2|second][0|new]", Rows(*t.entry, 1));
  EXPECT_EQ("[3|third]", Rows(*t.entry, 2));
  EXPECT_EQ(1, t.table.SelectZeile(3L));
  EXPECT_EQ("third", Value(t.table));
}

// A directory takes an entry with any number of rows.
TEST_F(RowParts, PartWithANegativeRowCountHidesNoRowsOfOthers) {
  TestTable t("integer ID,string NAME\n", 2);
  t.Part(0).row_count = -3;
  t.AddRow(1, "2|second");
  EXPECT_EQ(1, t.table.GetAnzahlZeilen());
  EXPECT_EQ(1, t.table.SelectZeile(0L));
  t.table.SelectColumn("NAME");
  EXPECT_EQ("second", Value(t.table));
  EXPECT_EQ(1, t.table.SelectZeile("NAME", L"second"));
  EXPECT_FALSE(t.table.NeueZeile(false));
}

// The next columns go into the row that the index names for the ID: row 0.
TEST_F(RowParts, InsertTakesAnIdThatGetRowByIdEnteredForGivenAway) {
  auto const t = Make(kUsual, {"1|1|0|N1"});
  EXPECT_EQ(0, t->table.GetRowByID(17));
  EXPECT_TRUE(Insert(*t, {{"ID", "17"}, {"NAME", "X"}}));
  EXPECT_EQ("[1|2|0|N1][20000|0|0|X]", Rows(*t->entry));
}

// --- A host may write to the offset of a field ----------------------------

class StrayField : public testing::TestWithParam<std::int32_t> {
 protected:
  StrayField() : t_("integer ID,string NAME,real PRICE\n") {
    t_.AddRow(0, "1|Anna|2");
    DBFeld* field = nullptr;
    for (char const* const name : {"ID", "NAME", "PRICE"}) {
      t_.entry->GetDefinition()->GetOffset(name, field);
      field->offset = GetParam();
    }
  }

  TestTable t_;
};

INSTANTIATE_TEST_SUITE_P(Offsets, StrayField,
                         testing::Values(-1, 15, 16, 1000000,
                                         std::numeric_limits<int>::max(),
                                         std::numeric_limits<int>::min()));

TEST_P(StrayField, NewRowLeavesItOut) {
  EXPECT_TRUE(t_.table.NeueZeile(false));
  EXPECT_EQ(2, t_.table.GetAnzahlZeilen());
}

TEST_P(StrayField, IsDumpedAsNothing) {
  FILE* const stream = std::tmpfile();
  ASSERT_NE(nullptr, stream);
  std::wstring separator(L";");
  EXPECT_EQ(2, t_.table.Dump(stream, separator.data(), false));
  std::rewind(stream);
  char line[16] = {};
  EXPECT_NE(nullptr, std::fgets(line, sizeof line, stream));
  EXPECT_STREQ(";;\n", line);
  std::fclose(stream);
}

TEST_P(StrayField, IsNotFoundAndNotSet) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(0, t_.table.SelectZeile("NAME", L"Anna"));
  }
  t_.table.SelectColumn("NAME");
  EXPECT_EQ(0, t_.table.SetWert(L"Bert"));
}

// A lookup of one column looks at the others, too.
TEST(StrayFieldOfAnotherColumn, DoesNotDisturbASearch) {
  TestTable t("string NAME,string NOTE\n");
  t.AddRow(0, "Anna|x");
  DBFeld* field = nullptr;
  t.entry->GetDefinition()->GetOffset("NOTE", field);
  field->offset = 1000000;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(1, t.table.SelectZeile("NAME", L"Anna"));
  }
}

}  // namespace
}  // namespace tabwerk::test
