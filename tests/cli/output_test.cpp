// The formats of rows and findings, -o, and the line of progress.
#include <algorithm>
#include <cmath>
#include <limits>

#include "cli/findings.h"
#include "cli/progress.h"
#include "cli/settings.h"
#include "cli/table_out.h"
#include "cli/text.h"
#include "tests/cli/expected.h"
#include "tests/cli/tool_test.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace tabwerk::test {
namespace {

using tool::Cell;
using tool::CellType;
using tool::Code;
using tool::FindingsOut;
using tool::OutputOptions;
using tool::Place;
using tool::Problem;
using tool::Severity;
using tool::TableOut;

using ToolText = testing::Test;
using ToolProgress = testing::Test;

class ToolOutput : public ToolTest {
 protected:
  // What a format makes of values that are hard to write.
  std::string Written(std::string const& format) const {
    OutputOptions const options{format, {}, {}, folder_.PathUtf8("out")};
    TableOut out(options);
    EXPECT_FALSE(out.Begin({{"ID", CellType::kInteger},
                            {"NAME"},
                            {"PRICE", CellType::kReal},
                            {"NAME"}}));
    std::int64_t const least = std::numeric_limits<std::int32_t>::min();
    out.Add({least, "a,\"b\";'c'", 0.1, "plain"});
    out.Add({std::int64_t{2}, "two\r\nlines\ttab \\ \x1B[31m", 1e300, "倉庫"});
    out.Add({Cell(), "", Cell(), "*_`|<b>&amp;[x](y)~$#"});
    out.Add({std::int64_t{3}, "e\u0301 \u05D0\u05D1 \U0001F468\u200D\U0001F469",
             std::numeric_limits<double>::infinity(), "\uFFFD"});
    out.Add({std::int64_t{4}, " blank ", 5e-324, "\xC2\x9B"});
    EXPECT_FALSE(out.End());
    std::string text = folder_.Content("out");
    // Checked-in text has no carriage returns.
    for (std::size_t i = 0; (i = text.find('\r', i)) != text.npos;) {
      text.replace(i, 1, "<CR>");
    }
    return "--- " + format + "\n" + text;
  }
  std::string Rows(std::string const& format) const {
    return Run({"show", "stock.db", "-t", "ARTICLE", "--format", format}).out;
  }
};

TEST_F(ToolOutput, EndsLinesInALineFeedOnEverySystem) {
  MakeStock();
  for (char const* const format :
       {"table", "csv", "tsv", "json", "ndjson", "md", "list"}) {
    std::string const rows = Rows(format);
    EXPECT_EQ('\n', rows.back()) << format;
    EXPECT_EQ(rows.npos, rows.find('\r')) << format;
    EXPECT_EQ(0, Run({"show", "stock.db", "-t", "ARTICLE", "--format", format,
                      "-o", "rows"})
                     .exit_code);
    EXPECT_EQ(rows, folder_.Content("rows")) << format;
  }
}

TEST_F(ToolOutput, EscapesWhatEachFormatNeeds) {
  std::string found;
  for (char const* const format :
       {"auto", "table", "csv", "tsv", "json", "ndjson", "md", "list"}) {
    found += Written(format);
  }
  EXPECT_EQ(Expected("output_formats", found), found);
}

TEST_F(ToolOutput, HandsOutNoRowsInEveryFormat) {
  MakeStock();
  std::string found;
  for (char const* const format :
       {"table", "csv", "tsv", "json", "ndjson", "md", "list"}) {
    found += std::string("--- ") + format + "\n" +
             Run({"show", "stock.db", "-t", "EMPTY", "--format", format}).out;
  }
  EXPECT_EQ(Expected("output_no_rows", found), found);
}

TEST_F(ToolOutput, TakesColumnsInTheOrderOfTheQuestion) {
  MakeStock();
  EXPECT_EQ("NAME,ID\nBolt,1\n",
            Run({"show", "stock.db", "-t", "ARTICLE", "--columns", "NAME,ID",
                 "--limit", "1", "--format", "csv"})
                .out);
  auto const run =
      Run({"show", "stock.db", "-t", "ARTICLE", "--columns", "name"});
  EXPECT_EQ(
      "tabwerk: error[TW107]: there is no column name; did you mean NAME? the "
      "columns are ID, FOLGE, STATUS, NAME, PRICE\n",
      run.err);
  EXPECT_EQ("", run.out);
  EXPECT_EQ(2, run.exit_code);
}

TEST_F(ToolOutput, FileAppearsWhenItIsComplete) {
  MakeStock();
  folder_.Make("rows.csv", "old");
  auto const run = Run({"show", "stock.db", "-t", "ARTICLE", "--format", "csv",
                        "-o", "rows.csv"});
  EXPECT_EQ("", run.out + run.err);
  EXPECT_EQ(Rows("csv"), folder_.Content("rows.csv"));
  EXPECT_EQ((std::vector<std::string>{"STOCK.UDB", "rows.csv", "stock.db"}),
            folder_.Names());
  EXPECT_EQ(Rows("csv"), Run({"show", "stock.db", "-t", "ARTICLE", "--format",
                              "csv", "-o", "-"})
                             .out);
}

TEST_F(ToolOutput, VerboseTellsOnStandardError) {
  MakeStock();
  auto const run =
      Run({"show", "stock.db", "-t", "ARTICLE", "-v", "-o", "rows.tsv"});
  EXPECT_EQ("", run.out);
  EXPECT_EQ(
      "tabwerk: opened database STOCK: stock.db\ntabwerk: wrote rows.tsv\n",
      run.err);
}

TEST_F(ToolOutput, FileNeverReplacesADatabase) {
  MakeStock();
  folder_.Make("STOCK.idx", "index");
  for (char const* const file : {"stock.db", "STOCK.UDB", "STOCK.idx"}) {
    auto const run =
        RunToLook({"show", "stock.db", "-t", "ARTICLE", "-o", file});
    EXPECT_EQ(
        file + std::string(": error[TW108]: output does not replace a "
                           "database; name another file for the output\n"),
        run.err);
    EXPECT_EQ(2, run.exit_code);
  }
}

TEST_F(ToolOutput, SaysThatTheFileCannotBeMade) {
  MakeStock();
  auto const run =
      Run({"show", "stock.db", "-t", "ARTICLE", "-o", "none/rows"});
  EXPECT_EQ(0U, run.err.find("none/rows: error[TW117]: ")) << run.err;
  EXPECT_EQ(3, run.exit_code);
  EXPECT_EQ(3, Run({"dump", "stock.db", "-t", "ARTICLE", "-o", "."}).exit_code);
}

TEST_F(ToolOutput, DeviceIsWrittenIntoAndLeavesNoFile) {
  MakeMainFile();
#ifdef _WIN32
  std::vector<std::string> const devices = {"NUL", "nul", "NUL:", "\\\\.\\NUL"};
#else
  std::vector<std::string> const devices = {"/dev/null"};
#endif
  for (std::string const& device : devices) {
    auto const run = RunToLook({"show", "stock.db", "ARTICLE", "-o", device});
    EXPECT_EQ("", run.out + run.err) << device;
    EXPECT_EQ(0, run.exit_code) << device;
  }
}

TEST_F(ToolOutput, DumpGoesToAFile) {
  MakeStock();
  EXPECT_EQ(
      0, Run({"dump", "stock.db", "-t", "ARTICLE", "-o", "a.txt"}).exit_code);
  EXPECT_EQ(Run({"dump", "stock.db", "-t", "ARTICLE"}).out,
            folder_.Content("a.txt"));
}

TEST_F(ToolOutput, ColorsOnlyWhenAsked) {
  MakeStock();
  auto const colored = [this](std::vector<std::string> const& more) {
    std::vector<std::string> arguments = {"show", "none.db", "-t", "T"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Run(arguments).err.find('\x1B') != std::string::npos;
  };
  EXPECT_FALSE(colored({}));
  EXPECT_FALSE(colored({"--color", "never"}));
  EXPECT_TRUE(colored({"--color", "always"}));
}

#ifndef _WIN32

// It was replaced by a file of its name, and that of a device with it.
TEST_F(ToolOutput, PipeAsFileIsWrittenInto) {
  MakeStock();
  std::string const path = folder_.PathUtf8("pipe");
  ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
  int const pipe = open(path.c_str(), O_RDWR | O_NONBLOCK);
  ASSERT_LE(0, pipe);
  auto const run =
      Run({"show", "stock.db", "-t", "ARTICLE", "--columns", "ID", "-o", path});
  EXPECT_EQ(0, run.exit_code) << run.err;
  char text[64];
  ssize_t const size = read(pipe, text, sizeof text);
  close(pipe);
  EXPECT_EQ(
      "ID\n1\n2\n",
      std::string(text, static_cast<std::size_t>(std::max<ssize_t>(size, 0))));
  EXPECT_TRUE(std::filesystem::is_fifo(path));
}

// Else what the file has already would be gone.
TEST_F(ToolOutput, StandardOutputByItsPathIsNotReplaced) {
  MakeMainFile();
  for (std::string const path : {"/dev/stdout", "/dev/fd/1"}) {
    auto const run = Run(
        {"show", "stock.db", "ARTICLE", "--columns", "ID", "-o", path, "-v"});
    EXPECT_EQ("ID\n1\n2\n", run.out);
    EXPECT_EQ(0, run.exit_code);
  }
  auto const run =
      Run({"show", "stock.db", "ARTICLE", "-v", "-o", "/dev/stderr"});
  EXPECT_EQ(0U, run.err.find("tabwerk: ")) << run.err;
  EXPECT_NE(std::string::npos, run.err.find("ID\tFOLGE\t")) << run.err;
}

TEST_F(ToolOutput, FileKeepsItsPermissions) {
  MakeMainFile();
  std::filesystem::path const path = folder_.folder() / "out.tsv";
  using std::filesystem::perms;
  for (perms const mode : {perms::owner_read | perms::owner_write,
                           perms::owner_all | perms::group_read |
                               perms::others_read | perms::others_exec}) {
    folder_.Make("out.tsv", "old");
    std::filesystem::permissions(path, mode);
    EXPECT_EQ(0,
              Run({"show", "stock.db", "ARTICLE", "-o", "out.tsv"}).exit_code);
    EXPECT_EQ(mode, std::filesystem::status(path).permissions());
    EXPECT_EQ(0U, folder_.ReadBytes("out.tsv").find("ID\t"));
  }
}

TEST_F(ToolOutput, LinkAsFileStaysALink) {
  MakeStock();
  folder_.Make("rows", "old");
  std::filesystem::create_symlink("rows", folder_.folder() / "link");
  auto const run = Run(
      {"show", "stock.db", "-t", "ARTICLE", "--columns", "ID", "-o", "link"});
  EXPECT_EQ(0, run.exit_code) << run.err;
  EXPECT_TRUE(std::filesystem::is_symlink(folder_.folder() / "link"));
  EXPECT_EQ("ID\n1\n2\n", folder_.Content("rows"));
}

TEST_F(ToolOutput, TerminalHasColorsUnlessNoColorIsSet) {
  MakeStock();
  auto const colored = [this](std::string const& no_color,
                              std::string const& terminal) {
    auto const run = RunToolOnTerminal(
        folder_.folder(),
        ToolCall{{"show", "stock.db", "-t", "ARTICLE"},
                 "",
                 {{"NO_COLOR", no_color}, {"TERM", terminal}}},
        80);
    return run.out.find('\x1B') != std::string::npos;
  };
  EXPECT_TRUE(colored("", "xterm"));
  EXPECT_FALSE(colored("1", "xterm"));
  EXPECT_FALSE(colored("", "dumb"));
}

#endif

std::string Found(TempFolder const& folder, std::string const& format) {
  OutputOptions const options{format, {}, {}, folder.PathUtf8("out")};
  FindingsOut out(options);
  EXPECT_FALSE(out.Begin());
  Place line("größe.txt", 7, 3);
  line.source = "ab\tcd";
  line.length = 2;
  Place byte("stock.db");
  byte.byte = 420;
  out.Add(Severity::kError, {Code{213}, line, "what is \"wrong\"", "mend it"});
  out.Add(Severity::kWarning, {Code{124}, byte, "damaged", ""});
  out.Add(Severity::kNote, {Code{110}, "stock.db", "by the way", ""});
  EXPECT_EQ(tool::ExitCode::kFindings, out.End());
  return folder.Content("out");
}

TEST_F(ToolOutput, FindingsAreMessagesOrRecords) {
  EXPECT_EQ(
      "größe.txt:7:3: error[TW213]: what is \"wrong\"; mend it\n"
      "    7 | ab cd\n"
      "      |   ^~\n"
      "stock.db:@420: warning[TW124]: damaged\n"
      "stock.db: note[TW110]: by the way\n"
      "1 error, 1 warning\n",
      Found(folder_, "auto"));
  EXPECT_EQ(
      "{\"severity\": \"error\", \"code\": \"TW213\", \"file\": "
      "\"größe.txt\", \"line\": 7, \"column\": 3, \"byte\": null, "
      "\"message\": \"what is \\\"wrong\\\"\", \"advice\": \"mend it\", "
      "\"source\": \"ab\\tcd\"}\n"
      "{\"severity\": \"warning\", \"code\": \"TW124\", \"file\": "
      "\"stock.db\", \"line\": null, \"column\": null, \"byte\": 420, "
      "\"message\": \"damaged\", \"advice\": null, \"source\": null}\n"
      "{\"severity\": \"note\", \"code\": \"TW110\", \"file\": \"stock.db\", "
      "\"line\": null, \"column\": null, \"byte\": null, \"message\": \"by "
      "the way\", \"advice\": null, \"source\": null}\n",
      Found(folder_, "ndjson"));
}

TEST_F(ToolOutput, NoFindingsAreNoLines) {
  OutputOptions const options{"auto", {}, {}, folder_.PathUtf8("out")};
  FindingsOut out(options);
  EXPECT_FALSE(out.Begin());
  EXPECT_EQ(tool::ExitCode::kDone, out.End());
  EXPECT_EQ("", folder_.Content("out"));
}

TEST_F(ToolText, MeasuresWhatATerminalShows) {
  EXPECT_EQ(0U, tool::DisplayWidth(""));
  EXPECT_EQ(5U, tool::DisplayWidth("Größe"));
  EXPECT_EQ(4U, tool::DisplayWidth("倉庫"));
  EXPECT_EQ(1U, tool::DisplayWidth("e\u0301"));
  EXPECT_EQ(3U, tool::DisplayWidth("\u0915\u094D\u0937\u0061"));
  EXPECT_EQ(2U, tool::DisplayWidth("\U0001F600"));
  EXPECT_EQ(2U, tool::DisplayWidth("\U0001F44D\U0001F3FD"));  // skin tone
  EXPECT_EQ(2U, tool::DisplayWidth("\U0001F468\u200D\U0001F469"));
  EXPECT_EQ(2U, tool::DisplayWidth("\u2764\uFE0F"));
  EXPECT_EQ(2U, tool::DisplayWidth("\U0001F1E9\U0001F1EA"));  // a flag
  EXPECT_EQ(2U, tool::DisplayWidth("\u1112\u1161\u11AB"));    // a syllable
}

TEST_F(ToolText, CutsBetweenWhatBelongsTogether) {
  EXPECT_EQ("ae\u0301…", tool::CutToWidth("ae\u0301bcd", 3));
  EXPECT_EQ("…", tool::CutToWidth("\U0001F468\u200D\U0001F469x", 2));
  EXPECT_EQ("倉…", tool::CutToWidth("倉庫係", 4));
  EXPECT_EQ("倉庫", tool::CutToWidth("倉庫", 4));
}

TEST_F(ToolText, GroupsDigits) {
  EXPECT_EQ("0", tool::Grouped(0));
  EXPECT_EQ("999", tool::Grouped(999));
  EXPECT_EQ("-1 000", tool::Grouped(-1000));
  EXPECT_EQ("1 234 567", tool::Grouped(1234567));
}

TEST_F(ToolProgress, ShowsBarRateAndRemainingTime) {
  using std::chrono::milliseconds;
  EXPECT_EQ("writing T  [#####               ]  25 %  1 000 rows/s, 3 s left",
            tool::ProgressLine("writing T", 1000, 4000, "rows",
                               milliseconds(1000), 80));
  EXPECT_EQ("writing T  [####################] 100 %  2 s",
            tool::ProgressLine("writing T", 5000, 4000, "rows",
                               milliseconds(2000), 80));
  EXPECT_EQ("T  [                    ]   0 %  1 rows/s, 1 h 06 min left",
            tool::ProgressLine("T", 1, 4000, "rows", milliseconds(1000), 80));
  EXPECT_EQ(
      "building a ... 1 min 05 s",
      tool::ProgressLine("building a", 0, 0, "", milliseconds(65000), 80));
  EXPECT_EQ("build…",
            tool::ProgressLine("building a", 0, 0, "", milliseconds(65000), 7));
}

#ifndef _WIN32

// So many rows that the machine needs more than half a second for them.
TEST_F(ToolOutput, TerminalShowsABarWhileADatabaseIsBuilt) {
  std::string shown;
  for (std::size_t rows = 200000; rows <= 6400000; rows *= 2) {
    MakeLongScript(rows);
    auto const run =
        RunToolOnTerminal(folder_.folder(), {"build", "a.script"}, 80);
    EXPECT_EQ(0, run.exit_code);
    shown = run.out;
    if (shown.find("building a.script  [#") != shown.npos) break;
  }
  EXPECT_NE(std::string::npos, shown.find("building a.script  [#")) << shown;
  EXPECT_NE(std::string::npos, shown.find(" %  ")) << shown;
  EXPECT_NE(std::string::npos, shown.find("a.db: built with 1 table, "));
}

#endif

}  // namespace
}  // namespace tabwerk::test
