// tabwerk find.

#include "tests/cli/json.h"
#include "tests/cli/tool_test.h"

namespace tabwerk::test {
namespace {

class ToolFind : public ToolTest {
 protected:
  // "PART TABLE ROW ID COLUMN LANGUAGE TEXT|…" of what is found.
  std::string Found(std::vector<std::string> const& arguments) const {
    std::vector<std::string> words = {"find"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    auto const run = RunToLook(words);
    std::string found = run.out.substr(run.out.find('\n') + 1);
    for (char& character : found) {
      if (character == '\t') character = ' ';
      if (character == '\n') character = '|';
    }
    return found + run.err;
  }
};

TEST_F(ToolFind, SaysWhereATextStands) {
  MakeStock();
  EXPECT_EQ("main ARTICLE 0 1 NAME 0 Bolt|main ARTICLE 0 1 NAME 1 Bolzen|",
            Found({"Bol", "stock.db", "STOCK.UDB"}));
  EXPECT_EQ("user ARTICLE 2 20000 NAME  Washer|",
            Found({"h.r$", "stock.db", "STOCK.UDB"}));
  EXPECT_EQ("main ARTICLE 0 1 NAME 2 ボルト|", Found({"ル", "stock.db"}));
  EXPECT_EQ("", Found({"nothing", "stock.db"}));
}

TEST_F(ToolFind, FindsATextThatIsTheSameInAllLanguagesOnce) {
  MakeStock();
  EXPECT_EQ("main ARTICLE 1 2 NAME  Nut|", Found({"Nut", "stock.db"}));
}

TEST_F(ToolFind, LooksIntoOneLanguageOrTheStoredTexts) {
  MakeStock();
  EXPECT_EQ("main ARTICLE 0 1 NAME 1 Bolzen|",
            Found({"Bol", "stock.db", "--language", "1"}));
  EXPECT_EQ("main ARTICLE 0 1 NAME  #TS(Bolt¬Bolzen¬ボルト)TS~|",
            Found({"¬Bolzen¬", "stock.db", "--language", "raw"}));
}

TEST_F(ToolFind, TakesWholeTextsAndTextsAsTheyStand) {
  MakeDatabase("a.db", {PlainHeader::kCurrent,
                        1000,
                        {{"T",
                          "string A,integer X,string B\n",
                          {"1.5 (new)|7|15", "x\n1.5|8|1x5"}},
                         {"U", "string B\n", {"1.5"}}}});
  EXPECT_EQ("main U 0  B  1.5|main T 1  B  1x5|",
            Found({"1.5", "a.db", "--whole", "-t", "U"}) +
                Found({"1.5", "a.db", "--whole", "-t", "T"}));
  EXPECT_EQ("main T 0  A  1.5 (new)|", Found({"5 (n", "a.db", "--literal"}));
  EXPECT_EQ("main T 0  A  1.5 (new)|main T 1  A  x\\n1.5|",
            Found({"1.5", "a.db", "--literal", "-t", "T"}));
}

TEST_F(ToolFind, RefusesABadPattern) {
  MakeStock();
  for (char const* const pattern : {"(", "a)(b", "[z-a]", "*", "\\"}) {
    auto const run = RunToLook({"find", pattern, "stock.db"});
    EXPECT_EQ(0U,
              run.err.find(std::string("tabwerk: error[TW134]: the pattern ") +
                           pattern + " cannot be used: "))
        << run.err;
    EXPECT_EQ("", run.out);
    EXPECT_EQ(2, run.exit_code);
  }
}

TEST_F(ToolFind, GoesOnBehindADamagedTable) {
  MakeDatabase("a.db", {PlainHeader::kCurrent,
                        1000,
                        {{"T", "integer ID,real PRICE\n", {"1|2"}},
                         {"U", "string B\n", {"text"}}}});
  std::string bytes = folder_.Content("a.db");
  bytes[bytes.find("real PRICE\n") + 15] = '\x7F';
  folder_.Make("a.db", bytes);
  auto const run = RunToLook({"find", "text", "a.db", "--format", "json"});
  auto const rows = Json::Parse(run.out);
  ASSERT_EQ(1U, rows.Size());
  EXPECT_EQ("U", rows[0]["TABLE"]);
  EXPECT_TRUE(rows[0]["LANGUAGE"].IsNull());
  EXPECT_EQ("TW124", Json::Parse(run.err)["code"]);
  EXPECT_EQ(4, run.exit_code);
}

// Rows of every table are found where they stand, however many there are.
TEST_F(ToolFind, FindsRowsOfALargeTable) {
  PlainTable table = {"T", "integer ID,string NAME\n", {}};
  for (int i = 0; i < 20000; ++i) {
    std::string const number = std::to_string(i);
    table.rows.push_back(number + "|#TS(row " + number + "¬Zeile " + number +
                         ")TS~");
  }
  MakeDatabase("a.db", {PlainHeader::kCurrent, 1000, {table}});
  EXPECT_EQ(
      "main T 1999 1999 NAME 1 Zeile 1999|main T 11999 11999 NAME 1 Zeile "
      "11999|",
      Found({"Zeile 1?1999$", "a.db"}));
  auto const all = Json::Parse(
      Run({"find", "", "a.db", "--columns", "ROW", "--format", "json"}).out);
  EXPECT_EQ(40000U, all.Size());
  EXPECT_EQ(19999, all[39999]["ROW"]);
}

// Every text that the table shows in a language is found in that language.
TEST_F(ToolFind, FindsWhatTheTableShows) {
  MakeExample();
  for (int language = 0; language < 7; ++language) {
    std::string const number = std::to_string(language);
    auto const shown = Json::Parse(
        Run({"show", "geo.db", "TERRITORY", "--language", number, "--match",
             "NAME=[\\s\\S]*an[\\s\\S]*", "--format", "json"})
            .out);
    auto const found = Json::Parse(
        Run({"find", "an", "geo.db", "-t", "TERRITORY", "--format", "json"})
            .out);
    std::vector<std::string> expected;
    for (std::size_t i = 0; i < shown.Size(); ++i) {
      expected.push_back(shown[i]["NAME"].Text());
    }
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < found.Size(); ++i) {
      Json const hit = found[i];
      if (hit["COLUMN"].Text() != "NAME") continue;
      if (hit["LANGUAGE"].IsNull() || hit["LANGUAGE"] == language) {
        texts.push_back(hit["TEXT"].Text());
      }
    }
    EXPECT_EQ(expected, texts) << language;
    // In Greek, Arabic and Japanese letters there is none.
    EXPECT_EQ(language >= 3 && language <= 5, expected.empty()) << language;
  }
}

}  // namespace
}  // namespace tabwerk::test
