// tabwerk import.
#include "DBDirectory.h"
#include "tests/cli/tool_test.h"
#include "ztypes.h"

namespace tabwerk::test {
namespace {

class ToolImport : public ToolTest {
 protected:
  ToolRun Import(std::string const& separator = ";") const {
    return Run({"import", "rows.txt", "stock.db", "STOCK.UDB", "-t", "ARTICLE",
                "--separator", separator});
  }
  // "rejected" file as UTF-8, with "~" for the byte-order mark.
  std::string Rejected() const {
    std::string const bytes = folder_.Content("rows.txt.rejected");
    std::u16string units;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
      units +=
          static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                static_cast<unsigned char>(bytes[i + 1]) << 8);
    }
    if (units.starts_with(u'\xFEFF')) units[0] = u'~';
    return zWString(units).toUtf8();
  }
};

TEST_F(ToolImport, AppendsRowsToTheUserFile) {
  MakeStock();
  std::string const main_file = folder_.Content("stock.db");
  MakeUnits("rows.txt", "0;0;0;Größe;1,5\r\n0;0;0;#TS(A¬B)TS~;\"2,5\"\r\n");
  auto const run = Import();
  EXPECT_EQ("rows.txt: 2 rows added to ARTICLE in STOCK.UDB\n", run.out);
  EXPECT_EQ("", run.err);
  EXPECT_EQ(0, run.exit_code);
  EXPECT_EQ(
      "[20000|3|0|Washer|0.5][20001|4|0|Größe|1.5]"
      "[20002|5|0|#TS(A¬B)TS~|2.5]",
      Rows("STOCK.UDB", "ARTICLE"));
  EXPECT_EQ(main_file, folder_.Content("stock.db"));
  EXPECT_EQ((std::vector<std::string>{"STOCK.UDB", "STOCK.idx", "rows.txt",
                                      "stock.db"}),
            folder_.Names());
}

TEST_F(ToolImport, MakesAMissingUserFile) {
  MakeMainFile();
  MakeUnits("rows.txt", "0;0;0;Rivet;0.1\n");
  auto const run = Import();
  EXPECT_EQ("rows.txt: 1 row added to ARTICLE in STOCK.UDB (new)\n", run.out);
  EXPECT_EQ(0, run.exit_code) << run.err;
  EXPECT_EQ("[20000|3|0|Rivet|0.1]", Rows("STOCK.UDB", "ARTICLE"));
  EXPECT_EQ("", Rows("STOCK.UDB", "EMPTY"));
  EXPECT_EQ(0,
            Run({"show", "stock.db", "STOCK.UDB", "-t", "ARTICLE"}).exit_code);
}

TEST_F(ToolImport, SetsRejectedLinesAsideVerbatim) {
  MakeStock();
  MakeUnits("rows.txt",
            "0;0;0;Rivet;0.1\r\n"
            "0;0;0;too few\r\n"
            "\r\n"
            "0;0;0;Anna;1;too many\r\n"
            "0;0;0;Bert;1.234,5\r\n"
            "0;0;0;empty price;\r\n"
            "0;0;0;Carl;x");
  auto const run = Import();
  EXPECT_EQ(
      "rows.txt: 2 rows added to ARTICLE in STOCK.UDB, 4 lines rejected to "
      "rows.txt.rejected\n",
      run.out);
  EXPECT_EQ(
      "rows.txt:2: warning[TW603]: 4 values for 5 columns; the line is "
      "rejected\n"
      "    2 | 0;0;0;too few\n"
      "rows.txt:4:14: warning[TW603]: 6 values for 5 columns; the line is "
      "rejected\n"
      "    4 | 0;0;0;Anna;1;too many\n"
      "      |              ^~~~~~~~\n"
      "rows.txt:5:12: warning[TW605]: \"1.234,5\" is no number for column "
      "PRICE; the line is rejected\n"
      "    5 | 0;0;0;Bert;1.234,5\n"
      "      |            ^~~~~~~\n"
      "rows.txt:7:12: warning[TW605]: \"x\" is no number for column PRICE; the "
      "line is rejected\n"
      "    7 | 0;0;0;Carl;x\n"
      "      |            ^\n",
      run.err);
  EXPECT_EQ(6, run.exit_code);
  EXPECT_EQ(
      "~0;0;0;too few\r\n0;0;0;Anna;1;too many\r\n0;0;0;Bert;1.234,5\r\n"
      "0;0;0;Carl;x",
      Rejected());
  EXPECT_EQ(
      "[20000|3|0|Washer|0.5][20001|4|0|Rivet|0.1][20002|5|0|empty price|0]",
      Rows("STOCK.UDB", "ARTICLE"));
}

