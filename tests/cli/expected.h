// Output of the tool against text that is checked in.
//
//   EXPECT_EQ(Expected("show_list", run.out), run.out);
//
// compares with tests/cli/expected/show_list.txt, byte for byte, on every
// system.  To write the files anew after a change that is meant:
//
//   TABWERK_WRITE_EXPECTED=1 build/dev/bin/cli_test --gtest_filter='ToolShow*'
//   git diff tests/cli/expected docs/tool.md
//
// A test that has written something shows what was and what is, and fails, so
// that no run passes that has not compared.
#ifndef TABWERK_TESTS_CLI_EXPECTED_H
#define TABWERK_TESTS_CLI_EXPECTED_H

#include <string>

namespace tabwerk::test {

// The text of that name.
std::string Expected(std::string const& name, std::string const& found);

// A file of the project, whose text is to be found; with
// TABWERK_WRITE_EXPECTED, found is written into it when it differs.  Line ends
// are "\n" for both.
std::string ExpectedFile(std::string const& path, std::string const& found);

// Lines of one text that the other one lacks, "-" before and "+" after.
std::string LineDifference(std::string const& before, std::string const& after);

// The text with all dates and times as "YYYY-MM-DD hh:mm:ss".
std::string WithoutTimes(std::string const& text);
// The bytes of a database without its time of writing.
std::string WithoutStamp(std::string bytes);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_CLI_EXPECTED_H
