// The first start: a shipped file, and how a program gets a user file.
#include <gtest/gtest.h>

#include "DBInterpreter.h"
#include "tests/end_to_end/story.h"

namespace tabwerk::test {
namespace {

class UserFileMade : public StoryTest {
 protected:
  UserFileMade() {
    Ship(1000, {{"1|1|0|Anna", "2|2|0|Bert"}, {"1|1|0|red", "2|2|0|blue"}});
  }

  // A script that makes USER.UDB with the columns of the shipped tables.
  int RunScript() const {
    constexpr char kColumns[] =
        "ID integer\nFOLGE integer\nSTATUS integer\nNAME string\nENDDEF\n";
    auto const script = "NEWDATABASE stock " + Path("USER.UDB") +
                        "\nNEWTABLE ARTIKEL\n" + kColumns + "NEWTABLE FARBE\n" +
                        kColumns;
    WriteFileBytes(Path("user.script"), {script.begin(), script.end()});
    return DBInterpreter().ReadScript(Path("user.script").c_str(), zWString());
  }
  // Name and definition of the user file's tables.
  std::map<std::string, std::string> TablesOnDisk() const {
    std::map<std::string, std::string> tables;
    for (auto const& table : ReadDatabase(Path("USER.UDB")).tables) {
      tables[table.name] = table.definition;
    }
    return tables;
  }
};

TEST_F(UserFileMade, ByAScriptItTakesRowsAtOnce) {
  EXPECT_EQ(1, RunScript());
  EXPECT_EQ("", OnDisk("USER.UDB", "ARTIKEL"));
  EXPECT_EQ("", OnDisk("USER.UDB", "FARBE"));
  EXPECT_EQ("MAIN.db USER.UDB user.script", Files());
  Start();
  EXPECT_TRUE(Append(L"Dora"));
  SaveAndRestart();
  EXPECT_EQ("[20000|3|0|Dora]", OnDisk("USER.UDB"));
  EXPECT_EQ("Anna Bert Dora", InOrder());
}

TEST_F(UserFileMade, FromAnEmptyFileItTakesRowsBehindTheFirstSave) {
  MakeEmptyUserFile();
  Start();
  EXPECT_FALSE(Table("ARTIKEL")->NeueZeile(true));
  EXPECT_FALSE(Append(L"Dora"));
  EXPECT_EQ("Anna Bert", InOrder());
  EXPECT_TRUE(Save());
  EXPECT_TRUE(Append(L"Dora"));
  EXPECT_TRUE(Put(DBTabelle::ActionAppend, {{"NAME", L"green"}}, "FARBE"));
  SaveAndRestart();
  EXPECT_EQ("[20000|3|0|Dora]", OnDisk("USER.UDB", "ARTIKEL"));
  EXPECT_EQ("[20000|3|0|green]", OnDisk("USER.UDB", "FARBE"));
}

TEST_F(UserFileMade, BothWaysMakeTheSameTables) {
  EXPECT_EQ(1, RunScript());
  auto const by_script = TablesOnDisk();
  MakeEmptyUserFile();
  Start();
  EXPECT_TRUE(Save());
  EXPECT_EQ(2U, by_script.size());
  EXPECT_EQ(by_script, TablesOnDisk());
}

TEST_F(UserFileMade, TheIndexComesWithTheFirstOpening) {
  MakeEmptyUserFile();
  EXPECT_EQ("MAIN.db USER.UDB", Files());
  Start();
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
  EXPECT_EQ("ID 1>0 2>1 FOLGE -1 0 1 STATUS 0 0", IndexOnDisk(0));
  EXPECT_TRUE(Save());
  EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
  EXPECT_EQ(-1, IndexResult());
}

TEST_F(UserFileMade, WithoutItTheDatabaseDoesNotOpen) {
  Configure("STOCK", {"MAIN.db", "USER.UDB"});
  EXPECT_EQ(0, Manager()->Open(W("STOCK"), true, false));
  EXPECT_FALSE(Manager()->SelectDB(W("STOCK")));
  EXPECT_EQ("MAIN.db", Files());
  // Configured anew, it opens as soon as the file is there.
  MakeEmptyUserFile();
  Start();
  EXPECT_EQ("Anna Bert", InOrder());
}

TEST_F(UserFileMade, OfNoConfigurationNothingCanBeSaved) {
  Configure("STOCK", {"MAIN.db"});
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), true, false));
  EXPECT_FALSE(Append(L"Dora"));
  EXPECT_FALSE(Save());
  EXPECT_EQ("[1|1|0|Anna][2|2|0|Bert]", Rows("ARTIKEL"));
  EXPECT_EQ("MAIN.db", Files());
}

}  // namespace
}  // namespace tabwerk::test
