// tabwerk languages.
#include <algorithm>
#include <sstream>

#include "tests/cli/expected.h"
#include "tests/cli/json.h"
#include "tests/cli/tool_test.h"

namespace tabwerk::test {
namespace {

constexpr char kColumns[] = "integer ID,string CODE,string NAME,string HINT\n";

class ToolLanguages : public ToolTest {
 protected:
  // Every state, in both files.
  void MakeMixed() const {
    MakeDatabase(
        "a.db",
        {PlainHeader::kCurrent,
         1000,
         {{"FIRST",
           kColumns,
           {"1|A|#TS(one¬eins¬un)TS~|plain",
            "2|B|#TS(two¬zwei)TS~ #TS(and¬und¬et)TS~|",
            "3|C|#TS(three¬¬trois)TS~|#TS(x¬y¬z¬four)TS~ and #TS(open¬offen",
            "4|D|Four|"}},
          {"NONE", "integer ID\n", {"1"}},
          {"SECOND", "string NAME\n", {"#TS(a¬b¬c)TS~"}}}});
    MakeDatabase("A.UDB", {PlainHeader::kCurrent,
                           2000,
                           {{"FIRST", kColumns, {"20000|E|#TS(mine)TS~|"}},
                            {"NONE", "integer ID\n", {}},
                            {"SECOND", "string NAME\n", {}}}});
  }
  std::string Out(std::vector<std::string> options) const {
    options.insert(options.begin(), {"languages", "a.db", "A.UDB"});
    auto const run = RunToLook(options);
    EXPECT_EQ("", run.err);
    EXPECT_EQ(0, run.exit_code);
    return run.out;
  }
};

TEST_F(ToolLanguages, ShowsAMatrix) {
  MakeMixed();
  std::string found;
  for (std::vector<std::string> const& options :
       {std::vector<std::string>{},
        {"--languages", "3"},
        {"--languages", "en,de,fr"},
        {"--languages", "2", "--format", "csv"},
        {"--languages", "de,en,fr", "--cells"}}) {
    found += "---" + testing::PrintToString(options) + "\n" + Out(options);
  }
  EXPECT_EQ(Expected("languages", found), found);
}

TEST_F(ToolLanguages, JsonIsAsItsSchemaSays) {
  MakeMixed();
  std::string const rows = Out({"--languages", "2", "--format", "json"});
  EXPECT_EQ("", AgainstSchema("languages", rows));
  auto const document = Json::Parse(rows);
  // Three columns and the totals, each with two languages and those beyond.
  EXPECT_EQ(Json::Parse(
                R"({"TABLE": "FIRST", "COLUMN": "NAME", "LANGUAGE": 1,
                    "NAME": null, "SECTIONS": 5, "COMPLETE": 3, "EMPTY": 1,
                    "MISSING": 1, "BLOCKED": 0, "UNCLOSED": 0, "SURPLUS": 0,
                    "PERCENT": 60.0})"),
            document[1]);
  EXPECT_TRUE(document[document.Size() - 1]["TABLE"].IsNull());
  std::string const cells = Out({"--cells", "--format", "json"});
  EXPECT_EQ("", AgainstSchema("languages-cells", cells));
  EXPECT_LE(5U, Json::Parse(cells).Size());
  // The check of schemas can fail.
  EXPECT_NE("", AgainstSchema("languages", cells));
}

TEST_F(ToolLanguages, FailsUnderAPercentage) {
  MakeMixed();
  auto const run = RunToLook(
      {"languages", "a.db", "--languages", "en,de,fr", "--fail-under", "75"});
  EXPECT_EQ(
      "a.db: error[TW530]: language 1 (de) is complete by 71.42 %, less than "
      "75 %; \"tabwerk languages --cells\" lists what is missing\n"
      "a.db: error[TW530]: language 2 (fr) is complete by 57.14 %, less than "
      "75 %; \"tabwerk languages --cells\" lists what is missing\n",
      run.err);
  EXPECT_EQ(1, run.exit_code);
  EXPECT_EQ(
      0, Run({"languages", "a.db", "--languages", "3", "--fail-under", "57.14"})
             .exit_code);
}

TEST_F(ToolLanguages, ShowsOneOfThem) {
  MakeMixed();
  std::string const all = Out({"--languages", "en,de,fr", "--cells"});
  std::string french;
  std::istringstream lines(all);
  for (std::string line; std::getline(lines, line);) {
    bool const is_head = line.starts_with("TABLE\t");
    if (is_head || line.find("\t2\tfr\t") != line.npos) french += line + "\n";
  }
  EXPECT_LT(2, std::count(french.begin(), french.end(), '\n'));
  for (char const* const language : {"fr", "2"}) {
    EXPECT_EQ(french, Out({"--languages", "en,de,fr", "--cells", "--language",
                           language}));
  }
  std::string const matrix =
      Out({"--languages", "en,de,fr", "--language", "fr"});
  EXPECT_EQ(0U, matrix.find("TABLE\tCOLUMN\tTEXTS\tPLAIN\tfr\tSURPLUS\n"))
      << matrix;
  auto const run = RunToLook({"languages", "a.db", "--languages", "en,de,fr",
                              "--language", "de", "--fail-under", "75"});
  EXPECT_EQ(0U, run.err.find("a.db: error[TW530]: language 1 (de) is "));
  EXPECT_EQ(1, std::count(run.err.begin(), run.err.end(), '\n'));
  for (char const* const none : {"it", "3", "99999999999999999999"}) {
    auto const refused = RunToLook(
        {"languages", "a.db", "--languages", "3", "--language", none});
    EXPECT_EQ("tabwerk: error[TW532]: there is no language " +
                  std::string(none) +
                  "; they are numbered from 0 to 2; --languages gives them "
                  "names\n",
              refused.err);
    EXPECT_EQ(2, refused.exit_code);
  }
}

TEST_F(ToolLanguages, RefusesNumbersThatMakeNoSense) {
  MakeMixed();
  for (char const* const number : {"0", "32769", "99999999999999999999"}) {
    auto const run = RunToLook({"languages", "a.db", "--languages", number});
    EXPECT_NE(std::string::npos, run.err.find("error[TW531]")) << run.err;
    EXPECT_EQ(2, run.exit_code);
  }
  EXPECT_EQ(2, Run({"languages", "a.db", "--fail-under", "101"}).exit_code);
}

// "de,,fr" called the second language fr.
TEST_F(ToolLanguages, RefusesNamesThatAreEmptyOrThereTwice) {
  MakeMixed();
  for (char const* const names : {"de,,fr", ",de", "de,", "de,fr,de", ""}) {
    auto const run = RunToLook({"languages", "a.db", "--languages", names});
    EXPECT_NE(std::string::npos, run.err.find("error[TW531]"))
        << names << run.err;
    EXPECT_EQ("", run.out);
    EXPECT_EQ(2, run.exit_code);
  }
}

TEST_F(ToolLanguages, GoesOnBehindADamagedTable) {
  MakeMixed();
  std::string bytes = folder_.ReadBytes("a.db");
  // The number of rows of SECOND, behind its definition.
  std::string const definition = "string NAME\n";
  std::size_t const at = bytes.rfind(definition) + definition.size() + 1;
  bytes[at + 3] = '\x7F';
  folder_.Make("a.db", bytes);
  auto const run = RunToLook({"languages", "a.db"});
  EXPECT_NE(std::string::npos, run.err.find("error[TW124]")) << run.err;
  EXPECT_EQ(4, run.exit_code);
  EXPECT_NE(std::string::npos, run.out.find("FIRST\tNAME")) << run.out;
  EXPECT_EQ(std::string::npos, run.out.find("SECOND")) << run.out;
}

TEST_F(ToolLanguages, SaysNothingOfADatabaseWithoutSections) {
  MakeDatabase(
      "a.db",
      {PlainHeader::kCurrent, 1000, {{"T", "string NAME\n", {"plain", ""}}}});
  auto const run = RunToLook({"languages", "a.db", "--fail-under", "100"});
  EXPECT_EQ("TABLE\tCOLUMN\tTEXTS\tPLAIN\tSURPLUS\n", run.out);
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolLanguages, TakesNamesInAnyScript) {
  MakeExample();
  std::string const names = "English,Deutsch,Français,Ελληνικά,العربية,日本語";
  auto const run = Run({"languages", "geo.db", "GEO.UDB", "--languages", names,
                        "--format", "ndjson", "-o", "out"});
  EXPECT_EQ(0, run.exit_code) << run.err;
  std::string const out = folder_.Content("out");
  EXPECT_NE(std::string::npos,
            out.find("\"LANGUAGE\": 4, \"NAME\": \"العربية\", "
                     "\"SECTIONS\": 292, \"COMPLETE\": 292, "))
      << out;
}

}  // namespace
}  // namespace tabwerk::test
