// tabwerk show and tabwerk dump.
#include "DBDirectory.h"
#include "tests/cli/tool_test.h"

namespace tabwerk::test {
namespace {

using ToolShow = ToolTest;
using ToolDump = ToolTest;
using ToolLooking = ToolTest;

TEST_F(ToolShow, PrintsCompleteLinesToAPipe) {
  MakeStock();
  auto const run = Run({"show", "stock.db", "-t", "ARTICLE"});
  EXPECT_EQ(
      "ID\tFOLGE\tSTATUS\tNAME\tPRICE\n"
      "1\t1\t0\tBolt\t0.25\n"
      "2\t2\t0\tNut\t1.5\n",
      run.out);
  EXPECT_EQ("", run.err);
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolShow, PrintsTheUsersRowsBehindTheShippedOnes) {
  MakeStock();
  auto const run = Run({"show", "stock.db", "STOCK.UDB", "-t", "ARTICLE"});
  EXPECT_EQ(
      "ID\tFOLGE\tSTATUS\tNAME\tPRICE\n"
      "1\t1\t0\tBolt\t0.25\n"
      "2\t2\t0\tNut\t1.5\n"
      "20000\t3\t0\tWasher\t0.5\n",
      run.out);
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolShow, ChoosesTheLanguage) {
  MakeMainFile();
  auto const run = Run(
      {"show", "stock.db", "-t", "ARTICLE", "--language", "2", "--limit", "1"});
  EXPECT_EQ("ID\tFOLGE\tSTATUS\tNAME\tPRICE\n1\t1\t0\tボルト\t0.25\n", run.out);
}

TEST_F(ToolShow, PrintsNoRowWithLimit0) {
  MakeMainFile();
  auto const run =
      Run({"show", "stock.db", "--table", "ARTICLE", "--limit", "0"});
  EXPECT_EQ("ID\tFOLGE\tSTATUS\tNAME\tPRICE\n", run.out);
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolShow, KeepsControlCharactersOnTheLine) {
  MakeDatabase("a.db", {PlainHeader::kCurrent,
                        1000,
                        {{"T", "string NAME\n", {"a\tb\nc\rd\\e\x1B[31m"}}}});
  EXPECT_EQ("NAME\na\\tb\\nc\\rd\\\\e\\x1B[31m\n",
            Run({"show", "a.db", "-t", "T"}).out);
}

TEST_F(ToolShow, AppliesTheUsersIndexFile) {
  MakeStock();
  auto const index =
      EncodeIndex({{1000, 2000},
                   {{{}, {-1}, {}},
                    {{{1, 0}, {2, 1}, {20000, 2}}, {-1, 2, 1, 0}, {0, 0, 1}}}});
  folder_.Make("STOCK.idx", std::string(index.begin(), index.end()));
  auto const run = Run({"show", "stock.db", "STOCK.UDB", "-t", "ARTICLE"});
  EXPECT_EQ(
      "ID\tFOLGE\tSTATUS\tNAME\tPRICE\n"
      "1\t3\t0\tBolt\t0.25\n"
      "2\t2\t0\tNut\t1.5\n"
      "20000\t1\t1\tWasher\t0.5\n",
      run.out);
}

TEST_F(ToolShow, TakesTheIndexFileByTheGivenName) {
  MakeStock();
  auto const index =
      EncodeIndex({{1000, 2000},
                   {{{}, {-1}, {}},
                    {{{1, 0}, {2, 1}, {20000, 2}}, {-1, 2, 1, 0}, {0, 0, 1}}}});
  folder_.Make("OTHER.idx", std::string(index.begin(), index.end()));
  auto const run = Run(
      {"show", "stock.db", "STOCK.UDB", "-t", "ARTICLE", "--name", "other"});
  EXPECT_NE(std::string::npos, run.out.find("20000\t1\t1\tWasher")) << run.out;
}

TEST_F(ToolShow, ShowsRowsAsStoredWhenAFolderStandsInTheIndexsPlace) {
  MakeStock();
  folder_.MakeFolder("STOCK.idx");
  auto const run = Run({"show", "stock.db", "STOCK.UDB", "-t", "EMPTY"});
  EXPECT_EQ("", run.err);
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolShow, NamesTheTablesWhenThereIsNoSuchTable) {
  MakeMainFile();
  auto const run = Run({"show", "stock.db", "-t", "article"});
  EXPECT_EQ(
      "stock.db: error[TW106]: there is no table article; did you mean "
      "ARTICLE? the tables are ARTICLE, EMPTY\n",
      run.err);
  EXPECT_EQ(2, run.exit_code);
}

TEST_F(ToolShow, AsksWhetherANearNameWasMeant) {
  MakeStock();
  auto const question = [this](std::vector<std::string> const& arguments) {
    auto const run = Run(arguments);
    EXPECT_EQ(2, run.exit_code);
    std::string const text = run.err.substr(run.err.find("; ") + 2);
    return text.substr(0, text.find('?'));
  };
  EXPECT_EQ("did you mean ARTICLE", question({"show", "stock.db", "ARTICEL"}));
  EXPECT_EQ("did you mean ARTICLE",
            question({"schema", "stock.db", "-t", "Articles"}));
  EXPECT_EQ("did you mean NAME",
            question({"show", "stock.db", "ARTICLE", "--columns", "NAMES"}));
  EXPECT_EQ("did you mean PRICE",
            question({"show", "stock.db", "ARTICLE", "--where", "price=1"}));
  EXPECT_EQ("did you mean STATUS",
            question({"diff", "stock.db", "stock.db", "--ignore", "STATE"}));
  EXPECT_EQ("did you mean NAME", question({"add", "stock.db", "STOCK.UDB", "-t",
                                           "ARTICLE", "NAM=Bolt"}));
  EXPECT_EQ("the tables are ARTICLE, EMPTY\n",
            question({"show", "stock.db", "OTHER"}));
}

TEST_F(ToolShow, SaysThatTheUserFileStandsFirst) {
  MakeStock();
  for (std::vector<std::string> arguments :
       {std::vector<std::string>{"show", "STOCK.UDB", "stock.db", "ARTICLE"},
        {"check", "STOCK.UDB", "stock.db"},
        {"stats", "STOCK.UDB", "stock.db"}}) {
    auto const run = RunToLook(arguments);
    EXPECT_EQ(
        "stock.db: error[TW104]: this is no name of a user file, but STOCK.UDB "
        "is; name the main file first, then the user file\n",
        run.err);
    EXPECT_EQ(2, run.exit_code);
  }
}

TEST_F(ToolShow, SaysThatTheFileHasNoTables) {
  MakeDatabase("none.db", {PlainHeader::kCurrent, 1000, {}});
  folder_.Make("empty.db", "");
  for (std::string const file : {"none.db", "empty.db"}) {
    auto const run = RunToLook({"show", file, "T"});
    EXPECT_EQ(file +
                  ": error[TW315]: the file has no tables; build it from "
                  "its script, or restore it from a backup\n",
              run.err);
    EXPECT_EQ(4, run.exit_code);
  }
}

TEST_F(ToolShow, NamesAMissingFile) {
  auto const run = Run({"show", "none.db", "-t", "T"});
  EXPECT_EQ(
      "none.db: error[TW110]: there is no such file; check the path, or make "
      "the "
      "database with \"tabwerk build\"\n",
      run.err);
  EXPECT_EQ("", run.out);
  EXPECT_EQ(3, run.exit_code);
}

TEST_F(ToolShow, NamesAMissingUserFile) {
  MakeMainFile();
  auto const run = Run({"show", "stock.db", "STOCK.UDB", "-t", "ARTICLE"});
  EXPECT_EQ(0U, run.err.find("STOCK.UDB: error[TW110]: there is no such file"))
      << run.err;
  EXPECT_EQ(3, run.exit_code);
}

TEST_F(ToolShow, RefusesAFolder) {
  folder_.MakeFolder("sub");
  auto const run = Run({"show", "sub", "-t", "T"});
  EXPECT_EQ("sub: error[TW111]: this is a folder; name a file of a database\n",
            run.err);
  EXPECT_EQ(3, run.exit_code);
}

TEST_F(ToolShow, RefusesAFileThatIsNoDatabase) {
  folder_.Make("text.db", "verily, this is a text\n");
  auto const run = Run({"show", "text.db", "-t", "T"});
  EXPECT_EQ(0U, run.err.find("text.db: error[TW123]: this is no database file"))
      << run.err;
  EXPECT_EQ(4, run.exit_code);
}

TEST_F(ToolShow, RefusesAUserFileOfOtherTables) {
  MakeMainFile();
  MakeDatabase("STOCK.UDB",
               {PlainHeader::kCurrent,
                2000,
                {{"ARTICLE", "string NAME\n", {}}, {"EMPTY", "real X\n", {}}}});
  auto const run = Run({"show", "stock.db", "STOCK.UDB", "-t", "ARTICLE"});
  EXPECT_EQ(
      "STOCK.UDB: error[TW126]: the tables in it are defined otherwise than in "
      "stock.db; open it with the main file that it was made for\n",
      run.err);
  EXPECT_EQ(3, run.exit_code);
}

TEST_F(ToolShow, RefusesADamagedTableAndShowsTheOthers) {
  MakeMainFile();
  // The number of rows behind the definition of ARTICLE.
  std::string bytes = folder_.Content("stock.db");
  bytes[bytes.find("real PRICE\n") + 15] = '\x7F';
  folder_.Make("stock.db", bytes);
  auto const run = Run({"show", "stock.db", "-t", "ARTICLE"});
  EXPECT_EQ(
      "stock.db: error[TW124]: table ARTICLE is damaged and cannot be loaded; "
      "restore the file from a backup; \"tabwerk info\" shows which tables "
      "are sound\n",
      run.err);
  EXPECT_EQ(4, run.exit_code);
  EXPECT_EQ(0, Run({"show", "stock.db", "-t", "EMPTY"}).exit_code);
}

TEST_F(ToolShow, SaysThatTheFileIsHeld) {
  MakeStock();
  DBDirectory holder;
  holder.Initialize(zWString(), {folder_.Path("STOCK.UDB")});
  ASSERT_TRUE(holder.OpenDBdatei(0, true, true));
  auto const run = Run({"show", "stock.db", "STOCK.UDB", "-t", "ARTICLE"});
  EXPECT_EQ(
      "STOCK.UDB: error[TW114]: another process holds the file; close the "
      "program "
      "that uses it and try again\n",
      run.err);
  EXPECT_EQ(5, run.exit_code);
}

TEST_F(ToolShow, ReadsAlongWithAProgramThatWrites) {
  MakeStock();
  DBDirectory holder;
  holder.Initialize(zWString(), {folder_.Path("STOCK.UDB")});
  ASSERT_TRUE(holder.OpenDBdatei(0, true, false));
  EXPECT_EQ(0,
            Run({"show", "stock.db", "STOCK.UDB", "-t", "ARTICLE"}).exit_code);
}

#ifndef _WIN32

TEST_F(ToolShow, AlignsColumnsOnATerminal) {
  MakeMainFile();
  auto const run = RunToolOnTerminal(
      folder_.folder(),
      {"show", "stock.db", "-t", "ARTICLE", "--language", "2", "--limit", "1"},
      80);
  EXPECT_EQ(
      "ID  FOLGE  STATUS  NAME    PRICE\n"
      "--  -----  ------  ------  -----\n"
      " 1      1       0  ボルト   0.25\n"
      "(1 of 2 rows)\n",
      run.out);
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolShow, CutsColumnsToFitTheTerminal) {
  MakeDatabase("a.db",
               {PlainHeader::kCurrent,
                1000,
                {{"T", "integer ID,string NAME\n", {"1|a long long name"}}}});
  EXPECT_EQ(
      "ID  NAME\n"
      "--  ----------\n"
      " 1  a long lo…\n",
      RunToolOnTerminal(folder_.folder(), {"show", "a.db", "-t", "T"}, 14).out);
}

TEST_F(ToolShow, CutsTheValuesOfAListToFitTheTerminal) {
  MakeDatabase("a.db",
               {PlainHeader::kCurrent,
                1000,
                {{"T", "integer ID,string NAME\n", {"1|a long long name"}}}});
  std::vector<std::string> const show = {"show", "a.db",     "-t",
                                         "T",    "--format", "list"};
  auto const on_terminal = [&](int columns) {
    return RunToolOnTerminal(folder_.folder(), show, columns).out;
  };
  EXPECT_EQ("ID    1\nNAME  a long …\n", on_terminal(14));
  EXPECT_EQ("ID    1\nNAME  a long …\n", on_terminal(3));
  EXPECT_EQ("ID    1\nNAME  a long long name\n", on_terminal(22));
  EXPECT_EQ(on_terminal(22), Run(show).out);
}

#endif

TEST_F(ToolShow, SaysThatTheOutputIsLost) {
  MakeMainFile();
  ToolCall call = {{"show", "stock.db", "-t", "ARTICLE"}, "", {}};
  call.output = OutputTo::kFullDisk;
  auto const run = RunWith(call);
  EXPECT_EQ(
      "tabwerk: error[TW120]: the output could not be written; check where it "
      "goes "
      "and the space there\n",
      run.err);
  EXPECT_EQ(3, run.exit_code);
}

TEST_F(ToolDump, PrintsTextsAsTheyAreStored) {
  MakeStock();
  auto const run = Run({"dump", "stock.db", "-t", "ARTICLE"});
  EXPECT_EQ(
      "1;1;0;\"#TS(Bolt¬Bolzen¬ボルト)TS~\";0.25\n"
      "2;2;0;\"Nut\";1.5\n",
      run.out);
  EXPECT_EQ("", run.err);
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolDump, PrintsTheUsersRows) {
  MakeStock();
  auto const run = Run({"dump", "stock.db", "STOCK.UDB", "-t", "ARTICLE",
                        "--user", "--separator", " | "});
  EXPECT_EQ("20000 | 3 | 0 | \"Washer\" | 0.5\n", run.out);
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolDump, HandsTheStoredRowsOutInEachFormat) {
  MakeStock();
  EXPECT_EQ(
      "ID,FOLGE,STATUS,NAME,PRICE\n"
      "1,1,0,#TS(Bolt¬Bolzen¬ボルト)TS~,0.25\n"
      "2,2,0,Nut,1.5\n",
      RunToLook(
          {"dump", "stock.db", "STOCK.UDB", "-t", "ARTICLE", "--format", "csv"})
          .out);
  EXPECT_EQ(
      "{\"ID\": 20000, \"FOLGE\": 3, \"STATUS\": 0, \"NAME\": \"Washer\", "
      "\"PRICE\": 0.5}\n",
      RunToLook({"dump", "stock.db", "STOCK.UDB", "-t", "ARTICLE", "--user",
                 "--format", "ndjson"})
          .out);
  auto const run = Run({"dump", "stock.db", "-t", "ARTICLE", "--format", "tsv",
                        "--separator", ","});
  EXPECT_EQ(0U, run.err.find("tabwerk: error[TW101]: --separator is not for "));
  EXPECT_EQ(2, run.exit_code);
}

TEST_F(ToolDump, TakesTheTableAsTheLastWord) {
  MakeStock();
  EXPECT_EQ(Run({"dump", "stock.db", "-t", "ARTICLE"}).out,
            Run({"dump", "stock.db", "ARTICLE"}).out);
  EXPECT_EQ("20000;3;0;\"Washer\";0.5\n",
            Run({"dump", "stock.db", "STOCK.UDB", "ARTICLE", "--user"}).out);
  EXPECT_EQ(
      "tabwerk: error[TW101]: no table is named; write \"tabwerk dump stock.db "
      "TABLE\"; \"tabwerk info\" lists the tables\n",
      Run({"dump", "stock.db", "STOCK.UDB"}).err);
  EXPECT_EQ(2,
            Run({"dump", "stock.db", "STOCK.UDB", "A", "-t", "B"}).exit_code);
}

TEST_F(ToolDump, LimitAndColumnsNeedAFormat) {
  MakeStock();
  EXPECT_EQ("NAME,ID\n#TS(Bolt¬Bolzen¬ボルト)TS~,1\n",
            Run({"dump", "stock.db", "ARTICLE", "--format", "csv", "--limit",
                 "1", "--columns", "NAME,ID"})
                .out);
  for (std::string const option : {"--limit=1", "--columns=ID"}) {
    auto const run = Run({"dump", "stock.db", "ARTICLE", option});
    EXPECT_EQ(
        "tabwerk: error[TW101]: --limit and --columns need a --format; add, "
        "for example, --format tsv\n",
        run.err);
    EXPECT_EQ(2, run.exit_code);
  }
}

TEST_F(ToolDump, PrintsNothingForAnEmptyTable) {
  MakeStock();
  auto const run = Run({"dump", "stock.db", "-t", "EMPTY"});
  EXPECT_EQ("", run.out);
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolDump, NeedsAUserFileForTheUsersRows) {
  MakeStock();
  auto const run = Run({"dump", "stock.db", "-t", "ARTICLE", "--user"});
  EXPECT_EQ(
      "tabwerk: error[TW105]: --user needs a USERFILE; name the user file "
      "behind "
      "FILE\n",
      run.err);
  EXPECT_EQ(2, run.exit_code);
}

TEST_F(ToolLooking, TakesReadOnlyFiles) {
  MakeStock();
  folder_.SetReadOnly("stock.db", true);
  folder_.SetReadOnly("STOCK.UDB", true);
  EXPECT_EQ(0,
            Run({"show", "stock.db", "STOCK.UDB", "-t", "ARTICLE"}).exit_code);
}

TEST_F(ToolLooking, TakesPathsWithAllCharacters) {
  MakeMainFile();
  std::string const bytes = folder_.Content("stock.db");
  folder_.MakeFolder("Größe Ελλάς");
  folder_.Make("Größe Ελλάς/склад 倉庫.db", bytes);
  auto const run = Run({"show", "Größe Ελλάς/склад 倉庫.db", "-t", "ARTICLE"});
  EXPECT_EQ("", run.err);
  EXPECT_EQ(0, run.exit_code);
}

}  // namespace
}  // namespace tabwerk::test
