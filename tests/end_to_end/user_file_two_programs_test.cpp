// Two programs with the same files: one writes, the other reads; both write.
#include <gtest/gtest.h>

#include "tests/end_to_end/story.h"
#include "tests/support/child_process.h"
#include "tests/support/fault_platform.h"

namespace tabwerk::test {
namespace {

// In the child: "MAIN.db" and "USER.UDB" as paths, "write" or "read".
int OpenInChild(Arguments const& args) {
  DBbase::Init({W("STOCK")}, {{W(args[0]), W(args[1])}});
  return DBbase::GetDBBaseInstance()->Open(W("STOCK"), args[2] == "write",
                                           false);
}

bool SaveInChild() {
  return DBbase::GetDBBaseInstance()->Write(W("STOCK"), true, W(""));
}

bool AppendInChild(wchar_t const* name) {
  DBTabelle* table = nullptr;
  RowValues values{{"NAME", name}};
  return DBbase::GetDBBaseInstance()->OpenTabelle("ARTIKEL", table) == 1 &&
         table->SetZeileWerte(values, DBTabelle::ActionAppend);
}

// Opens, waits, appends Emil and saves; the exit code tells what succeeded.
CHILD_FUNCTION(AppendAndSave) {
  TellParent(OpenInChild(args) == 1 ? "open" : "refused");
  AwaitParent();
  if (!AppendInChild(L"Emil")) return 1;
  return SaveInChild() ? 0 : 2;
}

// Opens and waits.
CHILD_FUNCTION(HoldOpen) {
  TellParent(OpenInChild(args) == 1 ? "open" : "refused");
  AwaitParent();
  return 0;
}

// Dies in a save: at the move of the file (1) or of its index (2).
CHILD_FUNCTION(DieInSave) {
  if (OpenInChild(args) != 1 || !AppendInChild(L"Emil")) return 1;
  DBTabelle* table = nullptr;
  DBbase::GetDBBaseInstance()->OpenTabelle("ARTIKEL", table);
  table->SelectColumn("STATUS");
  if (table->SelectZeile("ID", 2L) != 1 || table->SetWert(1L) != 1) return 1;
  FaultGuard faults;
  faults.KillAt(std::stoi(args[3]), Only(Call::kReplace));
  return SaveInChild() ? 0 : 2;
}

class TwoPrograms : public StoryTest {
 protected:
  TwoPrograms() {
    Install();
    EXPECT_TRUE(Append(L"Dora"));
    EXPECT_TRUE(Save());
    End();
  }
  Arguments ForChild(std::string const& how,
                     std::string const& more = "") const {
    Arguments args{Path("MAIN.db"), Path("USER.UDB"), how};
    if (!more.empty()) args.push_back(more);
    return args;
  }
  int Open(bool for_write) const {
    Configure("STOCK", {"MAIN.db", "USER.UDB"});
    return Manager()->Open(W("STOCK"), for_write, false);
  }

