// Help, manual page, completions and the page of the tool against the table of
// commands, as the tool itself hands it out.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

#include "tests/cli/expressions.h"
#include "tests/cli/tool_test.h"
#include "tests/support/places.h"

namespace tabwerk::test {
namespace {

using Words = std::set<std::string>;

// All matches of the first group.
Words Matches(std::string const& text, char const* pattern) {
  Words words;
  for (auto const& groups : AllMatches(text, pattern)) words.insert(groups[1]);
  return words;
}

std::string ReadProjectFile(std::string const& name) {
  std::ifstream file(ProjectPath(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The commands are the files cmd_NAME.cpp; their options are what their help
// lists.
class ToolCommands : public ToolTest {
 protected:
  // Asked once.
  static void SetUpTestSuite() {
    TempFolder const folder;
    for (auto const& entry :
         std::filesystem::directory_iterator(ProjectPath("cli"))) {
      std::string const file = entry.path().filename().string();
      auto const match = Matched(file, "cmd_([a-z]+)\\.cpp");
      if (match.empty()) continue;
      std::string const help =
          RunTool(folder.folder(), {match[1], "--help"}).out;
      options_[match[1]] = Matches(help, "(--[a-z-]+)");
      helps_[match[1]] = help;
    }
  }

  // The text between two others; empty without the first one.
  static std::string Between(std::string const& text, std::string const& before,
                             std::string const& behind) {
    std::size_t const begin = text.find(before);
    if (begin == text.npos) return "";
    std::string const rest = text.substr(begin + before.size());
    return rest.substr(0, rest.find(behind));
  }

  // Operands and options of a help, with what is said of each in one line.
  static std::map<std::string, std::string> Entries(std::string const& help) {
    std::map<std::string, std::string> entries;
    std::string* text = nullptr;
    std::istringstream lines(help.substr(help.find(":\n")));
    bool is_last = false;
    for (std::string line; std::getline(lines, line);) {
      if (line.empty() && is_last) break;  // notes and examples
      is_last = is_last || line == "Everywhere:";
      auto const more = Matched(line, R"( {24}(.*))");
      auto const entry = Matched(line, R"(  (\S.*?)(?:  +(.*))?)");
      if (!more.empty() && text != nullptr) {
        *text += (text->empty() ? "" : " ") + more[1];
      } else if (!entry.empty()) {
        text = &entries[entry[1]];
        *text = entry[2];
      }
    }
    for (auto& [names, said] : entries) {
      said = Replaced(Replaced(said, R"( \(needed\)$)", ""), " +", " ");
      said = Replaced(said, "…", "...");
    }
    return entries;
  }

  // Words of the table that the text lacks.
  static std::string Missing(std::string const& text) {
    std::string missing;
    for (auto const& [command, options] : options_) {
      if (text.find(command) == text.npos) missing += command + " ";
      for (std::string const& option : options) {
        if (text.find(option) == text.npos) missing += command + option + " ";
      }
    }
    return missing;
  }

  static inline std::map<std::string, Words> options_;
  static inline std::map<std::string, std::string> helps_;
};

TEST_F(ToolCommands, EachHasAFileAndHelp) {
  EXPECT_LE(8U, options_.size());
  for (auto const& [command, help] : helps_) {
    EXPECT_EQ(0U, help.find("Usage: tabwerk " + command)) << help;
    EXPECT_NE(std::string::npos, help.find("\nExamples:\n")) << command;
    EXPECT_TRUE(options_[command].contains("--quiet")) << command;
    EXPECT_EQ(help, Run({"help", command}).out);
  }
}

// Done or looked at; or refused with the number of an error, and only because
// of the files that the example speaks of.
bool IsExitOfAnExample(ToolRun const& run) {
  static std::set<std::string> const kOfFiles = {"110", "116", "117", "130",
                                                 "150"};
  if (run.exit_code == 0 || run.exit_code == 1) return true;
  auto const numbers =
      Matches(run.err, "(?:error\\[|\"error\", \"code\": \")TW(\\d+)");
  return run.exit_code >= 2 && run.exit_code <= 6 && !numbers.empty() &&
         std::includes(kOfFiles.begin(), kOfFiles.end(), numbers.begin(),
                       numbers.end());
}

// What they speak of may not be there, but it can be copied.
TEST_F(ToolCommands, ExamplesAreUnderstood) {
  MakeExample();
  std::size_t count = 0;
  for (auto const& [command, help] : helps_) {
    std::string const examples = help.substr(help.find("\nExamples:\n"));
    for (std::string const& line : Matches(examples, "\n  tabwerk (.*)")) {
      std::vector<std::string> words;
      for (auto const& word : AllMatches(line, "\"([^\"]*)\"|([^ ]+)")) {
        words.push_back(word[1] + word[2]);
      }
      auto const run = Run(words);
      EXPECT_TRUE(IsExitOfAnExample(run)) << line << "\n"
                                          << run.exit_code << run.err;
      ++count;
    }
  }
  EXPECT_LE(helps_.size(), count);
}

TEST_F(ToolCommands, WholeHelpListsEach) {
  std::string const help = Run({"help"}).out;
  EXPECT_EQ(help, Run({"--help"}).out);
  Words commands;
  for (auto const& [command, options] : options_) commands.insert(command);
  Words listed = Matches(help, "\n  ([a-z]+)  ");
  EXPECT_EQ(commands, listed);
  EXPECT_NE(std::string::npos, help.find("Exit codes:\n  0  done"));
}

TEST_F(ToolCommands, ManualPageListsEach) {
  auto const run = Run({"help", "--man"});
  std::string page = run.out;
  page.erase(std::remove(page.begin(), page.end(), '\\'), page.end());
  EXPECT_EQ("", Missing(page));
  EXPECT_EQ(0U, page.find(".TH TABWERK 1"));
}

// So that no reader of it has to be told an encoding.
TEST_F(ToolCommands, ManualPageIsAscii) {
  std::string const page = Run({"help", "--man"}).out;
  EXPECT_EQ(page.end(), std::find_if(page.begin(), page.end(), [](char it) {
              return static_cast<unsigned char>(it) >= 0x80;
            }));
  EXPECT_NE(std::string::npos,
            page.find("#TS(Bolt\\[u00AC]Schraube)TS\\(ti\" holds"));
}

// Each option with what is said of it, as help says it.
TEST_F(ToolCommands, ManualPageSaysWhatHelpSays) {
  std::string page = Run({"help", "--man"}).out;
  page = Replaced(page, "\\\\(-|&)", "$1");
  page = Replaced(page, R"(\\\(aq)", "'");
  page = Replaced(page, "\\\\e", "\\");
  page = Replaced(page, " +", " ");
  int count = 0;
  for (auto const& [command, help] : helps_) {
    std::string const section =
        Between(page, "\n.SS " + command + "\n", "\n.S");
    for (auto const& [names, text] : Entries(help)) {
      if (names == "-h, --help") continue;  // of the whole tool as well
      std::string const tagged = ".B " + names + "\n" + text + "\n";
      bool const is_common = section.find(tagged) == section.npos;
      EXPECT_NE(std::string::npos,
                (is_common ? page.substr(page.find("OPTIONS OF ALL")) : section)
                    .find(tagged))
          << command << ": " << tagged;
      ++count;
    }
  }
  EXPECT_LE(100, count);
}

// Each command has its own options, and no others.
TEST_F(ToolCommands, CompletionsListEach) {
  struct Shell {
    char const* name;
    // What stands before and behind the options of a command.
    std::string before;
    std::string behind;
    char const* option;
  };
  for (Shell const& shell :
       {Shell{"bash", "\n    COMMAND)\n", "\n      ;;", "[ \"](--[a-z-]+)"},
        {"zsh", "\n    COMMAND)\n", "\n      ;;", "'(--[a-z-]+)\\["},
        {"fish", "_from COMMAND' ", "-a COMMAND -d", " -l ([a-z-]+)"},
        {"powershell", "\n    'COMMAND' = ", "\n", "'(--[a-z-]+)'"}}) {
    std::string const script = Run({"completion", shell.name}).out;
    for (auto const& [command, help] : helps_) {
      auto const named = [&, name = command](std::string const& text) {
        return Replaced(text, "COMMAND", name);
      };
      std::string lines = Between(script, named(shell.before), shell.behind);
      if (shell.name == std::string("fish")) {
        lines.clear();
        std::istringstream stream(script);
        for (std::string line; std::getline(stream, line);) {
          if (line.find(named(shell.before)) != line.npos) lines += line + "\n";
        }
      }
      Words wanted;
      for (auto const& [names, text] : Entries(help)) {
        for (std::string word : Matches(names, "(--[a-z-]+)")) {
          wanted.insert(shell.name == std::string("fish") ? word.substr(2)
                                                          : word);
        }
      }
      EXPECT_EQ(wanted, Matches(lines, shell.option)) << shell.name << command;
    }
  }
  EXPECT_EQ(2, Run({"completion", "tcsh"}).exit_code);
}

TEST_F(ToolCommands, EachIsASectionOfThePage) {
  Words const sections =
      Matches(ReadProjectFile("docs/tool.md"), "\n### ([a-z]+)\n");
  Words commands;
  for (auto const& [command, options] : options_) commands.insert(command);
  EXPECT_EQ(commands, sections);
}

// The library's directory is there in every build; the numbers that the
// sources use are those that are explained.
TEST_F(ToolCommands, MessagesUseTheNumbersThatAreExplained) {
  Words used;
  for (auto const& entry :
       std::filesystem::directory_iterator(ProjectPath("cli"))) {
    std::string const file = entry.path().filename().string();
    if (!file.ends_with(".cpp") && !file.ends_with(".h")) continue;
    if (file.starts_with("codes")) continue;
    for (auto const& number :
         Matches(ReadProjectFile("cli/" + file), "TW\\((\\d+)\\)")) {
      used.insert(number);
    }
  }
  Words explained;
  std::istringstream lines(Run({"explain", "--columns", "CODE"}).out);
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line)) {
    EXPECT_TRUE(explained.insert(line.substr(2)).second) << line;
  }
  EXPECT_LE(50U, explained.size());
  EXPECT_EQ(explained, used);
}

TEST_F(ToolCommands, ExplainSaysMoreOfANumber) {
  for (char const* const spelling : {"TW110", "tw110", "110"}) {
    auto const run = Run({"explain", spelling});
    EXPECT_EQ(0U, run.out.find("TW110 (no-such-file): ")) << run.out;
    EXPECT_NE(std::string::npos, run.out.find("\nExit code 3.\n"));
  }
  EXPECT_EQ(2, Run({"explain", "TW999"}).exit_code);
  EXPECT_EQ(2, Run({"explain", "TW1x"}).exit_code);
}

#ifndef _WIN32

// Where the shell is installed, it parses its script.
TEST_F(ToolCommands, ShellsUnderstandTheirScripts) {
  std::string missing;
  for (std::string const shell : {"zsh", "fish"}) {
    if (std::system(("command -v " + shell + " >/dev/null").c_str()) != 0) {
      missing += " " + shell;
      continue;
    }
    folder_.Make("script", Run({"completion", shell}).out);
    EXPECT_EQ(0,
              std::system(
                  (shell + " -n '" + folder_.PathUtf8("script") + "'").c_str()))
        << shell;
  }
  if (!missing.empty()) GTEST_SKIP() << "not installed:" << missing;
}

// What bash makes of the script.
TEST_F(ToolCommands, BashCompletes) {
  folder_.Make("complete", Run({"completion", "bash"}).out);
  auto const complete = [this](std::string const& words, int at) {
    folder_.Make("run", ". ./complete\nCOMP_WORDS=(" + words +
                            ")\nCOMP_CWORD=" + std::to_string(at) +
                            "\n_tabwerk\necho \"${COMPREPLY[*]}\" > result\n");
    EXPECT_EQ(
        0, std::system(
               ("cd '" + folder_.folder().string() + "' && bash run").c_str()));
    return folder_.Content("result");
  };
  EXPECT_EQ("show\n", complete("tabwerk sh", 1));
  EXPECT_EQ("--format\n", complete("tabwerk show --fo", 2));
  EXPECT_EQ("json\n", complete("tabwerk show --format j", 3));
  EXPECT_EQ("import\n", complete("tabwerk help im", 2));
}

#endif

}  // namespace
}  // namespace tabwerk::test
