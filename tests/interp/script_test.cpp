#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "DBInterpreter.h"
#include "DBbase.h"
#include "platform/platform.h"
#include "tests/interp/text_folder.h"
#include "tests/support/database_fixture.h"
#include "tests/support/fault_platform.h"
#include "tests/support/new_guard.h"
#include "tests/support/plain_database.h"

using tabwerk::test::DatabaseTest;
using tabwerk::test::FaultGuard;
using tabwerk::test::Lasting;
using tabwerk::test::NewGuard;
using tabwerk::test::W;

namespace {

constexpr char const* kOneTable = "NEWTABLE ARTICLE\nID integer\nENDDEF\n";

class Script : public DatabaseTest {
 protected:
  Script() {
    // What stands in the manager before a script runs.
    Configure("BEFORE", {"before.db"});
  }

  void Text(std::string const& name, std::string_view bytes) const {
    tabwerk::test::WriteFileBytes(Path(name), {bytes.begin(), bytes.end()});
  }
  void Data(std::string const& name, std::u16string_view text) const {
    Text(name, "\xFF\xFE" + tabwerk::test::Utf16Bytes(text));
  }
  // Result of a script of that text; "@" stands for the test's folder with a
  // separator at its end.
  int Run(std::string text, std::string const& version = "",
          std::string const& script = "make.txt") {
    std::string const folder = Path("");
    for (auto at = text.find('@'); at != std::string::npos;
         at = text.find('@', at + folder.size())) {
      text.replace(at, 1, folder);
    }
    Text(script, text);
    return interpreter.ReadScript(Path(script).c_str(), W(version));
  }
  int RunDatabase(std::string const& statements,
                  std::string const& version = "",
                  std::string const& script = "make.txt") {
    return Run("NEWDATABASE stock @stock.db\n" + statements, version, script);
  }
  // Rows of a table in a written file.
  std::string Written(std::string const& table,
                      std::string const& file = "stock.db") const {
    return RowsOf(tabwerk::test::ReadDatabase(Path(file)), table);
  }
  static std::string Configured() {
    std::vector<zWString> names;
    std::vector<std::vector<zWString>> files;
    Manager()->GetInit(names, files);
    std::string text;
    for (auto const& name : names) text += "[" + name.toUtf8() + "]";
    return text;
  }

