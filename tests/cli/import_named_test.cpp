// Rows of CSV, TSV and JSON with names of columns.
#include "tests/cli/expected.h"
#include "tests/cli/tool_test.h"

namespace tabwerk::test {
namespace {

class ToolImportNamed : public ToolTest {
 protected:
  ToolImportNamed() { MakeStock(); }

  ToolRun Import(std::string const& file, std::string const& content,
                 std::vector<std::string> const& more = {}) const {
    folder_.Make(file, content);
    std::vector<std::string> arguments = {"import",    file, "stock.db",
                                          "STOCK.UDB", "-t", "ARTICLE"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Run(arguments);
  }
  // The rows behind the one that was there.
  std::string NewRows() const {
    std::string const rows = Rows("STOCK.UDB", "ARTICLE");
    return rows.substr(rows.find(']') + 1);
  }
};

TEST_F(ToolImportNamed, CsvIsTakenByName) {
  auto const run = Import("rows.csv",
                          "\xEF\xBB\xBFPRICE,NAME\r\n"
                          "0.25,\"Pipe, 3\"\" long\"\r\n\r\n"
                          ",\"two\nlines\"\r\n-1e3,Ä😀");
  EXPECT_EQ("rows.csv: 3 rows added to ARTICLE in STOCK.UDB\n", run.out);
  EXPECT_EQ("", run.err);
  EXPECT_EQ(0, run.exit_code);
  EXPECT_EQ(
      "[20001|4|0|Pipe, 3\" long|0.25][20002|5|0|two\nlines|0]"
      "[20003|6|0|Ä😀|-1000]",
      NewRows());
}

TEST_F(ToolImportNamed, TakesLinesThatEndInEither) {
  for (auto const& [file, lines] :
       std::vector<std::pair<std::string, std::vector<std::string>>>{
           {"rows.csv", {"NAME,PRICE", "\"a\rb\",1", "c,2"}},
           {"rows.tsv", {"NAME\tPRICE", "a\\rb\t1", "c\t2"}},
           {"rows.ndjson",
            {"{\"NAME\": \"a\\rb\", \"PRICE\": 1}",
             "{\"NAME\": \"c\", \"PRICE\": 2}"}}}) {
    for (char const* const end : {"\n", "\r\n"}) {
      MakeUserFile();
      std::filesystem::remove(folder_.folder() / "STOCK.idx");
      std::string content;
      for (std::string const& line : lines) content += line + end;
      auto const run = Import(file, content);
      EXPECT_EQ(0, run.exit_code) << run.err;
      EXPECT_EQ("[20001|4|0|a\rb|1][20002|5|0|c|2]", NewRows()) << file;
    }
  }
}

TEST_F(ToolImportNamed, TsvTakesWhatShowPrints) {
  EXPECT_EQ(0, Run({"add", "stock.db", "STOCK.UDB", "-t", "ARTICLE",
                    "NAME=a\\b\tc\nd"})
                   .exit_code);
  auto const shown = Run({"show", "stock.db", "STOCK.UDB", "-t", "ARTICLE",
                          "--columns", "ID,NAME,PRICE", "--format", "tsv"});
  std::filesystem::remove(folder_.folder() / "STOCK.UDB");
  MakeUserFile();
  auto const run = Import("rows.tsv", shown.out);
  EXPECT_EQ(0, run.exit_code) << run.err;
  EXPECT_EQ(
      "[20001|4|0|Bolt_NEW|0.25][20002|5|0|Nut_NEW|1.5]"
      "[20003|6|0|Washer_NEW|0.5][20004|7|0|a\\b\tc\nd|0]",
      NewRows());
}

TEST_F(ToolImportNamed, JsonIsTakenByName) {
  EXPECT_EQ(0, Import("rows.json",
                      "[{\"NAME\": \"\\u00C4\\n\\\"x\\\"\", \"PRICE\": 0.1},\n"
                      " {\"PRICE\": 3, \"NAME\": null}, {}]")
                   .exit_code);
  EXPECT_EQ("[20001|4|0|Ä\n\"x\"|0.1][20002|5|0|_NEW|3][20003|6|0|_NEW_NEW|0]",
            NewRows());
}

TEST_F(ToolImportNamed, NdjsonIsTakenByName) {
  auto const run = RunWith(
      {{"import", "-", "stock.db", "STOCK.UDB", "-t", "ARTICLE", "--from",
        "ndjson"},
       "{\"NAME\": \"a\", \"PRICE\": 1}\r\n\n{\"NAME\": \"b\", \"PRICE\": 2}",
       {}});
  EXPECT_EQ("standard-input: 2 rows added to ARTICLE in STOCK.UDB\n", run.out);
  EXPECT_EQ("[20001|4|0|a|1][20002|5|0|b|2]", NewRows());
}

TEST_F(ToolImportNamed, Utf16WithAMarkIsTaken) {
  MakeUnits("rows.csv", "NAME;PRICE\nÄ;1\n");
  auto const run = Run({"import", "rows.csv", "stock.db", "STOCK.UDB", "-t",
                        "ARTICLE", "--separator", ";"});
  EXPECT_EQ(0, run.exit_code) << run.err;
  EXPECT_EQ("[20001|4|0|Ä|1]", NewRows());
}

TEST_F(ToolImportNamed, TellsTheCharacterOfEachBadValue) {
  auto const run = Import("rows.csv",
                          "NAME,PRICE\nÄ,cheap\nb,1,2\nc\n\"d\"e,1\nf,1\n"
                          "g," +
                              std::string(3, '9') + "x\n");
  EXPECT_EQ(Expected("import_named_rejected", run.err), run.err);
  EXPECT_EQ(6, run.exit_code);
  EXPECT_EQ("[20001|4|0|f|1]", NewRows());
  EXPECT_EQ("NAME,PRICE\nÄ,cheap\nb,1,2\nc\n\"d\"e,1\ng,999x\n",
            folder_.Content("rows.csv.rejected"));
}

TEST_F(ToolImportNamed, TellsThePlaceOfBadJsonValues) {
  auto const run = Import("rows.json",
                          "[\n  {\"NAME\": \"a\", \"PRICE\": \"x\"},\n"
                          "  {\"NAME\": {\"b\": [1]}, \"PRICE\": 1},\n"
                          "  {\"NAME\": true},\n"
                          "  {\"NAME\": \"c\", \"NAME\": \"d\"},\n"
                          "  {\"NAME\": \"e\", \"PRICE\": 1}\n]\n");
  EXPECT_EQ(Expected("import_named_json", run.err), run.err);
  EXPECT_EQ(6, run.exit_code);
  EXPECT_EQ("[20001|4|0|e|1]", NewRows());
  // What was set aside can be corrected and imported.
  std::string const rejected = folder_.Content("rows.json.rejected");
  EXPECT_EQ(0U, rejected.find("[\n{\"NAME\": \"a\", \"PRICE\": \"x\"},\n"));
  EXPECT_TRUE(rejected.ends_with("\n]\n"));
}

// The line behind it was named.
TEST_F(ToolImportNamed, TellsTheLineOfAMissingJsonValue) {
  auto const run = Import("a.ndjson", "{\"NAME\": \"x\"}\n{\"NAME\":\n{}\n");
  EXPECT_EQ(0U, run.err.find("a.ndjson:2:9: error[TW633]: ")) << run.err;
}

TEST_F(ToolImportNamed, RefusesInputThatDoesNotFitAsAWhole) {
  std::string const before = Rows("STOCK.UDB", "ARTICLE");
  std::string answers;
  for (auto const& [file, content] :
       {std::pair<std::string, std::string>{"a.csv", "NAME,Price\nx,1\n"},
        {"b.csv", "NAME,PRICE,NAME\nx,1,y\n"},
        {"c.csv", "NAME\nx\n\"open\nand on\n"},
        {"d.csv", "NAME\nx\xFFy\n"},
        {"e.json", "{\"NAME\": \"x\"}"},
        {"f.json", "[{\"NAME\": \"x\"},\n {\"NAME\" 1}]"},
        {"g.json", "[1]"},
        {"h.ndjson", "{\"NAME\": \"x\"}\n[]\n"},
        {"i.json", "[{\"COLOR\": 1}]"},
        {"j.json", ""}}) {
    auto const run = Import(file, content);
    EXPECT_NE(0, run.exit_code) << file;
    EXPECT_FALSE(folder_.Exists(file + ".rejected")) << file;
    answers += run.err;
  }
  EXPECT_EQ(Expected("import_named_refused", answers), answers);
  EXPECT_EQ(before, Rows("STOCK.UDB", "ARTICLE"));
}

TEST_F(ToolImportNamed, WarnsOfMissingColumns) {
  auto const run = Import("rows.csv", "NAME\nx\n");
  EXPECT_EQ(
      "rows.csv:1: warning[TW636]: there is no column PRICE; its values are "
      "0\n",
      run.err);
  EXPECT_EQ(0, run.exit_code);
  EXPECT_EQ("[20001|4|0|x|0]", NewRows());
}

TEST_F(ToolImportNamed, DryRunChangesNothing) {
  folder_.Make("rows.csv", "NAME,PRICE\na,1\nb,x\n");
  std::string const before = Snapshot();
  auto const run = Run({"import", "rows.csv", "stock.db", "STOCK.UDB", "-t",
                        "ARTICLE", "--dry-run"});
  EXPECT_EQ(
      "rows.csv: 1 row added to ARTICLE in STOCK.UDB, 1 row rejected to "
      "rows.csv.rejected (dry run: nothing was changed)\n",
      run.out);
  EXPECT_EQ(6, run.exit_code);
  EXPECT_EQ(before, Snapshot());
}

TEST_F(ToolImportNamed, RejectsATextWithANul) {
  auto const run = Import("rows.ndjson", "{\"NAME\": \"An\\u0000na\"}\n");
  EXPECT_NE(std::string::npos, run.err.find("warning[TW602]: there is a NUL "
                                            "character in the text for "))
      << run.err;
  EXPECT_EQ(6, run.exit_code);
}

TEST_F(ToolImportNamed, TheFormOfRowsByPositionCanBeNamed) {
  MakeUnits("rows.csv", "0;0;0;Rivet;0.1\n");
  auto const run = Run({"import", "rows.csv", "stock.db", "STOCK.UDB", "-t",
                        "ARTICLE", "--from", "rows"});
  EXPECT_EQ(0, run.exit_code) << run.err;
  EXPECT_EQ("[20001|4|0|Rivet|0.1]", NewRows());
}

}  // namespace
}  // namespace tabwerk::test
