// The vendor ships a new main file; the user's rows, order and status stay.
#include <gtest/gtest.h>

#include "tests/end_to_end/story.h"

namespace tabwerk::test {
namespace {

// The user has put Dora in front, Carl behind her and has switched Bert off.
class NewMainFile : public StoryTest {
 protected:
  NewMainFile() {
    Install();
    EXPECT_TRUE(Append(L"Dora"));
    EXPECT_TRUE(SetById(2, "STATUS", 1));
    EXPECT_TRUE(SetById(20000, "FOLGE", 1));
    EXPECT_TRUE(SetById(3, "FOLGE", 2));
    EXPECT_TRUE(SetById(1, "FOLGE", 3));
    EXPECT_TRUE(SetById(2, "FOLGE", 0));
    EXPECT_TRUE(SetById(2, "STATUS", 1, "FARBE"));
    EXPECT_TRUE(Save());
    EXPECT_EQ("Dora Carl Anna", InOrder());
    End();
    messages_.clear();
  }

  // Starts the program with a new main file; the colours stay as they were.
  void StartWith(std::vector<std::string> const& articles,
                 std::int64_t time_stamp = 2000) {
    Ship(time_stamp, {articles, {"1|1|0|red", "2|2|0|blue"}});
    Start();
  }
  // The status of the rows by their names: "Anna0 Bert1".
  static std::string Status() {
    auto* const table = Table("ARTIKEL");
    std::string text;
    for (long row = 0; table->SelectZeile(row) == 1; ++row) {
      zWString name;
      long status = 0;
      table->SelectColumn("NAME");
      table->GetWert(name);
      table->SelectColumn("STATUS");
      table->GetWert(status);
      text +=
          (text.empty() ? "" : " ") + name.toUtf8() + std::to_string(status);
    }
    return text;
  }
};

TEST_F(NewMainFile, OfTheSameRowsChangesNothing) {
  StartWith({"1|1|0|Anna", "2|2|0|Bert", "3|3|0|Carl"});
  EXPECT_EQ("Dora Carl Anna", InOrder());
  EXPECT_EQ("Anna0 Bert1 Carl0 Dora0", Status());
  EXPECT_EQ("red", InOrder("FARBE"));
}

TEST_F(NewMainFile, ShowsTheProgressOncePerTableAndOnlyOnce) {
  StartWith({"1|1|0|Anna", "2|2|0|Bert", "3|3|0|Carl"});
  EXPECT_EQ("[Updating database index][Updating database index][clear]",
            messages_);
  EXPECT_EQ(-1, IndexResult());
  End();
  messages_.clear();
  Start();
  EXPECT_EQ("", messages_);
}

TEST_F(NewMainFile, AddedRowFollowsTheOneBeforeItInTheVendorsOrder) {
  StartWith({"1|1|0|Anna", "2|2|0|Bert", "3|3|0|Carl", "4|4|0|Emil"});
  EXPECT_EQ("Dora Carl Emil Anna", InOrder());
  EXPECT_EQ("Anna0 Bert1 Carl0 Emil0 Dora0", Status());
  EXPECT_EQ("[20000|1|0|Dora]", OnDisk("USER.UDB"));
}

TEST_F(NewMainFile, ReorderedRowsKeepTheUsersOrderAndStatus) {
  StartWith({"3|1|0|Carl", "1|2|0|Anna", "2|3|0|Bert"});
  EXPECT_EQ("Dora Carl Anna", InOrder());
  EXPECT_EQ("Carl0 Anna0 Bert1 Dora0", Status());
}

TEST_F(NewMainFile, ChangedTextsAreShown) {
  StartWith({"1|1|0|Anja", "2|2|0|Berta", "3|3|0|Karl"});
  EXPECT_EQ("Dora Karl Anja", InOrder());
}

TEST_F(NewMainFile, RowThatIsShippedInactiveBecomesInactive) {
  StartWith({"1|1|0|Anna", "2|2|0|Bert", "3|3|2|Carl"});
  EXPECT_EQ("Dora Anna", InOrder());
  EXPECT_EQ("Anna0 Bert1 Carl2 Dora0", Status());
}

// Kept: an ID that no row has counts the row before it again, so the places
// have a gap where that row stood.
TEST_F(NewMainFile, RemovedRowLeavesAGapInThePlaces) {
  StartWith({"2|1|0|Bert", "3|2|0|Carl"});
  EXPECT_EQ("Dora - Carl", InOrder());
  EXPECT_EQ("Bert1 Carl0 Dora0", Status());
  EXPECT_EQ("[20000|1|0|Dora]", OnDisk("USER.UDB"));
}

// Kept: the row before the removed ones can so get a place that lies beyond
// the index.  It is not lost: the program can number the rows anew.
TEST_F(NewMainFile, RowsRemovedAtTheEndTakeTheLastPlaceAlong) {
  EXPECT_EQ("", messages_);
  Start();
  EXPECT_TRUE(SetById(20000, "FOLGE", 3));
  EXPECT_TRUE(SetById(1, "FOLGE", 1));
  EXPECT_TRUE(Append(L"Emil"));
  EXPECT_TRUE(SetById(2, "STATUS", 0));
  EXPECT_TRUE(SetById(2, "FOLGE", 5));
  EXPECT_EQ("Anna Carl Dora Emil Bert", InOrder());
  EXPECT_TRUE(Save());
  End();
  StartWith({"1|1|0|Anna"});
  EXPECT_EQ("- Anna Dora", InOrder());
  EXPECT_EQ("[2][3][5]", Column(Table("ARTIKEL"), "FOLGE"));
  EXPECT_EQ("Anna0 Dora0 Emil0", Status());
}

// Kept: of two rows with one place the later one counts, and a row that stands
// in no order is not appended.
TEST_F(NewMainFile, AddedRowWhosePlaceAUserRowHasGetsNone) {
  StartWith({"5|1|0|Zoe", "1|2|0|Anna", "2|3|0|Bert", "3|4|0|Carl"});
  EXPECT_EQ("Dora Carl Anna", InOrder());
  EXPECT_EQ("[0][3][0][2][1]", Column(Table("ARTIKEL"), "FOLGE"));
  EXPECT_EQ("Zoe0 Anna0 Bert1 Carl0 Dora0", Status());
}

TEST_F(NewMainFile, NextUserRowGoesBehindAllOfThem) {
  StartWith({"1|1|0|Anna", "2|2|0|Bert", "3|3|0|Carl", "4|4|0|Emil"});
  EXPECT_TRUE(Append(L"Fritz"));
  SaveAndRestart();
  EXPECT_EQ("Dora Carl Emil Anna Fritz", InOrder());
  EXPECT_EQ("[20000|1|0|Dora][20001|5|0|Fritz]", OnDisk("USER.UDB"));
}

TEST_F(NewMainFile, EverythingAtOnceAndThenTheOldOneAgain) {
  StartWith(
      {"3|1|0|Karl", "5|2|0|Zoe", "1|3|0|Anna", "2|4|0|Bert", "4|5|0|Emil"});
  EXPECT_EQ("Dora Zoe Karl Anna Emil", InOrder());
  EXPECT_EQ("Karl0 Zoe0 Anna0 Bert1 Emil0 Dora0", Status());
  End();
  StartWith({"1|1|0|Anna", "2|2|0|Bert", "3|3|0|Carl"}, 1000);
  EXPECT_EQ("Anna0 Bert1 Carl0 Dora0", Status());
  EXPECT_EQ("[20000|1|0|Dora]", OnDisk("USER.UDB"));
}

// --- Other tables ------------------------------------------------------------

class NewTables : public NewMainFile {
 protected:
  void StartWithTables(std::vector<PlainTable> const& tables) {
    MakeFile("MAIN.db", {PlainHeader::kCurrent, 2000, tables});
    Start();
  }
  static PlainTable Articles() {
    return {"ARTIKEL", kArticles, {"1|1|0|Anna", "2|2|0|Bert", "3|3|0|Carl"}};
  }
  static PlainTable Colours() {
    return {"FARBE", kArticles, {"1|1|0|red", "2|2|0|blue"}};
  }
};

TEST_F(NewTables, AddedTableMakesTheIndexOneThatDoesNotFit) {
  StartWithTables({Articles(), Colours(), {"MARKE", kArticles, {"1|1|0|x"}}});
  EXPECT_EQ("", messages_);
  EXPECT_EQ("Anna0 Bert0 Carl0 Dora0", Status());
  EXPECT_EQ("red blue", InOrder("FARBE"));
  EXPECT_EQ("x", InOrder("MARKE"));
  EXPECT_EQ("[20000|1|0|Dora]", OnDisk("USER.UDB"));
  EXPECT_EQ(-1, IndexResult());
}

TEST_F(NewTables, AddedTableTakesUserRowsBehindTheFirstSave) {
  StartWithTables({Articles(), Colours(), {"MARKE", kArticles, {"1|1|0|x"}}});
  EXPECT_FALSE(Put(DBTabelle::ActionAppend, {{"NAME", L"y"}}, "MARKE"));
  EXPECT_TRUE(Save());
  EXPECT_TRUE(Put(DBTabelle::ActionAppend, {{"NAME", L"y"}}, "MARKE"));
  SaveAndRestart();
  EXPECT_EQ("x y", InOrder("MARKE"));
}

TEST_F(NewTables, RemovedTableMakesTheIndexOneThatDoesNotFit) {
  StartWithTables({Articles()});
  EXPECT_EQ("", messages_);
  EXPECT_EQ("Anna0 Bert0 Carl0 Dora0", Status());
  EXPECT_EQ("no table", InOrder("FARBE"));
}

// Kept: the shipped file fixes which tables exist.
TEST_F(NewTables, UserRowsOfARemovedTableStayInTheFileUntilTheNextSave) {
  Start();
  EXPECT_TRUE(Put(DBTabelle::ActionAppend, {{"NAME", L"green"}}, "FARBE"));
  EXPECT_TRUE(Save());
  End();
  StartWithTables({Articles()});
  EXPECT_EQ("[20000|2|0|green]", OnDisk("USER.UDB", "FARBE"));
  EXPECT_TRUE(Save());
  EXPECT_EQ("-", OnDisk("USER.UDB", "FARBE"));
  EXPECT_EQ("[20000|1|0|Dora]", OnDisk("USER.UDB", "ARTIKEL"));
}

// Kept: the sections of an index carry no names.  With as many tables as
// before they belong to the tables by position.
TEST_F(NewTables, OtherOrderOfTheTablesMixesUpTheirSections) {
  StartWithTables({Colours(), Articles()});
  EXPECT_EQ("Anna0 Bert1 Carl0 Dora0", Status());
  EXPECT_EQ("[0][1]", Column(Table("FARBE"), "STATUS"));
  EXPECT_EQ("[20000|1|0|Dora]", OnDisk("USER.UDB"));
}

}  // namespace
}  // namespace tabwerk::test
