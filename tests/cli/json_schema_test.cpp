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
