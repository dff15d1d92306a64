// tabwerk diff.
#include <algorithm>
#include <map>
#include <random>

#include "cli/diff_values.h"
#include "tests/cli/expected.h"
#include "tests/cli/json.h"
#include "tests/cli/tool_test.h"

namespace tabwerk::test {
namespace {

constexpr char kComparedRows[] =
    "integer ID,integer FOLGE,integer STATUS,string NAME,real PRICE\n";

class ToolDiff : public ToolTest {
 protected:
  void Make(std::string const& name, std::vector<PlainTable> const& tables,
            std::int64_t time_stamp = 1000) const {
    MakeDatabase(name, {PlainHeader::kCurrent, time_stamp, tables});
  }

  // Two databases that differ in most ways.
  void MakePair() const {
    Make("a.db",
         {{"ARTICLE",
           kComparedRows,
           {"1|1|0|#TS(Bolt¬Bolzen¬ボルト)TS~|0.25", "2|2|0|Nut|1.5",
            "3|3|0|Pin|2", "3|4|0|Second pin|3"}},
          {"OLD", "integer X\n", {"1", "2"}},
          {"SAME", "integer X\n", {"1", "2"}},
          {"SHAPE", "integer A,string B,integer C,integer D\n", {"1|x|2|3"}}});
    Make("b.db",
         {{"SHAPE", "string B,integer A,real C,integer E\n", {"y|1|2|3"}},
          {"SAME", "integer X\n", {"1", "2"}},
          {"NEW", "string Y\n", {"z"}},
          {"ARTICLE",
           kComparedRows,
           {"4|2|0|a, b\t\"c\"|0.1", "3|3|0|Pin|2",
            "1|1|1|#TS(Bolt¬Schraube¬ボルト¬بُرغي)TS~|0.25",
            "3|4|0|Third pin|3"}}});
  }