// Characters, where the library counts in units and skips blanks.
TEST_F(ToolImport, ShowsWhereInALineAValueDoesNotFit) {
  MakeStock();
  MakeUnits("rows.txt", "  0; 0;0;\U0001F600 Größe; 1x;\n", false);
  EXPECT_EQ(
      "rows.txt:1:19: warning[TW605]: \"1x\" is no number for column PRICE; "
      "the line is rejected\n"
      "    1 |   0; 0;0;\U0001F600 Größe; 1x;\n"
      "      |                    ^~\n",
      Import().err);
  MakeUnits("rows.txt", std::string("0;0;0;An\0na;1\n", 14), false);
  EXPECT_EQ(0U, Import().err.find("rows.txt:1:9: warning[TW602]: there is a "
                                  "NUL character in it; the line is "))
      << Import().err;
}

TEST_F(ToolImport, RejectsALineThatTheLibraryWouldReadInPieces) {
  MakeStock();
  MakeUnits("rows.txt",
            "0;0;0;" + std::string(4086, 'x') + ";1\n" + "0;0;0;" +
                std::string(4087, 'y') + ";1\n",
            false);
  auto const run = Import();
  EXPECT_EQ(
      "rows.txt:2: warning[TW601]: the line is longer than 4094 characters; "
      "the line is rejected\n"
      "    2 | 0;0;0;" +
          std::string(114, 'y') + "…\n",
      run.err);
  EXPECT_EQ(6, run.exit_code);
  EXPECT_EQ(
      "[20000|3|0|Washer|0.5][20001|4|0|" + std::string(4086, 'x') + "|1]",
      Rows("STOCK.UDB", "ARTICLE"));
  EXPECT_EQ("0;0;0;" + std::string(4087, 'y') + ";1\n", Rejected());
}

// A tab in front of a value is skipped, so the values behind an empty one
// would slip into the wrong columns.
TEST_F(ToolImport, RejectsEmptyValuesBetweenTabs) {
  MakeStock();
  MakeUnits("rows.txt",
            "0\t0\t0\tRivet\t0.1\n0\t\t0\tPin\t1\n0\t0\t0\tNail\t\n");
  auto const run = Import("\\t");
  EXPECT_EQ(
      "rows.txt:2: warning[TW603]: 4 values for 5 columns; the line is "
      "rejected\n"
      "    2 | 0  0 Pin 1\n"
      "rows.txt:3: warning[TW603]: 4 values for 5 columns; the line is "
      "rejected\n"
      "    3 | 0 0 0 Nail \n",
      run.err);
  EXPECT_EQ("[20000|3|0|Washer|0.5][20001|4|0|Rivet|0.1]",
            Rows("STOCK.UDB", "ARTICLE"));
}

TEST_F(ToolImport, ChangesNothingWhenAllLinesAreRejected) {
  MakeMainFile();
  MakeUnits("rows.txt", "one;two\n");
  auto const run = Import();
  EXPECT_EQ(
      "rows.txt: 0 rows added to ARTICLE in STOCK.UDB, 1 line rejected to "
      "rows.txt.rejected\n",
      run.out);
  EXPECT_EQ(6, run.exit_code);
  EXPECT_EQ(
      (std::vector<std::string>{"rows.txt", "rows.txt.rejected", "stock.db"}),
      folder_.Names());
}

// What was wrong: copies of what had not been changed stayed.
TEST_F(ToolImport, KeepsNoBackupWhenAllLinesAreRejected) {
  MakeStock();
  MakeUnits("rows.txt", "one;two\n");
  auto const run = Run({"import", "rows.txt", "stock.db", "STOCK.UDB", "-t",
                        "ARTICLE", "--backup"});
  EXPECT_EQ(6, run.exit_code);
  EXPECT_EQ((std::vector<std::string>{"STOCK.UDB", "rows.txt",
                                      "rows.txt.rejected", "stock.db"}),
            folder_.Names());
}

// What was wrong: it wrote over them.
TEST_F(ToolImport, SetsRejectedLinesAsideInNoDatabaseAndNotInItsInput) {
  MakeStock();
  MakeUnits("rows.txt", "one;two\n0;0;0;Rivet;0.1\n");
  for (std::string const file : {"stock.db", "STOCK.UDB", "rows.txt"}) {
    std::string const before = folder_.Content(file);
    auto const run = Run({"import", "rows.txt", "stock.db", "STOCK.UDB", "-t",
                          "ARTICLE", "--rejected", file});
    EXPECT_EQ(before, folder_.Content(file)) << file;
    EXPECT_NE(std::string::npos, run.err.find(file + ": error[TW108]: "))
        << run.err;
    EXPECT_EQ(2, run.exit_code) << file;
  }
}

