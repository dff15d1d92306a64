// tabwerk info: verdict, languages and the form for programs.

#include "tests/cli/json.h"
#include "tests/cli/tool_test.h"

namespace tabwerk::test {
namespace {

class ToolCard : public ToolTest {
 protected:
  Json Card(std::vector<std::string> arguments, int exit_code = 0) const {
    arguments.insert(arguments.begin(), "info");
    arguments.insert(arguments.end(), {"--format", "json"});
    auto const run = RunToLook(arguments);
    EXPECT_EQ(exit_code, run.exit_code) << run.err;
    return Json::Parse(run.out)["files"];
  }

  void DamageArticle() const {
    std::string bytes = folder_.Content("stock.db");
    bytes[bytes.find("real PRICE\n") + 15] = '\x7F';
    folder_.Make("stock.db", bytes);
  }
};

TEST_F(ToolCard, SaysTheSameToPrograms) {
  MakeStock();
  Json const files = Card({"stock.db", "STOCK.UDB"});
  ASSERT_EQ(2U, files.Size());
  Json const card = files[0];
  EXPECT_EQ("stock.db", card["file"]);
  EXPECT_EQ("main", card["role"]);
  EXPECT_EQ("version 2025 with time", card["header"]);
  EXPECT_EQ(2025, card["version"]);
  EXPECT_EQ(1000, card["time"]);
  EXPECT_EQ("1970-01-01 00:16:40 UTC", card["written"]);
  EXPECT_EQ(folder_.Content("stock.db").size(), card["bytes"]);
  EXPECT_EQ(2, card["rows"]);
  EXPECT_EQ(3, card["languages"]);
  EXPECT_TRUE(card["index"].IsNull());
  EXPECT_EQ("sound", card["verdict"]);
  ASSERT_EQ(2U, card["tables"].Size());
  EXPECT_EQ(Json::Parse(R"({"name": "EMPTY", "rows": 0, "damaged": false,
                "columns": [{"name": "ID", "type": "integer"},
                            {"name": "NAME", "type": "string"}]})"),
            card["tables"][1]);
  EXPECT_EQ("user", files[1]["role"]);
  EXPECT_EQ(1, files[1]["rows"]);
  EXPECT_EQ(1, files[1]["languages"]);
  EXPECT_EQ("STOCK.idx", files[1]["index"]);
  EXPECT_EQ("missing; made at the next opening", files[1]["index_state"]);
}

TEST_F(ToolCard, TellsADamagedFile) {
  MakeMainFile();
  DamageArticle();
  Json const card = Card({"stock.db"}, 4)[0];
  EXPECT_EQ("damaged", card["verdict"]);
  EXPECT_TRUE(card["tables"][0]["damaged"].IsTrue());
  EXPECT_TRUE(card["tables"][0]["rows"].IsNull());
  EXPECT_EQ(5U, card["tables"][0]["columns"].Size());
  EXPECT_EQ(Json::Parse("false"), card["tables"][1]["damaged"]);
}

TEST_F(ToolCard, TellsAFileWithoutTables) {
  folder_.Make("EMPTY.UDB", "");
  Json const card = Card({"EMPTY.UDB"})[0];
  EXPECT_EQ("empty", card["verdict"]);
  EXPECT_TRUE(card["languages"].IsNull());
  EXPECT_TRUE(card["written"].IsNull());
  EXPECT_NE(std::string::npos,
            Run({"info", "EMPTY.UDB"}).out.find("\n  texts    none\n"));
}

TEST_F(ToolCard, TellsACutList) {
  MakeMainFile();
  folder_.Make("stock.db", folder_.Content("stock.db").substr(0, 40));
  Json const card = Card({"stock.db"}, 4)[0];
  EXPECT_EQ("damaged", card["verdict"]);
  EXPECT_EQ(Json::Parse("[]"), card["tables"]);
}

TEST_F(ToolCard, CountsTheLanguagesOfTheExample) {
  MakeExample();
  EXPECT_EQ(7, Card({"geo.db"})[0]["languages"]);
  EXPECT_NE(std::string::npos,
            Run({"info", "geo.db"}).out.find("\n  texts    in 7 languages\n"));
}

TEST_F(ToolCard, GoesIntoAFile) {
  MakeMainFile();
  auto const run = Run({"info", "stock.db", "-o", "card.txt"});
  EXPECT_EQ("", run.out);
  EXPECT_EQ(Run({"info", "stock.db"}).out, folder_.Content("card.txt"));
}

}  // namespace
}  // namespace tabwerk::test
