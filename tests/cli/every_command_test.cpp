// What holds for every command that takes a database: looking changes no file,
// a damaged one is refused, and a large one is no trouble.
#include <map>
#include <set>

#include "tests/cli/expressions.h"
#include "tests/cli/tool_test.h"
#include "tests/support/places.h"

namespace tabwerk::test {
namespace {

struct DatabaseCommand {
  char const* name;
  bool looks;
  std::vector<std::string> arguments;
  // What it says of the large database.
  char const* answer;
};

std::vector<DatabaseCommand> DatabaseCommands() {
  return {
      {"info", true, {"stock.db", "STOCK.UDB"}, "15000 rows"},
      {"schema", true, {"stock.db"}, "ARTICLE\tPRICE\treal"},
      {"show", true, {"stock.db", "STOCK.UDB", "ARTICLE"}, "\n15000\t15000\t"},
      {"dump", true, {"stock.db", "-t", "ARTICLE"}, "\n15000;15000;"},
      {"find", true, {"N", "stock.db", "STOCK.UDB"}, "\t15000\tNAME\t0\tN"},
      {"stats", true, {"stock.db", "STOCK.UDB"}, "main\tARTICLE\t15000\t"},
      {"diff",
       true,
       {"stock.db", "stock.db", "--user-after", "STOCK.UDB"},
       "1 row added, 15000 rows the same"},
      {"check", true, {"stock.db", "STOCK.UDB"}, "1 table with 15001 rows"},
      {"languages", true, {"stock.db"}, "ARTICLE\tNAME\t15000\t0\t100 %"},
      {"export", false, {"stock.db", "-d", "source"}, "1 table, 15000 rows"},
      {"convert", false, {"stock.db", "-o", "new.db"}, "15000 rows -> 1 table"},
      {"import",
       false,
       {"rows.csv", "stock.db", "STOCK.UDB", "-t", "ARTICLE"},
       "1 row added"},
      {"add",
       false,
       {"stock.db", "STOCK.UDB", "-t", "ARTICLE", "NAME=Pin"},
       "added at place 15003"},
      {"set",
       false,
       {"stock.db", "STOCK.UDB", "-t", "ARTICLE", "--id", "20000", "PRICE=7"},
       "row 20000 changed"},
      {"move",
       false,
       {"stock.db", "STOCK.UDB", "-t", "ARTICLE", "--id", "1", "--last"},
       "moved to place 15003"},
      {"deactivate",
       false,
       {"stock.db", "STOCK.UDB", "-t", "ARTICLE", "--id", "1"},
       "row 1 switched off"},
      {"activate",
       false,
       {"stock.db", "STOCK.UDB", "-t", "ARTICLE", "--id", "1"},
       "row 1 switched on at place 15003"},
  };
}

class ToolEveryCommand : public ToolTest {
 protected:
  static std::vector<std::string> Words(DatabaseCommand const& command) {
    std::vector<std::string> words = command.arguments;
    words.insert(words.begin(), command.name);
    return words;
  }

  void MakeLarge() const {
    std::string const definition =
        "integer ID,integer FOLGE,integer STATUS,string NAME,real PRICE\n";
    std::vector<std::string> rows;
    for (int i = 1; i <= 15000; ++i) {
      std::string const number = std::to_string(i);
      rows.push_back(number + "|" + number + "|0|#TS(N" + number + "¬M" +
                     number + ")TS~|1");
    }
    MakeDatabase(
        "stock.db",
        {PlainHeader::kCurrent, 1000, {{"ARTICLE", definition, rows}}});
    MakeDatabase("STOCK.UDB",
                 {PlainHeader::kCurrent,
                  2000,
                  {{"ARTICLE", definition, {"20000|15001|0|Washer|0.5"}}}});
  }
};

TEST_F(ToolEveryCommand, IsTried) {
  // These take no database.
  std::set<std::string> tried = {"build", "completion", "explain", "help",
                                 "lint"};
  for (auto const& command : DatabaseCommands()) tried.insert(command.name);
  std::set<std::string> all;
  for (auto const& entry :
       std::filesystem::directory_iterator(ProjectPath("cli"))) {
    std::string const file = entry.path().filename().string();
    auto const match = Matched(file, "cmd_([a-z]+)\\.cpp");
    if (!match.empty()) all.insert(match[1]);
  }
  EXPECT_EQ(all, tried);
}

// Without an index file, and with one that is older than the files: opening
// the database would make it anew.
TEST_F(ToolEveryCommand, ChangesNoFileWhereItLooks) {
  MakeStock();
  for (bool const with_index : {false, true}) {
    if (with_index) {
      auto const index = EncodeIndex(
          {{1, 2}, {{{}, {-1}, {}}, {{{1, 0}, {2, 1}}, {-1, 0, 1}, {0, 0}}}});
      folder_.Make("STOCK.idx", std::string(index.begin(), index.end()));
    }
    for (auto const& command : DatabaseCommands()) {
      if (!command.looks) continue;
      auto const run = RunToLook(Words(command));
      EXPECT_GE(1, run.exit_code) << command.name << run.err;
    }
  }
}

TEST_F(ToolEveryCommand, RefusesADamagedFile) {
  MakeStock();
  folder_.Make("rows.csv", "NAME\nRivet\n");
  std::string const whole = folder_.ReadBytes("stock.db");
  std::string bad = whole;
  bad[bad.find("real PRICE\n") + 15] = '\x7F';
  for (bool const is_cut : {false, true}) {
    folder_.Make("stock.db", is_cut ? whole.substr(0, 90) : bad);
    for (auto const& command : DatabaseCommands()) {
      auto const run = RunToLook(Words(command));
      // Columns are known where rows are not.
      bool const is_readable =
          !is_cut && std::string_view("schema") == command.name;
      EXPECT_EQ(is_readable ? 0 : 4, run.exit_code) << command.name << run.err;
      bool const is_told =
          (run.out + run.err).find("error[TW") != std::string::npos;
      EXPECT_EQ(!is_readable, is_told) << command.name << run.out;
    }
  }
}

TEST_F(ToolEveryCommand, TakesALargeDatabase) {
  MakeLarge();
  folder_.Make("rows.csv", "NAME\nRivet\n");
  for (auto const& command : DatabaseCommands()) {
    auto const run = Run(Words(command));
    bool const differs = std::string_view("diff") == command.name;
    EXPECT_EQ(differs ? 1 : 0, run.exit_code) << command.name << run.err;
    EXPECT_NE(std::string::npos, run.out.find(command.answer))
        << command.name << run.out.substr(0, 300);
  }
  auto const run = Run({"lint", "stock.script", "-C", "source"});
  EXPECT_EQ("", run.out + run.err);
  EXPECT_EQ(0U, Run({"build", "stock.script", "-C", "source"})
                    .out.find("stock.db: built with 1 table, 15000 rows\n"));
}

}  // namespace
}  // namespace tabwerk::test
