// tabwerk stats.

#include "tests/cli/json.h"
#include "tests/cli/tool_test.h"

namespace tabwerk::test {
namespace {

class ToolStats : public ToolTest {
 protected:
  Json Stats(std::vector<std::string> arguments, int exit_code = 0) const {
    arguments.insert(arguments.begin(), "stats");
    arguments.insert(arguments.end(), {"--format", "json"});
    auto const run = RunToLook(arguments);
    EXPECT_EQ(exit_code, run.exit_code) << run.err;
    return Json::Parse(run.out);
  }
};

constexpr char kIdAndTexts[] = "integer ID,string A,string B\n";

TEST_F(ToolStats, CountsRowsAndTexts) {
  MakeDatabase("a.db",
               {PlainHeader::kCurrent,
                1000,
                {{"T", kIdAndTexts, {"1|abc|de", "2|abc|", "3|längster|de"}},
                 {"U", "integer ID\n", {"1"}}}});
  Json const rows = Stats({"a.db"});
  ASSERT_EQ(2U, rows.Size());
  EXPECT_EQ(Json::Parse(R"({"PART": "main", "TABLE": "T", "ROWS": 3,
                "ROW_BYTES": 36, "TEXTS": 6, "TEXT_BYTES": 48,
                "UNUSED_UNITS": 0, "REPEATED": 2, "REPEATED_UNITS": 7,
                "LONGEST": 8, "ROOM": 8087, "ROW": 2, "COLUMN": "A"})"),
            rows[0]);
  EXPECT_EQ(0, rows[1]["TEXTS"]);
  EXPECT_TRUE(rows[1]["LONGEST"].IsNull());
  EXPECT_TRUE(rows[1]["ROW"].IsNull());
}

TEST_F(ToolStats, NumbersTheRowsOfBothFiles) {
  MakeStock();
  Json const rows = Stats({"stock.db", "STOCK.UDB"});
  ASSERT_EQ(4U, rows.Size());
  EXPECT_EQ("user", rows[2]["PART"]);
  EXPECT_EQ(1, rows[2]["ROWS"]);
  EXPECT_EQ(2, rows[2]["ROW"]);
  EXPECT_EQ(6, rows[2]["LONGEST"]);
}

// A place of a text is moved to another one, which two rows share then.
TEST_F(ToolStats, FindsUnitsThatNoRowRefersTo) {
  MakeDatabase("a.db", {PlainHeader::kCurrent,
                        1000,
                        {{"T", "string A\n", {"first", "second", "third"}}}});
  std::string bytes = folder_.Content("a.db");
  // The places 0, 6 and 13 stand before the texts.
  auto const places = bytes.find(std::string("\0\0\0\0\6\0\0\0\15\0\0\0", 12));
  ASSERT_NE(std::string::npos, places);
  auto const with_places = [&](char second, char third) {
    bytes[places + 4] = second;
    bytes[places + 8] = third;
    folder_.Make("a.db", bytes);
    Json const row = Stats({"a.db"})[0];
    return row["TEXTS"].Dump() + " " + row["UNUSED_UNITS"].Dump();
  };
  EXPECT_EQ("3 0", with_places(6, 13));
  EXPECT_EQ("2 7", with_places(0, 13));
  EXPECT_EQ("1 13", with_places(0, 0));
  // Within the first text, and outside of all.
  EXPECT_EQ("2 7", with_places(2, 13));
  EXPECT_EQ("2 6", with_places(6, 100));
}

TEST_F(ToolStats, TellsATextOverTheLimit) {
  MakeDatabase("a.db", {PlainHeader::kCurrent,
                        1000,
                        {{"T", "string A\n", {"x", std::string(9000, 'y')}}}});
  Json const row = Stats({"a.db"})[0];
  EXPECT_EQ(9000, row["LONGEST"]);
  EXPECT_EQ(-905, row["ROOM"]);
  EXPECT_EQ(1, row["ROW"]);
}

// A line of names stood before the error, in the file of -o as well.
TEST_F(ToolStats, HandsOutNothingOfAFileThatCannotBeRead) {
  MakeStock();
  auto const run =
      RunToLook({"stats", "stock.db", "none.UDB", "-o", "stats.tsv"});
  EXPECT_EQ("", run.out);
  EXPECT_EQ(0U, run.err.find("none.UDB: error[TW110]: ")) << run.err;
  EXPECT_EQ(3, run.exit_code);
}

TEST_F(ToolStats, GoesOnBehindADamagedTable) {
  MakeMainFile();
  std::string bytes = folder_.Content("stock.db");
  bytes[bytes.find("real PRICE\n") + 15] = '\x7F';
  folder_.Make("stock.db", bytes);
  auto const run = RunToLook({"stats", "stock.db", "--columns", "TABLE"});
  EXPECT_EQ("TABLE\nEMPTY\n", run.out);
  EXPECT_EQ(0U, run.err.find("stock.db: error[TW124]: table ARTICLE is "));
  EXPECT_EQ(4, run.exit_code);
  EXPECT_EQ(3, RunToLook({"stats", "none.db"}).exit_code);
}

}  // namespace
}  // namespace tabwerk::test
