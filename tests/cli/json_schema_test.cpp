#include <sstream>
#include <utility>

#include "tests/cli/json.h"
#include "tests/cli/tool_test.h"

namespace tabwerk::test {
namespace {

using ToolJson = ToolTest;

TEST_F(ToolJson, IsAsItsSchemaSays) {
  MakeExample();
  MakeStock();
  folder_.Make("CUT.UDB", folder_.Content("stock.db").substr(0, 40));
  folder_.Make("EMPTY.UDB", "");
  for (std::vector<std::string> const& files :
       {std::vector<std::string>{"geo.db", "GEO.UDB"},
        {"stock.db", "STOCK.UDB"},
        {"CUT.UDB", "EMPTY.UDB", "none.db"}}) {
    std::vector<std::string> words = {"info", "--format", "json"};
    words.insert(words.end(), files.begin(), files.end());
    EXPECT_EQ("", AgainstSchema("info", Run(words).out));
  }
  EXPECT_EQ("", AgainstSchema("schema",
                              Run({"schema", "geo.db", "--as", "json"}).out));
}

TEST_F(ToolJson, OfFindStatsAndCheckIsAsItsSchemaSays) {
  MakeStock();
  MakeDatabase("twice.db", {PlainHeader::kCurrent,
                            1000,
                            {{"A",
                              "integer ID,string NAME\n",
                              {"1|#TS(Bolt¬Bolzen)TS~", "1|#TS(Nut"}},
                             {"B", "integer ID\n", {}}}});
  for (auto const& [schema, words] :
       {std::pair<char const*, std::vector<std::string>>{
            "find", {"find", "t", "twice.db"}},
        {"find", {"find", "a", "stock.db", "STOCK.UDB"}},
        {"stats", {"stats", "twice.db"}},
        {"stats", {"stats", "stock.db", "STOCK.UDB"}},
        {"check", {"check", "twice.db"}}}) {
    std::vector<std::string> arguments = words;
    arguments.insert(arguments.end(), {"--format", "json"});
    auto const run = RunToLook(arguments);
    EXPECT_EQ("", AgainstSchema(schema, run.out)) << run.err;
    EXPECT_LE(1U, Json::Parse(run.out).Size()) << run.out;
  }
}

// Every line as docs/schema/problem.json says; "severity code file|…".
std::string Records(std::string const& lines) {
  std::string found;
  std::istringstream stream(lines);
  for (std::string line; std::getline(stream, line);) {
    EXPECT_EQ("", AgainstSchema("problem", line));
    Json const record = Json::Parse(line);
    found += record["severity"].Text() + " " + record["code"].Text() + " " +
             record["file"].Text() + "|";
  }
  return found;
}

TEST_F(ToolJson, HoldsTheProblemsWhereTheOutputIsJson) {
  MakeStock();
  std::string bytes = folder_.Content("stock.db");
  bytes[bytes.find("real PRICE\n") + 15] = '\x7F';
  folder_.Make("bad.db", bytes);
  for (char const* const format : {"json", "ndjson"}) {
    auto const run = RunToLook(
        {"find", "x", "bad.db", "--format", format, "--color=always"});
    EXPECT_EQ("error TW124 bad.db|", Records(run.err)) << run.err;
    EXPECT_EQ(4, run.exit_code);
  }
  EXPECT_EQ("error TW110 none.db|",
            Records(Run({"diff", "--format=json", "none.db", "stock.db"}).err));
  EXPECT_EQ("error TW132 stock.db|",
            Records(Run({"show", "stock.db", "ARTICLE", "--id", "7", "--format",
                         "json"})
                        .err));
  // What is wrong with the command line, too, however early.
  for (char const* const wrong : {"--nonsense", "--limit=x", "--row"}) {
    auto const run = Run({"show", "--format", "ndjson", "stock.db", wrong});
    EXPECT_EQ("error TW101 null|", Records(run.err)) << wrong << run.err;
    EXPECT_EQ(2, run.exit_code);
  }
  // A format in another place is none.
  EXPECT_EQ(0U, Run({"find", "--format", "none.db", "--literal"})
                    .err.find("tabwerk: error[TW101]: "));
  EXPECT_EQ(0U, Run({"info", "none.db"}).err.find("none.db: error[TW110]: "));
}

TEST_F(ToolJson, HoldsFindings) {
  folder_.Make("a.script", "tabledef T\nINTEGER ID\n");
  auto const run = RunToLook({"lint", "a.script", "--format", "ndjson"});
  EXPECT_EQ("", run.err);
  EXPECT_NE("", Records(run.out));
}

TEST_F(ToolJson, IsComparedInEveryPart) {
  EXPECT_EQ("/file: is 1\n: has rest\n: lacks \"tables\"\n",
            AgainstSchema("schema", R"({"file": 1, "rest": 2})"));
  EXPECT_EQ(
      "/tables/0/columns/0/offset: is -1\n"
      "/tables/0/columns/0/type: is \"long\"\n",
      AgainstSchema("schema",
                    R"({"file": "", "tables": [{"name": "", "record_bytes": 4,
                        "columns": [{"name": "", "type": "long", "bytes": 4,
                                     "offset": -1}]}]})"));
  EXPECT_EQ("no JSON: {", AgainstSchema("schema", "{"));
}

}  // namespace
}  // namespace tabwerk::test