  static constexpr char kAll[] =
      "[1|1|0|Anna][2|2|0|Bert][3|3|0|Carl][20000|4|0|Dora]";
  static constexpr char kWithEmil[] =
      "[1|1|0|Anna][2|2|0|Bert][3|3|0|Carl][20000|4|0|Dora][20001|5|0|Emil]";
};

TEST_F(TwoPrograms, WhileOneWritesTheOtherReads) {
  ChildProcess writer("HoldOpen", ForChild("write"));
  EXPECT_EQ("open", writer.ReadLine());
  EXPECT_EQ(1, Open(false));
  EXPECT_EQ(kAll, Rows("ARTIKEL"));
  EXPECT_EQ(-1, IndexResult());
}

TEST_F(TwoPrograms, SecondOneIsRefusedForWriting) {
  ChildProcess writer("HoldOpen", ForChild("write"));
  EXPECT_EQ("open", writer.ReadLine());
  EXPECT_EQ(0, Open(true));
  EXPECT_FALSE(Manager()->SelectDB(W("STOCK")));
  EXPECT_EQ(1, Open(false));
  EXPECT_EQ(kAll, Rows("ARTIKEL"));
  writer.LetGo();
  EXPECT_EQ(0, writer.Wait());
  EXPECT_EQ(1, Open(true));
}

TEST_F(TwoPrograms, KilledWriterFreesTheFile) {
  ChildProcess writer("HoldOpen", ForChild("write"));
  EXPECT_EQ("open", writer.ReadLine());
  writer.Kill();
  writer.Wait();
  EXPECT_EQ(1, Open(true));
  EXPECT_EQ(kAll, Rows("ARTIKEL"));
}

TEST_F(TwoPrograms, WriterSavesWhileTheOtherHasItOpenForReading) {
  EXPECT_EQ(1, Open(false));
  ChildProcess writer("AppendAndSave", ForChild("write"));
  EXPECT_EQ("open", writer.ReadLine());
  writer.LetGo();
  EXPECT_EQ(0, writer.Wait());
  // The reader's tables are in memory; it sees the new row once it reopens.
  EXPECT_EQ(kAll, Rows("ARTIKEL"));
  EXPECT_EQ(1, Open(false));
  EXPECT_EQ(kWithEmil, Rows("ARTIKEL"));
}

// The reader can save its tables, too, but not past an open writer.
TEST_F(TwoPrograms, ReaderCannotSaveWhileTheWriterHasItOpen) {
  EXPECT_EQ(1, Open(false));
  EXPECT_TRUE(Append(L"Emil"));
  auto const user_file = Bytes("USER.UDB");
  auto const index = Bytes("STOCK.idx");
  ChildProcess writer("HoldOpen", ForChild("write"));
  EXPECT_EQ("open", writer.ReadLine());
  EXPECT_FALSE(Save());
  EXPECT_EQ(kWithEmil, Rows("ARTIKEL"));
  EXPECT_TRUE(user_file == Bytes("USER.UDB"));
  EXPECT_TRUE(index == Bytes("STOCK.idx"));
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
  writer.LetGo();
  EXPECT_EQ(0, writer.Wait());
  EXPECT_TRUE(Save());
  EXPECT_EQ("[20000|4|0|Dora][20001|5|0|Emil]", OnDisk("USER.UDB"));
}

// Kept: tables that were opened for reading can be saved, so the later save
// replaces the earlier one.  Opening for writing is what keeps others out.
TEST_F(TwoPrograms, OfTwoReadersTheLaterSaveWins) {
  ChildProcess other("AppendAndSave", ForChild("read"));
  EXPECT_EQ("open", other.ReadLine());
  EXPECT_EQ(1, Open(false));
  EXPECT_TRUE(Append(L"Fritz"));
  EXPECT_TRUE(Save());
  End();
  other.LetGo();
  EXPECT_EQ(0, other.Wait());
  EXPECT_EQ("[20000|4|0|Dora][20001|5|0|Emil]", OnDisk("USER.UDB"));
}

TEST_F(TwoPrograms, WriterThatSavedStillKeepsOthersOut) {
  EXPECT_EQ(1, Open(true));
  EXPECT_TRUE(Save());
  ChildProcess other("HoldOpen", ForChild("write"));
  EXPECT_EQ("refused", other.ReadLine());
}

// --- A program that ends in the middle of a save
// ---------------------------------

TEST_F(TwoPrograms, KilledBeforeTheMoveItLeavesTheOldFile) {
  ChildProcess writer("DieInSave", ForChild("write", "1"));
  EXPECT_EQ(kKilledExitCode, writer.Wait());
  EXPECT_EQ(1, Open(true));
  EXPECT_EQ(kAll, Rows("ARTIKEL"));
  EXPECT_TRUE(Append(L"Emil"));
  EXPECT_TRUE(Save());
  EXPECT_EQ(kWithEmil, Rows("ARTIKEL"));
}

TEST_F(TwoPrograms, KilledBehindTheMoveItLeavesTheNewFileWithItsIndex) {
  ChildProcess writer("DieInSave", ForChild("write", "2"));
  EXPECT_EQ(kKilledExitCode, writer.Wait());
  EXPECT_EQ(1, Open(true));
  EXPECT_EQ("[Anna][Bert][Carl][Dora][Emil]", Column(Table("ARTIKEL"), "NAME"));
  EXPECT_EQ("[0][1][0][0][0]", Column(Table("ARTIKEL"), "STATUS"));
  EXPECT_EQ("Anna Carl Dora Emil", InOrder());
  EXPECT_TRUE(Save());
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
}

}  // namespace
}  // namespace tabwerk::test
