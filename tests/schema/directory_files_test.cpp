// Opening and closing the files of a directory.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DBDirectory.h"
#include "platform/platform.h"
#include "schema/directory_access.h"
#include "tests/schema/observers.h"
#include "tests/support/container_bytes.h"
#include "tests/support/fault_platform.h"
#include "tests/support/hex_file.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {
namespace {

using platform::Mode;
using platform::Share;

class DirectoryFiles : public testing::Test {
 protected:
  DirectoryFiles() {
    folder_.WriteBytes("A", FileWith({{"T", 1}}, 1000));
    folder_.WriteBytes("B.UDB", FileWith({{"T", 2}}, 2000));
    Initialize(&directory_, folder_, {"A", "B.UDB"});
  }
  ~DirectoryFiles() override {
    directory_ = DBDirectory();
    EXPECT_EQ(0, OpenStreams());
  }

  // True when somebody else may open the file so.
  bool Allows(std::string const& name, Mode mode, Share share) {
    platform::Error error;
    FILE* const stream =
        platform::OpenFile(folder_.Path(name), mode, share, &error);
    if (stream == nullptr) return false;
    platform::Close(stream);
    return true;
  }
  bool AllowsReading(std::string const& name) {
    return Allows(name, Mode::kRead, Share::kDenyNone);
  }
  bool AllowsWriting(std::string const& name) {
    return Allows(name, Mode::kUpdate, Share::kDenyWriters);
  }

  FileRecord& Record(std::size_t file) {
    return DirectoryAccess::Files(directory_)[file];
  }

  TempFolder folder_;
  DBDirectory directory_;
};

TEST(DirectoryFresh, HasNothing) {
  DBDirectory const directory;
  EXPECT_EQ(u"", directory.GetName().view());
  EXPECT_EQ(0u, directory.GetNumberFiles());
  EXPECT_EQ(nullptr, directory.GetEntries());
  EXPECT_EQ(nullptr, directory.GetAktuelleTabelle());
  EXPECT_EQ(nullptr, directory.Getnextdbdir());
  EXPECT_EQ(-1, directory.GetUserFile());
  EXPECT_TRUE(directory.GetTimeStamps().empty());
  EXPECT_FALSE(directory.FileIsOpen(false, false));
}

TEST(DirectoryFresh, CountsAsOpenWithoutFilesOnceInitialised) {
  DBDirectory directory;
  directory.Initialize(zWString(u"D"), {});
  EXPECT_TRUE(directory.FileIsOpen(false, false));
  EXPECT_TRUE(directory.FileIsOpen(true, true));
}

TEST_F(DirectoryFiles, InitializeMakesClosedRecords) {
  EXPECT_EQ(u"TEST", directory_.GetName().view());
  EXPECT_EQ(2u, directory_.GetNumberFiles());
  EXPECT_EQ(2u, directory_.GetNumberOfFiles());
  EXPECT_EQ(folder_.Path("B.UDB"), directory_.GetFileiName(1));
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(0, directory_.GetFileOpen(i));
    EXPECT_EQ(nullptr, directory_.GetFile(i));
    EXPECT_EQ(0, Record(i).data_start);
  }
  EXPECT_EQ((std::vector<long long>{0, 0}), directory_.GetTimeStamps());
}

TEST_F(DirectoryFiles, AccessorsOfFilesThatDoNotExistGiveNothing) {
  directory_.SetFileName(2, zWString(u"X"));
  directory_.SetFileOpen(2, true);
  directory_.SetFile(2, nullptr);
  EXPECT_EQ(u"", directory_.GetFileiName(2).view());
  EXPECT_EQ(0, directory_.GetFileOpen(2));
  EXPECT_EQ(nullptr, directory_.GetFile(2));
  EXPECT_FALSE(directory_.OpenDBdatei(2, true, true));
  EXPECT_EQ(2u, directory_.GetNumberFiles());
}

TEST_F(DirectoryFiles, PlainAccessors) {
  DBDirectory other;
  EXPECT_EQ(1, directory_.Setnextdbdir(&other));
  EXPECT_EQ(&other, directory_.Getnextdbdir());
  directory_.SetFileName(0, zWString(u"X"));
  EXPECT_EQ(u"X", directory_.GetFileiName(0).view());
  directory_.SetFileOpen(1, true);
  EXPECT_EQ(1, directory_.GetFileOpen(1));
  directory_.SetFileOpen(1, false);
  EXPECT_EQ(0, directory_.GetFileOpen(1));
}

