#include "base/index_file.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "base/manager_access.h"
#include "platform/platform.h"
#include "tests/support/database_fixture.h"
#include "tests/support/fault_platform.h"
#include "tests/support/new_guard.h"
#include "tests/support/table_builder.h"

namespace tabwerk::test {
namespace {

class IndexFile : public DatabaseTest {
 protected:
  IndexFile() {
    MakeArticles("MAIN.db", 1000, {"1|1|0|Anna", "2|2|0|Bert", "3|3|0|Carl"});
    MakeArticles("USER.UDB", 2000, {"20000|4|0|Dora"});
    zSplashMessage::GetSplashMessage()->SetCallback(Note, this);
  }

  // Result of the index upkeep of an opening.
  int Make() const {
    Configure("STOCK", {"MAIN.db", "USER.UDB"});
    EXPECT_EQ(1, Manager()->Open(W("STOCK"), false, false));
    // A second look at what the opening left behind.
    return ManagerAccess::MakeIndexFile(*Manager(), Manager()->GetDirectory());
  }

  PlainIndex Index() const {
    auto const index = DecodeIndex(Bytes("STOCK.idx"), 2);
    EXPECT_TRUE(index.has_value());
    return index.value_or(PlainIndex{});
  }
  std::string Sections() const {
    auto const index = Index();
    return index.tables.size() == 1 ? Describe(index.tables[0]) : "-";
  }
  void WriteIndex(PlainIndex const& index) const {
    WriteFileBytes(Path("STOCK.idx"), EncodeIndex(index));
  }
  static PlainIndex Good() {
    return {{1000, 2000},
            {{{{1, 0}, {2, 1}, {3, 2}, {20000, 3}},
              {-1, 3, 2, 1, 0},
              {1, 1, 1, 1}}}};
  }
  // The index as before the last save.
  void LeaveStaleIndex() const {
    auto stale = Index();
    stale.time_stamps = {1000, 1999};
    WriteIndex(stale);
  }
  // The same with the index of that save, which was not moved to its place.
  void LeaveWaitingIndex() const {
    LeaveStaleIndex();
    auto waiting = Good();
    waiting.time_stamps = {1000, 1999};
    WriteFileBytes(Path("STOCK.idx.2000"), EncodeIndex(waiting));
  }
  static std::string Folge() { return Column(Table("ARTIKEL"), "FOLGE"); }
  static std::string Status() { return Column(Table("ARTIKEL"), "STATUS"); }

  std::string messages_;

 private:
  static void Note(void* context, zWString const* text) {
    auto& messages = static_cast<IndexFile*>(context)->messages_;
    messages += text == nullptr ? "[clear]" : "[" + text->toUtf8() + "]";
  }
};

constexpr char kBuilt[] =
    "ID 1>0 2>1 3>2 20000>3 FOLGE -1 0 1 2 3 STATUS 0 0 0 0";

TEST_F(IndexFile, LiesBesideTheUserFileAndHasTheNameOfTheDatabase) {
  OpenStock();
  auto const name =
      ManagerAccess::IndexFileName(*Manager(), Manager()->GetDirectory());
  EXPECT_EQ(W(Path("STOCK.idx")), name);
}

TEST_F(IndexFile, HasNoNameWithoutAUserFile) {
  Configure("STOCK", {"MAIN.db"});
  EXPECT_EQ("",
            ManagerAccess::IndexFileName(*Manager(), Manager()->GetDirectory())
                .toUtf8());
}

// Kept: the first file is the shipped one, whatever it is called.
TEST_F(IndexFile, HasNoNameForAUserFileInTheFirstPosition) {
  Configure("STOCK", {"USER.UDB", "MAIN.db"});
  EXPECT_EQ("",
            ManagerAccess::IndexFileName(*Manager(), Manager()->GetDirectory())
                .toUtf8());
}

TEST_F(IndexFile, WithoutAUserFileNothingIsWritten) {
  Configure("STOCK", {"MAIN.db"});
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), false, false));
  EXPECT_EQ(
      0, ManagerAccess::MakeIndexFile(*Manager(), Manager()->GetDirectory()));
  EXPECT_EQ(0, Manager()->WriteIndexToFile(nullptr));
  EXPECT_EQ("MAIN.db USER.UDB", Files());
  EXPECT_EQ(0, Table("ARTIKEL")->SelectZeile("ID", 1L));
}

