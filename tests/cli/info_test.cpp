// tabwerk info.

#include "DBDirectory.h"
#include "tests/cli/tool_test.h"

namespace tabwerk::test {
namespace {

using ToolInfo = ToolTest;

std::string Line(std::string const& text, std::string const& label) {
  auto const begin = text.find("  " + label);
  if (begin == std::string::npos) return "(none)";
  return text.substr(begin, text.find('\n', begin) - begin);
}

TEST_F(ToolInfo, ListsHeaderAndTables) {
  MakeMainFile();
  auto const run = Run({"info", "stock.db"});
  auto const size = std::to_string(folder_.Content("stock.db").size());
  EXPECT_EQ(
      "stock.db\n"
      "  role     main file\n"
      "  header   version 2025 with time\n"
      "  written  1970-01-01 00:16:40 UTC\n"
      "  size     " +
          size +
          " bytes\n"
          "  tables   2 tables, 2 rows\n"
          "    ARTICLE  2 rows  ID integer, FOLGE integer, STATUS integer, "
          "NAME string, PRICE real\n"
          "    EMPTY    0 rows  ID integer, NAME string\n"
          "  texts    in 3 languages\n"
          "  verdict  sound\n",
      run.out);
  EXPECT_EQ("", run.err);
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolInfo, ListsTablesAsRows) {
  MakeStock();
  std::string bytes = folder_.Content("stock.db");
  bytes[bytes.find("real PRICE\n") + 15] = '\x7F';
  folder_.Make("stock.db", bytes);
  auto const run = RunToLook({"info", "stock.db", "STOCK.UDB", "--format=csv"});
  EXPECT_EQ(
      "FILE,TABLE,ROWS,VERDICT,COLUMNS\n"
      "stock.db,ARTICLE,,damaged,\"ID integer, FOLGE integer, STATUS integer, "
      "NAME string, PRICE real\"\n"
      "stock.db,EMPTY,0,sound,\"ID integer, NAME string\"\n"
      "STOCK.UDB,ARTICLE,1,sound,\"ID integer, FOLGE integer, STATUS integer, "
      "NAME string, PRICE real\"\n"
      "STOCK.UDB,EMPTY,0,sound,\"ID integer, NAME string\"\n",
      run.out);
  EXPECT_EQ(0U, run.err.find("stock.db: error[TW125]: "));
  EXPECT_EQ(4, run.exit_code);
}

TEST_F(ToolInfo, NamesEveryHeaderForm) {
  auto const header = [this](PlainHeader form) {
    MakeDatabase("a.db", {form, 1000, {{"T", "integer ID\n", {"1"}}}});
    std::string const out = Run({"info", "a.db"}).out;
    return Line(out, "header") + "/" + Line(out, "written");
  };
  EXPECT_EQ(
      "  header   none: version 2014, string sizes in bytes/"
      "  written  unknown",
      header(PlainHeader::kNone));
  EXPECT_EQ("  header   version 2016 without time/  written  unknown",
            header(PlainHeader::k2016));
  EXPECT_EQ("  header   version 2018 without time/  written  unknown",
            header(PlainHeader::k2018));
  EXPECT_EQ(
      "  header   version 2025 with time/"
      "  written  1970-01-01 00:16:40 UTC",
      header(PlainHeader::kCurrent));
}

TEST_F(ToolInfo, JudgesTheIndexFileOfMainAndUserFile) {
  MakeStock();
  auto const state = [this] {
    return Line(Run({"info", "stock.db", "STOCK.UDB"}).out, "index");
  };
  auto const make = [this](std::vector<std::int64_t> const& stamps) {
    auto const index = EncodeIndex(
        {stamps,
         {{{}, {-1}, {}},
          {{{1, 0}, {2, 1}, {20000, 2}}, {-1, 0, 1, 2}, {0, 0, 0}}}});
    folder_.Make("STOCK.idx", std::string(index.begin(), index.end()));
  };
  EXPECT_EQ("  index    STOCK.idx: missing; made at the next opening", state());
  make({1000, 2000});
  EXPECT_EQ("  index    STOCK.idx: up to date", state());
  make({1000, 1999});
  EXPECT_EQ(
      "  index    STOCK.idx: older than the files; brought up to date at the "
      "next opening",
      state());
  folder_.Make("STOCK.idx", folder_.Content("STOCK.idx") + "x");
  EXPECT_EQ(
      "  index    STOCK.idx: does not fit these files; made anew at the next "
      "opening",
      state());
}

TEST_F(ToolInfo, TakesAUserFileAlone) {
  MakeStock();
  auto const run = Run({"info", "STOCK.UDB"});
  EXPECT_EQ("  role     user file", Line(run.out, "role"));
  EXPECT_EQ("  index    STOCK.idx: missing; made at the next opening",
            Line(run.out, "index"));
  EXPECT_EQ(0, run.exit_code);
}

TEST_F(ToolInfo, MarksADamagedTable) {
  MakeMainFile();
  std::string bytes = folder_.Content("stock.db");
  bytes[bytes.find("real PRICE\n") + 15] = '\x7F';
  folder_.Make("stock.db", bytes);
  auto const run = Run({"info", "stock.db"});
  EXPECT_EQ(
      "    ARTICLE  DAMAGED  ID integer, FOLGE integer, STATUS "
      "integer, NAME string, PRICE real",
      Line(run.out, "  ARTICLE"));
  EXPECT_EQ(
      "stock.db: error[TW125]: the file is damaged; restore it from a backup\n",
      run.err);
  EXPECT_EQ(4, run.exit_code);
}

TEST_F(ToolInfo, SaysWhatIsLeftOfADamagedList) {
  MakeMainFile();
  std::string const bytes = folder_.Content("stock.db");
  folder_.Make("stock.db", bytes.substr(0, 40));
  auto const run = Run({"info", "stock.db"});
  EXPECT_EQ("  header   version 2025 with time", Line(run.out, "header"));
  EXPECT_EQ("  tables   DAMAGED: cannot be listed", Line(run.out, "tables"));
  EXPECT_EQ(4, run.exit_code);
}

TEST_F(ToolInfo, GoesOnAfterAMissingFile) {
  MakeMainFile();
  auto const run = Run({"info", "none.db", "stock.db"});
  EXPECT_EQ("  tables   2 tables, 2 rows", Line(run.out, "tables"));
  EXPECT_EQ(0U, run.err.find("none.db: error[TW110]: there is no such file"));
  EXPECT_EQ(3, run.exit_code);
}

TEST_F(ToolInfo, SaysThatTheFileIsHeld) {
  MakeMainFile();
  DBDirectory holder;
  holder.Initialize(zWString(), {folder_.Path("stock.db")});
  ASSERT_TRUE(holder.OpenDBdatei(0, true, true));
  auto const run = Run({"info", "stock.db"});
  EXPECT_EQ(0U, run.err.find("stock.db: error[TW114]: another process holds"))
      << run.err;
  EXPECT_EQ(5, run.exit_code);
}

}  // namespace
}  // namespace tabwerk::test
