// docs/tool.md: its commands are run here, in their order and in one folder
// that holds the example database and its sources, and what they print is what
// stands on the page.
//
// In a block marked "console" a line "$ tabwerk …" is a command with words as a
// shell takes them apart (quotes, no variables, no pipes); the lines below are
// standard output, then standard error, then "(exit code N)" where that is not
// 0.  A line "$ echo TEXT >> FILE" adds that line to the file.  Dates and times
// may be any.  The page is written anew as the files of expected.h are.
#include <fstream>
#include <iterator>

#include "tests/cli/expected.h"
#include "tests/cli/tool_test.h"
#include "tests/support/places.h"

namespace tabwerk::test {
namespace {

constexpr char kPage[] = "docs/tool.md";
constexpr char kPrompt[] = "$ tabwerk";
constexpr char kEcho[] = "$ echo ";

std::vector<std::string> WordsOf(std::string const& line) {
  std::vector<std::string> words;
  std::string word;
  bool inside = false;
  char quote = 0;
  for (char const character : line) {
    if (quote != 0 ? character == quote
                   : character == '"' || character == '\'') {
      quote = quote != 0 ? '\0' : character;
      inside = true;
    } else if (character == ' ' && quote == 0) {
      if (inside) words.push_back(word);
      word.clear();
      inside = false;
    } else {
      word += character;
      inside = true;
    }
  }
  if (inside) words.push_back(word);
  return words;
}

class ToolPage : public ToolTest {
 protected:
  ToolPage() {
    MakeExample();
    for (auto const& entry : std::filesystem::directory_iterator(
             ProjectPath("examples/reference"))) {
      std::filesystem::copy(entry, folder_.folder());
    }
    folder_.Make("unknown.script",
                 "NEWDATABASE unknown unknown.db\nNEWTABLE CURRENCY\n"
                 "ID integer\nFOLGE integer\nSTATUS integer\nCODE string\n"
                 "NAME string\nDIGITS integer\nENDDEF\n"
                 "TABLEDATA CURRENCY currency.dat\n");
    EXPECT_EQ(0, Run({"build", "unknown.script"}).exit_code);
    std::filesystem::remove(folder_.folder() / "unknown.script");
  }

  std::string Answer(std::string const& command) {
    ++command_count_;
    auto const run = Run(WordsOf(command));
    std::string text = run.out + run.err;
    if (run.exit_code != 0) {
      text += "(exit code " + std::to_string(run.exit_code) + ")\n";
    }
    return WithoutTimes(text);
  }

  void AddLine(std::string const& echo) const {
    auto const words = WordsOf(echo);
    ASSERT_EQ(4U, words.size()) << echo;
    std::ofstream(folder_.folder() / words[3], std::ios::app)
        << words[1] << "\n";
  }

  // The page with what the commands print now.
  std::string PageAsItIs() {
    std::ifstream file(ProjectPath(kPage), std::ios::binary);
    std::string page;
    bool in_block = false;
    for (std::string line; std::getline(file, line);) {
      if (line.ends_with('\r')) line.pop_back();
      if (in_block && line.starts_with(kPrompt)) {
        page += line + "\n" + Answer(line.substr(sizeof kPrompt - 1));
        continue;
      }
      if (in_block && line.starts_with(kEcho)) {
        AddLine(line.substr(2));
        page += line + "\n";
        continue;
      }
      if (in_block && line != "```") continue;
      in_block = line == "```console";
      page += line + "\n";
    }
    return page;
  }

  int command_count_ = 0;
};

TEST_F(ToolPage, ShowsWhatTheCommandsPrint) {
  std::string const page = PageAsItIs();
  EXPECT_LE(8, command_count_);
  EXPECT_EQ(ExpectedFile(kPage, page), page);
}

}  // namespace
}  // namespace tabwerk::test