TEST_F(IndexFile, IsBuiltAtTheFirstOpening) {
  OpenStock();
  EXPECT_EQ(kBuilt, Sections());
  EXPECT_EQ((std::vector<std::int64_t>{1000, 2000}), Index().time_stamps);
  EXPECT_EQ("", messages_);
}

TEST_F(IndexFile, IsValidAtTheSecondOpening) {
  EXPECT_EQ(-1, Make());
  auto const bytes = Bytes("STOCK.idx");
  EXPECT_EQ(-1, Make());
  EXPECT_EQ(bytes, Bytes("STOCK.idx"));
  EXPECT_EQ("", messages_);
}

// Order and status of shipped rows stand nowhere else.
TEST_F(IndexFile, ValidIndexWritesOrderAndStatusIntoTheRows) {
  WriteIndex({{1000, 2000},
              {{{{1, 0}, {2, 1}, {3, 2}, {20000, 3}},
                {-1, 2, 3, 0, -1},
                {0, 1, 0, 0}}}});
  EXPECT_EQ(-1, Make());
  EXPECT_EQ("[3][2][1][2]", Folge());
  EXPECT_EQ("[0][1][0][0]", Status());
}

TEST_F(IndexFile, StaleIndexCarriesOrderAndStatusOverById) {
  // Written when the main file had the rows 2, 1: the user's row first, then 2;
  // 1 inactive.
  WriteIndex({{999, 2000},
              {{{{1, 1}, {2, 0}, {20000, 2}}, {-1, 2, 0, -1}, {0, 2, 0}}}});
  OpenStock();
  EXPECT_EQ("[Updating database index][clear]", messages_);
  EXPECT_EQ("[2][0][0][0]", Status());
  EXPECT_EQ("[0][2][3][1]", Folge());
  EXPECT_EQ((std::vector<std::int64_t>{1000, 2000}), Index().time_stamps);
  EXPECT_EQ(-1, Make());
}

TEST_F(IndexFile, ProgressIsShownOncePerTable) {
  MakeFile("MAIN.db", {PlainHeader::kCurrent,
                       1000,
                       {{"A", "integer ID\n", {}}, {"B", "integer ID\n", {}}}});
  WriteFileBytes(Path("USER.UDB"), {});
  OpenStock();
  auto index = Index();
  index.time_stamps[0] = 1;
  WriteIndex(index);
  OpenStock();
  EXPECT_EQ("[Updating database index][Updating database index][clear]",
            messages_);
}

class BadIndex : public IndexFile {
 protected:
  // The index counts as missing: rebuilt from the rows, without a message.
  void ExpectRebuilt() {
    OpenStock();
    EXPECT_EQ(kBuilt, Sections());
    EXPECT_EQ("[1][2][3][4]", Folge());
    EXPECT_EQ("", messages_);
  }
};

TEST_F(BadIndex, WithBytesBehindTheLastSectionIsRebuilt) {
  auto bytes = EncodeIndex(Good());
  bytes.push_back(0);
  WriteFileBytes(Path("STOCK.idx"), bytes);
  ExpectRebuilt();
}

TEST_F(BadIndex, OfAnotherNumberOfTablesIsRebuilt) {
  auto index = Good();
  index.tables.push_back(index.tables[0]);
  WriteIndex(index);
  ExpectRebuilt();
}

TEST_F(BadIndex, WithAWrongTagIsRebuilt) {
  auto bytes = EncodeIndex(Good());
  bytes[16] = 'X';
  WriteFileBytes(Path("STOCK.idx"), bytes);
  ExpectRebuilt();
}