  Json AsJson(std::vector<std::string> const& arguments) const {
    std::vector<std::string> all = {"diff", "--format", "json"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    std::string const found = Run(all).out;
    EXPECT_EQ("", AgainstSchema("diff", found));
    return Json::Parse(found);
  }
};

TEST_F(ToolDiff, SaysThatNothingDiffers) {
  MakePair();
  auto const run = RunToLook({"diff", "a.db", "a.db"});
  EXPECT_EQ("a.db and a.db: no differences in 4 tables\n", run.out);
  EXPECT_EQ(0, run.exit_code);
  EXPECT_EQ("", Run({"diff", "a.db", "a.db", "-q"}).out);
}

TEST_F(ToolDiff, ShowsDifferencesLineByLine) {
  MakePair();
  auto const run = RunToLook({"diff", "a.db", "b.db"});
  EXPECT_EQ(Expected("diff_text", run.out), run.out);
  EXPECT_EQ("", run.err);
  EXPECT_EQ(1, run.exit_code);
}

TEST_F(ToolDiff, ShowsThemAsMarkdown) {
  MakePair();
  auto const run = Run({"diff", "a.db", "b.db", "--format", "md"});
  EXPECT_EQ(Expected("diff_markdown", run.out), run.out);
  EXPECT_EQ(1, run.exit_code);
}

TEST_F(ToolDiff, ColoursThem) {
  MakePair();
  auto const run = Run({"diff", "a.db", "b.db", "--color", "always", "--tables",
                        "ARTICLE", "--columns", "STATUS"});
  EXPECT_NE(std::string::npos,
            run.out.find("\x1B[33m~ ID 1: STATUS: 0 -> 1\x1B[0m\n"))
      << run.out;
}

TEST_F(ToolDiff, HandsOutWhatItsSchemaDescribes) {
  MakePair();
  Json const found = AsJson({"a.db", "b.db"});
  EXPECT_EQ(Expected("diff_json", found.Dump(1) + "\n"), found.Dump(1) + "\n");
  EXPECT_FALSE(found["equal"].IsTrue());
  EXPECT_EQ(5, found["tableCount"]);
  EXPECT_EQ(4, found["differentCount"]);
  EXPECT_TRUE(AsJson({"a.db", "a.db"})["equal"].IsTrue());
}

TEST_F(ToolDiff, ComparesWhatIsAskedFor) {
  MakePair();
  EXPECT_EQ(0, Run({"diff", "a.db", "b.db", "--tables", "SAME"}).exit_code);
  EXPECT_EQ(0,
            Run({"diff", "a.db", "b.db", "--tables", "SHAPE", "--columns", "A"})
                .exit_code);
  Json const names = AsJson(
      {"a.db", "b.db", "--tables", "ARTICLE", "--ignore", "STATUS,NAME"});
  EXPECT_EQ(
      Json::Parse(R"({"same": 3, "changed": 0, "removed": 1, "added": 1})"),
      names["tables"][0]["counts"]);
  auto const summary =
      Run({"diff", "a.db", "b.db", "--tables", "ARTICLE", "--summary"});
  EXPECT_EQ(
      "--- a.db\n+++ b.db\n\ntable ARTICLE\n  2 rows changed, 1 row removed, "
      "1 row added, 1 row the same\n\n1 of 1 table differs\n",
      summary.out);
  Json const few =
      AsJson({"a.db", "b.db", "--tables", "ARTICLE", "--limit", "1"});
  EXPECT_EQ(1U, few["tables"][0]["rows"].Size());
  EXPECT_EQ(2, few["tables"][0]["counts"]["changed"]);
}

TEST_F(ToolDiff, ComparesRowsByNumberWithoutIds) {
  MakePair();
  Json const found =
      AsJson({"a.db", "b.db", "--tables", "ARTICLE", "--ignore", "ID"});
  EXPECT_EQ("row", found["tables"][0]["key"]);
  EXPECT_EQ(0, found["tables"][0]["rows"][0]["key"]);
}

TEST_F(ToolDiff, ComparesEveryColumnOfOneName) {
  constexpr char kTwice[] = "integer ID,string NAME,real NAME\n";
  for (auto const& [file, row] :
       {std::pair("a.db", "1|Bolt|0.5"), std::pair("b.db", "1|Bolt|1.5")}) {
    MakeDatabase(file, {PlainHeader::kCurrent, 1000, {{"T", kTwice, {row}}}});
  }
  auto const run = RunToLook({"diff", "a.db", "b.db"});
  EXPECT_NE(std::string::npos, run.out.find("~ ID 1: NAME_2: 0.5 -> 1.5\n"))
      << run.out;
  EXPECT_EQ(1, run.exit_code);
}

TEST_F(ToolDiff, RefusesNamesThatThereAreNot) {
  MakePair();
  auto run = Run({"diff", "a.db", "b.db", "--tables", "article"});
  EXPECT_EQ(
      "a.db: error[TW106]: there is no table article; did you mean ARTICLE? "
      "the tables are ARTICLE, NEW, OLD, SAME, SHAPE\n",
      run.err);
  EXPECT_EQ("", run.out);
  EXPECT_EQ(2, run.exit_code);
  run = Run({"diff", "a.db", "b.db", "--tables", "SAME", "--ignore", "Y"});
  EXPECT_EQ("a.db: error[TW107]: there is no column Y; the columns are X\n",
            run.err);
  EXPECT_EQ(2, run.exit_code);
}

TEST_F(ToolDiff, HasAnExitCodeForEachFailure) {
  MakePair();
  EXPECT_EQ(3, Run({"diff", "a.db", "none.db"}).exit_code);
  EXPECT_EQ(2, Run({"diff", "a.db"}).exit_code);
  std::string bytes = folder_.ReadBytes("b.db");
  bytes[bytes.find("real PRICE\n") + 15] = '\x7F';
  folder_.WriteBytes("c.db", bytes);
  auto const run = Run({"diff", "a.db", "c.db"});
  EXPECT_EQ(4, run.exit_code);
  EXPECT_EQ("", run.out);
}

TEST_F(ToolDiff, WritesAFile) {
  MakePair();
  EXPECT_EQ(1, Run({"diff", "a.db", "b.db", "-o", "out.txt"}).exit_code);
  EXPECT_EQ(Run({"diff", "a.db", "b.db"}).out, folder_.ReadBytes("out.txt"));
  EXPECT_EQ(2, Run({"diff", "a.db", "b.db", "-o", "a.db"}).exit_code);
}

// Order and status of shipped rows stand in the index.
TEST_F(ToolDiff, SeesWhatTheIndexSays) {
  MakeStock();
  folder_.MakeFolder("other");
  for (char const* const name : {"stock.db", "STOCK.UDB"}) {
    folder_.WriteBytes(std::string("other/") + name, folder_.ReadBytes(name));
  }
  auto const index =
      EncodeIndex({{1000, 2000},
                   {{{}, {-1}, {}},
                    {{{1, 0}, {2, 1}, {20000, 2}}, {-1, 2, 1, 0}, {0, 1, 0}}}});
  folder_.WriteBytes("other/STOCK.idx",
                     std::string(index.begin(), index.end()));
  auto const run =
      RunToLook({"diff", "stock.db", "other/stock.db", "--user-before",
                 "STOCK.UDB", "--user-after", "other/STOCK.UDB"});
  EXPECT_EQ(
      "--- stock.db, STOCK.UDB\n"
      "+++ other/stock.db, other/STOCK.UDB\n\n"
      "table ARTICLE\n"
      "~ ID 1: FOLGE: 1 -> 3\n"
      "~ ID 2: STATUS: 0 -> 1\n"
      "~ ID 20000: FOLGE: 3 -> 1\n"
      "  3 rows changed\n\n"
      "1 of 2 tables differs\n",
      run.out);
  EXPECT_EQ(0, Run({"diff", "stock.db", "other/stock.db"}).exit_code);
}

TEST_F(ToolDiff, TheExampleIsTheSameAsItself) {
  MakeExample();
  EXPECT_EQ("geo.db and geo.db: no differences in 4 tables\n",
            Run({"diff", "geo.db", "geo.db"}).out);
}

TEST_F(ToolDiff, FindsTheOneDifferenceInManyRows) {
  constexpr int kRows = 100000;
  std::vector<std::string> rows;
  for (int i = 1; i <= kRows; ++i) {
    std::string const n = std::to_string(i);
    rows.push_back(n + "|" + n + "|0|#TS(Part " + n + "¬Teil " + n + ")TS~|1");
  }
  Make("a.db", {{"T", kComparedRows, rows}});
  rows[70000] = "70001|70001|0|#TS(Part 70001¬Stück)TS~|1";
  std::reverse(rows.begin(), rows.end());
  Make("b.db", {{"T", kComparedRows, rows}});
  EXPECT_EQ(
      "--- a.db\n+++ b.db\n\ntable T\n"
      "~ ID 70001: NAME, language 1: \"Teil 70001\" -> \"Stück\"\n"
      "  1 row changed, 99999 rows the same\n\n1 of 1 table differs\n",
      Run({"diff", "a.db", "b.db"}).out);
}

TEST_F(ToolDiff, SaysThatTheOutputIsLost) {
  MakePair();
  ToolCall call = {{"diff", "a.db", "b.db"}, "", {}};
  call.output = OutputTo::kFullDisk;
  auto const run = RunWith(call);
  EXPECT_NE(std::string::npos, run.err.find("TW120")) << run.err;
  EXPECT_EQ(3, run.exit_code);
}

// --- Random tables against plain maps ----------------------------------------

// Rows by ID and how many came with it before.
std::map<std::pair<int, int>, std::string> ByKey(
    std::vector<std::string> const& rows) {
  std::map<int, int> seen;
  std::map<std::pair<int, int>, std::string> keyed;
  for (std::string const& row : rows) {
    int const id = std::stoi(row);
    keyed[{id, ++seen[id]}] = row;
  }
  return keyed;
}

std::string PlainDiff(std::vector<std::string> const& before,
                      std::vector<std::string> const& after) {
  auto const left = ByKey(before);
  auto const right = ByKey(after);
  std::map<std::pair<int, int>, std::string> marks;
  for (auto const& [key, row] : left) {
    auto const partner = right.find(key);
    if (partner == right.end()) {
      marks[key] = "removed";
    } else if (partner->second != row) {
      marks[key] = "changed";
    }
  }
  for (auto const& [key, row] : right) {
    if (!left.contains(key)) marks[key] = "added";
  }
  std::string text;
  for (auto const& [key, mark] : marks) {
    text += mark + " " + std::to_string(key.first) + "." +
            std::to_string(key.second) + "\n";
  }
  return text;
}

TEST_F(ToolDiff, AgreesWithPlainMaps) {
  std::mt19937 random(20240107);
  for (int round = 0; round < 10; ++round) {
    std::vector<std::string> before;
    std::vector<std::string> after;
    for (auto* const rows : {&before, &after}) {
      for (auto n = random() % 30; n > 0; --n) {
        rows->push_back(std::to_string(static_cast<int>(random() % 20) - 3) +
                        "|" + std::string(random() % 3, 'x') + "|" +
                        std::to_string(random() % 2));
      }
    }
    Make("a.db", {{"T", "integer ID,string S,integer N\n", before}});
    Make("b.db", {{"T", "integer ID,string S,integer N\n", after}});
    Json const found = AsJson({"a.db", "b.db"});
    std::string text;
    Json const tables = found["tables"];
    for (std::size_t i = 0; i < tables.Size(); ++i) {
      Json const rows = tables[i]["rows"];
      for (std::size_t k = 0; k < rows.Size(); ++k) {
        Json const row = rows[k];
        text += row["change"].Text() + " " + row["key"].Dump() + "." +
                (row.Has("occurrence") ? row["occurrence"].Dump() : "1") + "\n";
      }
    }
    EXPECT_EQ(PlainDiff(before, after), text) << round;
  }
}

// --- Pieces of texts ---------------------------------------------------------

std::string Pieces(std::u16string_view before, std::u16string_view after) {
  std::string text;
  for (auto const& it : tool::ChangedPieces("C", before, after)) {
    if (!text.empty()) text += "; ";
    if (it.section) text += "s" + std::to_string(*it.section) + " ";
    if (it.language) text += std::to_string(*it.language) + " ";
    text += tool::CellText(it.before) + ">" + tool::CellText(it.after);
  }
  return text;
}

TEST(DiffPieces, AreThoseOfLanguages) {
  EXPECT_EQ("1 b>c", Pieces(u"#TS(a¬b)TS~", u"#TS(a¬c)TS~"));
  EXPECT_EQ("0 a>x; 1 b>y", Pieces(u"<#TS(a¬b)TS~>", u"<#TS(x¬y)TS~>"));
  EXPECT_EQ("1 >b", Pieces(u"#TS(a)TS~", u"#TS(a¬b)TS~"));
  EXPECT_EQ("1 b>", Pieces(u"#TS(a¬b)TS~", u"#TS(a)TS~"));
  EXPECT_EQ("s2 0 b>c", Pieces(u"#TS(a)TS~ #TS(b)TS~", u"#TS(a)TS~ #TS(c)TS~"));
}

TEST(DiffPieces, AreWholeTextsWhereMoreDiffers) {
  EXPECT_EQ("a>b", Pieces(u"a", u"b"));
  EXPECT_EQ("#TS(a)TS~>#TS(b)TS~!", Pieces(u"#TS(a)TS~", u"#TS(b)TS~!"));
  EXPECT_EQ("a>#TS(a)TS~", Pieces(u"a", u"#TS(a)TS~"));
  EXPECT_EQ("#TS(a>#TS(b", Pieces(u"#TS(a", u"#TS(b"));
}

}  // namespace
}  // namespace tabwerk::test