TEST_F(DirectoryFiles, OpenForReadingKeepsNobodyOut) {
  EXPECT_TRUE(directory_.OpenDBdatei(0, false, false));
  EXPECT_EQ(1, directory_.GetFileOpen(0));
  EXPECT_NE(nullptr, directory_.GetFile(0));
  EXPECT_FALSE(Record(0).write);
  EXPECT_FALSE(Record(0).create);
  EXPECT_TRUE(AllowsReading("A"));
  EXPECT_TRUE(AllowsWriting("A"));
  EXPECT_FALSE(Allows("A", Mode::kCreate, Share::kDenyAll));
}

// Without it a file written in the second of the old one would repeat its
// stamp, and an index file of the old one would seem to belong to it.
TEST_F(DirectoryFiles, FileThatIsEmptiedGivesItsTimeStampToTheNextOne) {
  folder_.WriteBytes("A", FileWith({{"T", 1}}, 5000000000));
  EXPECT_TRUE(directory_.OpenDBdatei(0, true, true));
  EXPECT_EQ(5000000001, DirectoryAccess::NextTimeStamp(directory_, 0));
  EXPECT_EQ((std::vector<long long>{0, 0}), directory_.GetTimeStamps());
  // The larger one of the emptied file and the one that was read before.
  Record(0).time_stamp = 6000000000;
  EXPECT_EQ(6000000001, DirectoryAccess::NextTimeStamp(directory_, 0));
}

TEST_F(DirectoryFiles, MissingOrUnreadableFileHasNoTimeStampToGive) {
  folder_.WriteBytes("A", "a text");
  Record(0).replaced_time_stamp = 7000000000;
  EXPECT_TRUE(directory_.OpenDBdatei(0, true, true));
  EXPECT_EQ(0, Record(0).replaced_time_stamp);
  Initialize(&directory_, folder_, {"NEW"});
  EXPECT_TRUE(directory_.OpenDBdatei(0, true, true));
  EXPECT_EQ(0, Record(0).replaced_time_stamp);
  EXPECT_TRUE(folder_.Exists("NEW"));
}

TEST_F(DirectoryFiles, CreateAloneOpensForReading) {
  EXPECT_TRUE(directory_.OpenDBdatei(0, false, true));
  EXPECT_TRUE(Record(0).create);
  EXPECT_EQ("T:1", Tables(directory_));
  EXPECT_TRUE(AllowsWriting("A"));
}

TEST_F(DirectoryFiles, OpenForUpdateKeepsWritersOut) {
  EXPECT_TRUE(directory_.OpenDBdatei(0, true, false));
  EXPECT_TRUE(Record(0).write);
  EXPECT_EQ("T:1", Tables(directory_));
  EXPECT_TRUE(AllowsReading("A"));
  EXPECT_FALSE(AllowsWriting("A"));
  EXPECT_FALSE(Allows("A", Mode::kCreate, Share::kDenyAll));
}

TEST_F(DirectoryFiles, OpenForCreationKeepsEverybodyOutAndReadsNothing) {
  EXPECT_TRUE(directory_.OpenDBdatei(0, true, true));
  EXPECT_EQ(1, directory_.GetFileOpen(0));
  EXPECT_EQ("", Tables(directory_));
  EXPECT_FALSE(AllowsReading("A"));
  EXPECT_FALSE(AllowsWriting("A"));
  directory_.CloseDBdatei();
  EXPECT_EQ("", folder_.ReadBytes("A"));
}

TEST_F(DirectoryFiles, CreationMakesAMissingFile) {
  Initialize(&directory_, folder_, {"NEW"});
  EXPECT_FALSE(directory_.OpenDBdatei(0, false, false));
  EXPECT_FALSE(directory_.OpenDBdatei(0, true, false));
  EXPECT_FALSE(folder_.Exists("NEW"));
  EXPECT_TRUE(directory_.OpenDBdatei(0, true, true));
  EXPECT_TRUE(folder_.Exists("NEW"));
}

TEST_F(DirectoryFiles, RefusedCreationKeepsTheContent) {
  std::string const before = folder_.ReadBytes("A");
  DBDirectory other;
  Initialize(&other, folder_, {"A"});
  ASSERT_TRUE(other.OpenDBdatei(0, false, false));
  EXPECT_FALSE(directory_.OpenDBdatei(0, true, true));
  EXPECT_EQ(0, directory_.GetFileOpen(0));
  EXPECT_EQ(nullptr, directory_.GetFile(0));
  EXPECT_EQ(before, folder_.ReadBytes("A"));
}