TEST_F(BadIndex, WithRowNumbersOutsideTheTableIsRebuilt) {
  for (auto const row : {-2, 4, 2147483647}) {
    auto index = Good();
    index.tables[0].folge[1] = row;
    WriteIndex(index);
    ExpectRebuilt();
  }
  for (auto const row : {-1, 4}) {
    auto index = Good();
    index.tables[0].ids[0].second = row;
    WriteIndex(index);
    ExpectRebuilt();
  }
}

TEST_F(BadIndex, WithSizesThatNoWriterMakesIsRebuilt) {
  auto index = Good();
  index.tables[0].folge.push_back(-1);
  WriteIndex(index);
  ExpectRebuilt();
  index = Good();
  index.tables[0].ids.emplace_back(20001, 0);
  WriteIndex(index);
  ExpectRebuilt();
}

TEST_F(BadIndex, CurrentButOfAnotherNumberOfRowsIsRebuilt) {
  WriteIndex({{1000, 2000}, {{{{1, 0}}, {-1, 0}, {1}}}});
  ExpectRebuilt();
}

TEST_F(BadIndex, WithAnEnormousCountIsRebuilt) {
  auto bytes = EncodeIndex(Good());
  bytes[18] = bytes[19] = bytes[20] = 0xFF;
  bytes[21] = 0x7F;
  WriteFileBytes(Path("STOCK.idx"), bytes);
  ExpectRebuilt();
}

TEST_F(IndexFile, ThatCannotBeWrittenIsBuiltInMemory) {
  OpenStock(false);
  FaultGuard faults;
  faults.FailAt(1, Lasting::kForGood, Only(Call::kReplace));
  WriteFileBytes(Path("STOCK.idx"), {1, 2, 3});
  EXPECT_EQ(
      2, ManagerAccess::MakeIndexFile(*Manager(), Manager()->GetDirectory()));
  EXPECT_EQ(3U, Bytes("STOCK.idx").size());
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
  EXPECT_EQ(1, Table("ARTIKEL")->SelectZeile("ID", 20000L));
}

// What cannot be read may still be the user's order.
TEST_F(IndexFile, ThatCannotBeReadStaysAsItIs) {
  OpenStock(false);
  auto const bytes = Bytes("STOCK.idx");
  FaultGuard faults;
  faults.FailAt(1, Lasting::kOnce, Only(Call::kRead));
  EXPECT_EQ(
      2, ManagerAccess::MakeIndexFile(*Manager(), Manager()->GetDirectory()));
  EXPECT_EQ(bytes, Bytes("STOCK.idx"));
}

TEST_F(IndexFile, ThatCouldNotBeReadIsCarriedOverByASave) {
  WriteIndex(Good());
  Configure("STOCK", {"MAIN.db", "USER.UDB"});
  {
    FaultGuard faults;
    faults.FailAt(3, Lasting::kOnce, Only(Call::kOpenFile));  // the index
    EXPECT_EQ(1, Manager()->Open(W("STOCK"), true, false));
  }
  EXPECT_EQ("[0][0][0][0]", Status());
  EXPECT_EQ(0, Manager()->WriteIndexToFile(nullptr));
  EXPECT_TRUE(Manager()->Write(W("STOCK"), true, W("")));
  EXPECT_EQ("[1][1][1][1]", Status());
}

TEST_F(IndexFile, StaysAsItIsWhenATableCannotBeLoaded) {
  OpenStock();
  auto const index = Bytes("STOCK.idx");
  auto main = Bytes("MAIN.db");
  main.resize(main.size() - 4);
  WriteFileBytes(Path("MAIN.db"), main);
  EXPECT_EQ(2, Make());
  EXPECT_EQ(index, Bytes("STOCK.idx"));
  EXPECT_EQ(0, Manager()->WriteIndexToFile(nullptr));
}

// Another program has saved meanwhile; its index is the better one.
TEST_F(IndexFile, OfFilesThatWereReplacedSinceIsNotWritten) {
  OpenStock(false);
  MakeArticles("USER.UDB", 2001, {"20000|4|0|Dora", "20001|5|0|Eva"});
  WriteFileBytes(Path("STOCK.idx"), {1, 2, 3});
  EXPECT_EQ(0, Manager()->WriteIndexToFile(nullptr));
  EXPECT_EQ(3U, Bytes("STOCK.idx").size());
}

