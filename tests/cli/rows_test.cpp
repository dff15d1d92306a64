// add, set, activate, deactivate and move.
#include <array>
#include <map>
#include <sstream>

#include "tests/cli/expected.h"
#include "tests/cli/tool_test.h"

namespace tabwerk::test {
namespace {

class ToolRows : public ToolTest {
 protected:
  // A command for the table ARTICLE of the stock.
  ToolRun Change(std::string const& command,
                 std::vector<std::string> const& more) const {
    std::vector<std::string> arguments = {command, "stock.db", "STOCK.UDB",
                                          "-t", "ARTICLE"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Run(arguments);
  }

  // "2 1 20000!": IDs in their order, "!" behind one that is switched off.
  std::string Order() const {
    auto const run =
        RunToLook({"show", "stock.db", "STOCK.UDB", "-t", "ARTICLE",
                   "--columns", "FOLGE,ID,STATUS", "--format", "csv"});
    std::istringstream lines(run.out);
    std::string line;
    std::getline(lines, line);
    std::multimap<int, std::string> rows;
    while (std::getline(lines, line)) {
      std::size_t const second = line.find(',') + 1;
      std::size_t const third = line.find(',', second) + 1;
      bool const active = line.substr(third) == "0";
      rows.emplace(std::stoi(line), line.substr(second, third - second - 1) +
                                        (active ? "" : "!"));
    }
    std::string order;
    for (auto const& [place, id] : rows)
      order += (order.empty() ? "" : " ") + id;
    return order;
  }
};

TEST_F(ToolRows, AddGivesTheNextIdAndTheLastPlace) {
  MakeStock();
  auto const run = Change("add", {"NAME=#TS(Pin¬Stift)TS~", "PRICE=0.1"});
  EXPECT_EQ("STOCK.UDB: ARTICLE row 20001 added at place 4\n", run.out);
  EXPECT_EQ(0, run.exit_code) << run.err;
  EXPECT_EQ("[20000|3|0|Washer|0.5][20001|4|0|#TS(Pin¬Stift)TS~|0.1]",
            Rows("STOCK.UDB", "ARTICLE"));
}

TEST_F(ToolRows, RefusesATableWithoutTheColumnsThatItNeeds) {
  for (auto const& [definition, word, message] :
       std::vector<std::array<std::string, 3>>{
           {"integer ID,date DAY\n", "ID=1",
            "stock.db: error[TW128]: column DAY of table ARTICLE has no type"},
           {"string NAME\n", "NAME=Bolt",
            "STOCK.UDB: error[TW627]: table ARTICLE: there is no integer "
            "column ID"}}) {
    for (char const* const file : {"stock.db", "STOCK.UDB"}) {
      MakeDatabase(
          file, {PlainHeader::kCurrent, 1000, {{"ARTICLE", definition, {}}}});
    }
    auto const run = Change("add", {word});
    EXPECT_EQ(0U, run.err.find(message)) << run.err;
    EXPECT_NE(0, run.exit_code);
  }
}

// An index stayed beside the user file although nothing was changed.
TEST_F(ToolRows, ARefusalLeavesNoIndexThatWasNotThere) {
  MakeStock();
  std::string const before = Snapshot();
  EXPECT_EQ(6, Change("add", {"PRICE=much"}).exit_code);
  EXPECT_EQ(2, Change("set", {"PRICE=1", "--id", "1"}).exit_code);
  EXPECT_EQ(0, Change("activate", {"--id", "1"}).exit_code);
  EXPECT_EQ(before, Snapshot());
  // One that was there stays.
  EXPECT_EQ(0, Change("move", {"--id", "2", "--first"}).exit_code);
  std::string const index = folder_.Content("STOCK.idx");
  EXPECT_EQ(6, Change("add", {"PRICE=much"}).exit_code);
  EXPECT_EQ(index, folder_.Content("STOCK.idx"));
}

TEST_F(ToolRows, AddMakesAMissingUserFileAndTakesMissingColumns) {
  MakeMainFile();
  EXPECT_EQ(0, Change("add", {}).exit_code);
  // The library takes the empty name of the new row itself for a taken one.
  EXPECT_EQ("[20000|3|0|_NEW|0]", Rows("STOCK.UDB", "ARTICLE"));
}

TEST_F(ToolRows, AddSaysWhenANameIsTaken) {
  MakeStock();
  EXPECT_EQ(
      "STOCK.UDB: ARTICLE row 20001 added at place 4, NAME as \"Nut_NEW\" "
      "because the other is taken\n",
      Change("add", {"NAME=Nut"}).out);
}

TEST_F(ToolRows, AddRefusesWhatDoesNotFit) {
  MakeStock();
  std::string answers;
  for (std::string const word : {"NAME", "=x", "PRICE=cheap", "name=x", "ID=7",
                                 "FOLGE=1", "STATUS=1", "PRICE=1e400"}) {
    auto const run = Change("add", {word});
    EXPECT_NE(0, run.exit_code) << word;
    answers += run.err;
  }
  answers += Change("add", {"NAME=a", "NAME=b"}).err;
  answers += Change("add", {"NAME=" + std::string(8096, 'x')}).err;
  EXPECT_EQ(Expected("add_refusals", answers), answers);
  EXPECT_EQ("[20000|3|0|Washer|0.5]", Rows("STOCK.UDB", "ARTICLE"));
}

TEST_F(ToolRows, SetChangesARowOfTheUser) {
  MakeStock();
  auto const run =
      Change("set", {"--id", "20000", "NAME=Scheibe", "PRICE=1.25"});
  EXPECT_EQ(
      "STOCK.UDB: ARTICLE row 20000 changed: NAME \"Washer\" to \"Scheibe\", "
      "PRICE \"0.5\" to \"1.25\"\n",
      run.out);
  EXPECT_EQ("[20000|3|0|Scheibe|1.25]", Rows("STOCK.UDB", "ARTICLE"));
}

TEST_F(ToolRows, SetWithoutAChangeSavesNothing) {
  MakeStock();
  std::string const before = folder_.ReadBytes("STOCK.UDB");
  auto const run = Change("set", {"--id", "20000", "NAME=Washer"});
  EXPECT_EQ("STOCK.UDB: ARTICLE row 20000, as it was: nothing to save\n",
            run.out);
  EXPECT_EQ(before, folder_.ReadBytes("STOCK.UDB"));
}

TEST_F(ToolRows, SetRefusesShippedAndUnknownRows) {
  MakeStock();
  std::string const main_file = folder_.ReadBytes("stock.db");
  std::string const user_file = folder_.ReadBytes("STOCK.UDB");
  auto const shipped = Change("set", {"--id", "1", "NAME=x"});
  EXPECT_NE(std::string::npos,
            shipped.err.find("error[TW621]: table ARTICLE: row 1 is a shipped "
                             "one; its values stand in stock.db"))
      << shipped.err;
  EXPECT_EQ(2, shipped.exit_code);
  auto const unknown = Change("set", {"--id", "77", "NAME=x"});
  EXPECT_NE(std::string::npos, unknown.err.find("error[TW620]"));
  EXPECT_EQ(2, unknown.exit_code);
  EXPECT_EQ(main_file, folder_.ReadBytes("stock.db"));
  EXPECT_EQ(user_file, folder_.ReadBytes("STOCK.UDB"));
}

TEST_F(ToolRows, DeactivateSwitchesShippedAndUserRowsOffForGood) {
  MakeStock();
  std::string const main_file = folder_.ReadBytes("stock.db");
  EXPECT_EQ("STOCK.UDB: ARTICLE row 1 switched off\n",
            Change("deactivate", {"--id", "1"}).out);
  EXPECT_EQ("1! 2 20000", Order());
  EXPECT_EQ(0, Change("deactivate", {"--id", "20000"}).exit_code);
  EXPECT_EQ("20000! 1! 2", Order());
  EXPECT_EQ(
      "STOCK.UDB: ARTICLE row 1 switched off, as it was: nothing to save\n",
      Change("deactivate", {"--id", "1"}).out);
  EXPECT_EQ(main_file, folder_.ReadBytes("stock.db"));
}

TEST_F(ToolRows, ActivateBringsARowBackInTheLastPlace) {
  MakeStock();
  EXPECT_EQ(0, Change("deactivate", {"--id", "1"}).exit_code);
  EXPECT_EQ("STOCK.UDB: ARTICLE row 1 switched on at place 3\n",
            Change("activate", {"--id", "1"}).out);
  EXPECT_EQ("2 20000 1", Order());
}

TEST_F(ToolRows, ActivateRefusesARowThatIsShippedSwitchedOff) {
  MakeDatabase("stock.db", {PlainHeader::kCurrent,
                            1000,
                            {{"ARTICLE",
                              "integer ID,integer FOLGE,integer STATUS,string "
                              "NAME,real PRICE\n",
                              {"1|0|1|Bolt|1"}}}});
  auto const run = Change("activate", {"--id", "1"});
  EXPECT_NE(std::string::npos, run.err.find("stock.db: error[TW626]"))
      << run.err;
  EXPECT_EQ(2, run.exit_code);
  EXPECT_FALSE(folder_.Exists("STOCK.UDB"));
}

TEST_F(ToolRows, MoveOrdersShippedAndUserRows) {
  MakeStock();
  EXPECT_EQ("STOCK.UDB: ARTICLE row 20000 moved to place 1\n",
            Change("move", {"--id", "20000", "--first"}).out);
  EXPECT_EQ("20000 1 2", Order());
  EXPECT_EQ(0, Change("move", {"--id", "1", "--last"}).exit_code);
  EXPECT_EQ("20000 2 1", Order());
  EXPECT_EQ(0, Change("move", {"--id", "1", "--before", "2"}).exit_code);
  EXPECT_EQ("20000 1 2", Order());
  EXPECT_EQ(0, Change("move", {"--id", "20000", "--after", "1"}).exit_code);
  EXPECT_EQ("1 20000 2", Order());
  EXPECT_EQ(
      "STOCK.UDB: ARTICLE row 1 moved to place 1, as it was: nothing to "
      "save\n",
      Change("move", {"--id", "1", "--after", "1"}).out);
}

TEST_F(ToolRows, MoveRefusesRowsWithoutAPlace) {
  MakeStock();
  EXPECT_EQ(0, Change("deactivate", {"--id", "2"}).exit_code);
  for (std::vector<std::string> const& words :
       {std::vector<std::string>{"--id", "2", "--first"},
        {"--id", "1", "--after", "2"}}) {
    auto const run = Change("move", words);
    EXPECT_NE(std::string::npos, run.err.find("error[TW625]")) << run.err;
    EXPECT_EQ(2, run.exit_code);
  }
  EXPECT_EQ(2, Change("move", {"--id", "1"}).exit_code);
  EXPECT_EQ(2, Change("move", {"--id", "1", "--first", "--last"}).exit_code);
}

// The index keeps no place 0 for more than one row: the others come with the
// place that they are shipped with.
TEST_F(ToolRows, RowsThatAreSwitchedOffTakeNoPlaceFromOthers) {
  MakeDatabase("stock.db",
               {PlainHeader::kCurrent,
                1000,
                {{"ARTICLE",
                  "integer ID,integer FOLGE,integer STATUS,string "
                  "NAME,real PRICE\n",
                  {"1|1|0|a|1", "2|2|0|b|1", "3|3|0|c|1", "4|4|0|d|1"}}}});
  EXPECT_EQ(0, Change("deactivate", {"--id", "2"}).exit_code);
  EXPECT_EQ(0, Change("deactivate", {"--id", "4"}).exit_code);
  EXPECT_EQ(0, Change("move", {"--id", "3", "--first"}).exit_code);
  EXPECT_EQ("4! 3 1 2!", Order());
}

TEST_F(ToolRows, DryRunsChangeNothing) {
  MakeStock();
  for (std::vector<std::string> const& words :
       {std::vector<std::string>{"add", "NAME=x"},
        {"set", "--id", "20000", "NAME=x"},
        {"deactivate", "--id", "1"},
        {"move", "--id", "1", "--last"}}) {
    std::string const before = Snapshot();
    std::vector<std::string> more(words.begin() + 1, words.end());
    more.push_back("--dry-run");
    auto const run = Change(words.front(), more);
    EXPECT_EQ(0, run.exit_code) << run.err;
    EXPECT_NE(std::string::npos,
              run.out.find("(dry run: nothing was changed)\n"));
    EXPECT_EQ(before, Snapshot());
  }
}

TEST_F(ToolRows, SayWhatStandsInTheWay) {
  MakeStock();
  folder_.SetReadOnly("STOCK.UDB", true);
  for (char const* const dry_run : {"--dry-run", "--quiet"}) {
    auto const run = Change("add", {"NAME=x", dry_run});
    EXPECT_EQ(
        "STOCK.UDB: error[TW113]: the file is read-only; make it writable "
        "first\n",
        run.err);
    EXPECT_EQ(3, run.exit_code);
  }
  folder_.SetReadOnly("STOCK.UDB", false);
  EXPECT_EQ(2, Run({"add", "stock.db", "STOCK.UDB", "-t", "NONE"}).exit_code);
  auto const wrong = Run({"add", "stock.db", "stock.udb", "-t", "ARTICLE"});
  EXPECT_EQ(0U, wrong.err.find("stock.udb: error[TW104]")) << wrong.err;
}

TEST_F(ToolRows, RefuseDamagedFiles) {
  MakeStock();
  std::string const whole = folder_.ReadBytes("stock.db");
  for (std::size_t size = 0; size < whole.size(); size += 37) {
    folder_.Make("stock.db", whole.substr(0, size));
    std::string const user_file = folder_.ReadBytes("STOCK.UDB");
    auto const run = Change("deactivate", {"--id", "20000"});
    EXPECT_LE(3, run.exit_code) << size << run.out;
    EXPECT_GE(4, run.exit_code) << size << run.err;
    EXPECT_EQ(user_file, folder_.ReadBytes("STOCK.UDB"));
  }
}

TEST_F(ToolRows, BackupKeepsOrderAndStatus) {
  MakeStock();
  EXPECT_EQ(0, Change("move", {"--id", "2", "--first"}).exit_code);
  std::string const index = folder_.ReadBytes("STOCK.idx");
  EXPECT_EQ(0, Change("move", {"--id", "1", "--first", "--backup"}).exit_code);
  EXPECT_EQ(index, folder_.ReadBytes("STOCK.idx.bak"));
  EXPECT_TRUE(folder_.Exists("STOCK.UDB.bak"));
}

TEST_F(ToolRows, NoBackupStaysWhereNothingWasChanged) {
  MakeStock();
  EXPECT_EQ(0, Change("move", {"--id", "2", "--first"}).exit_code);
  auto const names = folder_.Names();
  EXPECT_EQ(2, Change("set", {"--id", "99", "NAME=x", "--backup"}).exit_code);
  EXPECT_EQ(names, folder_.Names());
  auto const run = Change("move", {"--id", "2", "--first", "--backup"});
  EXPECT_NE(std::string::npos, run.out.find("nothing to save\n")) << run.out;
  EXPECT_EQ(names, folder_.Names());
}

TEST_F(ToolRows, TextsOfAllScriptsGoInAndOut) {
  MakeStock();
  std::string const text = "Ärger ΔΗ Жук 零件 قطعة 😀";
  EXPECT_EQ(0, Change("add", {"NAME=" + text}).exit_code);
  EXPECT_NE(std::string::npos, Rows("STOCK.UDB", "ARTICLE").find(text));
}

TEST_F(ToolRows, ManyRowsMoveInOneGo) {
  std::vector<std::string> rows;
  for (int i = 1; i <= 5000; ++i) {
    std::string const number = std::to_string(i);
    rows.push_back(number + "|" + number + "|0|N" + number + "|1");
  }
  MakeDatabase("stock.db", {PlainHeader::kCurrent,
                            1000,
                            {{"ARTICLE",
                              "integer ID,integer FOLGE,integer STATUS,string "
                              "NAME,real PRICE\n",
                              rows}}});
  EXPECT_EQ(0, Change("move", {"--id", "5000", "--first"}).exit_code);
  EXPECT_EQ(0U, Order().find("5000 1 2 3 "));
}

TEST_F(ToolRows, SaysThatATableTakesNoRows) {
  auto const refusal = [this](std::string const& definition) {
    MakeDatabase("odd.db",
                 {PlainHeader::kCurrent, 1000, {{"T", definition, {}}}});
    folder_.Make("rows.csv", "CODE\nx\n");
    auto const run = RunToLook({"add", "odd.db", "ODD.UDB", "-t", "T"});
    EXPECT_EQ(2, run.exit_code);
    EXPECT_EQ(run.err, RunToLook({"import", "rows.csv", "odd.db", "ODD.UDB",
                                  "-t", "T", "-q"})
                           .err);
    return run.err.substr(0, run.err.find(';'));
  };
  EXPECT_EQ(
      "odd.db: error[TW628]: table T has two columns CODE, and values find the "
      "first one only",
      refusal("integer ID,integer CODE,string CODE\n"));
  EXPECT_EQ(
      "odd.db: error[TW627]: column STATUS of table T is no integer, as new "
      "rows need it",
      refusal("integer ID,string STATUS,string CODE\n"));
}

}  // namespace
}  // namespace tabwerk::test
