// The command line itself.
#include "tests/cli/expected.h"
#include "tests/cli/tool_test.h"

namespace tabwerk::test {
namespace {

using ToolUsage = ToolTest;

std::string WithoutVersion(std::string text) {
  std::size_t const begin = text.find(' ') + 1;
  return text.replace(begin, text.find(' ', begin) - begin, "VERSION");
}

TEST_F(ToolUsage, SaysWhatToTryWithoutArguments) {
  auto const run = Run({});
  EXPECT_EQ("", run.err);
  EXPECT_EQ(0, run.exit_code);
  EXPECT_EQ(Expected("usage_without_arguments", WithoutVersion(run.out)),
            WithoutVersion(run.out));
}

TEST_F(ToolUsage, TakesAFileForInfo) {
  MakeStock();
  EXPECT_EQ(Run({"info", "stock.db", "STOCK.UDB"}).out,
            Run({"stock.db", "STOCK.UDB"}).out);
  EXPECT_EQ(0U, Run({"none.db"}).err.find("none.db: error[TW110]"));
}

TEST_F(ToolUsage, SuggestsTheCommandThatWasMeant) {
  auto const run = Run({"shwo"});
  EXPECT_EQ(
      "tabwerk: error[TW102]: there is no command or file shwo; did you mean "
      "\"tabwerk show\"?\n",
      run.err);
  EXPECT_EQ(2, run.exit_code);
  EXPECT_EQ(
      "tabwerk: error[TW102]: there is no command or file frobnicate; "
      "\"tabwerk help\" lists the commands\n",
      Run({"frobnicate"}).err);
}

TEST_F(ToolUsage, PointsToTheHelpOfTheCommand) {
  auto const run = Run({"import", "a.csv", "a.db", "A.UDB"});
  EXPECT_EQ(
      "tabwerk: error[TW101]: --table is required; see \"tabwerk import "
      "--help\"\n",
      run.err);
  EXPECT_EQ(2, run.exit_code);
}

TEST_F(ToolUsage, RefusesUnknownOptionsAndValues) {
  EXPECT_EQ(2, Run({"info", "a.db", "--nothing"}).exit_code);
  EXPECT_EQ(2, Run({"show", "a.db", "-t", "T", "--limit", "-1"}).exit_code);
  EXPECT_EQ(2, Run({"show", "a.db", "-t", "T", "--language", "x"}).exit_code);
  EXPECT_EQ(2, Run({"nothing"}).exit_code);
}

// "010" was 8, and so another row was changed than the one that was named.
TEST_F(ToolUsage, WholeNumbersAreDecimal) {
  MakeStock();
  auto const ids = [this](std::string const& id) {
    return Run({"show", "stock.db", "ARTICLE", "--columns", "ID", "--id", id})
        .out;
  };
  EXPECT_EQ("ID\n2\n", ids("02"));
  EXPECT_EQ("ID\n2\n", ids("+2"));
  EXPECT_EQ(2, Run({"show", "stock.db", "ARTICLE", "--id", "0x1"}).exit_code);
  MakeDatabase(
      "many.db",
      {PlainHeader::kCurrent, 1000, {{"T", "integer ID\n", {"8", "10"}}}});
  EXPECT_EQ("ID\n10\n", Run({"show", "many.db", "T", "--id", "010"}).out);
}

TEST_F(ToolUsage, SaysWhatIsWrongWithAValue) {
  auto const wrong = [this](std::vector<std::string> words) {
    words.insert(words.begin(), {"show", "a.db", "T"});
    auto const run = Run(words);
    EXPECT_EQ(2, run.exit_code);
    constexpr std::string_view kBegin = "tabwerk: error[TW101]: ";
    EXPECT_EQ(0U, run.err.find(kBegin)) << run.err;
    return run.err.substr(kBegin.size(), run.err.find(';') - kBegin.size());
  };
  EXPECT_EQ("--limit: \"1.5\" is no whole number", wrong({"--limit", "1.5"}));
  EXPECT_EQ("--limit: \"\" is no whole number", wrong({"--limit", ""}));
  EXPECT_EQ("--limit: 99999999999999999999 is too large",
            wrong({"--limit", "99999999999999999999"}));
  EXPECT_EQ("--limit: -1 is less than 0", wrong({"--limit", "-1"}));
  EXPECT_EQ("--id: \"x\" is no whole number", wrong({"--id", "1,x"}));
  EXPECT_EQ("--id: -3000000000 is too small", wrong({"--id", "-3000000000"}));
  EXPECT_EQ("--limit needs a value", wrong({"--limit"}));
  EXPECT_EQ("--limit is given twice", wrong({"--limit", "1", "--limit", "2"}));
  EXPECT_EQ("not expected: C D", wrong({"B", "C", "D"}));
  EXPECT_EQ("not expected: --colour", wrong({"--colour"}));
}

// These wanted a command.
TEST_F(ToolUsage, TakesOptionsBeforeAFile) {
  MakeStock();
  EXPECT_EQ(Run({"stock.db"}).out, Run({"-q", "stock.db"}).out);
  EXPECT_EQ(Run({"stock.db"}).out, Run({"--color", "never", "stock.db"}).out);
  EXPECT_EQ(
      "tabwerk: error[TW101]: no command is named; see \"tabwerk --help\"\n",
      Run({"-q"}).err);
  EXPECT_EQ(0U, Run({"-q", "shwo"}).err.find("tabwerk: error[TW102]: "));
}

TEST_F(ToolUsage, TellsItsVersion) {
  auto const run = Run({"--version"});
  EXPECT_EQ(0U, run.out.find("tabwerk ")) << run.out;
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolUsage, RepeatsArgumentsWithAllCharacters) {
  auto const run = Run({"info", "Größe Ελλάς 倉庫 \U0001F600.db"});
  EXPECT_EQ(
      0U, run.err.find("Größe Ελλάς 倉庫 \U0001F600.db: error[TW110]: there is "
                       "no such file"))
      << run.err;
  EXPECT_EQ(3, run.exit_code);
}

}  // namespace
}  // namespace tabwerk::test
