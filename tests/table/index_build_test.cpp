// Building the row indices.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/new_guard.h"
#include "tests/support/plain_table_index.h"
#include "tests/support/random_cases.h"
#include "tests/support/random_table.h"
#include "tests/support/table_builder.h"
#include "tests/support/table_state.h"

namespace {

namespace plain = tabwerk::test::plain;
using tabwerk::test::FolgeIndexOf;
using tabwerk::test::IdIndexOf;
using tabwerk::test::Indices;
using tabwerk::test::JudgeRandomly;
using tabwerk::test::NewGuard;
using tabwerk::test::RandomTable;
using tabwerk::test::Selection;
using tabwerk::test::State;
using tabwerk::test::StatusIndexOf;
using tabwerk::test::TestTable;

TEST(IndexBuild, RowsWithFolge210GiveTheirPlaces) {
  TestTable t("integer FOLGE\n");
  t.AddRows(0, {"2", "1", "0"});
  t.table.MakeIndexFolge();
  EXPECT_EQ("2 1 0 -1", FolgeIndexOf(t.table));
}

TEST(IndexBuild, LastRowWithFolgeZeroIsInEntryZero) {
  TestTable t("integer FOLGE\n");
  t.AddRows(0, {"0", "1", "0"});
  t.table.MakeIndexFolge();
  EXPECT_EQ("2 1 -1 -1", FolgeIndexOf(t.table));
  EXPECT_EQ(1, t.table.SelectZeile("FOLGE", 0L));
}

TEST(IndexBuild, FolgeOutsideTheRowsIsLeftOut) {
  TestTable t("integer FOLGE\n");
  t.AddRows(0, {"-1", "3", "2147483647", "-2147483648"});
  t.table.MakeIndexFolge();
  EXPECT_EQ("-1 -1 -1 1 -1", FolgeIndexOf(t.table));
}

TEST(IndexBuild, SecondRowOfAnIdReplacesTheFirst) {
  TestTable t("integer ID\n", 2);
  t.AddRows(0, {"5", "4"});
  t.AddRows(1, {"5"});
  t.table.MakeIndexID();
  EXPECT_EQ("4>1 5>2", IdIndexOf(t.table));
}

TEST(IndexBuild, StatusHoldsTheValueOfEveryRow) {
  TestTable t("integer STATUS\n", 2);
  t.AddRows(0, {"0", "7"});
  t.AddRows(1, {"-2"});
  t.table.MakeIndexStatus();
  EXPECT_EQ("0 7 -2", StatusIndexOf(t.table));
  EXPECT_EQ("STATUS follows STATUS, part 1 row 2, parts STATUS@1 STATUS@0",
            Selection(t.table));
}

TEST(IndexBuild, MissingColumnsReadAsZero) {
  TestTable t("integer N\n");
  t.AddRows(0, {"5", "6", "7"});
  t.table.SelectColumn("N");
  t.table.MakeIndexID();
  t.table.MakeIndexFolge();
  t.table.MakeIndexStatus();
  EXPECT_EQ("ID 0>2 FOLGE 2 -1 -1 -1 STATUS 0 0 0", Indices(t.table));
  EXPECT_EQ("N follows STATUS, part 0 row 2, parts N@2", Selection(t.table));
}

TEST(IndexBuild, ColumnsThatAreNoIntegersReadAsZero) {
  TestTable t("string ID,real FOLGE,string STATUS\n");
  t.AddRows(0, {"5|1|1", "6|2|1"});
  t.table.MakeIndexID();
  t.table.MakeIndexFolge();
  t.table.MakeIndexStatus();
  EXPECT_EQ("ID 0>1 FOLGE 1 -1 -1 STATUS 0 0", Indices(t.table));
}

TEST(IndexBuild, EmptyTableSelectsTheColumnOnly) {
  TestTable t("integer ID\n");
  t.table.MakeIndexID();
  t.table.MakeIndexFolge();
  EXPECT_EQ("ID  FOLGE -1 STATUS ", Indices(t.table));
  EXPECT_EQ("ID follows FOLGE, part 0 row 0, parts ID@-1", Selection(t.table));
}

TEST(IndexBuild, EqualsThePlainFormOnRandomTables) {
  JudgeRandomly(1500, [](std::uint32_t seed) {
    auto const fast = RandomTable(seed, 15);
    auto const slow = RandomTable(seed, 15);
    fast->table.MakeIndexID();
    plain::MakeIndexId(slow->table);
    ASSERT_EQ(State(*slow), State(*fast));
    fast->table.MakeIndexFolge();
    plain::MakeIndexFolge(slow->table);
    ASSERT_EQ(State(*slow), State(*fast));
    fast->table.MakeIndexStatus();
    plain::MakeIndexStatus(slow->table);
    ASSERT_EQ(State(*slow), State(*fast));
  });
}

// --- Exhausted memory
// ---------------------------------------------------------

TEST(IndexBuild, WithoutMemoryAnIndexIsEmptyAndTheTableUsable) {
  TestTable t("integer ID,integer FOLGE,integer STATUS\n");
  for (int i = 0; i < 50; ++i) t.AddRow(0, std::to_string(i * 100'000) + "|1");
  bool fired = true;
  for (int n = 1; fired; ++n) {
    {
      NewGuard guard(n);
      t.table.MakeIndexID();
      t.table.MakeIndexFolge();
      t.table.MakeIndexStatus();
      fired = guard.Fired();
    }
    std::string const indices = Indices(t.table);
    if (fired) {
      ASSERT_EQ("", StatusIndexOf(t.table)) << n;
    } else {
      ASSERT_EQ(t.table.GetRowByID(4'900'000), 49);
    }
  }
}

TEST(IndexBuild, WithoutMemoryResortChangesNoRow) {
  bool fired = true;
  for (int n = 1; fired; ++n) {
    TestTable t("integer ID,integer FOLGE,integer STATUS\n");
    t.AddRows(0, {"5|3|0", "900000|2|7", "7|1|0"});
    t.table.MakeIndexID();
    t.table.MakeIndexFolge();
    t.table.MakeIndexStatus();
    {
      NewGuard guard(n);
      t.table.ResortIndexID();
      fired = guard.Fired();
    }
    std::string const rows = tabwerk::test::Rows(*t.entry);
    std::string const sorted = "[5|2|0][900000|0|1][7|1|0]";
    ASSERT_EQ(fired ? "[5|3|0][900000|2|7][7|1|0]" : sorted, rows) << n;
  }
}

}  // namespace