// They were empty afterwards, and the next new row got an ID that was taken.
TEST_F(IndexFile, WithoutMemoryForItTheTablesKeepTheirIndices) {
  OpenStock();
  std::string const before = Indices(*Table("ARTIKEL"));
  bool fired = true;
  for (int n = 1; fired; ++n) {
    {
      NewGuard guard(n);
      (void)Manager()->WriteIndexToFile(nullptr);
      fired = guard.Disarm();
    }
    ASSERT_EQ(before, Indices(*Table("ARTIKEL"))) << n;
  }
}

TEST_F(IndexFile, ThatWasReplacedCountsAsWrittenWhateverTheMemory) {
  OpenStock();
  bool fired = true;
  for (int n = 1; fired; ++n) {
    WriteFileBytes(Path("STOCK.idx"), {1, 2, 3});
    int result = 0;
    {
      NewGuard guard(n);
      result = Manager()->WriteIndexToFile(nullptr);
      fired = guard.Disarm();
    }
    ASSERT_EQ(result == 2, Bytes("STOCK.idx").size() != 3) << n;
  }
}

TEST_F(IndexFile, WritingReturnsTwoAndMovesTheTablesToTheLastStatus) {
  OpenStock();
  auto* const table = Table("ARTIKEL");
  table->SelectColumn("NAME");
  EXPECT_EQ(2, Manager()->WriteIndexToFile(nullptr));
  EXPECT_STREQ("STATUS", table->GetAktuelleFeldDef()->name);
  EXPECT_TRUE(SetNumber(table, 3, "ID", 7));
  EXPECT_EQ(2, Manager()->WriteIndexToFile(Manager()->GetDirectory()));
  EXPECT_EQ("ID 1>0 2>1 3>2 7>3 FOLGE -1 0 1 2 3 STATUS 0 0 0 0", Sections());
}

// A save that was interrupted behind the replaced database file.
TEST_F(IndexFile, ThatWaitsForTheFilesTimeStampIsTakenOver) {
  OpenStock();
  DBbase::Init({}, {});
  LeaveWaitingIndex();
  OpenStock();
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
  EXPECT_EQ("[1][1][1][1]", Status());
}

// It could not be deleted when the next one took its place.
TEST_F(IndexFile, ThatWaitsIsNotTakenOverANewerOne) {
  OpenStock();
  DBbase::Init({}, {});
  auto const newer = Bytes("STOCK.idx");
  LeaveWaitingIndex();
  WriteFileBytes(Path("STOCK.idx"), newer);
  OpenStock();
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
  EXPECT_EQ("[0][0][0][0]", Status());
}

// The program whose save it belongs to moves it while another one opens.
TEST_F(IndexFile, ThatWaitsMayBeMovedWhileItIsFound) {
  OpenStock();
  DBbase::Init({}, {});
  LeaveWaitingIndex();
  FaultGuard faults;
  faults.ActAt(1, Only(Call::kReplace), [this] {
    std::filesystem::rename(Path("STOCK.idx.2000"), Path("STOCK.idx"));
  });
  OpenStock();
  EXPECT_TRUE(faults.Fired());
  EXPECT_EQ("[1][1][1][1]", Status());
}

// Else a save could replace file and index between the two.
TEST_F(IndexFile, IsReadWhileTheFilesAreStillOpen) {
  OpenStock();
  DBbase::Init({}, {});
  FaultGuard faults;
  auto error = platform::Error::kNone;
  // Main file, user file, waiting indices of both; then the index.
  faults.ActAt(5, Only(Call::kOpenFile), [&] {
    EXPECT_EQ("OpenFile STOCK.idx", faults.Trace().back());
    auto* const stream =
        platform::os::OpenFile(W(Path("USER.UDB")), platform::Mode::kUpdate,
                               platform::Share::kDenyAll, &error);
    if (stream != nullptr) (void)platform::os::Close(stream);
  });
  OpenStock(false);
  EXPECT_TRUE(faults.Fired());
  EXPECT_EQ(platform::Error::kHeld, error);
}