TEST_F(DirectoryFiles, SecondUpdateIsRefused) {
  DBDirectory other;
  Initialize(&other, folder_, {"A"});
  ASSERT_TRUE(other.OpenDBdatei(0, true, false));
  EXPECT_FALSE(directory_.OpenDBdatei(0, true, false));
  EXPECT_TRUE(Record(0).write);
  EXPECT_TRUE(directory_.OpenDBdatei(0, false, false));
}

TEST_F(DirectoryFiles, UnreadableDirectoryKeepsTheStreamUntilItIsClosed) {
  folder_.WriteBytes("A", "ver2016nonsense");
  EXPECT_FALSE(directory_.OpenDBdatei(0, true, false));
  EXPECT_EQ(0, directory_.GetFileOpen(0));
  EXPECT_NE(nullptr, directory_.GetFile(0));
  EXPECT_FALSE(AllowsWriting("A"));
  EXPECT_TRUE(directory_.CloseDBdatei());
  EXPECT_TRUE(AllowsWriting("A"));
}

TEST_F(DirectoryFiles, OpeningAgainReleasesTheFormerShareMode) {
  EXPECT_TRUE(directory_.OpenDBdatei(0, true, false));
  EXPECT_TRUE(directory_.OpenDBdatei(0, true, false));
  EXPECT_TRUE(directory_.OpenDBdatei(0, false, false));
  EXPECT_TRUE(AllowsWriting("A"));
  EXPECT_EQ(1, OpenStreams());
}

TEST_F(DirectoryFiles, DataStartAndTimeStampAreRecorded) {
  EXPECT_TRUE(directory_.OpenDBdatei(0, false, false));
  EXPECT_TRUE(directory_.OpenDBdatei(1, true, false));
  EXPECT_EQ((std::vector<long long>{1000, 2000}), directory_.GetTimeStamps());
  auto const size = folder_.ReadBytes("A").size();
  EXPECT_EQ(static_cast<std::int32_t>(size - 4), Record(0).data_start);
}

TEST_F(DirectoryFiles, ClosingReleasesStreamsAndKeepsFlagsAndTables) {
  EXPECT_TRUE(directory_.OpenDBdatei(0, false, false));
  EXPECT_TRUE(directory_.OpenDBdatei(1, true, false));
  EXPECT_TRUE(directory_.CloseDBdatei());
  EXPECT_EQ(nullptr, directory_.GetFile(0));
  EXPECT_EQ(nullptr, directory_.GetFile(1));
  EXPECT_EQ(0, OpenStreams());
  EXPECT_EQ(1, directory_.GetFileOpen(0));
  EXPECT_TRUE(directory_.FileIsOpen(true, false));
  EXPECT_EQ("T:2", Tables(directory_));
  EXPECT_TRUE(directory_.CloseDBdatei());
}

TEST_F(DirectoryFiles, CountsAsOpenWhenEveryFileWasOpened) {
  EXPECT_FALSE(directory_.FileIsOpen(false, false));
  EXPECT_TRUE(directory_.OpenDBdatei(0, false, false));
  EXPECT_FALSE(directory_.FileIsOpen(false, false));
  EXPECT_TRUE(directory_.OpenDBdatei(1, false, false));
  EXPECT_TRUE(directory_.FileIsOpen(false, false));
  EXPECT_TRUE(directory_.FileIsOpen(false, true));
  EXPECT_FALSE(directory_.FileIsOpen(true, false));
  EXPECT_TRUE(directory_.OpenDBdatei(1, true, false));
  EXPECT_TRUE(directory_.FileIsOpen(true, false));
}

TEST_F(DirectoryFiles, LowerCaseUserFileCountsForWritingButIsNotFound) {
  folder_.WriteBytes("c.udb", FileWith({{"T", 1}}));
  Initialize(&directory_, folder_, {"A", "c.udb"});
  EXPECT_TRUE(directory_.OpenDBdatei(0, false, false));
  EXPECT_TRUE(directory_.OpenDBdatei(1, false, false));
  EXPECT_FALSE(directory_.FileIsOpen(true, false));
  EXPECT_TRUE(directory_.OpenDBdatei(1, true, false));
  EXPECT_TRUE(directory_.FileIsOpen(true, false));
  EXPECT_EQ(-1, directory_.GetUserFile());
}

