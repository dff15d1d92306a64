#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <limits>

#include "tests/support/database_fixture.h"
#include "tests/support/fault_platform.h"
#include "tests/support/private_temp.h"

namespace tabwerk::test {
namespace {

namespace fs = std::filesystem;

class ManagerWrite : public DatabaseTest {
 protected:
  ManagerWrite() {
    MakeArticles("MAIN.db", 1000, {"1|1|0|Anna", "2|2|0|Bert"});
    MakeArticles("USER.UDB", 2000, {"20000|3|0|Carl"});
    OpenStock();
  }
  bool WriteUserFile() const {
    return Manager()->Write(W("STOCK"), true, W(""));
  }
  std::string InFile(std::string const& name) const {
    return RowsOf(ReadDatabase(Path(name)), "ARTIKEL");
  }
};

constexpr char kAllBefore[] = "[1|1|0|Anna][2|2|0|Bert][20000|3|0|Carl]";

TEST_F(ManagerWrite, UserRowsAreThereAfterwards) {
  AddArticle(Table("ARTIKEL"), 20001, 4, "Dora");
  EXPECT_TRUE(WriteUserFile());
  EXPECT_EQ("[20000|3|0|Carl][20001|4|0|Dora]", InFile("USER.UDB"));
  EXPECT_EQ("[1|1|0|Anna][2|2|0|Bert][20000|3|0|Carl][20001|4|0|Dora]",
            Rows("ARTIKEL"));
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
}

// More than is on its way to the disk at a time.
TEST_F(ManagerWrite, EveryByteOfALargeFileSurvives) {
  std::string const text(8000, 'x');
  for (long i = 0; i < 600; ++i) {
    AddArticle(Table("ARTIKEL"), 20001 + i, 4 + i, text + std::to_string(i));
  }
  auto const rows = Rows("ARTIKEL");
  EXPECT_TRUE(WriteUserFile());
  EXPECT_LT(std::uintmax_t{8} << 20U,
            fs::file_size(fs::path(Path("USER.UDB"))));
  EXPECT_TRUE(rows == Rows("ARTIKEL"));
}

TEST_F(ManagerWrite, EveryTextSurvives) {
  auto* const table = Table("ARTIKEL");
  for (auto const* text : {"", "x", "Größe", "中文", "😀", "\"quoted\", a;b"}) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(SetText(Table("ARTIKEL"), 2, "NAME", text));
    EXPECT_TRUE(WriteUserFile());
    EXPECT_EQ(std::string("[Anna][Bert][") + text + "]",
              Column(Table("ARTIKEL"), "NAME"));
  }
  (void)table;
}

TEST_F(ManagerWrite, LoneSurrogatesSurvive) {
  auto* table = Table("ARTIKEL");
  table->SelectColumn("NAME");
  table->SelectZeile(2L);
  EXPECT_EQ(1, table->SetWert(u"a\xD800"
                              u"b\xDC00"));
  EXPECT_TRUE(WriteUserFile());
  table = Table("ARTIKEL");
  table->SelectColumn("NAME");
  table->SelectZeile(2L);
  zWString text;
  EXPECT_EQ(1, table->GetWert(text));
  EXPECT_TRUE(text == zWString(u"a\xD800"
                               u"b\xDC00"));
}

TEST_F(ManagerWrite, OrderAndStatusOfShippedRowsLiveInTheIndex) {
  auto* const table = Table("ARTIKEL");
  EXPECT_TRUE(SetNumber(table, 0, "STATUS", 1));
  EXPECT_TRUE(SetNumber(table, 1, "FOLGE", 2));
  EXPECT_TRUE(SetNumber(table, 2, "FOLGE", 1));
  EXPECT_TRUE(SetNumber(table, 0, "FOLGE", 0));
  EXPECT_TRUE(WriteUserFile());
  EXPECT_EQ("[1][0][0]", Column(Table("ARTIKEL"), "STATUS"));
  EXPECT_EQ("[0][2][1]", Column(Table("ARTIKEL"), "FOLGE"));
  EXPECT_EQ("[1|1|0|Anna][2|2|0|Bert]", InFile("MAIN.db"));
  OpenStock();
  EXPECT_EQ("[1][0][0]", Column(Table("ARTIKEL"), "STATUS"));
  EXPECT_EQ("[0][2][1]", Column(Table("ARTIKEL"), "FOLGE"));
}

TEST_F(ManagerWrite, WithoutCurrentDatabaseIsFalse) {
  DBbase::Init({}, {});
  EXPECT_FALSE(Manager()->Write(W(""), false, W("")));
}

TEST_F(ManagerWrite, UnknownNameMakesNoTemporaryFile) {
  FaultGuard faults;
  EXPECT_FALSE(Manager()->Write(W("NONE"), true, W("")));
  EXPECT_EQ(0, faults.Count(kAllCalls));
}

TEST_F(ManagerWrite, DatabaseThatIsNotOpenIsNotWritten) {
  Configure("STOCK", {"MAIN.db", "USER.UDB"});
  FaultGuard faults;
  EXPECT_FALSE(WriteUserFile());
  EXPECT_EQ(0, faults.Count(kFileCalls));
  EXPECT_EQ("[20000|3|0|Carl]", InFile("USER.UDB"));
}

TEST_F(ManagerWrite, ToUserFileWithoutOneIsFalse) {
  Configure("STOCK", {"MAIN.db"});
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), true, false));
  FaultGuard faults;
  EXPECT_FALSE(WriteUserFile());
  EXPECT_EQ(0, faults.Count(kFileCalls));
}

