// tabwerk schema.

#include "tests/cli/expected.h"
// What the tool makes of the example is C++.
#include "tests/cli/expected/schema_cpp.txt"
#include "tests/cli/json.h"
#include "tests/cli/tool_test.h"

namespace tabwerk::test {
namespace {

using ToolSchema = ToolTest;

TEST_F(ToolSchema, ListsColumnsWithTypesAndPlaces) {
  MakeMainFile();
  auto const run = RunToLook({"schema", "stock.db"});
  EXPECT_EQ(
      "TABLE\tCOLUMN\tTYPE\tBYTE\tBYTES\n"
      "ARTICLE\tID\tinteger\t0\t4\n"
      "ARTICLE\tFOLGE\tinteger\t4\t4\n"
      "ARTICLE\tSTATUS\tinteger\t8\t4\n"
      "ARTICLE\tNAME\tstring\t12\t4\n"
      "ARTICLE\tPRICE\treal\t16\t8\n"
      "EMPTY\tID\tinteger\t0\t4\n"
      "EMPTY\tNAME\tstring\t4\t4\n",
      run.out);
  EXPECT_EQ(0, run.exit_code);
  EXPECT_EQ("TABLE,COLUMN,TYPE,BYTE,BYTES\nEMPTY,ID,integer,0,4\n",
            Run({"schema", "stock.db", "-t", "EMPTY", "--format", "csv",
                 "--limit", "1"})
                .out);
}

// The script makes a database that has the same script.
TEST_F(ToolSchema, ScriptMakesTheSameTables) {
  MakeExample();
  std::string const script = Run({"schema", "geo.db", "--as", "script"}).out;
  EXPECT_EQ(Expected("schema_script", script), script);
  folder_.MakeFolder("other");
  folder_.Make("other/geo.script", script);
  auto const run = Run({"build", "geo.script", "-C", "other"});
  EXPECT_EQ(0, run.exit_code) << run.err;
  EXPECT_EQ(script, Run({"schema", "other/geo.db", "--as", "script"}).out);
}

TEST_F(ToolSchema, JsonSaysWhatIsInTheFile) {
  MakeMainFile();
  auto const document =
      Json::Parse(RunToLook({"schema", "stock.db", "--as", "json"}).out);
  EXPECT_EQ("stock.db", document["file"]);
  ASSERT_EQ(2U, document["tables"].Size());
  auto const article = document["tables"][0];
  EXPECT_EQ("ARTICLE", article["name"]);
  EXPECT_EQ(24, article["record_bytes"]);
  EXPECT_EQ(Json::Parse(R"({"name": "PRICE", "type": "real",
                                      "offset": 16, "bytes": 8})"),
            article["columns"][4]);
}

TEST_F(ToolSchema, QuotesNames) {
  MakeDatabase("a.db", {PlainHeader::kCurrent,
                        1000,
                        {{"A\"|B", "integer ID,string N\"|M\n", {}}}});
  EXPECT_EQ(
      "CREATE TABLE \"A\"\"|B\" (\n"
      "  \"ID\" INTEGER,\n"
      "  \"N\"\"|M\" TEXT\n"
      ");\n",
      RunToLook({"schema", "a.db", "--as", "sql"}).out);
  EXPECT_NE(std::string::npos, Run({"schema", "a.db", "--as", "md"})
                                   .out.find("| `N\"\\|M` | string | 4 | 4 |"));
  std::string const header = Run({"schema", "a.db", "--as", "cpp"}).out;
  EXPECT_NE(std::string::npos,
            header.find("namespace table_A_B {\n"
                        "inline constexpr char kTable[] = \"A\\042|B\";\n"))
      << header;
}

TEST_F(ToolSchema, WritesTextForPeople) {
  MakeExample();
  std::string const text = Run({"schema", "geo.db", "--as", "md"}).out;
  EXPECT_EQ(Expected("schema_md", text), text);
  std::string const sql = Run({"schema", "geo.db", "--as", "sql"}).out;
  EXPECT_EQ(Expected("schema_sql", sql), sql);
}

TEST_F(ToolSchema, WritesConstantsForPrograms) {
  MakeExample();
  auto const run = RunToLook(
      {"schema", "geo.db", "-t", "CURRENCY", "--as", "cpp", "--ids", "CODE"});
  EXPECT_EQ(Expected("schema_cpp", run.out), run.out);
  namespace currency = db_geo::table_CURRENCY;
  EXPECT_STREQ("CURRENCY", currency::kTable);
  EXPECT_STREQ("NAME", currency::kNAME);
  EXPECT_EQ(978, currency::kId_EUR);
}

TEST_F(ToolSchema, RefusesWhatMakesNoSense) {
  MakeMainFile();
  auto const refusal = [this](std::vector<std::string> options) {
    options.insert(options.begin(), {"schema", "stock.db"});
    auto const run = RunToLook(options);
    EXPECT_EQ(2, run.exit_code);
    EXPECT_EQ("", run.out);
    return run.err.substr(0, run.err.find(';'));
  };
  EXPECT_EQ("stock.db: error[TW106]: there is no table NONE",
            refusal({"-t", "NONE"}));
  EXPECT_EQ("tabwerk: error[TW101]: --format is for --as rows",
            refusal({"--as", "sql", "--format", "csv"}));
  EXPECT_EQ("tabwerk: error[TW101]: --ids is for --as cpp",
            refusal({"--ids", "NAME"}));
  EXPECT_EQ(
      "stock.db: error[TW107]: no table has a string column PRICE beside its "
      "ID",
      refusal({"--as", "cpp", "--ids", "PRICE"}));
  EXPECT_EQ(3, Run({"schema", "none.db"}).exit_code);
}

TEST_F(ToolSchema, ReadsTablesWhoseRowsAreDamaged) {
  MakeMainFile();
  std::string const whole = Run({"schema", "stock.db"}).out;
  std::string bytes = folder_.Content("stock.db");
  bytes[bytes.find("real PRICE\n") + 15] = '\x7F';
  folder_.Make("stock.db", bytes);
  EXPECT_EQ(whole, RunToLook({"schema", "stock.db"}).out);
  folder_.Make("stock.db", bytes.substr(0, 40));
  EXPECT_EQ(4, RunToLook({"schema", "stock.db"}).exit_code);
}

}  // namespace
}  // namespace tabwerk::test
