// --dry-run, --backup and standard input, in the commands that write.
#include "tests/cli/tool_test.h"

namespace tabwerk::test {
namespace {

class ToolWriting : public ToolTest {
 protected:
  ToolWriting() {
    MakeStock();
    MakeUnits("rows.txt", "0;0;0;Rivet;0.1\n0;0;0;too few\n");
  }
  ToolRun Import(std::vector<std::string> const& more) const {
    std::vector<std::string> arguments = {"import",    "rows.txt", "stock.db",
                                          "STOCK.UDB", "-t",       "ARTICLE"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Run(arguments);
  }
  void MakeIndex() const {
    auto const index = EncodeIndex(
        {{1000, 2000},
         {{{}, {-1}, {}},
          {{{1, 0}, {2, 1}, {20000, 2}}, {-1, 2, 1, 0}, {0, 0, 1}}}});
    folder_.Make("STOCK.idx", std::string(index.begin(), index.end()));
  }
  void MakeScript() const {
    folder_.Make("stock.script",
                 "NEWDATABASE stock stock.db\nNEWTABLE T\nID integer\nENDDEF\n"
                 "TABLEDATA T t.txt\n");
    MakeUnits("t.txt", "1\n2\n");
  }
};

TEST_F(ToolWriting, DryImportSaysTheSameAndChangesNothing) {
  MakeIndex();
  std::string const before = Snapshot();
  auto const dry = Import({"--dry-run"});
  EXPECT_EQ(
      "rows.txt: 1 row added to ARTICLE in STOCK.UDB, 1 line rejected to "
      "rows.txt.rejected (dry run: nothing was changed)\n",
      dry.out);
  EXPECT_EQ(6, dry.exit_code);
  EXPECT_EQ(before, Snapshot());
  auto const real = Import({});
  EXPECT_EQ(real.err, dry.err);
  EXPECT_EQ(6, real.exit_code);
  EXPECT_NE(before, Snapshot());
}

TEST_F(ToolWriting, DryImportMakesNoUserFile) {
  std::filesystem::remove(folder_.folder() / "STOCK.UDB");
  std::string const before = Snapshot();
  EXPECT_NE(std::string::npos, Import({"--dry-run"}).out.find("(new)"));
  EXPECT_EQ(before, Snapshot());
}

TEST_F(ToolWriting, DryImportSaysWhatStandsInTheWay) {
  folder_.SetReadOnly("STOCK.UDB", true);
  auto const run = Import({"--dry-run"});
  EXPECT_EQ(
      "STOCK.UDB: error[TW113]: the file is read-only; make it writable "
      "first\n",
      run.err);
  EXPECT_EQ(3, run.exit_code);
  folder_.SetReadOnly("STOCK.UDB", false);
}

TEST_F(ToolWriting, BackupHoldsDatabaseUserFileAndIndex) {
  MakeIndex();
  folder_.Make("STOCK.idx.2001", "waits");
  folder_.Make("STOCK.UDB.bak", "of an earlier day");
  std::string const main_file = folder_.Content("stock.db");
  std::string const user_file = folder_.Content("STOCK.UDB");
  std::string const index = folder_.Content("STOCK.idx");
  auto const run = Import({"--backup"});
  EXPECT_EQ(6, run.exit_code) << run.err;
  EXPECT_NE(std::string::npos, run.out.find("(backup: stock.db.bak2, "))
      << run.out;
  EXPECT_EQ("of an earlier day", folder_.Content("STOCK.UDB.bak"));
  EXPECT_EQ(main_file, folder_.Content("stock.db.bak2"));
  EXPECT_EQ(user_file, folder_.Content("STOCK.UDB.bak2"));
  EXPECT_EQ(index, folder_.Content("STOCK.idx.bak2"));
  EXPECT_EQ("waits", folder_.Content("STOCK.idx.2001.bak2"));
  EXPECT_NE(user_file, folder_.Content("STOCK.UDB"));
  EXPECT_NE(index, folder_.Content("STOCK.idx"));
}

// The copies and nothing else bring back order and status of shipped rows.
TEST_F(ToolWriting, BackupBringsOrderAndStatusBack) {
  MakeIndex();
  auto const rows = [this] {
    return Run({"show", "stock.db", "STOCK.UDB", "-t", "ARTICLE"}).out;
  };
  std::string const before = rows();
  EXPECT_EQ(6, Import({"--backup"}).exit_code);
  EXPECT_NE(before, rows());
  for (std::string const name : {"STOCK.UDB", "STOCK.idx"}) {
    folder_.Make(name, folder_.Content(name + ".bak"));
  }
  EXPECT_EQ(before, rows());
}

TEST_F(ToolWriting, QuietImportSaysNothing) {
  auto const run = Import({"-q"});
  EXPECT_EQ("", run.out + run.err);
  EXPECT_EQ(6, run.exit_code);
}

TEST_F(ToolWriting, ImportTakesStandardInputByteForByte) {
  std::string input("\xFF\xFE", 2);
  // U+0A0D and U+1A0A: bytes that text streams of some systems eat.
  for (char16_t const unit : std::u16string(u"0;0;0;\u0A0D\u1A0A;1\r\n")) {
    input += static_cast<char>(unit & 0xFF);
    input += static_cast<char>(unit >> 8);
  }
  auto const run = RunWith(
      {{"import", "-", "stock.db", "STOCK.UDB", "-t", "ARTICLE"}, input, {}});
  EXPECT_EQ("standard-input: 1 row added to ARTICLE in STOCK.UDB\n", run.out);
  EXPECT_EQ(0, run.exit_code) << run.err;
  EXPECT_EQ("[20000|3|0|Washer|0.5][20001|4|0|\u0A0D\u1A0A|1]",
            Rows("STOCK.UDB", "ARTICLE"));
}

TEST_F(ToolWriting, RejectedLinesAloneGoToStandardOutput) {
  auto const run = RunWith({{"import", "-", "stock.db", "STOCK.UDB", "-t",
                             "ARTICLE", "--from", "csv", "--rejected", "-"},
                            "NAME,PRICE\nRivet,1\nScrew,much\n",
                            {}});
  EXPECT_EQ("NAME,PRICE\nScrew,much\n", run.out);
  EXPECT_NE(std::string::npos,
            run.err.find("standard-input: 1 row added to ARTICLE in STOCK.UDB, "
                         "1 row rejected to standard output\n"))
      << run.err;
  EXPECT_EQ(6, run.exit_code);
}

TEST_F(ToolWriting, RejectedLinesGoToTheNamedFile) {
  EXPECT_EQ(6, Import({"--rejected", "bad.txt"}).exit_code);
  EXPECT_FALSE(folder_.Exists("rows.txt.rejected"));
  EXPECT_TRUE(folder_.Exists("bad.txt"));
}

TEST_F(ToolWriting, DryBuildSaysTheSameAndChangesNothing) {
  MakeScript();
  folder_.Make("stock.db.dry-run", "the user's own");
  std::string const before = Snapshot();
  auto const run = Run({"build", "stock.script", "--dry-run"});
  EXPECT_EQ(
      "stock.db: built with 1 table, 2 rows (dry run: nothing was changed)\n"
      "  T: 2 rows\n",
      run.out);
  EXPECT_EQ("", run.err);
  EXPECT_EQ(0, run.exit_code);
  EXPECT_EQ(before, Snapshot());
}

TEST_F(ToolWriting, DryBuildSaysWhatStandsInTheWay) {
  MakeScript();
  folder_.SetReadOnly("stock.db", true);
  auto const run = Run({"build", "stock.script", "--dry-run"});
  EXPECT_EQ(0U, run.err.find("stock.script:1:19: error[TW113]: stock.db: "))
      << run.err;
  EXPECT_EQ(3, run.exit_code);
  folder_.SetReadOnly("stock.db", false);
}

TEST_F(ToolWriting, BuildKeepsTheDatabaseThatWasThere) {
  MakeScript();
  std::string const before = folder_.Content("stock.db");
  auto const run = Run({"build", "stock.script", "--backup"});
  EXPECT_EQ(
      "stock.db: built with 1 table, 2 rows (backup: stock.db.bak)\n"
      "  T: 2 rows\n",
      run.out);
  EXPECT_EQ(before, folder_.Content("stock.db.bak"));
  EXPECT_NE(before, folder_.Content("stock.db"));
}

}  // namespace
}  // namespace tabwerk::test