  DBInterpreter interpreter;
};

TEST_F(Script, WorkedExampleBecomesADatabase) {
  Data("article.txt", u"1,\"Bolt\",0.25\r\n");
  EXPECT_EQ(1, Run("NEWDATABASE stock @stock.db\n"
                   "NEWTABLE ARTICLE\n"
                   "ID integer\n"
                   "NAME string\n"
                   "PRICE real\n"
                   "ENDDEF\n"
                   "TABLEDATA ARTICLE @article.txt\n"));
  EXPECT_EQ("[1|Bolt|0.25]", Written("ARTICLE"));
  EXPECT_EQ("[BEFORE]", Configured());
}

TEST_F(Script, WrittenDatabaseOpens) {
  Data("article.txt", u"1\n2\n");
  ASSERT_EQ(1, RunDatabase(std::string(kOneTable) +
                           "TABLEDATA ARTICLE @article.txt\n"));
  Configure("STOCK", {"stock.db"});
  ASSERT_EQ(1, Manager()->Open(W("STOCK"), false, false));
  EXPECT_EQ("[1][2]", Rows("ARTICLE"));
}

TEST_F(Script, MissingScriptLeavesTheConfiguration) {
  EXPECT_EQ(0, interpreter.ReadScript(Path("none").c_str(), W("")));
  EXPECT_EQ(0, interpreter.ReadScript(nullptr, W("")));
  EXPECT_EQ("[BEFORE]", Configured());
  EXPECT_EQ(1, Manager()->FilesCount());
}

TEST_F(Script, CommentsAloneWriteNothingAndRestoreTheConfiguration) {
  EXPECT_EQ(0, Run("; nothing\n# here\nnewdatabase a b\n"));
  EXPECT_EQ("[BEFORE]", Configured());
  EXPECT_EQ(1, Manager()->FilesCount());
}

TEST_F(Script, CommentsAloneWriteTheNextOpenDatabase) {
  MakeArticles("first.db", 1000, {"1|1|0|Anna"});
  MakeArticles("second.db", 1000, {"2|1|0|Bert"});
  DBbase::Init({W("FIRST"), W("SECOND")},
               {{W(Path("first.db"))}, {W(Path("second.db"))}});
  ASSERT_EQ(1, Manager()->Open(W("FIRST"), true, false));
  ASSERT_EQ(1, Manager()->Open(W("SECOND"), true, false));
  EXPECT_EQ(1, Run("; nothing\n"));
  EXPECT_LT(1000, tabwerk::test::ReadDatabase(Path("first.db")).time_stamp);
  EXPECT_EQ(1000, tabwerk::test::ReadDatabase(Path("second.db")).time_stamp);
}

TEST_F(Script, NameIsUpperCasedAndCutAtItsFullStop) {
  EXPECT_EQ(1, Run("NEWDATABASE st\xF6"
                   "ck.a.b @stock.db\n" +
                   std::string(kOneTable)));
  EXPECT_EQ("", Written("ARTICLE"));
}

TEST_F(Script, OperandsMayBeSeparatedBySemicolons) {
  EXPECT_EQ(1, Run("NEWDATABASE;stock;@stock.db;x\n" + std::string(kOneTable)));
  EXPECT_EQ("", Written("ARTICLE"));
}

TEST_F(Script, DataGoesIntoTheLastTableWhateverTheWord) {
  Data("a.txt", u"1\n");
  Data("b.txt", u"2\n");
  EXPECT_EQ(1, RunDatabase("NEWTABLE OTHER\nID integer\nENDDEF\n" +
                           std::string(kOneTable) +
                           "TABLEDATA OTHER @a.txt\nTABLEDATA X @b.txt\n"));
  EXPECT_EQ("[1][2]", Written("ARTICLE"));
  EXPECT_EQ("", Written("OTHER"));
}

TEST_F(Script, VersionWordAddsTheRowsTwice) {
  Data("v.txt", u"1,\"7\"\n2,\"8\"\n");
  std::string const table = "NEWTABLE V\nID integer\nVERSION string\nENDDEF\n";
  EXPECT_EQ(2, RunDatabase(table + "TABLEDATA VERSION @v.txt\n", "7", "D000"));
  EXPECT_EQ("[1|7][2|8][1|7][2|8]", Written("V"));
  EXPECT_EQ(1, RunDatabase(table + "TABLEDATA VERSION @v.txt\n", "8", "D000"));
  // Another word does not read the version.
  EXPECT_EQ(2, RunDatabase(table + "TABLEDATA V @v.txt\n", "8", "D000.txt"));
  EXPECT_EQ("[1|7][2|8]", Written("V"));
}

TEST_F(Script, OnlyD000ReportsAnotherVersion) {
  Data("v.txt", u"1\n");
  std::string const statements =
      "NEWTABLE V\nVERSION string\nENDDEF\nTABLEDATA VERSION @v.txt\n";
  EXPECT_EQ(2, RunDatabase(statements, "2", "D000.txt"));
  for (char const* name :
       {"XQTB.txt", "B000.txt", "C000.txt", "d000.txt", "D000.x.txt"}) {
    EXPECT_EQ(1, RunDatabase(statements, "2", name)) << name;
  }
  EXPECT_EQ(1, RunDatabase(statements, "1", "D000.txt"));
}

TEST_F(Script, FailureOfD000IsAFailure) {
  EXPECT_EQ(0, Run("; nothing\n", "2", "D000.txt"));
}

TEST_F(Script, LastLineWithoutLineFeedIsNotExecuted) {
  Data("a.txt", u"1\n");
  EXPECT_EQ(1,
            RunDatabase(std::string(kOneTable) + "TABLEDATA ARTICLE @a.txt"));
  EXPECT_EQ("", Written("ARTICLE"));
}

TEST_F(Script, LastLineEnddefWithoutLineFeedEndsItsDefinition) {
  EXPECT_EQ(1, RunDatabase("NEWTABLE ARTICLE\nID integer\nENDDEF"));
  EXPECT_EQ("", Written("ARTICLE"));
}

TEST_F(Script, CarriageReturnsAndCtrlZAreNoText) {
  Data("a.txt", u"1\n");
  EXPECT_EQ(1, Run("NEWDATABASE stock @stock.db\r\n\r\nNEWTABLE ARTICLE\r\n"
                   "ID integer\r\nENDDEF\r\nTABLEDATA ARTICLE @a.txt\r\n"
                   "\x1ATABLEDATA ARTICLE\r\n"));
  EXPECT_EQ("[1]", Written("ARTICLE"));
}

TEST_F(Script, TabBehindAnEmptyLineHidesTheStatement) {
  Data("a.txt", u"1\n");
  EXPECT_EQ(
      1, RunDatabase(std::string(kOneTable) + "TABLEDATA\tARTICLE @a.txt\n"
                                              "\nTABLEDATA\tARTICLE @a.txt\n"
                                              "\nTABLEDATA ARTICLE @a.txt\n"));
  EXPECT_EQ("[1][1]", Written("ARTICLE"));
}

TEST_F(Script, LineOfATabOrSemicolonBehindAnEmptyLineIsAComment) {
  // The line counts as one with a word, so the next one is split in full.
  Data("a.txt", u"1\n");
  EXPECT_EQ(1, RunDatabase(std::string(kOneTable) +
                           "\n\t\nTABLEDATA\tARTICLE @a.txt\n"
                           "\n;\nTABLEDATA\tARTICLE @a.txt\n"));
  EXPECT_EQ("[1][1]", Written("ARTICLE"));
}

TEST_F(Script, CommentInsideADefinitionIsAField) {
  EXPECT_EQ(1, RunDatabase("NEWTABLE ARTICLE\nID integer\n"
                           "a integer comment\nENDDEF\n"));
  EXPECT_EQ(
      "integer ID,integer a\n",
      tabwerk::test::ReadDatabase(Path("stock.db")).tables.at(0).definition);
}

TEST_F(Script, DataErrorsStayReadableAndDoNotStopTheScript) {
  Data("a.txt", u"1,2\n3\n");
  EXPECT_EQ(1,
            RunDatabase(std::string(kOneTable) + "TABLEDATA ARTICLE @a.txt\n"));
  EXPECT_EQ("[1][3]", Written("ARTICLE"));
  EXPECT_EQ(1, interpreter.GetError());
  EXPECT_STREQ(
      "Number of columns and number of token\n"
      "do not match in table ARTICLE",
      interpreter.GetErrorString());
}

TEST_F(Script, FailuresGive0AndLeaveNoFile) {
  Data("a.txt", u"1\n");
  std::string const table(kOneTable);
  std::vector<std::string> const statements = {
      table + "TABLEDATA ARTICLE\n",
      table + "TABLEDATA\n",
      table + "TABLEDATA ARTICLE @none.txt\n",
      table + "TABLEDATA ARTICLE @" + std::string(260, 'x') + "\n",
      table + table,
      table + "NEWDATABASE other\n",
      table + "NEWDATABASE\n",
      "TABLEDATA ARTICLE @a.txt\n",
      "NEWTABLE\nID integer\nENDDEF\n",
      "NEWTABLE ARTICLE\nID integer\n",
      "NEWTABLE ARTICLE\nID integer",
      "NEWTABLE ARTICLE\n",
      "NEWTABLE ARTICLE\n\nID integer\nENDDEF\n",
      "NEWTABLE ARTICLE\nID integer\n\nENDDEF\n",
      "NEWTABLE ARTICLE\nID\nENDDEF\n",
      "NEWTABLE " + std::string(64, 'N') + "\nID integer\nENDDEF\n",
  };
  for (auto const& failing : statements) {
    EXPECT_EQ(0, RunDatabase(failing)) << failing;
    EXPECT_FALSE(FileExists("stock.db")) << failing;
    EXPECT_EQ("[STOCK]", Configured()) << failing;
    EXPECT_EQ(0, tabwerk::test::OpenStreams()) << failing;
  }
}

TEST_F(Script, StatementsBeforeNewDatabaseFail) {
  Data("a.txt", u"1\n");
  EXPECT_EQ(0, Run(kOneTable));
  EXPECT_EQ(0, Run("TABLEDATA ARTICLE @a.txt\n"));
  EXPECT_EQ("[BEFORE]", Configured());
  EXPECT_EQ(0, Manager()->FilesCount());
}

TEST_F(Script, DefinitionOverItsLimitFails) {
  // 272 fields of 58 bytes, each with ", " behind it, leave 63 bytes for the
  // last one and the line feed.
  std::string fields;
  for (int i = 0; i < 272; ++i) {
    fields += std::string(46, 'a') + std::to_string(1000 + i) + " integer\n";
  }
  std::string const last(54, 'b');
  EXPECT_EQ(1,
            RunDatabase("NEWTABLE T\n" + fields + last + " integer\nENDDEF\n"));
  EXPECT_EQ(
      0, RunDatabase("NEWTABLE T\n" + fields + last + "b integer\nENDDEF\n"));
}

TEST_F(Script, FailureLeavesTheOldFileAsItWas) {
  MakeArticles("stock.db", 1000, {"1|1|0|Anna"});
  auto const before = Bytes("stock.db");
  EXPECT_EQ(0, RunDatabase(std::string(kOneTable) + "TABLEDATA ARTICLE\n"));
  EXPECT_EQ(before, Bytes("stock.db"));
  EXPECT_EQ(0, Run("NEWDATABASE stock\n"));
  EXPECT_EQ(before, Bytes("stock.db"));
}

TEST_F(Script, SuccessReplacesTheOldFile) {
  MakeArticles("stock.db", 1000, {"1|1|0|Anna"});
  EXPECT_EQ(1, RunDatabase(kOneTable));
  EXPECT_EQ("", Written("ARTICLE"));
  EXPECT_EQ("-", Written("ARTIKEL"));
}

TEST_F(Script, FileInUseFails) {
  MakeArticles("stock.UDB", 1000, {"1|1|0|Anna"});
  auto const before = Bytes("stock.UDB");
  auto error = tabwerk::platform::Error::kNone;
  FILE* const held = tabwerk::platform::OpenFile(
      W(Path("stock.UDB")), tabwerk::platform::Mode::kUpdate,
      tabwerk::platform::Share::kDenyWriters, &error);
  ASSERT_NE(nullptr, held);
  EXPECT_EQ(0, Run("NEWDATABASE stock @stock.UDB\n" + std::string(kOneTable)));
  tabwerk::platform::Close(held);
  EXPECT_EQ(before, Bytes("stock.UDB"));
}

TEST_F(Script, FolderThatIsMissingFails) {
  EXPECT_EQ(0,
            Run("NEWDATABASE stock @none/stock.db\n" + std::string(kOneTable)));
}

TEST_F(Script, SecondNewDatabaseForgetsTheFirst) {
  Data("a.txt", u"1\n");
  EXPECT_EQ(
      1, RunDatabase(std::string(kOneTable) + "NEWDATABASE other @other.db\n" +
                     kOneTable + "TABLEDATA ARTICLE @a.txt\n"));
  EXPECT_FALSE(FileExists("stock.db"));
  EXPECT_EQ("[1]", Written("ARTICLE", "other.db"));
}

TEST_F(Script, SecondNewDatabaseForgetsTheTable) {
  Data("a.txt", u"1\n");
  EXPECT_EQ(0,
            RunDatabase(std::string(kOneTable) + "NEWDATABASE other @other.db\n"
                                                 "TABLEDATA ARTICLE @a.txt\n"));
  EXPECT_FALSE(FileExists("stock.db"));
  EXPECT_FALSE(FileExists("other.db"));
  EXPECT_EQ("[OTHER]", Configured());
}

TEST_F(Script, SecondNewDatabaseMayNameTheSameFile) {
  EXPECT_EQ(1, RunDatabase(std::string(kOneTable) +
                           "NEWDATABASE stock @stock.db\n" + kOneTable));
  EXPECT_EQ("", Written("ARTICLE"));
}

TEST_F(Script, FailureKeepsTheDatabaseOfTheScriptClosed) {
  EXPECT_EQ(0, RunDatabase(std::string(kOneTable) + "TABLEDATA ARTICLE\n"));
  ASSERT_EQ(1, Manager()->FilesCount());
  EXPECT_EQ(W("STOCK"), Manager()->GetDirectory()->GetName());
  EXPECT_FALSE(Manager()->GetDirectory()->FileIsOpen(false, false));
}

TEST_F(Script, TableOfTheInterpreterIsForgotten) {
  MakeArticles("before.db", 1000, {"1|1|0|Anna"});
  ASSERT_EQ(1, Manager()->Open(W("BEFORE"), false, false));
  interpreter.SetTabelle(Table("ARTIKEL"));
  EXPECT_EQ(0, Run("NEWDATABASE stock\n"));
  Data("a.txt", u"1\n");
  ASSERT_EQ(1, interpreter.OpenDatei(Path("a.txt").c_str(), "rb"));
  zWString version;
  EXPECT_EQ(0, interpreter.ReadDatei(version, false, L""));
}

TEST_F(Script, PathMayLieInATableThatTheRunDeletes) {
  MakeFile("before.db", {tabwerk::test::PlainHeader::kCurrent,
                         1000,
                         {{"make.txt", "integer ID\n", {}}}});
  ASSERT_EQ(1, Manager()->Open(W("BEFORE"), false, false));
  Text("make.txt", "NEWDATABASE stock stock.db\n" + std::string(kOneTable));
  auto const folder = std::filesystem::current_path();
  std::filesystem::current_path(Path(""));
  char const* const path = Manager()->GetDirectory()->GetEntries()->GetName();
  EXPECT_EQ(1, interpreter.ReadScript(path, W("")));
  std::filesystem::current_path(folder);
  EXPECT_EQ("", Written("ARTICLE"));
}

// --- Exhausted memory
// --------------------------------------------------------

// A script over stock.db, which holds Anna, and its file of rows.
class ScriptMemory : public Script {
 protected:
  ScriptMemory() {
    Data("rows.txt", u"1,\"Bert, whose name is long\"\n2,\"Carl\"\n");
    MakeArticles("stock.db", 1000, {"1|1|0|Anna"});
    before_ = Bytes("stock.db");
    Text("make.txt", "NEWDATABASE stock " + Path("stock.db") +
                         "\nNEWTABLE T\nID integer\nNAME string\nENDDEF\n"
                         "TABLEDATA T " +
                         Path("rows.txt") + "\n");
  }
  int RunIt() { return interpreter.ReadScript(path_.c_str(), zWString()); }
  void ExpectAllOrNothing(int result) {
    DBbase::Init({}, {});
    if (result == 1) {
      EXPECT_EQ("[1|Bert, whose name is long][2|Carl]", Written("T"));
    } else {
      EXPECT_EQ(before_, Bytes("stock.db"));
    }
    tabwerk::test::WriteFileBytes(Path("stock.db"), before_);
    Configure("BEFORE", {"before.db"});
  }

