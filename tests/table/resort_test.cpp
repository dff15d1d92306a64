// Numbering rows anew.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "schema/bytes.h"
#include "tests/support/plain_table_index.h"
#include "tests/support/processor_time.h"
#include "tests/support/random_cases.h"
#include "tests/support/random_table.h"
#include "tests/support/table_builder.h"
#include "tests/support/table_state.h"

namespace {

namespace plain = tabwerk::test::plain;
using tabwerk::TableAccess;
using tabwerk::test::Indices;
using tabwerk::test::JudgeRandomly;
using tabwerk::test::ProcessorTime;
using tabwerk::test::RandomTable;
using tabwerk::test::Rows;
using tabwerk::test::Selection;
using tabwerk::test::Shortened;
using tabwerk::test::State;
using tabwerk::test::TestTable;

constexpr char const* kSorted = "integer ID,integer FOLGE,integer STATUS\n";

void MakeIndices(DBTabelle& table) {
  table.MakeIndexID();
  table.MakeIndexFolge();
  table.MakeIndexStatus();
}

// The table after its indices were built and its rows renumbered.
std::string Resorted(std::initializer_list<std::string_view> rows) {
  TestTable t(kSorted);
  t.AddRows(0, rows);
  MakeIndices(t.table);
  t.table.ResortIndexID();
  return Rows(*t.entry);
}

TEST(Resort, ActiveRowsAreNumberedWithoutGaps) {
  EXPECT_EQ("[5|2|0][6|0|1][7|1|0]", Resorted({"5|3|0", "6|2|1", "7|1|0"}));
}

TEST(Resort, LeavesColumnFolgeAndTheLastRowSelected) {
  TestTable t(kSorted, 2);
  t.AddRows(0, {"5|1|0"});
  t.AddRows(1, {"6|2|0"});
  MakeIndices(t.table);
  t.table.ResortIndexID();
  EXPECT_EQ("FOLGE follows FOLGE, part 1 row 1, parts FOLGE@0 FOLGE@0",
            Selection(t.table));
  EXPECT_EQ("ID 5>0 6>1 FOLGE -1 0 1 STATUS 0 0", Indices(t.table));
}

TEST(Resort, NewRowFollowsItsPredecessorInTheRowsOwnOrder) {
  TestTable t(kSorted);
  t.AddRows(0, {"5|1|0", "6|2|0"});
  MakeIndices(t.table);
  t.AddRows(0, {"9|3|0"});
  // The user had them the other way round.
  TableAccess::Folge(t.table) = {-1, 1, 0};
  t.table.ResortIndexID();
  EXPECT_EQ("[5|3|0][6|1|0][9|2|0]", Rows(*t.entry));
}

TEST(Resort, RecordedStatusGoesToActiveRowsByTheirId) {
  TestTable t(kSorted);
  t.AddRows(0, {"5|1|0", "6|2|0", "7|3|2"});
  MakeIndices(t.table);
  TableAccess::Status(t.table) = {1, 0, 0};
  t.table.ResortIndexID();
  EXPECT_EQ("[5|0|1][6|1|0][7|0|2]", Rows(*t.entry));
  EXPECT_EQ("1 0 2", tabwerk::test::StatusIndexOf(t.table));
}

TEST(Resort, OtherStatusBecomes1) {
  EXPECT_EQ("[5|0|1][6|0|1]", Resorted({"5|1|7", "6|2|-3"}));
}

TEST(Resort, StatusOfAnIdThatTheIndexLacksStays) {
  TestTable t(kSorted);
  t.AddRows(0, {"5|1|7"});
  t.table.MakeIndexFolge();
  t.table.ResortIndexID();
  EXPECT_EQ("[5|0|7]", Rows(*t.entry));
}

TEST(Resort, LaterOfTwoRowsWithOneFolgeWins) {
  EXPECT_EQ("[5|0|0][6|1|0]", Resorted({"5|1|0", "6|1|0"}));
}

TEST(Resort, RowInNeitherOrderKeepsFolgeZero) {
  EXPECT_EQ("[5|0|0][6|0|0][7|1|0]", Resorted({"5|0|0", "6|0|0", "7|1|0"}));
}

TEST(Resort, IdThatNoRowHasNumbersTheRowBeforeAgain) {
  TestTable t(kSorted);
  t.AddRows(0, {"5|1|0", "6|2|0"});
  MakeIndices(t.table);
  // ID 8 had a place between the two, but its row is gone: the entry of the
  // index is a stale one.
  TableAccess::Folge(t.table) = {-1, 0, 7, 1};
  TableAccess::Ids(t.table).Set(8, 7);
  t.table.ResortIndexID();
  EXPECT_EQ("[5|2|0][6|3|0]", Rows(*t.entry));
}

TEST(Resort, GapAtTheFrontNumbersTheLastRowFirst) {
  TestTable t(kSorted);
  t.AddRows(0, {"5|2|0", "6|0|0"});
  MakeIndices(t.table);
  t.table.ResortIndexID();
  EXPECT_EQ("[5|2|0][6|1|0]", Rows(*t.entry));
}

TEST(Resort, GapInTheRowsOrderSendsLaterUnknownIdsToTheFront) {
  TestTable t(kSorted);
  t.AddRows(0, {"5|1|0", "6|0|0", "8|3|0"});
  t.table.MakeIndexID();
  TableAccess::Folge(t.table) = {-1, 0, 1};
  t.table.ResortIndexID();
  EXPECT_EQ("[5|2|0][6|3|0][8|1|0]", Rows(*t.entry));
}

TEST(Resort, FolgeOutsideTheRowsIsSkipped) {
  EXPECT_EQ("[5|0|0][6|0|0][7|1|0]", Resorted({"5|-1|0", "6|4|0", "7|1|0"}));
}

TEST(Resort, MissingColumnsAreNotWrittenElsewhere) {
  TestTable t("integer N,integer ID\n");
  t.AddRows(0, {"8|1", "9|2"});
  MakeIndices(t.table);
  t.table.ResortIndexID();
  EXPECT_EQ("[8|1][9|2]", Rows(*t.entry));
  EXPECT_EQ("ID follows FOLGE, part 0 row 1, parts ID@1", Selection(t.table));
}

TEST(Resort, EmptyTableGetsEmptyIndices) {
  TestTable t(kSorted);
  t.table.ResortIndexID();
  EXPECT_EQ("ID  FOLGE -1 STATUS ", Indices(t.table));
}

TEST(Resort, EqualsThePlainFormOnRandomTables) {
  JudgeRandomly(6000, [](std::uint32_t seed) {
    int const rows = seed % 3 == 0 ? 25 : 7;
    auto const fast = RandomTable(seed, rows);
    auto const slow = RandomTable(seed, rows);
    for (int round = 0; round < 2; ++round) {
      fast->table.ResortIndexID();
      plain::ResortIndexId(slow->table);
      ASSERT_EQ(State(*slow), State(*fast)) << "round " << round;
    }
  });
}

TEST(Resort, ManyRowsTakeNoQuadraticTime) {
  std::int32_t const rows = Shortened(1'000'000);
  TestTable t(kSorted);
  ASSERT_NE(nullptr, t.table.SetMemory(
                         std::size_t{12} * static_cast<std::size_t>(rows), 0));
  t.Part(0).row_count = rows;
  for (std::int32_t row = 0; row < rows; ++row) {
    std::byte* const record = t.Part(0).rows.data() + std::ptrdiff_t{12} * row;
    tabwerk::StoreValue(record, row * 2);
    tabwerk::StoreValue(record + 4, rows - row);
  }
  MakeIndices(t.table);
  // Half of the rows are new to the recorded order.
  for (std::size_t i = 1; i <= static_cast<std::size_t>(rows); i += 2) {
    TableAccess::Folge(t.table)[i] = -1;
  }
  ProcessorTime const time;
  t.table.ResortIndexID();
  double const seconds = time.Seconds();
  EXPECT_EQ(rows - 1, t.table.GetRowByFolge(1));
  // A fraction of a second; step by step it would be an hour.
  EXPECT_LT(seconds, 20);
}

}  // namespace
