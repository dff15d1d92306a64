// The index file is lost, damaged, foreign, unreadable or cannot be written.
//
// It alone holds the user's order and status of shipped rows; user rows with
// their own order and status are in the user file.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/end_to_end/story.h"
#include "tests/support/fault_platform.h"

namespace tabwerk::test {
namespace {

namespace fs = std::filesystem;

// The user has put Dora in front, has exchanged Anna and Carl and has switched
// Bert off.
class IndexLoss : public StoryTest {
 protected:
  IndexLoss() {
    Install();
    EXPECT_TRUE(Append(L"Dora"));
    EXPECT_TRUE(SetById(2, "STATUS", 1));
    EXPECT_TRUE(SetById(20000, "FOLGE", 1));
    EXPECT_TRUE(SetById(3, "FOLGE", 2));
    EXPECT_TRUE(SetById(1, "FOLGE", 3));
    EXPECT_TRUE(SetById(2, "FOLGE", 0));
    EXPECT_TRUE(Save());
    EXPECT_EQ(kUsersRows, Rows("ARTIKEL"));
    End();
    messages_.clear();
    index_ = Bytes("STOCK.idx");
  }

  // Something that is no file where the library wants one.
  void BlockWithFolder(std::string const& name) const {
    fs::remove(Path(name));
    fs::create_directory(Path(name));
    WriteFileBytes(Path(name + "/full"), {1});
  }
  void Unblock(std::string const& name) const { fs::remove_all(Path(name)); }

  // The rows as the two files have them, with a new index.
  void ExpectRebuiltFromTheRows() {
    Start();
    EXPECT_EQ(kRowsOfTheFiles, Rows("ARTIKEL"));
    EXPECT_EQ("", messages_);
    EXPECT_EQ(-1, IndexResult());
    EXPECT_EQ(1, Table("ARTIKEL")->SelectZeile("ID", 20000L));
    EXPECT_EQ("[20000|1|0|Dora]", OnDisk("USER.UDB"));
    End();
  }

  static constexpr char kUsersRows[] =
      "[1|3|0|Anna][2|0|1|Bert][3|2|0|Carl][20000|1|0|Dora]";
  static constexpr char kRowsOfTheFiles[] =
      "[1|1|0|Anna][2|2|0|Bert][3|3|0|Carl][20000|1|0|Dora]";