  std::string const path_ = Path("make.txt");
  std::vector<unsigned char> before_;
};

// They were left out, and the file that had them was replaced.
TEST_F(ScriptMemory, RowsThatDoNotFitFailTheScript) {
  int result = 0;
  for (int n = 1; result == 0; ++n) {
    FaultGuard faults;
    faults.FailAt(n, Lasting::kOnce, tabwerk::test::kMemoryCalls);
    result = RunIt();
    faults.Disarm();
    ExpectAllOrNothing(result);
    ASSERT_LT(n, 100);
  }
}

// A table without columns took their place.
TEST_F(ScriptMemory, DefinitionsThatDoNotFitFailTheScript) {
  bool fired = true;
  for (int n = 1; fired; ++n) {
    SCOPED_TRACE(n);
    int result = 0;
    {
      NewGuard guard(n, NewGuard::Lasting::kOnce);
      result = RunIt();
      fired = guard.Disarm();
    }
    ExpectAllOrNothing(result);
  }
}

// The manager was left with that of the script, or with none.
TEST_F(ScriptMemory, AWrittenScriptRestoresTheConfiguration) {
  bool fired = true;
  for (int n = 1; fired; ++n) {
    SCOPED_TRACE(n);
    int result = 0;
    {
      NewGuard guard(n, n % 2 == 0 ? NewGuard::Lasting::kOnce
                                   : NewGuard::Lasting::kForGood);
      result = RunIt();
      fired = guard.Disarm();
    }
    EXPECT_TRUE(Configured() == "[BEFORE]" ||
                (result == 0 && Configured() == "[STOCK]"))
        << Configured();
    ExpectAllOrNothing(result);
  }
}

}  // namespace