// The order that another program writes between the finding of a stale index
// and its renewal is not lost.
TEST_F(IndexFile, ThatAnotherProgramHasRenewedIsTaken) {
  OpenStock();
  DBbase::Init({}, {});
  auto renewed = Good();
  renewed.time_stamps = {1000, 2000};
  LeaveStaleIndex();
  FaultGuard faults;
  // Main file, user file, waiting indices of both, the index; then the lock.
  faults.ActAt(6, Only(Call::kOpenFile), [&] {
    EXPECT_EQ("OpenFile STOCK.idxL", faults.Trace().back());
    WriteFileBytes(Path("STOCK.idx"), EncodeIndex(renewed));
  });
  OpenStock();
  EXPECT_TRUE(faults.Fired());
  EXPECT_EQ("[1][1][1][1]", Status());
  EXPECT_EQ(EncodeIndex(renewed), Bytes("STOCK.idx"));
}

TEST_F(IndexFile, ThatWaitsForAnotherTimeStampIsNot) {
  OpenStock();
  WriteFileBytes(Path("STOCK.idx.2001"), EncodeIndex(Good()));
  EXPECT_EQ(-1, Make());
  EXPECT_EQ("[1][2][3][4]", Folge());
}

// --- Results
// ------------------------------------------------------------------

class IndexResult : public IndexFile {
 protected:
  // What an opening answers; the tables are read, the index is not yet.
  int Opened() {
    Configure("STOCK", {"MAIN.db", "USER.UDB"});
    auto const index = FileExists("STOCK.idx") ? Bytes("STOCK.idx")
                                               : std::vector<unsigned char>();
    bool const was_there = FileExists("STOCK.idx");
    EXPECT_EQ(1, Manager()->Open(W("STOCK"), false, false));
    messages_.clear();
    if (was_there) {
      WriteFileBytes(Path("STOCK.idx"), index);
    } else {
      std::filesystem::remove(Path("STOCK.idx"));
    }
    return ManagerAccess::MakeIndexFile(*Manager(), Manager()->GetDirectory());
  }
};

TEST_F(IndexResult, IsOneWhenTheIndexIsBuilt) { EXPECT_EQ(1, Opened()); }

TEST_F(IndexResult, IsMinusOneWhenTheIndexIsValid) {
  OpenStock();
  EXPECT_EQ(-1, Opened());
}

TEST_F(IndexResult, IsOneWhenAnyFileHasChanged) {
  for (auto const position : {0U, 1U}) {
    auto index = Good();
    ++index.time_stamps[position];
    WriteIndex(index);
    EXPECT_EQ(1, Opened());
    EXPECT_EQ("[Updating database index][clear]", messages_);
  }
}

TEST_F(IndexResult, IsOneWithoutAMessageWhenTheCheckFails) {
  WriteFileBytes(Path("STOCK.idx"), {1, 2, 3});
  EXPECT_EQ(1, Opened());
  EXPECT_EQ("", messages_);
}

// Kept: only the upper-case extension makes a user file.
TEST_F(IndexFile, HasNoNameForALowerCaseExtension) {
  std::filesystem::rename(Path("USER.UDB"), Path("USER.udb"));
  Configure("STOCK", {"MAIN.db", "USER.udb"});
  EXPECT_EQ("",
            ManagerAccess::IndexFileName(*Manager(), Manager()->GetDirectory())
                .toUtf8());
}

// Kept: the index is named after the database alone.
TEST_F(IndexFile, IsSharedByDatabasesOfOneNameInOneFolder) {
  MakeArticles("OTHER.UDB", 3000, {});
  OpenStock();
  Configure("STOCK", {"MAIN.db", "OTHER.UDB"});
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), false, false));
  EXPECT_EQ((std::vector<std::int64_t>{1000, 3000}), Index().time_stamps);
}

