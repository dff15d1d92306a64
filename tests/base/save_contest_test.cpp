// Saves that meet other saves, other spellings and what is left of dead ones.
#include <gtest/gtest.h>

#include <filesystem>

#include "base/file_lock.h"
#include "tests/support/child_process.h"
#include "tests/support/database_fixture.h"
#include "tests/support/fault_platform.h"

namespace tabwerk::test {
namespace {

namespace fs = std::filesystem;

class SaveContest : public DatabaseTest {
 protected:
  SaveContest() {
    MakeFile("MAIN.db", {PlainHeader::kCurrent,
                         1000,
                         {{"A", kArticles, {"1|1|0|Anna", "2|2|0|Bert"}},
                          {"B", kArticles, {"1|1|0|red", "2|2|0|blue"}}}});
    MakeFile("USER.UDB", {PlainHeader::kCurrent,
                          2000,
                          {{"A", kArticles, {}}, {"B", kArticles, {}}}});
    OpenStock();
  }
  static bool SaveTo(bool user, std::string const& path) {
    return Manager()->Write(W("STOCK"), user, W(path));
  }
};

CHILD_FUNCTION(HoldLock) {
  FileLock const lock(zWString::fromUtf8(args[0]));
  TellParent(lock.IsHeld() ? "held" : "refused");
  AwaitParent();
  return 0;
}

TEST_F(SaveContest, WhileAnotherProgramSavesTheFileIsRefused) {
  ChildProcess other("HoldLock", {Path("USER.UDBL")});
  ASSERT_EQ("held", other.ReadLine());
  EXPECT_FALSE(SaveTo(true, ""));
  other.LetGo();
  EXPECT_EQ(0, other.Wait());
  EXPECT_TRUE(SaveTo(true, ""));
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
}

TEST_F(SaveContest, AKilledProgramDoesNotKeepTheLock) {
  ChildProcess other("HoldLock", {Path("USER.UDBL")});
  ASSERT_EQ("held", other.ReadLine());
  other.Kill();
  EXPECT_TRUE(SaveTo(true, ""));
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
}

TEST_F(SaveContest, TheFirstFileUnderAnotherSpellingKeepsEveryTablesIndex) {
  ASSERT_TRUE(SetNumber(Table("B"), 1, "STATUS", 1));
  ASSERT_TRUE(SaveTo(false, Path("./MAIN.db")));
  EXPECT_EQ("[0][0]", Column(Table("A"), "STATUS"));
  EXPECT_EQ("[0][1]", Column(Table("B"), "STATUS"));
}

TEST_F(SaveContest, TheFirstFileKeepsEveryTablesIndex) {
  ASSERT_TRUE(SetNumber(Table("B"), 1, "STATUS", 1));
  ASSERT_TRUE(SaveTo(false, ""));
  EXPECT_EQ("[0][0]", Column(Table("A"), "STATUS"));
  EXPECT_EQ("[0][1]", Column(Table("B"), "STATUS"));
}

TEST_F(SaveContest, TimeStampsOfTheFilesDiffer) {
  ASSERT_TRUE(SaveTo(false, ""));
  ASSERT_TRUE(SaveTo(true, ""));
  EXPECT_NE(ReadDatabase(Path("MAIN.db")).time_stamp,
            ReadDatabase(Path("USER.UDB")).time_stamp);
}

TEST_F(SaveContest, AReadOnlyTrialCopyIsReplaced) {
  WriteFileBytes(Path("USER.UDBT"), {1, 2, 3});
  fs::permissions(Path("USER.UDBT"), fs::perms::owner_read,
                  fs::perm_options::replace);
  EXPECT_TRUE(SaveTo(true, ""));
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
}

TEST_F(SaveContest, AWaitingIndexThatWasCutShortIsNotTaken) {
  ASSERT_TRUE(SetNumber(Table("A"), 0, "STATUS", 1));
  ASSERT_TRUE(SaveTo(true, ""));
  auto const stamp = ReadDatabase(Path("USER.UDB")).time_stamp;
  WriteFileBytes(Path("STOCK.idx." + std::to_string(stamp)), {'h', 'a', 'l'});
  OpenStock();
  EXPECT_EQ("[1][0]", Column(Table("A"), "STATUS"));
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
}

// Of two saves whose indices could not be moved, the later one counts.
TEST_F(SaveContest, OfTwoWaitingIndicesTheNewerIsTaken) {
  for (bool const first_user : {false, true}) {
    for (bool const user : {first_user, !first_user}) {
      ASSERT_TRUE(SetNumber(Table("A"), 0, "STATUS", user != first_user));
      FaultGuard faults;
      faults.FailAt(2, Lasting::kForGood, Only(Call::kReplace));
      ASSERT_TRUE(SaveTo(user, ""));
    }
    OpenStock();
    EXPECT_EQ("[1][0]", Column(Table("A"), "STATUS"));
    EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
  }
}

TEST_F(SaveContest, LoadsTablesThatWereNotReadYet) {
  Configure("STOCK", {"MAIN.db"});
  ASSERT_EQ(1, Manager()->Open(W("STOCK"), false, true));
  EXPECT_TRUE(SaveTo(false, ""));
  EXPECT_EQ("[1|1|0|Anna][2|2|0|Bert]", Rows("A"));
}

TEST_F(SaveContest, AFailureKeepsTheCurrentTable) {
  Manager()->GetDirectory()->SelectTabelle("A");
  auto* const current = Manager()->GetDirectory()->GetAktuelleTabelle();
  FaultGuard faults;
  faults.FailAt(1, Lasting::kForGood, Only(Call::kCopy));
  EXPECT_FALSE(SaveTo(true, ""));
  EXPECT_EQ(current, Manager()->GetDirectory()->GetAktuelleTabelle());
}

}  // namespace
}  // namespace tabwerk::test
