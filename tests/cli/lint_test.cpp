// tabwerk lint.
#include <set>

#include "cli/codes.h"
#include "tests/cli/expected.h"
#include "tests/cli/script_folder.h"

namespace tabwerk::test {
namespace {

using tool::Code;
using tool::Severity;

// A script that breaks one rule, and the data that it names as "data.txt".
struct Rule {
  int code;
  std::string script;
  std::string data = "";
  bool is_raw = false;  // data are bytes, not text to be made UTF-16LE
};

constexpr char kBeginOfScript[] = "NEWDATABASE S s.db\n";

// With columns for the data.
std::string Reading(std::string const& columns) {
  return kBeginOfScript + ("NEWTABLE T\n" + columns) +
         "ENDDEF\nTABLEDATA T data.txt\n";
}

std::string Defining(std::string const& lines) {
  return kBeginOfScript + ("NEWTABLE T\n" + lines) + "ENDDEF\n";
}

std::string Empty() { return Defining("A integer\n"); }

std::vector<Rule> StatementRules() {
  std::string const wide = std::string(60, 'A');
  std::string columns;
  for (int i = 0; i < 300; ++i) {
    columns += wide + std::to_string(i) + " integer\n";
  }
  // Shorter here than as they are stored.
  std::string longs;
  for (int i = 100; i < 334; ++i) {
    longs += wide + std::to_string(i) + " LONG\n";
  }
  return {
      {201, "NEWDATABASE S\n"},
      {202, "NEWTABLE T\nA integer\nENDDEF\n"},
      {203, kBeginOfScript + std::string("NEWTABLE\nA integer\nENDDEF\n")},
      {204, kBeginOfScript + ("NEWTABLE " + std::string(64, 'T')) +
                "\nA integer\nENDDEF\n"},
      {205, Empty() + "NEWTABLE T\nA integer\nENDDEF\n"},
      {206, kBeginOfScript + std::string("NEWTABLE T\nA integer\n")},
      {207, Defining("A integer\nB\n")},
      {208, Defining("A integer\n\n")},
      {209, Defining(columns)},
      {210, Empty() + "TABLEDATA T\n"},
      {211, Empty() + "TABLEDATA T " + std::string(260, 'x') + "\n"},
      {212, kBeginOfScript + std::string("TABLEDATA T data.txt\n"
                                         "NEWTABLE T\nA integer\nENDDEF\n")},
      {213, Empty() + "TABLEDATA T none.txt\n"},
      {214, Empty() + "TABLEDATA T folder\n"},
      {215, "# nothing\n"},
      {216, Empty() + "TABLEDATA T data.txt"},
      {115, "NEWDATABASE S none/s.db\nNEWTABLE T\nA integer\nENDDEF\n"},
      {111, "NEWDATABASE S folder\nNEWTABLE T\nA integer\nENDDEF\n"},
      {220, "NEWDATABASE s s.db\nNEWTABLE T\nA integer\nENDDEF\n"},
      {221, "NEWDATABASE S.2 s.db\nNEWTABLE T\nA integer\nENDDEF\n"},
      {222, "NEWDATABASE .S s.db\nNEWTABLE T\nA integer\nENDDEF\n"},
      {223, Empty() + Empty()},
      {224, Empty() + "TABLEDATA U data.txt\n"},
      {225,
       kBeginOfScript + std::string("NEWTABLE VERSION\nVERSION string\nENDDEF\n"
                                    "TABLEDATA VERSION data.txt\n")},
      {226, Defining(std::string(64, 'N') + " integer\n")},
      {227, Defining(longs)},
      {228, Defining("A,B integer\n")},
      {229, Defining("A integer\nB float\n")},
      {230, Defining("A integer\nA integer\n")},
      {231, Defining("A integer key\n")},
      {232, Empty() + "# " + std::string(5000, 'x') + "\n"},
      {233, Empty() + "\nTABLEDATA\tT data.txt\n"},
      {234, Empty() + "TABELDATA T data.txt\n"},
      {235, Empty() + std::string("# a\0b\n", 6)},
      {236, Empty() + "\x1A behind\n"},
      {237, "\xEF\xBB\xBF# names\n" + Empty()},
      {238, kBeginOfScript + std::string("NEWTABLE T;\nA integer\nENDDEF\n")},
      {239, Defining("GRÖSSE integer\n")},
      {240, kBeginOfScript},
      {241, Defining("")},
      {242, Defining("A integer\nTABLEDATA integer\n")},
      {243, Defining("Id integer\n")},
      {244, Defining("STATUS string\n")},
  };
}

std::vector<Rule> DataRules() {
  std::string const numbers = Reading("A integer\nB integer\n");
  std::string const texts = Reading("A string\nB string\n");
  std::string const order = Reading("ID integer\nFOLGE integer\n");
  return {
      {217, numbers, "1,2,3\n"},
      {218, numbers, ",1\n"},
      {250, numbers,
       std::string("\0\0"
                   "1\0,\0"
                   "2\0",
                   8),
       true},
      {251, numbers,
       std::string("\xFE\xFF\0"
                   "1\0,\0"
                   "2",
                   8),
       true},
      {252, numbers, "1,2\n", true},
      {253, numbers,
       std::string("\xFF\xFE"
                   "1\0,\0"
                   "2\0\n",
                   9),
       true},
      {254, numbers, std::string("1,2\0x\n", 6)},
      {255, texts, "a," + std::string(4100, 'b') + "\n"},
      {256, texts, "a," + std::string(8096, 'b') + "\n"},
      {257, numbers, "1,2\n,3\n"},
      {258, numbers, "1\n"},
      {259, numbers, "1,two\n"},
      {260, numbers, "1,3000000000\n"},
      {261, order, "7,1\n7,2\n"},
      {262, order, "1,1\n2,3\n"},
      {263, order, "1,1\n2,1\n"},
      {264, order, "1,-1\n"},
      {265, texts, "#TS(a¬b,1\n"},
      {266, texts, "\"a,1\n"},
      {267, texts, "\"a\" ,1\n"},
      {268, texts, "a)TS~,1\n"},
      {269, texts, "\xEF\xBF\xBE,1\n"},  // replaced below
      {270, texts, "a,1\n\uFEFFb,2\n"},
      {271, texts, "#TS(a #TS(b)TS~,1\n"},
  };
}

class ToolLint : public ScriptFolder {
 protected:
  void MakeData(Rule const& rule) const {
    if (rule.is_raw) {
      folder_.Make("data.txt", rule.data);
    } else {
      MakeUnits("data.txt", rule.data);
    }
    std::string bytes = folder_.ReadBytes("data.txt");
    if (rule.code != 269) return;
    bytes.replace(2, 2, std::string("\x3D\xD8", 2));  // half of a picture
    folder_.Make("data.txt", bytes);
  }
};

TEST_F(ToolLint, EveryRuleIsBrokenAlone) {
  folder_.MakeFolder("folder");
  std::set<int> covered;
  std::vector<Rule> rules = StatementRules();
  std::vector<Rule> const data_rules = DataRules();
  rules.insert(rules.end(), data_rules.begin(), data_rules.end());
  for (Rule const& rule : rules) {
    MakeData(rule);
    std::string const found = Found(rule.script);
    std::string const code = Code{rule.code}.Text();
    // A text that is too long stands in a line that is too long.
    EXPECT_EQ(rule.code == 256 ? "TW255 " + code : code, found)
        << rule.script.substr(0, 200);
    EXPECT_EQ(HasError(rule.script), !Builds(rule.script)) << code;
    covered.insert(rule.code);
  }
  for (tool::CodeEntry const& entry : tool::ScriptCodes()) {
    // The version is compared by what is built.
    if (entry.number == 219) continue;
    EXPECT_TRUE(covered.contains(entry.number)) << entry.number;
  }
}

TEST_F(ToolLint, ShowsTheSourceOfEveryRule) {
  folder_.MakeFolder("folder");
  std::string found;
  for (std::vector<Rule> const& rules : {StatementRules(), DataRules()}) {
    for (Rule const& rule : rules) {
      MakeData(rule);
      for (tool::ScriptFinding const& finding : Findings(rule.script)) {
        found += tool::Describe(finding.problem, finding.severity, false);
      }
    }
  }
  EXPECT_EQ(Expected("lint_rules", found), found);
}

TEST_F(ToolLint, FindsNothingInASoundScript) {
  MakeUnits("data.txt", "1,1,\"#TS(Bolt, long¬Bolzen)TS~\",2.5e3\r\n2,2,,-1\n");
  folder_.Make("a.script",
               "# TABLEDATA in a comment; newtable too\r\n"
               "NEWDATABASE S s.db # the file\r\n\r\n"
               "NEWTABLE T\r\nID integer\r\nFOLGE LONG\r\nNAME STRING\r\n"
               "PRICE DOUBLE\r\nENDDEF\r\nTABLEDATA T data.txt\r\n");
  auto const run = RunToLook({"lint", "a.script"});
  EXPECT_EQ("", run.out + run.err);
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolLint, LeavesTheDatabaseThatIsThereAlone) {
  MakeStock();
  MakeUnits("data.txt", "1\n");
  folder_.Make("a.script",
               "NEWDATABASE S stock.db\nNEWTABLE T\nA integer\nENDDEF\n"
               "TABLEDATA T data.txt\nNEWDATABASE S STOCK.UDB\n");
  auto const run = RunToLook({"lint", "a.script", "--ignore", "TW223,TW240"});
  EXPECT_EQ("", run.out + run.err);
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolLint, GoesOnBehindErrors) {
  MakeUnits("data.txt", "1,x\n");
  folder_.Make("a.script",
               "NEWDATABASE S\n"
               "NEWTABLE T\nA\nB integer\nNEWTABLE U\nA integer\n\nB integer\n"
               "ENDDEF\nTABLEDATA U none.txt\nTABLEDATA\n"
               "NEWTABLE V\nA integer\nB integer\nENDDEF\n"
               "TABLEDATA V data.txt\nNEWTABLE W\nA integer\n");
  auto const run = RunToLook({"lint", "a.script"});
  EXPECT_EQ(Expected("lint_errors", run.out), run.out);
  EXPECT_EQ("", run.err);
  EXPECT_EQ(1, run.exit_code);
}

TEST_F(ToolLint, CountsNotesForNothing) {
  folder_.Make("a.script", "newtable a\n" + Empty());
  auto const run = RunToLook({"lint", "a.script"});
  EXPECT_EQ(0U, run.out.find("a.script:1:1: note[TW234]: ")) << run.out;
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolLint, HandsOutRecords) {
  MakeUnits("data.txt", "1,\"größer\"\n");
  folder_.Make("a.script", Reading("A integer\nB integer\n"));
  auto const run = RunToLook({"lint", "a.script", "--format", "ndjson"});
  EXPECT_EQ(
      "{\"severity\": \"warning\", \"code\": \"TW259\", \"file\": "
      "\"data.txt\", \"line\": 1, \"column\": 3, \"byte\": null, \"message\": "
      "\"\\\"größer\\\" is no integer: 0 is stored\", "
      "\"advice\": "
      "\"leave the quotes out\", \"source\": \"1,\\\"größer\\\"\"}\n",
      run.out);
  EXPECT_EQ(1, run.exit_code);
}

TEST_F(ToolLint, LeavesOutWhatIsIgnored) {
  folder_.Make("a.script",
               "NEWDATABASE s s.db\nNEWTABLE T;\nA integer\n"
               "ENDDEF\n");
  EXPECT_EQ(1, Run({"lint", "a.script", "--ignore", "TW220"}).exit_code);
  auto const run = Run({"lint", "a.script", "--ignore", "TW220,TW238"});
  EXPECT_EQ("", run.out + run.err);
  EXPECT_EQ(0, run.exit_code);
  EXPECT_EQ(2, Run({"lint", "a.script", "--ignore", "TW999"}).exit_code);
}

TEST_F(ToolLint, TakesSeveralScriptsAndSaysWhichCannotBeRead) {
  folder_.MakeFolder("süd");
  folder_.Make("süd/a.script", "# a\n");
  folder_.Make("süd/b.script", Empty());
  auto const run =
      RunToLook({"lint", "-C", "süd", "a.script", "none.script", "b.script"});
  EXPECT_EQ(
      "a.script: error[TW215]: there is no statement NEWDATABASE; begin it "
      "with \"NEWDATABASE name file\"\n1 error, 0 warnings\n",
      run.out);
  EXPECT_EQ(
      "none.script: error[TW116]: the script cannot be read; check its path "
      "and permissions\n",
      run.err);
  EXPECT_EQ(3, run.exit_code);
}

TEST_F(ToolLint, CountsColumnsInCharacters) {
  MakeUnits("data.txt", "\"😀é漢\",x\n");
  auto const findings = Findings(Reading("A string\nB integer\n"));
  ASSERT_EQ(1U, findings.size());
  EXPECT_EQ("data.txt:1:7", findings[0].problem.where.Text());
}

// Behind the pieces of a long line the numbers of lines go on as an editor
// counts them.
TEST_F(ToolLint, CountsLinesBehindLongOnes) {
  MakeUnits("data.txt", std::string(9000, 'a') + ",1\nb,x\n");
  auto const findings = Findings(Reading("A string\nB integer\n"));
  ASSERT_EQ(3U, findings.size());
  EXPECT_EQ("data.txt:1:4096", findings[0].problem.where.Text());
  EXPECT_EQ("data.txt:1:1", findings[1].problem.where.Text());
  EXPECT_EQ("data.txt:2:3", findings[2].problem.where.Text());
}

TEST_F(ToolLint, NamesTheFileOfTheFirstId) {
  MakeUnits("data.txt", "1\n2\n");
  MakeUnits("more.txt", "2\n2\n");
  auto const findings =
      Findings(Reading("ID integer\n") + "TABLEDATA T more.txt\n");
  ASSERT_EQ(2U, findings.size());
  EXPECT_EQ("the ID 2 is given twice, first in line 2 of an earlier data file",
            findings[0].problem.what);
  EXPECT_EQ("more.txt:2:1", findings[1].problem.where.Text());
}

TEST_F(ToolLint, TellsWideGapsQuickly) {
  MakeUnits("data.txt", "1\n2147483647\n");
  auto const findings = Findings(Reading("FOLGE integer\n"));
  ASSERT_EQ(1U, findings.size());
  EXPECT_EQ(
      "no row has the place 2 before 2147483647, and 2 147 483 644 more are "
      "missing",
      findings[0].problem.what);
}

// With the limit of the reader: the last definition that it takes.
TEST_F(ToolLint, AllowsTheLongestDefinition) {
  // "integer A…, integer A…": 16,382 bytes in all.
  std::string const line(63 - 3, 'A');
  std::string columns;
  std::size_t length = 0;
  for (int i = 100; length + 2 + 8 + 63 <= 16382; ++i) {
    length += (length == 0 ? 0 : 2) + 8 + 63;
    columns += line + std::to_string(i) + " integer\n";
  }
  std::size_t const rest = 16382 - length - 2 - 8;
  ASSERT_LT(rest, 63U);
  std::string const last(rest, 'B');
  EXPECT_EQ("", Found(Defining(columns + last + " integer\n")));
  EXPECT_TRUE(Builds(Defining(columns + last + " integer\n")));
  EXPECT_EQ("TW209", Found(Defining(columns + last + "B integer\n")));
  EXPECT_FALSE(Builds(Defining(columns + last + "B integer\n")));
}

}  // namespace
}  // namespace tabwerk::test
