// What the user does to the tables is there at the next start of the program.
#include <gtest/gtest.h>

#include "tests/end_to_end/story.h"

namespace tabwerk::test {
namespace {

class UserFileRows : public StoryTest {
 protected:
  UserFileRows() {
    Install();
    main_file_ = Bytes("MAIN.db");
  }
  ~UserFileRows() override {
    // Whatever the user does, the shipped file is never written.
    EXPECT_TRUE(main_file_ == Bytes("MAIN.db"));
  }

  // The NAME of the row with that ID in a language.
  static std::string Name(long id, short language) {
    DBbase::SetSprache(language);
    auto* const table = Table("ARTIKEL");
    table->SelectColumn("NAME");
    zWString text;
    if (table->SelectZeile("ID", id) != 1) return "no row";
    table->GetWert(text);
    DBbase::SetSprache(0);
    return text.toUtf8();
  }
  static bool SetName(long id, std::wstring const& name) {
    auto* const table = Table("ARTIKEL");
    return table->SelectColumn("NAME") == 1 &&
           table->SelectZeile("ID", id) == 1 &&
           table->SetWert(name.c_str()) == 1;
  }

  std::vector<unsigned char> main_file_;
};

TEST_F(UserFileRows, AppendedRowGetsAnIdAndTheLastPlace) {
  EXPECT_TRUE(Append(L"Dora"));
  EXPECT_TRUE(Append(L"Emil"));
  SaveAndRestart();
  EXPECT_EQ("[20000|4|0|Dora][20001|5|0|Emil]", OnDisk("USER.UDB"));
  EXPECT_EQ("Anna Bert Carl Dora Emil", InOrder());
  EXPECT_EQ("red blue", InOrder("FARBE"));
}

TEST_F(UserFileRows, InsertedRowTakesThePlaceOfAnother) {
  EXPECT_TRUE(Put(DBTabelle::ActionInsert,
                  {{"ID", L"30000"}, {"FOLGE", L"2"}, {"NAME", L"Dora"}}));
  EXPECT_EQ("Anna Dora Bert Carl", InOrder());
  SaveAndRestart();
  EXPECT_EQ("[30000|2|0|Dora]", OnDisk("USER.UDB"));
  EXPECT_EQ("Anna Dora Bert Carl", InOrder());
}

// Kept: only a taken place is given; hosts ask for one to push rows back.
TEST_F(UserFileRows, InsertAtAFreePlaceGoesToTheEnd) {
  EXPECT_TRUE(Put(DBTabelle::ActionInsert,
                  {{"ID", L"30000"}, {"FOLGE", L"9"}, {"NAME", L"Dora"}}));
  SaveAndRestart();
  EXPECT_EQ("Anna Bert Carl Dora", InOrder());
}

TEST_F(UserFileRows, NamesThatClashGetAnEnding) {
  EXPECT_TRUE(Append(L"Anna"));
  EXPECT_TRUE(Append(L"Anna"));
  SaveAndRestart();
  EXPECT_EQ("[20000|4|0|Anna_NEW][20001|5|0|Anna_NEW_NEW]", OnDisk("USER.UDB"));
}

// Kept: the row itself counts as taken.
TEST_F(UserFileRows, UpdateWithTheSameNameGetsAnEnding) {
  EXPECT_TRUE(Append(L"Dora"));
  EXPECT_TRUE(
      Put(DBTabelle::ActionUpdate, {{"ID", L"20000"}, {"NAME", L"Dora"}}));
  SaveAndRestart();
  EXPECT_EQ("[20000|4|0|Dora_NEW]", OnDisk("USER.UDB"));
}

TEST_F(UserFileRows, TextsInTwoLanguages) {
  EXPECT_TRUE(Append(L"#TS(Pump\u00ACPumpe)TS~"));
  SaveAndRestart();
  EXPECT_EQ("Pump", Name(20000, 0));
  EXPECT_EQ("Pumpe", Name(20000, 1));
  EXPECT_TRUE(SetName(20000, L"#TS(Big pump\u00ACGro\u00DFe Pumpe)TS~"));
  SaveAndRestart();
  EXPECT_EQ("Big pump", Name(20000, 0));
  EXPECT_EQ("Große Pumpe", Name(20000, 1));
  EXPECT_EQ("[20000|4|0|#TS(Big pump¬Große Pumpe)TS~]", OnDisk("USER.UDB"));
}

// A text that was read in one language loses the others when it is set again.
TEST_F(UserFileRows, LanguageMinusOneReadsTheWholeText) {
  EXPECT_TRUE(Append(L"#TS(Pump\u00ACPumpe)TS~"));
  EXPECT_EQ("#TS(Pump¬Pumpe)TS~", Name(20000, -1));
}

TEST_F(UserFileRows, NamesClashInTheCurrentLanguageOnly) {
  EXPECT_TRUE(Append(L"#TS(Pump\u00ACAnna)TS~"));
  DBbase::SetSprache(1);
  EXPECT_TRUE(Append(L"Anna"));
  EXPECT_TRUE(Append(L"#TS(Anna\u00ACDora)TS~"));
  SaveAndRestart();
  EXPECT_EQ(
      "[20000|4|0|#TS(Pump¬Anna)TS~][20001|5|0|Anna_NEW]"
      "[20002|6|0|#TS(Anna¬Dora)TS~]",
      OnDisk("USER.UDB"));
}

TEST_F(UserFileRows, DeactivatedShippedRowStaysInactive) {
  EXPECT_TRUE(SetById(2, "STATUS", 1));
  SaveAndRestart();
  EXPECT_EQ("[0][1][0]", Column(Table("ARTIKEL"), "STATUS"));
  EXPECT_EQ("Anna Carl", InOrder());
  EXPECT_EQ(2, Table("ARTIKEL")->GetAnzahlAktiveZeilen());
  EXPECT_EQ("", OnDisk("USER.UDB"));
}

TEST_F(UserFileRows, ReactivatedRowIsActiveAgainInTheVendorsPlace) {
  EXPECT_TRUE(SetById(2, "STATUS", 1));
  SaveAndRestart();
  EXPECT_TRUE(SetById(2, "STATUS", 0));
  SaveAndRestart();
  EXPECT_EQ("[0][0][0]", Column(Table("ARTIKEL"), "STATUS"));
  EXPECT_EQ("Anna Bert Carl", InOrder());
}

// Kept: only the status of rows that the file calls active is carried over.
TEST_F(UserFileRows, RowThatIsShippedInactiveBecomesInactiveAgain) {
  End();
  Ship(1001, {{"1|1|0|Anna", "2|0|1|Bert", "3|2|0|Carl"}, {}});
  main_file_ = Bytes("MAIN.db");
  Start();
  EXPECT_TRUE(SetById(2, "STATUS", 0));
  SaveAndRestart();
  EXPECT_EQ("[0][1][0]", Column(Table("ARTIKEL"), "STATUS"));
}

TEST_F(UserFileRows, UsersOrderOfAllRowsStays) {
  EXPECT_TRUE(Append(L"Dora"));
  EXPECT_TRUE(SetById(20000, "FOLGE", 1));
  EXPECT_TRUE(SetById(3, "FOLGE", 2));
  EXPECT_TRUE(SetById(2, "FOLGE", 3));
  EXPECT_TRUE(SetById(1, "FOLGE", 4));
  EXPECT_EQ("Dora Carl Bert Anna", InOrder());
  SaveAndRestart();
  EXPECT_EQ("Dora Carl Bert Anna", InOrder());
  EXPECT_EQ("[20000|1|0|Dora]", OnDisk("USER.UDB"));
  EXPECT_EQ("ID 1>0 2>1 3>2 20000>3 FOLGE -1 3 2 1 0 STATUS 0 0 0 0",
            IndexOnDisk(1));
}

TEST_F(UserFileRows, SeveralStartsChangeNothing) {
  EXPECT_TRUE(Append(L"Dora"));
  EXPECT_TRUE(SetById(20000, "FOLGE", 1));
  EXPECT_TRUE(SetById(1, "FOLGE", 4));
  EXPECT_TRUE(SetById(3, "STATUS", 2));
  SaveAndRestart();
  auto const rows = Rows("ARTIKEL");
  auto const index = Bytes("STOCK.idx");
  EXPECT_EQ("Dora Bert Anna", InOrder());
  messages_.clear();
  for (int start = 0; start < 3; ++start) {
    End();
    Start();
    EXPECT_EQ(rows, Rows("ARTIKEL"));
    EXPECT_EQ(index, Bytes("STOCK.idx"));
  }
  EXPECT_EQ("", messages_);
}

TEST_F(UserFileRows, WhatWasNotSavedIsGone) {
  EXPECT_TRUE(Append(L"Dora"));
  EXPECT_TRUE(SetById(2, "STATUS", 1));
  End();
  Start();
  EXPECT_EQ("[1|1|0|Anna][2|2|0|Bert][3|3|0|Carl]", Rows("ARTIKEL"));
}

// Kept: texts of shipped rows are the shipped file's.
TEST_F(UserFileRows, TextOfAShippedRowIsNotSavedInTheUserFile) {
  EXPECT_TRUE(SetName(1, L"Anja"));
  EXPECT_EQ("Anja", Name(1, 0));
  SaveAndRestart();
  EXPECT_EQ("Anna", Name(1, 0));
}

TEST_F(UserFileRows, RowsOfAllTablesAreSavedTogether) {
  EXPECT_TRUE(Append(L"Dora"));
  EXPECT_TRUE(Put(DBTabelle::ActionAppend, {{"NAME", L"green"}}, "FARBE"));
  EXPECT_TRUE(SetById(1, "STATUS", 1, "FARBE"));
  SaveAndRestart();
  EXPECT_EQ("Anna Bert Carl Dora", InOrder("ARTIKEL"));
  EXPECT_EQ("blue green", InOrder("FARBE"));
}

}  // namespace
}  // namespace tabwerk::test