// Kept: without a name only the first file is meant.
TEST_F(ManagerWrite, WithoutANameWritesTheFirstFile) {
  EXPECT_TRUE(SetText(Table("ARTIKEL"), 0, "NAME", "Anja"));
  EXPECT_TRUE(Manager()->Write(W(""), true, W(Path("OTHER.db"))));
  EXPECT_EQ("[1|1|0|Anja][2|2|0|Bert]", InFile("MAIN.db"));
  EXPECT_FALSE(FileExists("OTHER.db"));
}

// Kept: with a path of its own, a save writes the first file's data.
TEST_F(ManagerWrite, ToAnotherPathWritesTheFirstFilesData) {
  EXPECT_TRUE(SetText(Table("ARTIKEL"), 0, "NAME", "Anja"));
  EXPECT_TRUE(Manager()->Write(W("STOCK"), true, W(Path("OTHER.db"))));
  EXPECT_EQ("[1|1|0|Anja][2|2|0|Bert]", InFile("OTHER.db"));
  EXPECT_EQ("[1|1|0|Anna][2|2|0|Bert]", InFile("MAIN.db"));
  EXPECT_EQ(kAllBefore, Rows("ARTIKEL"));
}

// The index describes the rows of the files, which did not change.
TEST_F(ManagerWrite, ToAnotherPathKeepsTheIndexOfTheFilesRows) {
  EXPECT_TRUE(SetNumber(Table("ARTIKEL"), 0, "STATUS", 1));
  EXPECT_TRUE(WriteUserFile());
  AddArticle(Table("ARTIKEL"), 20001, 4, "Dora");
  EXPECT_TRUE(Manager()->Write(W("STOCK"), false, W(Path("OTHER.db"))));
  EXPECT_EQ("[1][0][0]", Column(Table("ARTIKEL"), "STATUS"));
}

TEST_F(ManagerWrite, DropsWhatIsUnsavedInTheOtherFile) {
  EXPECT_TRUE(SetText(Table("ARTIKEL"), 0, "NAME", "Anja"));
  EXPECT_TRUE(WriteUserFile());
  EXPECT_EQ(kAllBefore, Rows("ARTIKEL"));
}

TEST_F(ManagerWrite, ReadOnlyTargetIsReplacedAndWritableAfterwards) {
  fs::permissions(Path("USER.UDB"), fs::perms::owner_read,
                  fs::perm_options::replace);
  OpenStock(false);
  AddArticle(Table("ARTIKEL"), 20001, 4, "Dora");
  EXPECT_TRUE(WriteUserFile());
  EXPECT_EQ("[20000|3|0|Carl][20001|4|0|Dora]", InFile("USER.UDB"));
  auto const mode = fs::status(Path("USER.UDB")).permissions();
  EXPECT_NE(fs::perms::none, mode & fs::perms::owner_write);
}

