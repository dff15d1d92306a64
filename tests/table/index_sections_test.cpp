// The sections of an index file.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"
#include "tests/support/container_bytes.h"
#include "tests/support/private_temp.h"
#include "tests/support/random_cases.h"
#include "tests/support/random_table.h"
#include "tests/support/table_builder.h"
#include "tests/support/table_state.h"
#include "tests/support/temp_folder.h"

namespace {

namespace platform = tabwerk::platform;
using tabwerk::TableAccess;
using tabwerk::test::FolgeIndexOf;
using tabwerk::test::IdIndexOf;
using tabwerk::test::Indices;
using tabwerk::test::JudgeRandomly;
using tabwerk::test::RandomTable;
using tabwerk::test::Rows;
using tabwerk::test::Section;
using tabwerk::test::Selection;
using tabwerk::test::StatusIndexOf;
using tabwerk::test::TestTable;

// "ID" and numbers as the bytes of a section.
class IndexSections : public testing::Test {
 protected:
  IndexSections() : t_("integer ID,integer FOLGE,integer STATUS\n", 2) {
    t_.AddRows(0, {"5|2|0", "6|1|7"});
    t_.AddRows(1, {"-1|3|0"});
  }

  // Calls read(stream) on a file of these bytes; the position afterwards.
  template <typename Read>
  std::int64_t ReadFrom(std::string_view bytes, Read const& read) {
    folder_.WriteBytes("i", bytes);
    auto error = platform::Error::kNone;
    FILE* const stream =
        platform::OpenFile(folder_.Path("i"), platform::Mode::kRead,
                           platform::Share::kDenyNone, &error);
    read(stream);
    std::int64_t const position = platform::Tell(stream);
    platform::Close(stream);
    return position;
  }

  template <typename Write>
  std::string Written(Write const& write) {
    auto error = platform::Error::kNone;
    FILE* const stream =
        platform::OpenFile(folder_.Path("o"), platform::Mode::kCreate,
                           platform::Share::kDenyAll, &error);
    write(stream);
    platform::Close(stream);
    return folder_.ReadBytes("o");
  }

