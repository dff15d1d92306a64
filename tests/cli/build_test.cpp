// tabwerk build.
#include "DBDirectory.h"
#include "tests/cli/expected.h"
#include "tests/cli/tool_test.h"

namespace tabwerk::test {
namespace {

constexpr char kScript[] =
    "NEWDATABASE stock stock.db\n"
    "NEWTABLE ARTICLE\n"
    "ID integer\n"
    "NAME string\n"
    "PRICE real\n"
    "ENDDEF\n"
    "TABLEDATA ARTICLE article.txt\n"
    "NEWTABLE EMPTY\n"
    "ID integer\n"
    "ENDDEF\n";

class ToolBuild : public ToolTest {
 protected:
  void MakeInput() const {
    folder_.Make("stock.script", kScript);
    MakeUnits("article.txt", "1,\"Bolt\",0.25\n2,\"Größe\",1\n");
  }
  // What the tool says of a script that does not work.
  std::string Complaint(std::string const& script, int exit_code) const {
    folder_.Make("a.script", script);
    auto const run = Run({"build", "a.script"});
    EXPECT_EQ(exit_code, run.exit_code);
    EXPECT_EQ("", run.out);
    return run.err;
  }
};

TEST_F(ToolBuild, SaysWhatWasBuilt) {
  MakeInput();
  auto const run = Run({"build", "stock.script"});
  EXPECT_EQ(
      "stock.db: built with 2 tables, 2 rows\n"
      "  ARTICLE: 2 rows\n"
      "  EMPTY: 0 rows\n",
      run.out);
  EXPECT_EQ("", run.err);
  EXPECT_EQ(0, run.exit_code);
  EXPECT_EQ("[1|Bolt|0.25][2|Größe|1]", Rows("stock.db", "ARTICLE"));
}

TEST_F(ToolBuild, WorksInAnotherFolder) {
  folder_.MakeFolder("süd");
  folder_.Make("süd/stock.script", kScript);
  MakeUnits("süd/article.txt", "1,\"Bolt\",0.25\n");
  auto const run = Run({"build", "stock.script", "-C", "süd"});
  EXPECT_EQ(0, run.exit_code) << run.err;
  EXPECT_EQ("[1|Bolt|0.25]", Rows("süd/stock.db", "ARTICLE"));
}

TEST_F(ToolBuild, TakesTheScriptFromStandardInput) {
  MakeInput();
  folder_.MakeFolder("süd");
  std::filesystem::rename(folder_.folder() / "article.txt",
                          folder_.folder() / u8"süd" / "article.txt");
  // Lines end in CR LF, and no text stream takes a byte of them.
  std::string script = kScript;
  for (std::size_t i = script.find('\n'); i != script.npos;
       i = script.find('\n', i + 2)) {
    script.insert(i, 1, '\r');
  }
  auto const dry =
      RunWith({{"build", "-", "-C", "süd", "--dry-run"}, script, {}});
  EXPECT_EQ(0U, dry.out.find("stock.db: built with 2 tables, 2 rows (dry run"));
  EXPECT_FALSE(folder_.Exists("süd/stock.db"));
  auto const run = RunWith({{"build", "-", "-C", "süd"}, script, {}});
  EXPECT_EQ(0, run.exit_code) << run.err;
  EXPECT_EQ("[1|Bolt|0.25][2|Größe|1]", Rows("süd/stock.db", "ARTICLE"));
  EXPECT_FALSE(folder_.Exists("süd/standard-input"));
}

TEST_F(ToolBuild, TellsWhatIsWrongWithStandardInput) {
  constexpr char kWrong[] = "NEWDATABASE STOCK stock.db\nNEWTABLE\n";
  auto const run = RunWith({{"build", "-"}, kWrong, {}});
  EXPECT_EQ(0U, run.err.find("standard-input:2:")) << run.err;
  EXPECT_NE(0, run.exit_code);
  EXPECT_EQ(
      run.err.substr(0, run.err.find('\n')),
      RunWith({{"lint", "-"}, kWrong, {}}).out.substr(0, run.err.find('\n')));
  EXPECT_FALSE(folder_.Exists("stock.db"));
}

TEST_F(ToolBuild, ComplainsInUtf8AboutAPathThatIsNone) {
  auto const complaint = Complaint(
      "NEWDATABASE A a.db\nNEWTABLE T\nID integer\nENDDEF\n"
      "TABLEDATA T \xE4.dat\n",
      3);
  EXPECT_EQ(zWString::fromUtf8(complaint).toUtf8(), complaint);
  EXPECT_NE(complaint.npos, complaint.find("\u00E4.dat")) << complaint;
}

TEST_F(ToolBuild, SaysThatTheFolderIsMissing) {
  auto const run = Run({"build", "stock.script", "-C", "none"});
  EXPECT_EQ(
      "none: error[TW130]: this is no folder to work in; check the path behind "
      "-C\n",
      run.err);
  EXPECT_EQ(3, run.exit_code);
}

TEST_F(ToolBuild, SaysThatTheScriptIsMissing) {
  auto const run = Run({"build", "none.script"});
  EXPECT_EQ(
      "none.script: error[TW116]: the script cannot be read; check its path "
      "and "
      "permissions\n",
      run.err);
  EXPECT_EQ(3, run.exit_code);
}

TEST_F(ToolBuild, NamesTheLineOfAMissingDataFileAndKeepsTheOldDatabase) {
  MakeInput();
  ASSERT_EQ(0, Run({"build", "stock.script"}).exit_code);
  std::filesystem::remove(folder_.folder() / "article.txt");
  std::string const before = Snapshot();
  auto const run = Run({"build", "stock.script"});
  EXPECT_EQ(
      "stock.script:7:19: error[TW213]: there is no data file \"article.txt\"; "
      "paths are relative to the current folder; see the option -C\n"
      "    7 | TABLEDATA ARTICLE article.txt\n"
      "      |                   ^~~~~~~~~~~\n",
      run.err);
  EXPECT_EQ(3, run.exit_code);
  EXPECT_EQ(before, Snapshot());
}

TEST_F(ToolBuild, ShowsThePlaceOfAMistake) {
  std::string const table = "NEWDATABASE a a.db\nNEWTABLE T\n";
  std::string const wide = std::string(3500, 'A') + " integer\n";
  std::string found;
  for (std::string const& script :
       {std::string("# comment\nNEWDATABASE a\n"),
        std::string("NEWTABLE T\nA integer\nENDDEF\n"),
        std::string("NEWDATABASE a a.db\nNEWTABLE\n"),
        "NEWDATABASE a a.db\nNEWTABLE " + std::string(64, 'T') + "\n",
        table + "A integer\nB\nENDDEF\n", table + "\nENDDEF\n",
        std::string("NEWDATABASE a a.db\r\nNEWTABLE T\r\nA integer\r\n"),
        table + "A integer\nENDDEF\n \tNEWTABLE T\nA integer\nENDDEF\n",
        std::string("NEWDATABASE a a.db\nTABLEDATA T t.txt\n"),
        table + "A integer\nENDDEF\nTABLEDATA T\n",
        table + "A integer\nENDDEF\nTABLEDATA Größe倉 " +
            std::string(260, 'x') + "\n",
        table + wide + wide + wide + wide + wide, std::string("# nothing\n")}) {
    found += Complaint(script, 1);
  }
  EXPECT_EQ(Expected("build_mistakes", found), found);
  EXPECT_EQ(std::vector<std::string>{"a.script"}, folder_.Names());
}

TEST_F(ToolBuild, ReportsALastLineThatIsNotCarriedOut) {
  MakeInput();
  folder_.Make("a.script",
               "NEWDATABASE a a.db\nNEWTABLE T\nA integer\nB string\n"
               "C real\nENDDEF\nTABLEDATA T article.txt");
  auto const run = Run({"build", "a.script"});
  EXPECT_EQ("a.db: built with 1 table, 0 rows\n  T: 0 rows\n", run.out);
  EXPECT_EQ(
      "a.script:7:24: warning[TW216]: the last line is not carried out, "
      "because "
      "no "
      "line feed ends it; end the line\n"
      "    7 | TABLEDATA T article.txt\n"
      "      |                        ^\n",
      run.err);
  EXPECT_EQ(1, run.exit_code);
}

TEST_F(ToolBuild, ReportsValuesThatWereLeftOut) {
  MakeInput();
  MakeUnits("article.txt", "1,\"Bolt\",0.25,surplus\n");
  auto const run = Run({"build", "stock.script"});
  EXPECT_EQ(
      "article.txt:1:15: warning[TW217]: 4 values for 3 columns: the rest of "
      "the line is not read; leave it out, or quote a text that has a comma\n"
      "    1 | 1,\"Bolt\",0.25,surplus\n"
      "      |               ^~~~~~~\n",
      run.err);
  EXPECT_EQ(1, run.exit_code);
  EXPECT_EQ("[1|Bolt|0.25]", Rows("stock.db", "ARTICLE"));
}

// The rest of a data file behind a value that cannot be stored.
TEST_F(ToolBuild, ReportsWhereADataFileWasLeft) {
  folder_.Make("a.script",
               "NEWDATABASE A a.db\nNEWTABLE T\nA integer\nB float\nENDDEF\n"
               "TABLEDATA T a.txt\n");
  MakeUnits("a.txt", "1\n2,3\n4\n");
  auto const run = Run({"build", "a.script"});
  EXPECT_EQ(
      "a.txt:2:3: warning[TW218]: the column B has no usable type; from here "
      "on the file is left out; correct it or the definition of the table\n"
      "    2 | 2,3\n"
      "      |   ^\n",
      run.err);
  EXPECT_EQ(1, run.exit_code);
  EXPECT_EQ("a.db: built with 1 table, 2 rows\n  T: 2 rows\n", run.out);
  EXPECT_EQ("", Run({"build", "a.script", "-q"}).err);
}

TEST_F(ToolBuild, TellsAllErrorsOfAScript) {
  MakeInput();
  folder_.Make("a.script",
               "NEWDATABASE a a.db\nNEWTABLE T\nA\nENDDEF\n"
               "TABLEDATA T none.txt\n");
  for (char const* const option : {"--verbose", "--dry-run"}) {
    auto const run = Run({"build", "a.script", option});
    EXPECT_EQ(
        "a.script:3:2: error[TW207]: a column needs a name and a type; write "
        "\"name type\", or end the definition with \"ENDDEF\"\n"
        "    3 | A\n"
        "      |  ^\n"
        "a.script:5:13: error[TW213]: there is no data file \"none.txt\"; "
        "paths are relative to the current folder; see the option -C\n"
        "    5 | TABLEDATA T none.txt\n"
        "      |             ^~~~~~~~\n",
        run.err);
    EXPECT_EQ(1, run.exit_code);
  }
}

TEST_F(ToolBuild, TellsAllThatLintFindsWhenAsked) {
  MakeInput();
  MakeUnits("article.txt", "1,Bolt,0.25\nx,Nut,1\n");
  EXPECT_EQ(0, Run({"build", "stock.script"}).exit_code);
  auto const run = Run({"build", "stock.script", "--lint"});
  auto const lint = Run({"lint", "stock.script"});
  EXPECT_EQ(lint.out, run.err + "0 errors, 2 warnings\n");
  EXPECT_EQ(1, run.exit_code);
  EXPECT_EQ("[1|Bolt|0.25][0|Nut|1]", Rows("stock.db", "ARTICLE"));
}

TEST_F(ToolBuild, SaysThatTheFolderOfTheDatabaseIsMissing) {
  EXPECT_EQ(
      "a.script:1:15: error[TW115]: no/a.db: its folder \"no\" does not "
      "exist; make the folder first\n"
      "    1 | NEWDATABASE a no/a.db\n"
      "      |               ^~~~~~~\n",
      Complaint("NEWDATABASE a no/a.db\nNEWTABLE T\nA integer\nENDDEF\n", 3));
}

TEST_F(ToolBuild, SaysThatTheDatabaseIsReadOnly) {
  MakeInput();
  MakeMainFile();
  folder_.SetReadOnly("stock.db", true);
  std::string const before = Snapshot();
  auto const run = Run({"build", "stock.script"});
  EXPECT_EQ(
      "stock.script:1:19: error[TW113]: stock.db: the file is read-only; make "
      "it writable first\n"
      "    1 | NEWDATABASE stock stock.db\n"
      "      |                   ^~~~~~~~\n",
      run.err);
  EXPECT_EQ(3, run.exit_code);
  EXPECT_EQ(before, Snapshot());
}

TEST_F(ToolBuild, SaysThatTheDatabaseIsHeldAndKeepsIt) {
  MakeInput();
  MakeMainFile();
  DBDirectory reader;
  reader.Initialize(zWString(), {folder_.Path("stock.db")});
  ASSERT_TRUE(reader.OpenDBdatei(0, false, false));
  std::string const before = Snapshot();
  auto const run = Run({"build", "stock.script"});
  EXPECT_EQ(
      "stock.script:1:19: error[TW114]: stock.db: another process holds the "
      "file; close the program that uses it and try again\n"
      "    1 | NEWDATABASE stock stock.db\n"
      "      |                   ^~~~~~~~\n",
      run.err);
  EXPECT_EQ(5, run.exit_code);
  EXPECT_EQ(before, Snapshot());
}

TEST_F(ToolBuild, ComparesTheVersionOfAScriptNamedD000) {
  folder_.Make("D000.script",
               "NEWDATABASE d d.db\nNEWTABLE VERSION\nVERSION string\nENDDEF\n"
               "TABLEDATA VERSION version.txt\n");
  MakeUnits("version.txt", "\"1\"\n");
  EXPECT_EQ(0, Run({"build", "D000.script"}).exit_code);
  EXPECT_EQ(0,
            Run({"build", "D000.script", "--expect-version", "1"}).exit_code);
  auto const run = Run({"build", "D000.script", "--expect-version", "2"});
  EXPECT_EQ(
      "D000.script: error[TW219]: the version of the data is not \"2\"; the "
      "database "
      "was built all the same; check its table VERSION\n",
      run.err);
  EXPECT_EQ(1, run.exit_code);
}

}  // namespace
}  // namespace tabwerk::test