// Saves of two files ended before their last step; the later one knows the
// stamp of the earlier.
TEST_F(IndexFile, OfTwoThatWaitTheOneThatKnowsTheOtherFileIsTaken) {
  for (bool const user_file_is_newer : {false, true}) {
    DBbase::Init({}, {});
    std::filesystem::remove(Path("STOCK.idx"));
    auto of_main = Good();
    of_main.time_stamps = {999, user_file_is_newer ? 1998 : 2000};
    auto of_user = Good();
    of_user.time_stamps = {user_file_is_newer ? 1000 : 998, 1999};
    of_user.tables[0].status = {2, 2, 2, 2};
    WriteFileBytes(Path("STOCK.idx.1000"), EncodeIndex(of_main));
    WriteFileBytes(Path("STOCK.idx.2000"), EncodeIndex(of_user));
    Make();
    EXPECT_EQ(user_file_is_newer ? "[2][2][2][2]" : "[1][1][1][1]", Status());
    EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
  }
}

// While another program has the lock, nothing is looked at a second time.
TEST_F(IndexFile, OfTwoThatWaitTheRightOneIsTakenAtTheFirstLook) {
  auto of_main = Good();
  of_main.time_stamps = {999, 2000};
  auto of_user = Good();
  of_user.time_stamps = {998, 1999};
  of_user.tables[0].status = {2, 2, 2, 2};
  WriteFileBytes(Path("STOCK.idx.1000"), EncodeIndex(of_main));
  WriteFileBytes(Path("STOCK.idx.2000"), EncodeIndex(of_user));
  auto error = platform::Error::kNone;
  auto* const lock =
      platform::OpenFile(W(Path("STOCK.idxL")), platform::Mode::kCreate,
                         platform::Share::kDenyAll, &error);
  ASSERT_NE(nullptr, lock);
  Configure("STOCK", {"MAIN.db", "USER.UDB"});
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), false, false));
  EXPECT_EQ("[1][1][1][1]", Status());
  EXPECT_TRUE(platform::Close(lock));
}

TEST_F(IndexFile, OfNoDatabaseHasNoName) {
  EXPECT_EQ("", ManagerAccess::IndexFileName(*Manager(), nullptr).toUtf8());
}

// The system may say so while another program moves the index into its place.
TEST_F(IndexFile, ThatIsThereAfterAllDoesNotCountAsMissing) {
  OpenStock();
  bool missing = true;
  FaultGuard faults;
  faults.FailAt(1, Lasting::kForGood, Only(Call::kOpenFile),
                platform::Error::kNotFound);
  EXPECT_FALSE(ReadIndexBytes(W(Path("STOCK.idx")), &missing).has_value());
  EXPECT_FALSE(missing);
  EXPECT_FALSE(ReadIndexBytes(W(Path("NONE.idx")), &missing).has_value());
  EXPECT_TRUE(missing);
}

TEST_F(IndexFile, ThatIsFarTooLongIsNotRead) {
  WriteFileBytes(Path("STOCK.idx"), EncodeIndex(Good()));
  std::filesystem::resize_file(Path("STOCK.idx"),
                               (std::uintmax_t{1} << 32) + 1);
  FaultGuard const counts;
  bool missing = true;
  auto const content = ReadIndexBytes(W(Path("STOCK.idx")), &missing);
  EXPECT_TRUE(content && content->size() == 0);
  EXPECT_FALSE(missing);
  EXPECT_EQ(0, counts.BytesRead());
}

TEST_F(IndexFile, OfEveryLengthButItsOwnIsBuiltAnew) {
  OpenStock();
  auto const whole = Bytes("STOCK.idx");
  for (std::size_t size = 0; size < whole.size(); ++size) {
    DBbase::Init({}, {});
    WriteFileBytes(Path("STOCK.idx"),
                   {whole.begin(), whole.begin() + static_cast<long>(size)});
    Configure("STOCK", {"MAIN.db", "USER.UDB"});
    ASSERT_EQ(1, Manager()->Open(W("STOCK"), false, false));
    ASSERT_EQ(whole, Bytes("STOCK.idx")) << size;
  }
}

}  // namespace
}  // namespace tabwerk::test