TEST_F(ManagerWrite, DatabaseOpenedForReadingCanBeWritten) {
  OpenStock(false);
  AddArticle(Table("ARTIKEL"), 20001, 4, "Dora");
  EXPECT_TRUE(WriteUserFile());
  EXPECT_EQ("[20000|3|0|Carl][20001|4|0|Dora]", InFile("USER.UDB"));
}

TEST_F(ManagerWrite, ReopensEveryDatabaseForWriting) {
  MakeArticles("THIRD.db", 1, {"1|1|0|Zoe"});
  DBbase::Init(
      {W("STOCK"), W("THIRD")},
      {{W(Path("MAIN.db")), W(Path("USER.UDB"))}, {W(Path("THIRD.db"))}});
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), false, false));
  EXPECT_TRUE(WriteUserFile());
  EXPECT_EQ("THIRD", Manager()->GetDirectory()->GetName().toUtf8());
  EXPECT_EQ("[1|1|0|Zoe]", Rows("ARTIKEL"));
  EXPECT_TRUE(Manager()->SelectDB(W("STOCK")));
  EXPECT_TRUE(Manager()->GetDirectory()->FileIsOpen(true, false));
}

TEST_F(ManagerWrite, TableThatCannotBeLoadedForbidsTheSave) {
  DBbase::Init({}, {});  // closes the files
  auto bytes = Bytes("MAIN.db");
  bytes.resize(bytes.size() - 4);
  WriteFileBytes(Path("MAIN.db"), bytes);
  OpenStock();
  EXPECT_FALSE(WriteUserFile());
  EXPECT_EQ("[20000|3|0|Carl]", InFile("USER.UDB"));
}

TEST_F(ManagerWrite, UserRowsOfATableWhoseNameStandsTwiceAreNotLost) {
  DBbase::Init({}, {});
  MakeFile("MAIN.db", {PlainHeader::kCurrent,
                       1000,
                       {{"ARTIKEL", "integer ID,string X\n", {}},
                        {"ARTIKEL", kArticles, {"1|1|0|Anna"}}}});
  OpenStock();
  EXPECT_EQ("[1|1|0|Anna][20000|3|0|Carl]", Rows("ARTIKEL"));
  auto const before = Bytes("USER.UDB");
  EXPECT_FALSE(WriteUserFile());
  EXPECT_EQ(before, Bytes("USER.UDB"));
  OpenStock();
  EXPECT_EQ("[1|1|0|Anna][20000|3|0|Carl]", Rows("ARTIKEL"));
}

TEST_F(ManagerWrite, FileGetsAPartOfEveryTable) {
  DBbase::Init({}, {});  // closes the files
  MakeFile("MAIN.db", {PlainHeader::kCurrent,
                       1000,
                       {{"ARTIKEL", kArticles, {"1|1|0|Anna"}},
                        {"EXTRA", "integer ID\n", {"5"}}}});
  OpenStock();
  EXPECT_FALSE(Table("EXTRA")->NeueZeile(true));
  EXPECT_TRUE(WriteUserFile());
  EXPECT_EQ("", RowsOf(ReadDatabase(Path("USER.UDB")), "EXTRA"));
  EXPECT_TRUE(Table("EXTRA")->NeueZeile(true));
}

// Kept: reading a first file reverses the order of its tables.
TEST_F(ManagerWrite, FirstFileListsItsTablesInOppositeOrder) {
  DBbase::Init({}, {});  // closes the files
  MakeFile("MAIN.db",
           {PlainHeader::kCurrent,
            1000,
            {{"A", "integer ID\n", {"1"}}, {"B", "integer ID\n", {"2", "3"}}}});
  WriteFileBytes(Path("USER.UDB"), {});
  OpenStock();
  EXPECT_TRUE(Manager()->Write(W("STOCK"), false, W("")));
  auto const written = ReadDatabase(Path("MAIN.db"));
  ASSERT_EQ(2U, written.tables.size());
  EXPECT_EQ("B", written.tables[0].name);
  // The index follows: A has one row, B two.
  EXPECT_EQ("[1]", Rows("A"));
  EXPECT_EQ("[2][3]", Rows("B"));
}

