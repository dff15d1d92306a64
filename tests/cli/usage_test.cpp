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
  auto const run = Run({"dump", "a.db"});
  EXPECT_EQ(
      "tabwerk: error[TW101]: --table is required; see \"tabwerk dump "
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
