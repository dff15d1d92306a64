// The library judges what is said about scripts: there are errors exactly where
// it does not build.  Scripts are made at random and then spoiled; the seed of
// a failing one is printed, and TABWERK_SEED=SEED begins with it.
#include <random>

#include "tests/cli/script_folder.h"
#include "tests/support/random_run.h"

namespace tabwerk::test {
namespace {

class Maker {
 public:
  explicit Maker(unsigned seed) : random_(seed) {}

  // A script that works with the files of the folder.
  std::vector<std::string> SoundLines() {
    std::vector<std::string> lines = {"NEWDATABASE " +
                                      Pick({"S", "stock", "S.1"}) +
                                      Pick({" ", "  ", ";"}) + "s.db"};
    std::size_t const tables = 1 + Below(3);
    for (std::size_t i = 0; i < tables; ++i) {
      if (Below(3) == 0)
        lines.push_back(Pick({"", "# comment", " ", ";", "\t"}));
      std::string const name = "T" + std::to_string(i);
      lines.push_back("NEWTABLE " + name);
      std::size_t const columns = 1 + Below(4);
      for (std::size_t k = 0; k < columns; ++k) {
        lines.push_back(
            "C" + std::to_string(k) + Pick({" ", "\t"}) +
            Pick({"integer", "LONG", "real", "DOUBLE", "string", "STRING"}));
      }
      lines.push_back("ENDDEF");
      if (Below(2) == 0) {
        lines.push_back("TABLEDATA " + name + Pick({" ", "\t"}) +
                        Pick({"a.txt", "b.txt"}));
      }
    }
    return lines;
  }

  // Makes one change; most do harm.
  void Spoil(std::vector<std::string>* lines) {
    std::size_t const at = Below(lines->size());
    std::string& line = (*lines)[at];
    switch (Below(9)) {
      case 0:
        lines->erase(lines->begin() + static_cast<std::ptrdiff_t>(at));
        break;
      case 1:
        lines->insert(lines->begin() + static_cast<std::ptrdiff_t>(at),
                      (*lines)[Below(lines->size())]);
        break;
      case 2:
        std::swap(line, (*lines)[Below(lines->size())]);
        break;
      case 3:
        line = line.substr(0, Below(line.size() + 1));
        break;
      case 4:
        if (!line.empty()) line.erase(Below(line.size()), 1);
        break;
      case 5:
        line.insert(Below(line.size() + 1), Text());
        break;
      case 6:
        line = ReplaceWord(line);
        break;
      case 7:
        line += " " + std::string(Pick({"x", "# x", "integer"}));
        break;
      default:
        // Longer than a name, than a path, than a line.
        line.insert(Below(line.size() + 1),
                    std::string(Below(2) == 0 ? 64 : 4096, 'x'));
        break;
    }
    if (lines->empty()) lines->push_back("");
  }

  std::string Joined(std::vector<std::string> const& lines) {
    std::string const end = Pick({"\n", "\r\n"});
    std::string text;
    for (std::string const& line : lines) text += line + end;
    if (Below(5) == 0) text.pop_back();
    return text;
  }

  std::size_t Below(std::size_t limit) { return random_() % limit; }

 private:
  std::string Pick(std::vector<std::string> const& texts) {
    return texts[Below(texts.size())];
  }
  // Nothing that would be a path to another folder.
  std::string Text() {
    return Pick({" ", "\t", ";", "\n", ",", "=", "x", "#", "\r", ".",
                 "\xC3\xB6", std::string(1, '\0'), "\x1A", "\n\n", "ENDDEF\n"});
  }
  std::string ReplaceWord(std::string const& line) {
    std::string const word =
        Pick({"NEWDATABASE", "NEWTABLE", "TABLEDATA", "ENDDEF", "newtable",
              "VERSION", "T0", "a.txt", "none.txt", "folder", "s.db", "integer",
              "float", "A,B", ".S", "folder", std::string(63, 'n')});
    std::size_t const blank = line.find(' ');
    if (blank == line.npos) return word;
    return Below(2) == 0 ? word + line.substr(blank)
                         : line.substr(0, blank + 1) + word;
  }

  std::mt19937 random_;
};

class ToolLintJudge : public ScriptFolder {
 protected:
  void MakeFiles() const {
    MakeUnits("a.txt", "1,2,3,4\n5\n");
    MakeUnits("b.txt", ",x\n\"text\",#TS(a,b\n");
  }
  // What a script may have made.
  void RemoveOthers() const {
    for (auto const& entry :
         std::filesystem::directory_iterator(folder_.folder())) {
      auto const name = entry.path().filename();
      if (name == "folder" || name == "a.txt" || name == "b.txt") continue;
      std::filesystem::remove(entry.path());
    }
  }
};

TEST_F(ToolLintJudge, FindsErrorsExactlyWhereTheLibraryDoesNotBuild) {
  folder_.MakeFolder("folder");
  unsigned built = 0;
  unsigned failed = 0;
  auto const scripts = static_cast<unsigned>(OperationCount(500));
  unsigned const first = FirstSeed();
  for (unsigned seed = first; seed < first + scripts; ++seed) {
    Maker maker(seed);
    MakeFiles();
    std::vector<std::string> lines = maker.SoundLines();
    for (std::size_t i = maker.Below(4); i > 0; --i) maker.Spoil(&lines);
    std::string const script = maker.Joined(lines);
    std::string const found = Found(script);
    bool const has_error = HasError(script);
    bool const builds = Builds(script);
    ASSERT_EQ(builds, !has_error) << "TABWERK_SEED=" << seed << "\n"
                                  << found << "\n"
                                  << script;
    ++(builds ? built : failed);
    RemoveOthers();
  }
  if (scripts < 100) return;  // too few to be of both kinds
  EXPECT_LT(scripts / 5, built);
  EXPECT_LT(scripts / 5, failed);
}

// The system's limits, which depend on the folder as well.
TEST_F(ToolLintJudge, KnowsNamesThatAreTooLong) {
  for (std::size_t length = 250; length <= 258; ++length) {
    std::string const script = "NEWDATABASE S " + std::string(length, 'x') +
                               "\nNEWTABLE T\nA integer\nENDDEF\n";
    EXPECT_EQ(length > 254 ? "TW115" : "", Found(script)) << length;
    EXPECT_EQ(length <= 254, Builds(script)) << length;
  }
}

}  // namespace
}  // namespace tabwerk::test