// Its tables change their order, and the sections of the index would not.
TEST_F(ManagerWrite, AFirstFileOfSeveralTablesWaitsForAnUnreadIndex) {
  DBbase::Init({}, {});  // closes the files
  fs::remove(Path("STOCK.idx"));
  fs::create_directory(Path("STOCK.idx"));
  OpenStock();
  EXPECT_TRUE(Manager()->Write(W("STOCK"), false, W("")));
  DBbase::Init({}, {});
  MakeFile("MAIN.db",
           {PlainHeader::kCurrent,
            1000,
            {{"A", "integer ID\n", {"1"}}, {"B", "integer ID\n", {"2"}}}});
  auto const before = Bytes("MAIN.db");
  OpenStock();
  EXPECT_FALSE(Manager()->Write(W("STOCK"), false, W("")));
  EXPECT_EQ(before, Bytes("MAIN.db"));
}

TEST_F(ManagerWrite, TimeStampIsTheCurrentSecond) {
  using std::chrono::duration_cast;
  using std::chrono::seconds;
  using std::chrono::system_clock;
  auto const now =
      duration_cast<seconds>(system_clock::now().time_since_epoch()).count();
  EXPECT_TRUE(WriteUserFile());
  auto const stamp = ReadDatabase(Path("USER.UDB")).time_stamp;
  EXPECT_LE(now, stamp);
  EXPECT_GE(now + 60, stamp);
}

TEST_F(ManagerWrite, TimeStampAlwaysGrows) {
  DBbase::Init({}, {});  // closes the files
  MakeArticles("USER.UDB", 4000000000, {"20000|3|0|Carl"});
  OpenStock();
  EXPECT_TRUE(WriteUserFile());
  EXPECT_EQ(4000000001, ReadDatabase(Path("USER.UDB")).time_stamp);
  EXPECT_TRUE(WriteUserFile());
  EXPECT_EQ(4000000002, ReadDatabase(Path("USER.UDB")).time_stamp);
}

TEST_F(ManagerWrite, TimeStampGrowsBeyondThatOfAnotherFileWhosePlaceItTakes) {
  MakeArticles("COPY.db", 4000000000, {});
  EXPECT_TRUE(Manager()->Write(W("STOCK"), false, W(Path("COPY.db"))));
  EXPECT_EQ(4000000001, ReadDatabase(Path("COPY.db")).time_stamp);
}

TEST_F(ManagerWrite, TimeStampGrowsBeyondThatOfAFileThatWasReplacedMeanwhile) {
  DBbase::Init({}, {});  // closes the files
  OpenStock(false);
  MakeArticles("USER.UDB", 4000000000, {"20000|3|0|Carl"});
  EXPECT_TRUE(WriteUserFile());
  EXPECT_EQ(4000000001, ReadDatabase(Path("USER.UDB")).time_stamp);
}

TEST_F(ManagerWrite, AfterTheEndOfTimeStampsTheClockCounts) {
  DBbase::Init({}, {});  // closes the files
  constexpr auto kEndOfTime = std::numeric_limits<std::int64_t>::max();
  MakeArticles("USER.UDB", kEndOfTime, {"20000|3|0|Carl"});
  OpenStock();
  EXPECT_TRUE(WriteUserFile());
  auto const stamp = ReadDatabase(Path("USER.UDB")).time_stamp;
  EXPECT_LT(1000000000, stamp);
  EXPECT_GT(kEndOfTime, stamp);
}

TEST_F(ManagerWrite, LeftoverTrialCopyIsReplaced) {
  WriteFileBytes(Path("USER.UDBT"), {1, 2, 3});
  EXPECT_TRUE(WriteUserFile());
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
}

TEST_F(ManagerWrite, MayBeCalledWithItsOwnName) {
  AddArticle(Table("ARTIKEL"), 20001, 4, "Dora");
  EXPECT_TRUE(
      Manager()->Write(Manager()->GetDirectory()->GetName(), true, zWString()));
}

// Kept: the index written along holds the stamps of before.
TEST_F(ManagerWrite, IndexIsStaleAtTheReopening) {
  static int shown = 0;
  shown = 0;
  zSplashMessage::GetSplashMessage()->SetCallback(
      [](void*, zWString const* text) { shown += text != nullptr ? 1 : 0; },
      nullptr);
  EXPECT_TRUE(WriteUserFile());
  EXPECT_EQ(1, shown);
  // A save under another name changes none of the database's files.
  EXPECT_TRUE(Manager()->Write(W("STOCK"), false, W(Path("COPY.db"))));
  EXPECT_EQ(1, shown);
}

