#include "tests/cli/expected.h"
#include "tests/cli/tool_test.h"
#include "tests/support/hex_file.h"
#include "tests/support/random_run.h"
#include "tests/support/random_table.h"

namespace tabwerk::test {
namespace {

constexpr char kExportedRows[] =
    "integer ID,integer FOLGE,integer STATUS,string NAME,real PRICE,string "
    "NOTE\n";

class ToolExport : public ToolTest {
 protected:
  ToolRun Export(std::string const& file) const {
    return RunToLook({"export", file, "-d", "source", "--dry-run"}).exit_code ==
                   0
               ? Run({"export", file, "-d", "source"})
               : Run({"export", file, "-d", "refused"});
  }

  // "same" when what the export builds is the file, time stamp aside; else
  // what the export says.
  std::string RoundTrip(std::string const& file,
                        std::string const& script) const {
    auto const run = Export(file);
    if (run.exit_code != 0) {
      EXPECT_FALSE(folder_.Exists("refused"));
      return run.err;
    }
    auto const built = Run({"build", script, "-C", "source"});
    EXPECT_EQ(0, built.exit_code) << built.err;
    std::string const before = WithoutStamp(folder_.ReadBytes(file));
    std::string const after = WithoutStamp(folder_.ReadBytes("source/" + file));
    std::filesystem::remove_all(folder_.folder() / "source");
    return before == after ? "same" : "other bytes";
  }

