#include "tests/cli/expected.h"
#include "tests/cli/tool_test.h"
#include "tests/support/hex_file.h"

namespace tabwerk::test {
namespace {

class ToolConvert : public ToolTest {};

TEST_F(ToolConvert, BringsEveryFormIntoTheCurrentOne) {
  for (std::string const name :
       {"headerless_2014", "version_2016", "version_2018", "current_2025"}) {
    folder_.Make("old.db", HexFile(name));
    std::string const old = folder_.ReadBytes("old.db");
    std::string const table =
        DecodeDatabase({old.begin(), old.end()})->tables.front().name;
    std::string const rows = Rows("old.db", table);
    auto const run = Run({"convert", "old.db", "-o", "new.db"});
    EXPECT_EQ(0, run.exit_code) << run.err;
    EXPECT_EQ(0U, run.out.find("old.db: converted to new.db\n  form    " +
                               name.substr(name.size() - 4)))
        << run.out;
    EXPECT_NE(std::string::npos, run.out.find(" -> 2025 with time\n"));
    EXPECT_EQ(rows, Rows("new.db", table));
    EXPECT_EQ(old, folder_.ReadBytes("old.db"));
    EXPECT_EQ(0, Run({"export", "new.db", "-d", name}).exit_code);
    auto const built = Run({"build", "new.script", "-C", name});
    EXPECT_EQ(0, built.exit_code) << built.err;
    EXPECT_EQ(WithoutStamp(folder_.ReadBytes("new.db")),
              WithoutStamp(folder_.ReadBytes(name + "/new.db")));
    std::filesystem::remove(folder_.folder() / "new.db");
  }
}

TEST_F(ToolConvert, ReplacesAFileOnlyWithABackup) {
  folder_.Make("stock.db", HexFile("version_2016"));
  std::string const old = folder_.ReadBytes("stock.db");
  auto const refused = RunToLook({"convert", "stock.db"});
  EXPECT_NE(std::string::npos, refused.err.find("error[TW157]"));
  EXPECT_EQ(2, refused.exit_code);
  auto const run = Run({"convert", "stock.db", "--backup"});
  EXPECT_EQ(0, run.exit_code) << run.err;
  EXPECT_EQ(
      0U, run.out.find("stock.db: converted (backup: stock.db.bak)\n  form    "
                       "2016 -> 2025 with time\n"))
      << run.out;
  EXPECT_EQ(old, folder_.ReadBytes("stock.db.bak"));
  EXPECT_EQ("ver2025", folder_.ReadBytes("stock.db").substr(0, 7));
}

TEST_F(ToolConvert, DryRunChangesNothing) {
  folder_.Make("stock.db", HexFile("headerless_2014"));
  std::string const before = Snapshot();
  auto const run = Run({"convert", "stock.db", "--dry-run"});
  EXPECT_EQ(0, run.exit_code) << run.err;
  EXPECT_NE(std::string::npos, run.out.find("(dry run: nothing was changed)"));
  EXPECT_NE(std::string::npos, run.out.find("2014 (no header) -> 2025"));
  EXPECT_EQ(before, Snapshot());
}

TEST_F(ToolConvert, TakesTheFormOfAUserFileAsWell) {
  MakeStock();
  std::string const rows = Rows("STOCK.UDB", "ARTICLE");
  EXPECT_EQ(0, Run({"convert", "STOCK.UDB", "--backup"}).exit_code);
  EXPECT_EQ(rows, Rows("STOCK.UDB", "ARTICLE"));
  EXPECT_FALSE(folder_.Exists("STOCK.idx"));
}

// The index was left out, which holds order and status of shipped rows.
TEST_F(ToolConvert, BackupHoldsTheIndexOfAUserFile) {
  MakeStock();
  EXPECT_EQ(0, Run({"move", "stock.db", "STOCK.UDB", "-t", "ARTICLE", "--id",
                    "20000", "--first"})
                   .exit_code);
  folder_.Make("STOCK.idx.2001", "waits");
  std::string const user_file = folder_.Content("STOCK.UDB");
  std::string const index = folder_.Content("STOCK.idx");
  auto const run = Run({"convert", "STOCK.UDB", "--backup"});
  EXPECT_EQ(0U, run.out.find("STOCK.UDB: converted (backup: STOCK.UDB.bak, "))
      << run.out << run.err;
  EXPECT_EQ(user_file, folder_.Content("STOCK.UDB.bak"));
  EXPECT_EQ(index, folder_.Content("STOCK.idx.bak"));
  EXPECT_EQ("waits", folder_.Content("STOCK.idx.2001.bak"));
  std::filesystem::remove(folder_.folder() / "STOCK.idx.2001");
  // The order stays.
  EXPECT_EQ("ID\n20000\n1\n2\n",
            Run({"show", "stock.db", "STOCK.UDB", "ARTICLE", "--order", "folge",
                 "--columns", "ID"})
                .out);
}

TEST_F(ToolConvert, NameSaysHowTheIndexIsCalled) {
  MakeUserFile();
  folder_.Make("PARTS.idx", "index");
  EXPECT_EQ(
      0,
      Run({"convert", "STOCK.UDB", "--backup", "--name", "parts"}).exit_code);
  EXPECT_EQ("index", folder_.Content("PARTS.idx.bak"));
}

// A file was made that is called "-".
TEST_F(ToolConvert, WritesToStandardOutput) {
  // Bytes that streams of text change.
  MakeDatabase("stock.db",
               {PlainHeader::k2018, 0, {{"T", "integer ID\n", {"168626701"}}}});
  auto const run = RunToLook({"convert", "stock.db", "-o", "-"});
  EXPECT_EQ(0, run.exit_code);
  EXPECT_EQ(0U, run.err.find("stock.db: converted to standard output\n"))
      << run.err;
  EXPECT_NE(std::string::npos, run.out.find("\r\n\r\n"));
  EXPECT_EQ(0, Run({"convert", "stock.db", "-o", "new.db"}).exit_code);
  EXPECT_EQ(folder_.ReadBytes("new.db").substr(19), run.out.substr(19));
  auto const dry = RunToLook({"convert", "stock.db", "-o", "-", "--dry-run"});
  EXPECT_EQ("", dry.out);
  EXPECT_EQ(0, dry.exit_code) << dry.err;
}

#ifndef _WIN32

TEST_F(ToolConvert, WritesToNoTerminal) {
  MakeMainFile();
  auto const run = RunToolOnTerminal(folder_.folder(),
                                     {"convert", "stock.db", "-o", "-"}, 80);
  EXPECT_EQ(0U, run.out.find("stock.db: error[TW157]: a terminal takes no "
                             "database"))
      << run.out;
  EXPECT_EQ(2, run.exit_code);
}

#endif

TEST_F(ToolConvert, RefusesATargetThatIsThere) {
  MakeStock();
  folder_.Make("other.txt", "mine");
  for (std::string const target : {"STOCK.UDB", "other.txt", "stock.db"}) {
    auto const run = RunToLook({"convert", "stock.db", "-o", target});
    EXPECT_EQ(0U, run.err.find(target + ": error[TW158]")) << run.err;
    EXPECT_EQ(2, run.exit_code);
  }
}

TEST_F(ToolConvert, RefusesDamagedFiles) {
  MakeMainFile();
  std::string const whole = folder_.ReadBytes("stock.db");
  for (std::size_t size = 0; size < whole.size(); size += 17) {
    folder_.Make("stock.db", whole.substr(0, size));
    auto const run = RunToLook({"convert", "stock.db", "-o", "new.db"});
    EXPECT_LE(3, run.exit_code) << size << run.out;
    EXPECT_GE(4, run.exit_code) << size << run.err;
  }
}

TEST_F(ToolConvert, RefusesATextThatCannotBeSaved) {
  MakeDatabase(
      "stock.db",
      {PlainHeader::k2018,
       0,
       {{"T",
         "integer ID,string NAME\n",
         {"1|" + std::string(8095, 'x'), "2|" + std::string(8096, 'x')}}}});
  auto const run = RunToLook({"convert", "stock.db", "-o", "new.db"});
  EXPECT_EQ(
      "stock.db: error[TW624]: table T, row 1, column NAME: the text has 8096 "
      "characters, over 8095; shorten it with the program that wrote it\n",
      run.err);
  EXPECT_EQ(6, run.exit_code);
}

TEST_F(ToolConvert, CarriesColumnsOfOneName) {
  PlainTable const table{"T",
                         "integer ID,integer NAME,string NAME,string NAME\n",
                         {"1|7|Anna|Berta", "2|8|Carl|Dora"}};
  MakeDatabase("old.db", {PlainHeader::k2018, 0, {table}});
  auto const run = Run({"convert", "old.db", "-o", "new.db"});
  EXPECT_EQ("", run.err);
  EXPECT_EQ(0, run.exit_code);
  EXPECT_EQ("[1|7|Anna|Berta][2|8|Carl|Dora]", Rows("new.db", "T"));
}

TEST_F(ToolConvert, RefusesALongTextInTheSecondColumnOfAName) {
  MakeDatabase(
      "old.db",
      {PlainHeader::k2018,
       0,
       {{"T", "string NAME,string NAME\n", {"x|" + std::string(8096, 'y')}}}});
  auto const run = RunToLook({"convert", "old.db", "-o", "new.db"});
  EXPECT_EQ(0U, run.err.find("old.db: error[TW624]: table T, row 0, column "
                             "NAME: the text has 8096 "))
      << run.err;
}

TEST_F(ToolConvert, TellsOfATypeThatItDoesNotKnow) {
  MakeDatabase("old.db",
               {PlainHeader::k2018, 0, {{"T", "integer ID,date DAY\n", {}}}});
  auto const run = Run({"convert", "old.db", "-o", "new.db"});
  EXPECT_EQ(
      "old.db:@12: warning[TW328]: table T, column DAY: its type is not known "
      "and becomes \"unknown\"; it holds no value, before and after\n",
      run.err);
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolConvert, RefusesWithThePlaceWhatWouldBeLost) {
  PlainTable const table{"T", "integer ID\n", {"1", "2"}};
  auto const refusal = [this](PlainDatabase const& database) {
    MakeDatabase("old.db", database);
    auto const run = RunToLook({"convert", "old.db", "-o", "new.db"});
    EXPECT_EQ(1, run.exit_code);
    return run.err.substr(0, run.err.find(';'));
  };
  EXPECT_EQ(
      "old.db:@51: error[TW323]: table T: an earlier table has the same name, "
      "so that one of them would be lost",
      refusal({PlainHeader::k2018, 0, {table, table}}));
  EXPECT_EQ(
      "old.db:@12: error[TW329]: table T: its definition cannot be written as "
      "it was read (a name of 64 characters or more?)",
      refusal({PlainHeader::k2018,
               0,
               {{"T", "integer " + std::string(64, 'N') + "\n", {"1"}}}}));
}

TEST_F(ToolConvert, RefusesToDropBytesOfAColumnWithoutAType) {
  // Four bytes for each of its values.
  MakeDatabase("old.db", {PlainHeader::k2018,
                          0,
                          {{"T", "integer ID,date DAY\n", {"1|2", "3|4"}}}});
  auto const run = RunToLook({"convert", "old.db", "-o", "new.db"});
  EXPECT_EQ(0U, run.err.find("old.db:@77: error[TW342]: table T: 8 bytes of "
                             "the row block stand behind its last row, and "
                             "would be lost; "))
      << run.err;
  EXPECT_EQ(1, run.exit_code);
}

}  // namespace
}  // namespace tabwerk::test