  std::vector<unsigned char> index_;
};

TEST_F(IndexLoss, LostItIsRebuiltFromTheRows) {
  fs::remove(Path("STOCK.idx"));
  ExpectRebuiltFromTheRows();
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
}

// Kept: of two rows with one place the later one counts.  Anna is not lost:
// the program can number the rows anew.
TEST_F(IndexLoss, LostItLeavesAShippedRowWithoutAPlaceWhereAUserRowHasIt) {
  fs::remove(Path("STOCK.idx"));
  Start();
  EXPECT_EQ("Dora Bert Carl", InOrder());
  EXPECT_TRUE(Save());
  EXPECT_EQ("[0][2][3][1]", Column(Table("ARTIKEL"), "FOLGE"));
  EXPECT_EQ("[0][0][0][0]", Column(Table("ARTIKEL"), "STATUS"));
}

TEST_F(IndexLoss, DamagedItIsRebuiltFromTheRows) {
  auto const cut =
      index_.begin() + static_cast<std::ptrdiff_t>(index_.size() / 2);
  auto longer = index_;
  longer.push_back(0);
  auto other_tag = index_;
  other_tag[16] = 'X';
  for (auto const& bytes : {std::vector<unsigned char>{},
                            {index_.begin(), cut},
                            longer,
                            other_tag,
                            std::vector<unsigned char>(1000, 0xFF)}) {
    WriteFileBytes(Path("STOCK.idx"), bytes);
    ExpectRebuiltFromTheRows();
  }
}

TEST_F(IndexLoss, OfADatabaseWithOtherTablesIsRebuiltFromTheRows) {
  PlainIndex foreign{{7, 8}, {{{{1, 0}}, {-1, 0}, {2}}}};
  WriteFileBytes(Path("STOCK.idx"), EncodeIndex(foreign));
  ExpectRebuiltFromTheRows();
}

// Kept: nothing in an index tells its database, so one of as many tables is
// applied by ID.  IDs that nobody has only cost places.
TEST_F(IndexLoss, OfADatabaseWithAsManyTablesIsAppliedById) {
  PlainIndex::Table const section{{{500, 0}, {501, 1}}, {-1, 0, 1}, {2, 2}};
  WriteFileBytes(Path("STOCK.idx"), EncodeIndex({{7, 8}, {section, section}}));
  Start();
  EXPECT_EQ("[Updating database index][Updating database index][clear]",
            messages_);
  EXPECT_EQ("[0][0][0][0]", Column(Table("ARTIKEL"), "STATUS"));
  EXPECT_EQ("[Anna][Bert][Carl][Dora]", Column(Table("ARTIKEL"), "NAME"));
  EXPECT_EQ("Dora Bert", InOrder());
  EXPECT_EQ("[20000|1|0|Dora]", OnDisk("USER.UDB"));
}

// --- Unreadable
// ---------------------------------------------------------------

TEST_F(IndexLoss, ThatCannotBeReadOnceIsThereAtTheNextStart) {
  {
    FaultGuard faults;
    // The two database files, two looks for an unfinished save, the index.
    faults.FailAt(5, Lasting::kOnce, Only(Call::kOpenFile),
                  platform::Error::kAccessDenied);
    Start();
    EXPECT_TRUE(faults.Fired());
    auto const& trace = faults.Trace();
    EXPECT_EQ(1, std::count(trace.begin(), trace.end(), "OpenFile STOCK.idx"));
  }
  EXPECT_EQ(kRowsOfTheFiles, Rows("ARTIKEL"));
  EXPECT_EQ(1, Table("ARTIKEL")->SelectZeile("ID", 20000L));
  EXPECT_TRUE(index_ == Bytes("STOCK.idx"));
  End();
  Start();
  EXPECT_EQ(kUsersRows, Rows("ARTIKEL"));
}

TEST_F(IndexLoss, AFolderInItsPlaceLeavesTheIndicesInMemory) {
  BlockWithFolder("STOCK.idx");
  Start();
  EXPECT_EQ(kRowsOfTheFiles, Rows("ARTIKEL"));
  EXPECT_EQ(2, IndexResult());
  EXPECT_EQ("Dora Bert Carl", InOrder());
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
}

// What stands in its place may be the user's order: a save leaves it alone, and
// what it does not know of shipped rows is not written elsewhere.
TEST_F(IndexLoss, ASaveWhileAFolderIsInItsPlaceIsWhole) {
  BlockWithFolder("STOCK.idx");
  Start();
  EXPECT_TRUE(Append(L"Emil"));
  SaveAndRestart();
  EXPECT_EQ("[20000|1|0|Dora][20001|5|0|Emil]", OnDisk("USER.UDB"));
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
}

TEST_F(IndexLoss, OnlyTheLastOfSeveralWaitingIndicesStays) {
  Start();
  EXPECT_TRUE(SetById(3, "STATUS", 1));
  for (auto const* name : {L"Emil", L"Fritz"}) {
    EXPECT_TRUE(Append(name));
    FaultGuard faults;
    faults.FailAt(2, Lasting::kForGood, Only(Call::kReplace));
    EXPECT_TRUE(Save());
  }
  End();
  Start();
  EXPECT_EQ("[0][1][1][0][0][0]", Column(Table("ARTIKEL"), "STATUS"));
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
}

// --- A folder that takes no files
// ----------------------------------------------

TEST_F(IndexLoss, ThatCannotBeWrittenIsBuiltInMemory) {
  fs::remove(Path("STOCK.idx"));
  BlockWithFolder("STOCK.idxT");
  Start();
  EXPECT_EQ(kRowsOfTheFiles, Rows("ARTIKEL"));
  EXPECT_EQ(2, IndexResult());
  EXPECT_EQ(1, Table("ARTIKEL")->SelectZeile("ID", 20000L));
  EXPECT_EQ("MAIN.db STOCK.idxT USER.UDB", Files());
}

// A stale index is applied, but stays: the next start applies it again.
TEST_F(IndexLoss, StaleIndexThatCannotBeWrittenStays) {
  Ship(2000, {{"1|1|0|Anna", "2|2|0|Bert", "3|3|0|Carl"},
              {"1|1|0|red", "2|2|0|blue"}});
  BlockWithFolder("STOCK.idxT");
  for (int start = 0; start < 2; ++start) {
    Start();
    EXPECT_EQ(kUsersRows, Rows("ARTIKEL"));
    EXPECT_TRUE(index_ == Bytes("STOCK.idx"));
    End();
  }
}

TEST_F(IndexLoss, ASaveIntoAFolderThatTakesNoFilesChangesNothing) {
  BlockWithFolder("USER.UDBT");
  Start();
  EXPECT_TRUE(Append(L"Emil"));
  auto const rows = Rows("ARTIKEL");
  EXPECT_FALSE(Save());
  EXPECT_EQ(rows, Rows("ARTIKEL"));
  EXPECT_EQ("[20000|1|0|Dora]", OnDisk("USER.UDB"));
  EXPECT_TRUE(index_ == Bytes("STOCK.idx"));
  // As soon as the folder takes files, the same save succeeds.
  Unblock("USER.UDBT");
  EXPECT_TRUE(Save());
  EXPECT_EQ("[20000|1|0|Dora][20001|4|0|Emil]", OnDisk("USER.UDB"));
}

TEST_F(IndexLoss, ASaveWhoseIndexCannotBeWrittenChangesNothing) {
  // A stamp in the future, so that the next one is known.
  MakeFile("USER.UDB", {PlainHeader::kCurrent,
                        4000000000,
                        {{"ARTIKEL", kArticles, {"20000|1|0|Dora"}}}});
  BlockWithFolder("STOCK.idx.4000000001");
  Start();
  EXPECT_EQ(kUsersRows, Rows("ARTIKEL"));
  auto const index = Bytes("STOCK.idx");
  EXPECT_TRUE(Append(L"Emil"));
  EXPECT_FALSE(Save());
  EXPECT_EQ("[20000|1|0|Dora]", OnDisk("USER.UDB"));
  EXPECT_TRUE(index == Bytes("STOCK.idx"));
  Unblock("STOCK.idx.4000000001");
  EXPECT_TRUE(Save());
  EXPECT_EQ("Dora Carl Anna Emil", InOrder());
}

}  // namespace
}  // namespace tabwerk::test