TEST_F(DirectoryFiles, UserFileIsTheFirstThatEndsInUdb) {
  EXPECT_EQ(1, directory_.GetUserFile());
  Initialize(&directory_, folder_,
             {"A.Udb", "A.UDBX", "UDB", "B.UDB", "C.UDB"});
  EXPECT_EQ(3, directory_.GetUserFile());
  directory_.Initialize(zWString(u"D"), {zWString(u".UDB")});
  EXPECT_EQ(0, directory_.GetUserFile());
  directory_.Initialize(zWString(u"D"), {zWString(u""), zWString(u"UDB")});
  EXPECT_EQ(-1, directory_.GetUserFile());
}

TEST_F(DirectoryFiles, CopySharesTablesAndStreams) {
  ASSERT_TRUE(directory_.OpenDBdatei(0, false, false));
  directory_.SelectTabelle("T");
  DBDirectory copy(directory_);
  EXPECT_EQ(directory_.GetEntries(), copy.GetEntries());
  EXPECT_EQ(directory_.GetAktuelleTabelle(), copy.GetAktuelleTabelle());
  EXPECT_EQ(directory_.GetFile(0), copy.GetFile(0));
  EXPECT_EQ(u"TEST", copy.GetName().view());
  EXPECT_TRUE(copy.CloseDBdatei());
  EXPECT_EQ(nullptr, directory_.GetFile(0));
  copy.SetFileOpen(0, false);
  EXPECT_EQ(1, directory_.GetFileOpen(0));
}

TEST_F(DirectoryFiles, WhatIsSharedLivesUntilTheLastCopyIsGone) {
  ASSERT_TRUE(directory_.OpenDBdatei(0, false, false));
  {
    DBDirectory const copy(directory_);
    directory_ = DBDirectory();
    EXPECT_EQ("T:1", Tables(copy));
    EXPECT_NE(nullptr, copy.GetFile(0));
    EXPECT_EQ(1, OpenStreams());
  }
  EXPECT_EQ(0, OpenStreams());
}

TEST_F(DirectoryFiles, ResetOfOneCopyLeavesTheOtherItsTables) {
  ASSERT_TRUE(directory_.OpenDBdatei(0, false, false));
  DBDirectory copy(directory_);
  copy.ResetEntries();
  EXPECT_EQ("", Tables(copy));
  EXPECT_EQ("T:1", Tables(directory_));
}

TEST_F(DirectoryFiles, SelfAssignmentChangesNothing) {
  ASSERT_TRUE(directory_.OpenDBdatei(0, false, false));
  DBDirectory const& same = directory_;
  directory_ = same;
  EXPECT_EQ("T:1", Tables(directory_));
  EXPECT_NE(nullptr, directory_.GetFile(0));
}

TEST_F(DirectoryFiles, SetFileDoesNotCloseTheFormerStream) {
  ASSERT_TRUE(directory_.OpenDBdatei(0, false, false));
  FILE* const former = directory_.GetFile(0);
  directory_.SetFile(0, former);
  EXPECT_EQ(former, directory_.GetFile(0));
  platform::Error error;
  FILE* const other = platform::OpenFile(folder_.Path("B.UDB"), Mode::kRead,
                                         Share::kDenyNone, &error);
  directory_.SetFile(0, other);
  EXPECT_EQ(other, directory_.GetFile(0));
  EXPECT_EQ(2, OpenStreams());
  EXPECT_TRUE(platform::Close(former));
  // The new one is the directory's to close.
  directory_.CloseDBdatei();
  EXPECT_EQ(0, OpenStreams());
  directory_.SetFile(0, nullptr);
  EXPECT_EQ(nullptr, directory_.GetFile(0));
}

TEST_F(DirectoryFiles, ReplacementKeepsTheContentAndEverybodyOut) {
  std::string const before = folder_.ReadBytes("A");
  bool made = true;
  EXPECT_TRUE(DirectoryAccess::OpenForReplacement(directory_, 0, &made));
  EXPECT_FALSE(made);
  EXPECT_EQ(1, directory_.GetFileOpen(0));
  EXPECT_FALSE(AllowsReading("A"));
  EXPECT_EQ((std::vector<long long>{1000, 0}), directory_.GetTimeStamps());
  EXPECT_EQ("", Tables(directory_));
  directory_.CloseDBdatei();
  EXPECT_EQ(before, folder_.ReadBytes("A"));
}

