// tabwerk show: which rows, in which order and language.
#include "tests/cli/tool_test.h"

namespace tabwerk::test {
namespace {

class ToolShowRows : public ToolTest {
 protected:
  // The IDs that are shown of ARTICLE in stock.db, which has five rows, and
  // STOCK.UDB, which has two more.
  std::string Ids(std::vector<std::string> const& options) const {
    std::vector<std::string> arguments = {"show", "stock.db", "STOCK.UDB",
                                          "ARTICLE"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    for (char const* const word : {"--columns", "ID"}) {
      arguments.emplace_back(word);
    }
    auto const run = RunToLook(arguments);
    std::string ids = run.out.substr(0, run.out.find('\n')) == "ID"
                          ? run.out.substr(3)
                          : run.out;
    for (char& character : ids) {
      if (character == '\n') character = ' ';
    }
    return ids + run.err;
  }

  void MakeShelf() const {
    std::string const definition =
        "integer ID,integer FOLGE,integer STATUS,string NAME,real PRICE\n";
    MakeDatabase(
        "stock.db",
        {PlainHeader::kCurrent,
         1000,
         {{"ARTICLE",
           definition,
           {"4|5|0|#TS(Bolt¬Bolzen)TS~|0.25", "1|4|1|Nut|1.5", "3|3|0|Bolt|-2",
            "2|2|0||0.25", "1|1|0|Nut = 7|1e+300"}}}});
    MakeDatabase("STOCK.UDB",
                 {PlainHeader::kCurrent,
                  2000,
                  {{"ARTICLE",
                    definition,
                    {"20000|7|0|Größe|0", "20001|6|1|#TS(Nut¬Mutter)TS~|1"}}}});
  }
};

TEST_F(ToolShowRows, ById) {
  MakeShelf();
  EXPECT_EQ("3 ", Ids({"--id", "3"}));
  EXPECT_EQ("4 1 1 20001 ", Ids({"--id", "20001,1", "--id", "4"}));
}

TEST_F(ToolShowRows, ByNumber) {
  MakeShelf();
  EXPECT_EQ("4 20000 ", Ids({"--row", "5,0"}));
}

TEST_F(ToolShowRows, SaysWhichAreNotThere) {
  MakeShelf();
  auto const run = RunToLook(
      {"show", "stock.db", "ARTICLE", "--id", "3,9", "--columns", "ID"});
  EXPECT_EQ("ID\n3\n", run.out);
  EXPECT_EQ("stock.db: error[TW132]: no row of ARTICLE has the ID 9\n",
            run.err);
  EXPECT_EQ(1, run.exit_code);
  EXPECT_EQ("stock.db: error[TW132]: no row of ARTICLE has the number 7\n",
            Run({"show", "stock.db", "ARTICLE", "--row", "7", "-q"}).err);
}

TEST_F(ToolShowRows, ByValueOfEveryType) {
  MakeShelf();
  EXPECT_EQ("1 1 ", Ids({"--where", "ID=1"}));
  EXPECT_EQ("4 2 ", Ids({"--where", "PRICE=0.25"}));
  EXPECT_EQ("1 ", Ids({"--where", "PRICE=1e300"}));
  EXPECT_EQ("20000 ", Ids({"--where", "NAME=Größe"}));
  EXPECT_EQ("1 ", Ids({"--where", "NAME=Nut = 7"}));
  EXPECT_EQ("2 ", Ids({"--where", "NAME="}));
  EXPECT_EQ("1 ", Ids({"--where", "NAME=Nut", "--where", "STATUS=1",
                       "--language", "1"}));
}

TEST_F(ToolShowRows, ByTextInTheLanguageThatIsShown) {
  MakeShelf();
  EXPECT_EQ("4 3 ", Ids({"--where", "NAME=Bolt"}));
  EXPECT_EQ("3 ", Ids({"--where", "NAME=Bolt", "--language", "1"}));
  EXPECT_EQ("4 3 ", Ids({"--where", "NAME=Bolt", "--language", "all"}));
  EXPECT_EQ("20001 ", Ids({"--where", "NAME=Mutter", "--language", "all"}));
  EXPECT_EQ("", Ids({"--where", "NAME=Mutter", "--language", "raw"}));
  EXPECT_EQ("20001 ",
            Ids({"--where", "NAME=#TS(Nut¬Mutter)TS~", "--language", "raw"}));
}

TEST_F(ToolShowRows, ByPattern) {
  MakeShelf();
  EXPECT_EQ("4 3 ", Ids({"--match", "NAME=B.*"}));
  EXPECT_EQ("", Ids({"--match", "NAME=B"}));
  EXPECT_EQ("20000 ", Ids({"--match", "NAME=Gr..e"}));
  EXPECT_EQ("1 1 20001 ",
            Ids({"--match", "NAME=N.*|M.*", "--language", "all"}));
}

TEST_F(ToolShowRows, ByStatusAndPart) {
  MakeShelf();
  EXPECT_EQ("4 3 2 1 20000 ", Ids({"--active"}));
  EXPECT_EQ("20000 20001 ", Ids({"--part", "user"}));
  EXPECT_EQ("4 3 2 1 ", Ids({"--part", "main", "--active"}));
}

TEST_F(ToolShowRows, InEveryOrder) {
  MakeShelf();
  EXPECT_EQ("4 1 3 2 1 20000 20001 ", Ids({"--order", "row"}));
  EXPECT_EQ("1 1 2 3 4 20000 20001 ", Ids({"--order", "id"}));
  EXPECT_EQ("1 2 3 1 4 20001 20000 ", Ids({"--order", "folge"}));
  EXPECT_EQ("1 2 3 4 20000 ", Ids({"--order", "folge", "--active"}));
}

TEST_F(ToolShowRows, InDisplayOrderOfTheIndex) {
  MakeStock();
  auto const index =
      EncodeIndex({{1000, 2000},
                   {{{}, {-1}, {}},
                    {{{1, 0}, {2, 1}, {20000, 2}}, {-1, 2, 1, 0}, {0, 0, 0}}}});
  folder_.Make("STOCK.idx", std::string(index.begin(), index.end()));
  EXPECT_EQ("20000 2 1 ", Ids({"--order", "folge"}));
}

// Nobody makes indices for it; the rows came as they are stored.
TEST_F(ToolShowRows, InDisplayOrderWithoutAUserFile) {
  MakeShelf();
  EXPECT_EQ("ID\n1\n2\n3\n1\n4\n",
            RunToLook({"show", "stock.db", "ARTICLE", "--order", "folge",
                       "--columns", "ID"})
                .out);
}

// The last one of them stood before all others.
TEST_F(ToolShowRows, RowsWithoutAPlaceStandBehindInDisplayOrder) {
  std::string const definition =
      "integer ID,integer FOLGE,integer STATUS,string NAME\n";
  MakeDatabase("stock.db",
               {PlainHeader::kCurrent,
                1000,
                {{"ARTICLE",
                  definition,
                  {"5|0|1|Nut", "6|2|0|Bolt", "7|0|1|Pin", "8|1|0|Cap"}}}});
  MakeDatabase("STOCK.UDB",
               {PlainHeader::kCurrent, 2000, {{"ARTICLE", definition, {}}}});
  EXPECT_EQ("8 6 5 7 ", Ids({"--order", "folge"}));
}

TEST_F(ToolShowRows, GivesEachLanguageAColumn) {
  MakeShelf();
  EXPECT_EQ(
      "ID\tFOLGE\tSTATUS\tNAME.0\tNAME.1\tPRICE\n"
      "4\t5\t0\tBolt\tBolzen\t0.25\n"
      "1\t4\t1\tNut\tNut\t1.5\n",
      RunToLook(
          {"show", "stock.db", "ARTICLE", "--language", "all", "--row", "0,1"})
          .out);
  EXPECT_EQ("NAME\n#TS(Bolt¬Bolzen)TS~\n",
            RunToLook({"show", "stock.db", "ARTICLE", "--language", "raw",
                       "--row", "0", "--columns", "NAME"})
                .out);
}

TEST_F(ToolShowRows, RefusesWhatMakesNoSense) {
  MakeShelf();
  auto const refusal = [this](std::vector<std::string> options) {
    options.insert(options.begin(), {"show", "stock.db", "ARTICLE"});
    auto const run = RunToLook(options);
    EXPECT_EQ(2, run.exit_code) << run.out;
    EXPECT_EQ("", run.out);
    return run.err.substr(0, run.err.find(';'));
  };
  EXPECT_EQ("stock.db: error[TW133]: --where ID has no \"=\"",
            refusal({"--where", "ID"}));
  EXPECT_EQ("stock.db: error[TW107]: there is no column SIZE",
            refusal({"--where", "SIZE=1"}));
  EXPECT_EQ(
      "stock.db: error[TW133]: 1x is no number, and column ID holds numbers",
      refusal({"--where", "ID=1x"}));
  EXPECT_EQ(
      "stock.db: error[TW133]: 1,5 is no number, and column PRICE holds "
      "numbers",
      refusal({"--where", "PRICE=1,5"}));
  EXPECT_EQ("stock.db: error[TW133]: column ID holds no texts",
            refusal({"--match", "ID=1.*"}));
  EXPECT_EQ(
      "stock.db: error[TW134]: the pattern B( cannot be used: a parenthesis "
      "has no partner",
      refusal({"--match", "NAME=B("}));
  EXPECT_EQ("tabwerk: error[TW105]: --part user needs a USERFILE",
            refusal({"--part", "user"}));
  EXPECT_EQ(0U, refusal({"--language", "german"})
                    .find("tabwerk: error[TW101]: --language: german is "));
}

TEST_F(ToolShowRows, TakeTheTableAsALastWordOrByOption) {
  MakeStock();
  auto const rows = [this](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"show", "stock.db"});
    arguments.insert(arguments.end(), {"--columns", "ID"});
    auto const run = Run(arguments);
    return run.out + run.err.substr(0, run.err.find(';'));
  };
  EXPECT_EQ("ID\n1\n2\n", rows({"ARTICLE"}));
  EXPECT_EQ("ID\n1\n2\n", rows({"-t", "ARTICLE"}));
  EXPECT_EQ("ID\n1\n2\n20000\n", rows({"STOCK.UDB", "ARTICLE"}));
  EXPECT_EQ("ID\n1\n2\n20000\n", rows({"STOCK.UDB", "-t", "ARTICLE"}));
  EXPECT_EQ("tabwerk: error[TW101]: no table is named", rows({}));
  EXPECT_EQ("tabwerk: error[TW101]: no table is named", rows({"STOCK.UDB"}));
  EXPECT_EQ("tabwerk: error[TW101]: two tables are named: EMPTY and ARTICLE",
            rows({"STOCK.UDB", "ARTICLE", "-t", "EMPTY"}));
}

TEST_F(ToolShowRows, TellColumnsOfOneNameApart) {
  MakeDatabase("twice.db", {PlainHeader::kCurrent,
                            1000,
                            {{"T",
                              "integer ID,integer NAME,string NAME\n",
                              {"1|7|Anna", "2|8|#TS(Nut¬Mutter)TS~"}}}});
  auto const out = [this](std::vector<std::string> const& arguments) {
    auto const run = RunToLook(arguments);
    return run.out + run.err;
  };
  EXPECT_EQ("ID\tNAME\tNAME_2\n1\t7\tAnna\n2\t8\tNut\n",
            out({"show", "twice.db", "T"}));
  EXPECT_EQ("NAME_2.1\nMutter\n",
            out({"show", "twice.db", "T", "--language", "all", "--where",
                 "NAME_2=Mutter", "--columns", "NAME_2.1"}));
  EXPECT_EQ("ID\n1\n", out({"show", "twice.db", "T", "--match", "NAME_2=A.*",
                            "--columns", "ID"}));
  EXPECT_EQ("ID\tCOLUMN\tTEXT\n2\tNAME_2\tMutter\n",
            out({"find", "Mutt", "twice.db", "--columns", "ID,COLUMN,TEXT"}));
  EXPECT_EQ("ID,NAME,NAME_2\n1,7,Anna\n2,8,#TS(Nut¬Mutter)TS~\n",
            out({"dump", "twice.db", "-t", "T", "--format", "csv"}));
  EXPECT_NE(std::string::npos,
            out({"schema", "twice.db", "--as", "sql"}).find("\"NAME_2\" TEXT"));
}

}  // namespace
}  // namespace tabwerk::test