  tabwerk::test::PrivateTemp temp_;  // in memory, where that is possible
  tabwerk::test::TempFolder folder_;
  TestTable t_;
};

// --- Writing ----------------------------------------------------------------

TEST_F(IndexSections, WrittenIdsAscend) {
  t_.table.MakeIndexID();
  EXPECT_EQ(Section("ID", {3, -1, 2, 5, 0, 6, 1}),
            Written([&](FILE* f) { t_.table.WriteIndexID(f); }));
}

TEST_F(IndexSections, WrittenFolgeHasOneEntryMoreThanRows) {
  t_.table.MakeIndexFolge();
  EXPECT_EQ(Section("FOLGE", {4, -1, 1, 0, 2}),
            Written([&](FILE* f) { t_.table.WriteIndexFolge(f); }));
}

TEST_F(IndexSections, WrittenStatusHasAValuePerRow) {
  t_.table.MakeIndexStatus();
  EXPECT_EQ(Section("STATUS", {3, 0, 7, 0}),
            Written([&](FILE* f) { t_.table.WriteIndexStatus(f); }));
}

TEST_F(IndexSections, EmptyTableWritesItsThreeSections) {
  TestTable t("integer ID,integer FOLGE,integer STATUS\n");
  t.table.MakeIndexID();
  t.table.MakeIndexFolge();
  t.table.MakeIndexStatus();
  EXPECT_EQ(
      Section("ID", {0}) + Section("FOLGE", {1, -1}) + Section("STATUS", {0}),
      Written([&](FILE* f) {
        t.table.WriteIndexID(f);
        t.table.WriteIndexFolge(f);
        t.table.WriteIndexStatus(f);
      }));
}

// --- ID ---------------------------------------------------------------------

TEST_F(IndexSections, ReadIdsReplaceTheIndexAndTheLaterRowCounts) {
  t_.table.MakeIndexID();
  std::string const before = Selection(t_.table);
  auto const bytes = Section("ID", {3, 9, 1, 8, 0, 9, 2}) + "FOLGE";
  EXPECT_EQ(30, ReadFrom(bytes, [&](FILE* f) { t_.table.ReadIndexID(f); }));
  EXPECT_EQ("8>0 9>2", IdIndexOf(t_.table));
  EXPECT_EQ(before, Selection(t_.table));
}

TEST_F(IndexSections, WrongIdTagIsConsumedAndChangesNothing) {
  t_.table.MakeIndexID();
  EXPECT_EQ(2, ReadFrom(Section("IX", {0}),
                        [&](FILE* f) { t_.table.ReadIndexID(f); }));
  EXPECT_EQ("-1>2 5>0 6>1", IdIndexOf(t_.table));
}

TEST_F(IndexSections, CountBelowOneEmptiesTheIndex) {
  t_.table.MakeIndexID();
  t_.table.MakeIndexFolge();
  t_.table.MakeIndexStatus();
  auto const bytes =
      Section("ID", {0}) + Section("FOLGE", {-5}) + Section("STATUS", {0});
  ReadFrom(bytes, [&](FILE* f) {
    t_.table.ReadIndexID(f);
    t_.table.ReadIndexFolge(f);
    EXPECT_EQ("FOLGE follows FOLGE, part 1 row 2, parts FOLGE@1 FOLGE@0",
              Selection(t_.table));
    t_.table.ReadIndexStatus(f);
  });
  EXPECT_EQ("ID  FOLGE  STATUS ", Indices(t_.table));
  EXPECT_EQ("STATUS follows STATUS, part 1 row 2, parts STATUS@1 STATUS@0",
            Selection(t_.table));
}

// --- FOLGE ------------------------------------------------------------------

TEST_F(IndexSections, ReadFolgeIsWrittenIntoTheRows) {
  auto const bytes = Section("FOLGE", {4, -1, 2, 0, 1});
  EXPECT_EQ(25, ReadFrom(bytes, [&](FILE* f) { t_.table.ReadIndexFolge(f); }));
  EXPECT_EQ("[5|2|0][6|3|7][-1|1|0]", Rows(*t_.entry));
  EXPECT_EQ("-1 2 0 1", FolgeIndexOf(t_.table));
}

TEST_F(IndexSections, RowInEntryZeroGetsFolgeZeroAndNoEntry) {
  ReadFrom(Section("FOLGE", {2, 1, 0}),
           [&](FILE* f) { t_.table.ReadIndexFolge(f); });
  EXPECT_EQ("[5|1|0][6|0|7][-1|3|0]", Rows(*t_.entry));
  EXPECT_EQ("-1 0", FolgeIndexOf(t_.table));
}

TEST_F(IndexSections, RowsThatDoNotExistAreLeftOut) {
  ReadFrom(Section("FOLGE", {4, -1, 3, -7, 0}),
           [&](FILE* f) { t_.table.ReadIndexFolge(f); });
  EXPECT_EQ("[5|3|0][6|1|7][-1|3|0]", Rows(*t_.entry));
  EXPECT_EQ("-1 -1 -1 0", FolgeIndexOf(t_.table));
}

TEST_F(IndexSections, WrongFolgeTagLeavesIndexAndColumn) {
  t_.table.MakeIndexFolge();
  t_.table.SelectColumn("ID");
  EXPECT_EQ(5, ReadFrom(Section("FOLGX", {0}),
                        [&](FILE* f) { t_.table.ReadIndexFolge(f); }));
  EXPECT_EQ("-1 1 0 2", FolgeIndexOf(t_.table));
  EXPECT_EQ("ID@2", tabwerk::test::Selected(t_.table));
}

TEST_F(IndexSections, FolgeWithoutUpdateIsTakenAsItStands) {
  ReadFrom(Section("FOLGE", {3, 2, 9, -4}),
           [&](FILE* f) { t_.table.ReadIndexFolgeNoUpdate(f); });
  EXPECT_EQ("2 9 -4", FolgeIndexOf(t_.table));
  EXPECT_EQ("[5|2|0][6|1|7][-1|3|0]", Rows(*t_.entry));
  EXPECT_EQ("FOLGE follows FOLGE, part 0 row 0, parts FOLGE@-1 FOLGE@-1",
            Selection(t_.table));
}

TEST_F(IndexSections, FolgeOfATableWithoutTheColumnGoesToTheIndexOnly) {
  TestTable t("integer N\n");
  t.AddRows(0, {"8", "9"});
  t.table.SelectColumn("N");
  ReadFrom(Section("FOLGE", {3, -1, 1, 0}),
           [&](FILE* f) { t.table.ReadIndexFolge(f); });
  EXPECT_EQ("[8][9]", Rows(*t.entry));
  EXPECT_EQ("-1 1 0", FolgeIndexOf(t.table));
}

// --- STATUS -----------------------------------------------------------------

TEST_F(IndexSections, ReadStatusIsWrittenIntoTheRows) {
  ReadFrom(Section("STATUS", {3, 1, 0, 2}),
           [&](FILE* f) { t_.table.ReadIndexStatus(f); });
  EXPECT_EQ("[5|2|1][6|1|0][-1|3|2]", Rows(*t_.entry));
  EXPECT_EQ("1 0 2", StatusIndexOf(t_.table));
}

TEST_F(IndexSections, SurplusStatusValuesFallOnTheLastRow) {
  ReadFrom(Section("STATUS", {5, 1, 0, 2, 8, 9}),
           [&](FILE* f) { t_.table.ReadIndexStatus(f); });
  EXPECT_EQ("[5|2|1][6|1|0][-1|3|9]", Rows(*t_.entry));
  EXPECT_EQ("1 0 9 0 0", StatusIndexOf(t_.table));
  EXPECT_EQ("STATUS follows STATUS, part 1 row 2, parts STATUS@1 STATUS@0",
            Selection(t_.table));
}

TEST_F(IndexSections, FewerStatusValuesLeaveTheLaterRows) {
  ReadFrom(Section("STATUS", {1, 4}),
           [&](FILE* f) { t_.table.ReadIndexStatus(f); });
  EXPECT_EQ("[5|2|4][6|1|7][-1|3|0]", Rows(*t_.entry));
  EXPECT_EQ("STATUS@0", tabwerk::test::Selected(t_.table));
}

TEST_F(IndexSections, StatusWithoutUpdateChangesNoRow) {
  ReadFrom(Section("STATUS", {4, 1, 0, 2, 8}),
           [&](FILE* f) { t_.table.ReadIndexStatusNoUdate(f); });
  EXPECT_EQ("[5|2|0][6|1|7][-1|3|0]", Rows(*t_.entry));
  EXPECT_EQ("1 0 2 8", StatusIndexOf(t_.table));
  EXPECT_EQ("STATUS@2", tabwerk::test::Selected(t_.table));
}

TEST_F(IndexSections, WrongStatusTagConsumes6Bytes) {
  EXPECT_EQ(6, ReadFrom(Section("STATUX", {1, 4}),
                        [&](FILE* f) { t_.table.ReadIndexStatus(f); }));
  EXPECT_EQ(6, ReadFrom(Section("status", {1, 4}),
                        [&](FILE* f) { t_.table.ReadIndexStatusNoUdate(f); }));
  EXPECT_EQ("- follows , part 0 row 0, parts -@-1 -@-1", Selection(t_.table));
}

TEST_F(IndexSections, StatusOfATableWithoutTheColumnGoesToTheIndexOnly) {
  TestTable t("integer N\n");
  t.AddRows(0, {"8", "9"});
  t.table.SelectColumn("N");
  ReadFrom(Section("STATUS", {2, 1, 2}),
           [&](FILE* f) { t.table.ReadIndexStatus(f); });
  EXPECT_EQ("[8][9]", Rows(*t.entry));
  EXPECT_EQ("1 2", StatusIndexOf(t.table));
}

TEST_F(IndexSections, StatusOfAnEmptyTableIsOfNoRow) {
  TestTable t("integer STATUS\n");
  ReadFrom(Section("STATUS", {2, 1, 2}),
           [&](FILE* f) { t.table.ReadIndexStatus(f); });
  EXPECT_EQ("0 0", StatusIndexOf(t.table));
}

// --- Cut and hostile sections -----------------------------------------------

TEST_F(IndexSections, CutSectionGivesTheValuesThatAreThere) {
  auto const ids = Section("ID", {3, 5, 0, 6});
  ReadFrom(ids, [&](FILE* f) { t_.table.ReadIndexID(f); });
  EXPECT_EQ("5>0", IdIndexOf(t_.table));
  ReadFrom(Section("FOLGE", {4, -1, 2}) + "\1",
           [&](FILE* f) { t_.table.ReadIndexFolge(f); });
  EXPECT_EQ("-1 2 -1 -1", FolgeIndexOf(t_.table));
  ReadFrom(Section("STATUS", {3, 6}),
           [&](FILE* f) { t_.table.ReadIndexStatus(f); });
  EXPECT_EQ("6 0 0", StatusIndexOf(t_.table));
}

TEST_F(IndexSections, CountBeyondTheFileTakesNoMemory) {
  constexpr std::int32_t kLargest = 2'147'483'647;
  auto const bytes = [](std::string_view tag) {
    return Section(tag, {kLargest, 1, 2});
  };
  ReadFrom(bytes("ID"), [&](FILE* f) { t_.table.ReadIndexID(f); });
  ReadFrom(bytes("FOLGE"), [&](FILE* f) { t_.table.ReadIndexFolge(f); });
  ReadFrom(bytes("STATUS"), [&](FILE* f) { t_.table.ReadIndexStatus(f); });
  EXPECT_EQ("1>2", IdIndexOf(t_.table));
  EXPECT_GE(std::size_t{1} << 17, TableAccess::Folge(t_.table).size());
  EXPECT_GE(std::size_t{1} << 17, TableAccess::Status(t_.table).size());
}

TEST_F(IndexSections, WithoutAStreamNothingHappens) {
  t_.table.MakeIndexID();
  t_.table.WriteIndexID(nullptr);
  t_.table.WriteIndexFolge(nullptr);
  t_.table.WriteIndexStatus(nullptr);
  t_.table.ReadIndexID(nullptr);
  t_.table.ReadIndexFolge(nullptr);
  t_.table.ReadIndexStatus(nullptr);
  EXPECT_EQ("-1>2 5>0 6>1", IdIndexOf(t_.table));
}

TEST_F(IndexSections, WrittenIndicesReadBackOnRandomTables) {
  JudgeRandomly(200, [this](std::uint32_t seed) {
    auto const one = RandomTable(seed, 20);
    auto const other = RandomTable(seed + 1, 20);
    folder_.WriteBytes("i", Written([&](FILE* f) {
                         one->table.WriteIndexID(f);
                         one->table.WriteIndexFolge(f);
                         one->table.WriteIndexStatus(f);
                       }));
    ReadFrom(folder_.ReadBytes("i"), [&](FILE* f) {
      other->table.ReadIndexID(f);
      other->table.ReadIndexFolgeNoUpdate(f);
      other->table.ReadIndexStatusNoUdate(f);
    });
    ASSERT_EQ(Indices(one->table), Indices(other->table));
  });
}

}  // namespace