TEST_F(DirectoryFiles, ReplacementMakesAMissingFile) {
  Initialize(&directory_, folder_, {"NEW"});
  bool made = false;
  EXPECT_TRUE(DirectoryAccess::OpenForReplacement(directory_, 0, &made));
  EXPECT_TRUE(made);
  directory_.CloseDBdatei();
  EXPECT_TRUE(folder_.Exists("NEW"));
}

TEST_F(DirectoryFiles, ReplacementNeverTakesAnOldFileForAMadeOne) {
  for (std::int64_t n = 1;; ++n) {
    bool made = true;
    FaultGuard faults;
    faults.FailAt(n);
    static_cast<void>(
        DirectoryAccess::OpenForReplacement(directory_, 0, &made));
    EXPECT_FALSE(made) << n;
    if (!faults.Fired()) break;
  }
}

TEST_F(DirectoryFiles, ReplacementOfAHeldFileFails) {
  DBDirectory other;
  Initialize(&other, folder_, {"A"});
  ASSERT_TRUE(other.OpenDBdatei(0, false, false));
  bool made = true;
  EXPECT_FALSE(DirectoryAccess::OpenForReplacement(directory_, 0, &made));
  EXPECT_FALSE(made);
  EXPECT_EQ(0, directory_.GetFileOpen(0));
}

TEST_F(DirectoryFiles, StreamIsReopenedInItsMode) {
  ASSERT_TRUE(directory_.OpenDBdatei(0, true, false));
  directory_.CloseDBdatei();
  EXPECT_TRUE(DirectoryAccess::ReopenStream(directory_, 0));
  EXPECT_NE(nullptr, directory_.GetFile(0));
  EXPECT_FALSE(AllowsWriting("A"));
  EXPECT_EQ("T:1", Tables(directory_));
  EXPECT_FALSE(DirectoryAccess::ReopenStream(directory_, 2));
}

TEST_F(DirectoryFiles, ReopeningACreatedFileKeepsItsContent) {
  bool made = false;
  ASSERT_TRUE(DirectoryAccess::OpenForReplacement(directory_, 0, &made));
  directory_.CloseDBdatei();
  std::string const before = folder_.ReadBytes("A");
  EXPECT_TRUE(DirectoryAccess::ReopenStream(directory_, 0));
  EXPECT_FALSE(AllowsReading("A"));
  directory_.CloseDBdatei();
  EXPECT_EQ(before, folder_.ReadBytes("A"));
}

// Every call fails once; nothing of the first file's tables may change by it.
TEST_F(DirectoryFiles, FailedCallMakesOpeningFailAndChangesNothing) {
  for (Lasting const lasting : {Lasting::kOnce, Lasting::kForGood}) {
    std::int64_t n = 1;
    for (;; ++n) {
      Initialize(&directory_, folder_, {"A", "B.UDB"});
      directory_.ResetEntries();
      ASSERT_TRUE(directory_.OpenDBdatei(0, false, false));
      FaultGuard faults;
      faults.FailAt(n, lasting);
      bool const opened = directory_.OpenDBdatei(1, true, false);
      bool const fired = faults.Fired();
      directory_.CloseDBdatei();
      if (!fired) {
        EXPECT_TRUE(opened);
        break;
      }
      EXPECT_FALSE(opened) << n;
      EXPECT_EQ(0, directory_.GetFileOpen(1)) << n;
      EXPECT_EQ("1", PartRows(directory_, "T")) << n;
    }
    EXPECT_GT(n, 5);
  }
}

TEST_F(DirectoryFiles, FailedReadNeverHidesTables) {
  std::vector<TableRows> tables;
  for (int i = 0; i < 3000; ++i) tables.push_back({"T" + std::to_string(i)});
  folder_.WriteBytes("A", FileWith(tables));
  std::int64_t n = 1;
  for (;; ++n) {
    directory_.ResetEntries();
    FaultGuard faults;
    faults.FailAt(n, Lasting::kForGood, Only(Call::kRead));
    bool const opened = directory_.OpenDBdatei(0, false, false);
    if (!faults.Fired()) {
      EXPECT_TRUE(opened);
      break;
    }
    EXPECT_FALSE(opened) << n;
    EXPECT_EQ("", Tables(directory_)) << n;
  }
  EXPECT_GT(n, 6);
}

}  // namespace
}  // namespace tabwerk::test
