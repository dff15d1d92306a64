// The command line itself.
#include "tests/cli/tool_test.h"

namespace tabwerk::test {
namespace {

using ToolUsage = ToolTest;

TEST_F(ToolUsage, NeedsACommand) {
  auto const run = Run({});
  EXPECT_EQ("", run.out);
  EXPECT_EQ(
      "tabwerk: error: A subcommand is required; see \"tabwerk --help\"\n",
      run.err);
  EXPECT_EQ(2, run.exit_code);
}

TEST_F(ToolUsage, PointsToTheHelpOfTheCommand) {
  auto const run = Run({"show", "a.db"});
  EXPECT_EQ(
      "tabwerk: error: --table is required; see \"tabwerk show --help\"\n",
      run.err);
  EXPECT_EQ(2, run.exit_code);
}

TEST_F(ToolUsage, RefusesUnknownOptionsAndValues) {
  EXPECT_EQ(2, Run({"info", "a.db", "--nothing"}).exit_code);
  EXPECT_EQ(2, Run({"show", "a.db", "-t", "T", "--limit", "-1"}).exit_code);
  EXPECT_EQ(2, Run({"show", "a.db", "-t", "T", "--language", "x"}).exit_code);
  EXPECT_EQ(2, Run({"nothing"}).exit_code);
}

TEST_F(ToolUsage, HelpListsCommandsAndExitCodes) {
  auto const run = Run({"--help"});
  for (char const* const word : {"build", "info", "show", "import", "dump",
                                 "Exit codes: 0 done, 1 findings"}) {
    EXPECT_NE(std::string::npos, run.out.find(word)) << word;
  }
  EXPECT_EQ("", run.err);
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolUsage, EveryCommandHasHelp) {
  for (char const* const command :
       {"build", "info", "show", "import", "dump"}) {
    auto const run = Run({command, "--help"});
    EXPECT_NE(std::string::npos,
              run.out.find("Usage: tabwerk " + std::string(command)))
        << run.out;
    EXPECT_EQ(0, run.exit_code);
  }
}

TEST_F(ToolUsage, TellsItsVersion) {
  auto const run = Run({"--version"});
  EXPECT_EQ(0U, run.out.find("tabwerk ")) << run.out;
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolUsage, RepeatsArgumentsWithAllCharacters) {
  auto const run = Run({"info", "Größe Ελλάς 倉庫 \U0001F600.db"});
  EXPECT_EQ(0U, run.err.find("Größe Ελλάς 倉庫 \U0001F600.db: error: there is "
                             "no such file"))
      << run.err;
  EXPECT_EQ(3, run.exit_code);
}

}  // namespace
}  // namespace tabwerk::test