  // The round trip of a table with those rows.
  std::string OfRows(std::vector<std::string> const& rows,
                     char const* definition = kExportedRows) const {
    MakeDatabase("stock.db",
                 {PlainHeader::kCurrent, 1000, {{"T", definition, rows}}});
    return RoundTrip("stock.db", "stock.script");
  }
};

TEST_F(ToolExport, RebuildsTheExample) {
  MakeExample();
  auto const run = Run({"export", "geo.db", "GEO.UDB", "-d", "source"});
  EXPECT_EQ(
      "source/geo.script: rebuilds geo.db with 4 tables, 1094 rows, with 4 "
      "data files\n"
      "source/geo-user.script: rebuilds GEO.UDB with 4 tables, 0 rows, with 0 "
      "data files\n",
      run.out);
  EXPECT_EQ(0, run.exit_code) << run.err;
  std::string const script = folder_.Content("source/geo.script");
  EXPECT_EQ(Expected("export_script", script), script);
  for (auto const& [script_name, file] :
       {std::pair<std::string, std::string>{"geo.script", "geo.db"},
        {"geo-user.script", "GEO.UDB"}}) {
    EXPECT_EQ(0, Run({"build", script_name, "-C", "source"}).exit_code);
    EXPECT_EQ(WithoutStamp(folder_.ReadBytes(file)),
              WithoutStamp(folder_.ReadBytes("source/" + file)))
        << file;
  }
}

TEST_F(ToolExport, RebuildsTheFilesOfTheTests) {
  folder_.Make("current.db", HexFile("current_2025"));
  folder_.Make("USER.UDB", HexFile("user_2025"));
  EXPECT_EQ("same", RoundTrip("current.db", "current.script"));
  EXPECT_EQ("same", RoundTrip("USER.UDB", "USER.script"));
}

TEST_F(ToolExport, RefusesOlderForms) {
  for (std::string const name :
       {"headerless_2014", "version_2016", "version_2018"}) {
    folder_.Make("old.db", HexFile(name));
    EXPECT_EQ("old.db: error[TW152]: the file has the form of " +
                  name.substr(name.size() - 4) +
                  ", and \"tabwerk build\" makes another one; bring it into "
                  "the current form first, with \"tabwerk convert\"\n",
              RoundTrip("old.db", "old.script"));
  }
}

TEST_F(ToolExport, CarriesWhatLooksDifficult) {
  EXPECT_EQ(
      "same",
      OfRows({"1|1|0|a,b;c|0.1|", "-2147483648|0|1| blanks |-0|\tTab,",
              "2147483647|0|0|one \" inside|1e300|two \" in \" side, comma",
              "4|0|0|#TS(Yes¬Ja, ja)TS~|4.9e-324|#TS(open at the end, comma",
              "5|0|0|\r|inf|日本 😀 \x01\x1A", "6|0|0||-inf|", "|||||"}));
}

TEST_F(ToolExport, CarriesALineOf4095Characters) {
  std::string const text(4095 - 10 - 2, 'x');  // 1,0,0,"",0,"…"
  EXPECT_EQ("same", OfRows({"1|0|0||0|" + text.substr(2), "2|0|0|b|0|"}));
}

TEST_F(ToolExport, RefusesWithThePlace) {
  std::string const long_text(4096, 'x');
  MakeDatabase("stock.db",
               {PlainHeader::kCurrent,
                1000,
                {{"T",
                  kExportedRows,
                  {"7|0|0|fine|0|", "8|0|0|\"Bolt\"|0|", "9|0|0|two\nlines|0|",
                   "10|0|0|#TS(open|0|", "11|0|0||0|" + long_text,
                   "12|0|0|,\"#TS(\",|0|"}}}});
  auto const run = RunToLook({"export", "stock.db", "-d", "source"});
  EXPECT_EQ(Expected("export_refusals", run.err), run.err);
  EXPECT_EQ("", run.out);
  EXPECT_EQ(1, run.exit_code);
}

TEST_F(ToolExport, CountsRefusalsThatItDoesNotList) {
  std::string const said =
      OfRows(std::vector<std::string>(25, "1|0|0|two\nlines|0|"));
  EXPECT_NE(std::string::npos,
            said.find("stock.db: error[TW155]: 5 more like these; mend those "
                      "above first\n"))
      << said;
}

// Its place was made to lie behind the texts.
TEST_F(ToolExport, RefusesATextThatLiesOutside) {
  MakeDatabase("stock.db", {PlainHeader::kCurrent,
                            1000,
                            {{"T", "string A\n", {"first", "second"}}}});
  std::string bytes = folder_.Content("stock.db");
  auto const places = bytes.find(std::string("\0\0\0\0\6\0\0\0", 8));
  ASSERT_NE(std::string::npos, places);
  bytes[places + 4] = 100;
  folder_.Make("stock.db", bytes);
  for (std::vector<std::string> const& words :
       {std::vector<std::string>{"export", "stock.db", "-d", "source"},
        {"convert", "stock.db", "-o", "new.db"}}) {
    auto const run = RunToLook(words);
    EXPECT_EQ(0U, run.err.find("stock.db: error[TW614]: table T, row 1, "))
        << run.err;
  }
}

TEST_F(ToolExport, RefusesDefinitionsThatWouldNotReadBack) {
  EXPECT_EQ("same", OfRows({}, "integer ID,unknown X,string NAME\n"));
  EXPECT_NE(std::string::npos,
            OfRows({"1|a|b"}, "integer ID,string NAME,string NAME\n")
                .find("error[TW153]: table T, column NAME: another column has "
                      "its name"));
  EXPECT_NE(std::string::npos,
            OfRows({"1|"}, "integer ID,unknown X\n")
                .find("error[TW153]: table T, column X: it has no type"));
  EXPECT_NE(std::string::npos,
            OfRows({"1|a"}, "integer ID,string ENDDEF\n")
                .find("error[TW151]: table T, column \"ENDDEF\": "));
  EXPECT_NE(std::string::npos,
            OfRows({"1|a"}, "integer  ID,string NAME\n")
                .find("error[TW151]: table T, column \" ID\": "));
  EXPECT_NE(std::string::npos,
            OfRows({"1|a"}, "LONG ID,STRING NAME\n").find("stock.db:@"));
}

TEST_F(ToolExport, RefusesTablesThatAScriptCannotMake) {
  MakeDatabase("stock.db", {PlainHeader::kCurrent,
                            1000,
                            {{"A B", "integer ID\n", {}},
                             {"C", "integer ID\n", {}},
                             {"C", "integer ID\n", {}}}});
  auto const run = Run({"export", "stock.db", "-d", "source"});
  EXPECT_NE(std::string::npos, run.err.find("table A B: its name is no word"));
  EXPECT_NE(std::string::npos,
            run.err.find("table C: another table has its name"));
  EXPECT_EQ(1, run.exit_code);
}

TEST_F(ToolExport, CarriesATableVersionThatWasReadOnce) {
  MakeDatabase("stock.db", {PlainHeader::kCurrent,
                            1000,
                            {{"VERSION", "string VERSION\n", {"1.0", "1.1"}}}});
  EXPECT_EQ("same", RoundTrip("stock.db", "stock.script"));
}

TEST_F(ToolExport, CarriesNamesThatAreNoFileNames) {
  MakeDatabase("my stock.db", {PlainHeader::kCurrent,
                               1000,
                               {{"a/b", "integer ID\n", {"1"}},
                                {"A", "integer ID\n", {"2"}},
                                {"a", "integer ID\n", {"3"}},
                                {"x\ty", "integer ID\n", {"4"}}}});
  EXPECT_EQ(0, Run({"export", "my stock.db", "-d", "source"}).exit_code);
  EXPECT_EQ(0, Run({"build", "database.script", "-C", "source"}).exit_code);
  EXPECT_EQ(WithoutStamp(folder_.ReadBytes("my stock.db")),
            WithoutStamp(folder_.ReadBytes("source/database.db")));
}

TEST_F(ToolExport, RefusesAFileThatIsLaidOutOtherwise) {
  MakeMainFile();
  folder_.Make("stock.db", folder_.ReadBytes("stock.db") + "more");
  auto const run = RunToLook({"export", "stock.db", "-d", "source"});
  EXPECT_EQ(0U, run.err.find("stock.db:@")) << run.err;
  EXPECT_NE(std::string::npos, run.err.find("error[TW154]"));
  EXPECT_EQ(1, run.exit_code);
}

TEST_F(ToolExport, ReplacesFilesOnlyByForce) {
  MakeStock();
  EXPECT_EQ(0, Run({"export", "stock.db", "-d", "source"}).exit_code);
  std::string const script = folder_.Content("source/stock.script");
  folder_.Make("source/stock.script", "# mine\n");
  auto const run = RunToLook({"export", "stock.db", "-d", "source"});
  EXPECT_NE(std::string::npos, run.err.find("error[TW150]")) << run.err;
  EXPECT_EQ(2, run.exit_code);
  EXPECT_EQ(0,
            Run({"export", "stock.db", "-d", "source", "--force"}).exit_code);
  EXPECT_EQ(script, folder_.Content("source/stock.script"));
}

TEST_F(ToolExport, BackupKeepsTheFilesThatAreReplaced) {
  MakeStock();
  EXPECT_EQ(0, Run({"export", "stock.db", "-d", "source"}).exit_code);
  folder_.Make("source/stock.script", "# mine\n");
  auto const run =
      Run({"export", "stock.db", "-d", "source", "--force", "--backup"});
  EXPECT_NE(std::string::npos,
            run.out.find(" (backup: source/stock.script.bak, "))
      << run.out;
  EXPECT_EQ("# mine\n", folder_.Content("source/stock.script.bak"));
}

// The script was replaced when the data could not be.
TEST_F(ToolExport, ReplacesAllFilesOrNone) {
  MakeStock();
  EXPECT_EQ(0, Run({"export", "stock.db", "-d", "source"}).exit_code);
  folder_.Make("source/stock.script", "# mine\n");
  std::filesystem::remove(folder_.folder() / "source/stock.article.dat");
  folder_.MakeFolder("source/stock.article.dat");
  auto const run = RunToLook({"export", "stock.db", "-d", "source", "--force"});
  EXPECT_EQ(0U, run.err.find("source/stock.article.dat: error[TW111]: "))
      << run.err;
  EXPECT_EQ(3, run.exit_code);
}

TEST_F(ToolExport, RefusesAFolderThatCannotBeMade) {
  MakeStock();
  auto const run = RunToLook({"export", "stock.db", "-d", "STOCK.UDB"});
  EXPECT_EQ(
      "STOCK.UDB: error[TW115]: the folder cannot be made; check the "
      "permissions of the folder above it\n",
      run.err);
  EXPECT_EQ(3, run.exit_code);
}

TEST_F(ToolExport, RefusesANotANumberWithoutAText) {
  MakeDatabase("stock.db", {PlainHeader::kCurrent,
                            1000,
                            {{"T", "integer ID,real PRICE\n", {"3|-nan"}}}});
  auto const run = RunToLook({"export", "stock.db", "-d", "source"});
  EXPECT_EQ(
      "stock.db: error[TW613]: table T, row 0 (ID 3), column PRICE: it holds a "
      "not-a-number that no text stands for; store a number instead\n",
      run.err);
  EXPECT_EQ(1, run.exit_code);
}

TEST_F(ToolExport, SaysThatTheIndexStaysBehind) {
  MakeStock();
  folder_.Make("STOCK.idx", "");
  auto const run = Run({"export", "stock.db", "STOCK.UDB", "-d", "source"});
  EXPECT_NE(std::string::npos, run.err.find("STOCK.idx: warning[TW156]"))
      << run.err;
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolExport, RefusesDamagedFiles) {
  MakeMainFile();
  std::string const whole = folder_.ReadBytes("stock.db");
  for (std::size_t size = 0; size < whole.size(); size += 13) {
    folder_.Make("stock.db", whole.substr(0, size));
    auto const run = Run({"export", "stock.db", "-d", "source"});
    EXPECT_LE(3, run.exit_code) << size << run.err;
    EXPECT_GE(4, run.exit_code) << size << run.err;
    EXPECT_FALSE(folder_.Exists("source"));
  }
}

std::string RandomText(Random& random) {
  std::string text;
  for (int i = random.Between(0, 6); i > 0; --i) {
    text += random.PickOf({"a", ",", "b c", "\"", "#TS(", "¬", ")TS~", " ", "ä",
                           "😀", "\t", "#TS(x¬y)TS~", "Bolt"});
  }
  return text;
}

PlainDatabase RandomDatabase(Random& random) {
  PlainDatabase database;
  for (int table = random.Between(1, 3); table > 0; --table) {
    PlainTable made{"T" + std::to_string(table), RandomDefinition(random), {}};
    int const columns =
        1 + static_cast<int>(std::count(made.definition.begin(),
                                        made.definition.end(), ','));
    for (int row = random.Between(0, 2); row > 0; --row) {
      std::string values;
      std::size_t at = 0;
      for (int column = 0; column < columns; ++column) {
        if (column > 0) values += '|';
        bool const is_text = made.definition.compare(at, 6, "string") == 0;
        values += is_text ? RandomText(random) : RandomNumber(random, 9);
        at = made.definition.find(',', at) + 1;
      }
      made.rows.push_back(values);
    }
    database.tables.push_back(made);
  }
  return database;
}

TEST_F(ToolExport, RebuildsOrRefusesAnyDatabase) {
  std::uint32_t same = 0;
  std::uint32_t refused = 0;
  auto const databases = static_cast<std::uint32_t>(OperationCount(24));
  auto const first = FirstSeed();
  for (auto seed = first; seed < first + databases; ++seed) {
    SCOPED_TRACE("TABWERK_SEED=" + std::to_string(seed));
    Random random(seed);
    MakeDatabase("stock.db", RandomDatabase(random));
    std::string const result = RoundTrip("stock.db", "stock.script");
    if (result == "same") {
      ++same;
    } else {
      ++refused;
      EXPECT_EQ(0U, result.find("stock.db: error[TW")) << result;
      EXPECT_EQ(std::string::npos, result.find("TW154")) << result;
    }
  }
  if (databases < 24) return;  // too few to be of both kinds
  EXPECT_LE(databases / 6, same);
  EXPECT_LE(databases / 6, refused);
}

TEST_F(ToolExport, RebuildsALargeDatabase) {
  std::vector<std::string> rows;
  for (int i = 1; i <= Shortened(20000); ++i) {
    std::string const number = std::to_string(i);
    rows.push_back(number + "|" + number + "|0|#TS(Part " + number +
                   "¬Teil)TS~|0.1|");
  }
  EXPECT_EQ("same", OfRows(rows));
}

}  // namespace
}  // namespace tabwerk::test