TEST_F(ManagerWrite, DropsWhatIsUnsavedInOtherDatabases) {
  MakeArticles("THIRD.db", 1, {"1|1|0|Zoe"});
  DBbase::Init(
      {W("STOCK"), W("THIRD")},
      {{W(Path("MAIN.db")), W(Path("USER.UDB"))}, {W(Path("THIRD.db"))}});
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), false, false));
  EXPECT_EQ(1, Manager()->Open(W("THIRD"), false, false));
  EXPECT_TRUE(SetText(Table("ARTIKEL"), 0, "NAME", "Zora"));
  EXPECT_TRUE(WriteUserFile());
  EXPECT_EQ("[1|1|0|Zoe]", Rows("ARTIKEL"));
}

// Kept: the file is written, whatever becomes of the other databases.
TEST_F(ManagerWrite, IsTrueThoughAnotherDatabaseDoesNotReopen) {
  DBbase::Init(
      {W("STOCK"), W("NONE")},
      {{W(Path("MAIN.db")), W(Path("USER.UDB"))}, {W(Path("NONE.db"))}});
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), false, false));
  AddArticle(Table("ARTIKEL"), 20001, 4, "Dora");
  EXPECT_TRUE(WriteUserFile());
  EXPECT_EQ("[20000|3|0|Carl][20001|4|0|Dora]", InFile("USER.UDB"));
}

TEST_F(ManagerWrite, DefinitionThatWouldNotReadBackIsRefused) {
  auto* const directory = Manager()->GetDirectory();
  auto const text = "integer " + std::string(64, 'x') + ",integer B\n";
  EXPECT_EQ(1, directory->AddEntry(new DBDefinition(text.c_str()), "BLANK",
                                   W(Path("MAIN.db")), true, 0, 0, 0, 0, 0));
  DBTabelle* table = nullptr;
  ASSERT_TRUE(Manager()->NeueTabelle("BLANK", table));
  EXPECT_FALSE(WriteUserFile());
  EXPECT_EQ("[20000|3|0|Carl]", InFile("USER.UDB"));
}

TEST_F(ManagerWrite, FilesAreOpenAsBeforeAfterAFailedMove) {
  {
    FaultGuard faults;
    faults.FailAt(1, Lasting::kOnce, Only(Call::kReplace));
    EXPECT_FALSE(WriteUserFile());
  }
  auto* const directory = Manager()->GetDirectory();
  EXPECT_NE(nullptr, directory->GetFile(0));
  EXPECT_NE(nullptr, directory->GetFile(1));
  DBDirectory other;
  other.Initialize(W("X"), {W(Path("USER.UDB"))});
  EXPECT_FALSE(other.OpenDBdatei(0, true, false));  // still held for writing
  EXPECT_TRUE(other.OpenDBdatei(0, false, false));
}

class ManagerWriteTemp : protected PrivateTemp, public ManagerWrite {};

// For people who look for what the save was about to write.
TEST_F(ManagerWriteTemp, AFailedSaveLeavesTheNewFileThere) {
  AddArticle(Table("ARTIKEL"), 20001, 4, "Dora");
  for (auto const failing : {Call::kCopy, Call::kReplace}) {
    {
      FaultGuard faults;
      faults.FailAt(1, Lasting::kOnce, Only(failing));
      EXPECT_FALSE(WriteUserFile());
    }
    auto const names = TempFiles();
    ASSERT_EQ(2U, names.size());
    auto const folder = platform::TempFolder().toUtf8();
    auto const whole = ReadFileBytes(folder + names[0]);
    auto const data = ReadFileBytes(folder + names[1]);
    EXPECT_EQ("[20000|3|0|Carl][20001|4|0|Dora]",
              RowsOf(ReadDatabase(folder + names[0]), "ARTIKEL"));
    EXPECT_LT(data.size(), whole.size());
    EXPECT_TRUE(std::equal(data.rbegin(), data.rend(), whole.rbegin()));
    RemoveTempFiles();
  }
}

}  // namespace
}  // namespace tabwerk::test