TEST_F(ToolImport, NamesTheIndexFileAfterTheDatabase) {
  MakeMainFile();
  MakeUnits("rows.txt", "0;0;0;Rivet;0.1\n");
  EXPECT_EQ(0, Run({"import", "rows.txt", "stock.db", "MY.UDB", "-t", "ARTICLE",
                    "--name", "parts"})
                   .exit_code);
  EXPECT_EQ(
      (std::vector<std::string>{"MY.UDB", "PARTS.idx", "rows.txt", "stock.db"}),
      folder_.Names());
}

TEST_F(ToolImport, RefusesATextOfBytes) {
  MakeStock();
  folder_.Make("rows.txt", "0;0;0;Rivet;1\n");
  auto const run = Import();
  EXPECT_EQ(
      "rows.txt: error[TW129]: this is no UTF-16LE text; save it as \"Unicode "
      "text\" "
      "(UTF-16, little-endian), or say with --from what it is\n",
      run.err);
  EXPECT_EQ(3, run.exit_code);
}

TEST_F(ToolImport, RefusesANameThatIsNoUserFile) {
  MakeMainFile();
  MakeUnits("rows.txt", "0;0;0;Rivet;1\n");
  auto const run =
      Run({"import", "rows.txt", "stock.db", "stock.udb", "-t", "ARTICLE"});
  EXPECT_EQ(
      "stock.udb: error[TW104]: this is no name of a user file; a user file "
      "ends in "
      "\".UDB\", a main file does not\n",
      run.err);
  EXPECT_EQ(2, run.exit_code);
}

TEST_F(ToolImport, RefusesASeparatorOfTwoCharacters) {
  MakeStock();
  MakeUnits("rows.txt", "0;0;0;Rivet;1\n");
  auto const run = Import(";;");
  EXPECT_EQ(
      "tabwerk: error[TW103]: \";;\" cannot be a separator; name one "
      "character, for "
      "example --separator \";\"\n",
      run.err);
  EXPECT_EQ(2, run.exit_code);
}

TEST_F(ToolImport, SaysThatTheUserFileIsHeldAndKeepsIt) {
  MakeStock();
  MakeUnits("rows.txt", "0;0;0;Rivet;1\n");
  DBDirectory writer;
  writer.Initialize(zWString(), {folder_.Path("STOCK.UDB")});
  ASSERT_TRUE(writer.OpenDBdatei(0, true, false));
  std::string const before = Snapshot();
  auto const run = Import();
  EXPECT_EQ(
      "STOCK.UDB: error[TW114]: another process holds the file; close the "
      "program "
      "that uses it and try again\n",
      run.err);
  EXPECT_EQ(5, run.exit_code);
  EXPECT_EQ(before, Snapshot());
}

TEST_F(ToolImport, RefusesADatabaseWithADamagedTable) {
  MakeStock();
  MakeUnits("rows.txt", "0;Rivet\n");
  std::string bytes = folder_.Content("stock.db");
  bytes[bytes.find("real PRICE\n") + 15] = '\x7F';
  folder_.Make("stock.db", bytes);
  auto const run =
      Run({"import", "rows.txt", "stock.db", "STOCK.UDB", "-t", "EMPTY"});
  EXPECT_EQ(0U,
            run.err.find("stock.db: error[TW124]: table ARTICLE is damaged"))
      << run.err;
  EXPECT_EQ(4, run.exit_code);
  EXPECT_EQ("", Rows("STOCK.UDB", "EMPTY"));
}

TEST_F(ToolImport, RefusesAUserFileWithoutTheTable) {
  MakeStock();
  MakeUnits("rows.txt", "0;0;0;Rivet;1\n");
  MakeDatabase("STOCK.UDB", {PlainHeader::kCurrent,
                             2000,
                             {{"EMPTY", "integer ID,string NAME\n", {}}}});
  auto const run = Import();
  EXPECT_EQ(
      "STOCK.UDB: error[TW127]: there is no table ARTICLE in this file; it was "
      "made "
      "for an earlier main file; let the program that uses it bring it up to "
      "date\n",
      run.err);
  EXPECT_EQ(3, run.exit_code);
}

}  // namespace
}  // namespace tabwerk::test
