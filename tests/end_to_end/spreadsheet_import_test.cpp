// Rows that a spreadsheet saved as text become user rows and are saved.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "DBInterpreter.h"
#include "tests/end_to_end/story.h"

namespace tabwerk::test {
namespace {

constexpr char kPrices[] =
    "integer ID,integer FOLGE,integer STATUS,string NAME,real PREIS,"
    "integer MENGE\n";
// The last column is a text.
constexpr char kNotes[] =
    "integer ID,integer FOLGE,integer STATUS,string NAME,string NOTIZ\n";

constexpr char16_t kByteOrderMark = u'\xFEFF';

// One shipped row in each of the tables PREISE and NOTIZEN.
class SpreadsheetImport : public StoryTest {
 protected:
  SpreadsheetImport() {
    MakeFile("MAIN.db", {PlainHeader::kCurrent,
                         1000,
                         {{"PREISE", kPrices, {"1|1|0|Pump|2.5|1"}},
                          {"NOTIZEN", kNotes, {"1|1|0|Pump|shipped"}}}});
    MakeEmptyUserFile();
    Start();
    EXPECT_TRUE(Save());
  }

  // Reads the text, low bytes first, as a file that a program exported; the
  // number of rows that came.
  int Import(std::u16string_view text, char const* table_name = "PREISE",
             wchar_t const* separator = L";") {
    std::vector<unsigned char> bytes;
    for (auto const unit : text) {
      bytes.push_back(static_cast<unsigned char>(unit & 0xFFU));
      bytes.push_back(static_cast<unsigned char>(unit >> 8U));
    }
    WriteFileBytes(Path("rows.csv"), bytes);
    auto* const table = Table(table_name);
    if (table == nullptr) return -1;
    auto const before = table->GetAnzahlZeilen();
    DBInterpreter reader;
    reader.SetTabelle(table);
    EXPECT_EQ(1, reader.OpenDatei(Path("rows.csv").c_str(), "rb"));
    zWString version;
    EXPECT_EQ(1, reader.ReadDatei(version, true, separator));
    reader.CloseDatei();
    error_ = reader.GetError();
    return table->GetAnzahlZeilen() - before;
  }
  // The user's rows behind a save and a restart: in memory as on the disk.
  std::string Saved(char const* table = "PREISE") {
    SaveAndRestart();
    auto const rows = OnDisk("USER.UDB", table);
    DBbase::SetSprache(-1);
    EXPECT_TRUE(Rows(table).ends_with(rows)) << Rows(table);
    DBbase::SetSprache(0);
    return rows;
  }

  int error_ = 0;
};

// What spreadsheets write as "Unicode text": mark, CR LF, decimal comma.
TEST_F(SpreadsheetImport, OfAWholeSheet) {
  std::u16string const sheet = std::u16string(1, kByteOrderMark) +
                               u"4711;1;0;Pumpe;1,5;3\r\n"
                               u"4712;2;0;\"Rohr; lang\";\"0,25\";12\r\n"
                               u"4713;3;0;Größe 中文;-7;0\r\n";
  EXPECT_EQ(3, Import(sheet));
  EXPECT_EQ(0, error_);
  EXPECT_EQ(
      "[20000|2|0|Pumpe|1.5|3][20001|3|0|Rohr; lang|0.25|12]"
      "[20002|4|0|Größe 中文|-7|0]",
      Saved());
  EXPECT_EQ("[1][2][3][4]", Column(Table("PREISE"), "FOLGE"));
}

TEST_F(SpreadsheetImport, WithoutAMarkIsTheSame) {
  EXPECT_EQ(1, Import(u"4711;1;0;Pumpe;1,5;3\r\n"));
  EXPECT_EQ("[20000|2|0|Pumpe|1.5|3]", Saved());
}

// Kept: the mark is part of the first value, as hosts have stored it.  A first
// column whose value is not used swallows it.
TEST_F(SpreadsheetImport, MarkBelongsToTheFirstValue) {
  End();
  MakeFile("MAIN.db", {PlainHeader::kCurrent,
                       2000,
                       {{"PREISE", "string NAME,integer ID\n", {"Pump|1"}}}});
  MakeEmptyUserFile();
  Start();
  EXPECT_TRUE(Save());
  EXPECT_EQ(1, Import(std::u16string(1, kByteOrderMark) + u"Rohr;1\n"));
  EXPECT_NE(std::string::npos, Saved().find("\xEF\xBB\xBFRohr"));
}

// Kept: a carriage return is part of the last value.  A number ends before it.
TEST_F(SpreadsheetImport, CarriageReturnStaysInALastText) {
  EXPECT_EQ(2, Import(u"1;1;0;Rohr;lang\r\n2;2;0;Hahn;\"rot\"\r\n", "NOTIZEN"));
  EXPECT_EQ("[20000|2|0|Rohr|lang\r][20001|3|0|Hahn|\"rot\"\r]",
            Saved("NOTIZEN"));
}

TEST_F(SpreadsheetImport, LineFeedsAloneLeaveNoTrace) {
  EXPECT_EQ(2, Import(u"1;1;0;Rohr;lang\n2;2;0;Hahn;\"rot\"\n", "NOTIZEN"));
  EXPECT_EQ("[20000|2|0|Rohr|lang][20001|3|0|Hahn|rot]", Saved("NOTIZEN"));
}

TEST_F(SpreadsheetImport, DecimalCommaIsReadAndThousandsAreNot) {
  EXPECT_EQ(4, Import(u"1;1;0;A;1,5;3\n2;1;0;B;1.234,5;1,9\n"
                      u"3;1;0;C;\"2,5\";\"7\"\n4;1;0;D;n/a;x\n"));
  EXPECT_EQ(
      "[20000|2|0|A|1.5|3][20001|3|0|B|1.234|1][20002|4|0|C|2.5|7]"
      "[20003|5|0|D|0|0]",
      Saved());
}

TEST_F(SpreadsheetImport, SectionsOfSeveralLanguagesAreKept) {
  EXPECT_EQ(1, Import(u"1;1;0;#TS(Valve; red\u00ACVentil; rot)TS~;1,5;3\n"));
  EXPECT_EQ("[20000|2|0|#TS(Valve; red¬Ventil; rot)TS~|1.5|3]", Saved());
  DBbase::SetSprache(1);
  EXPECT_EQ("[Pump][Ventil; rot]", Column(Table("PREISE"), "NAME"));
}

TEST_F(SpreadsheetImport, NamesThatAreTakenGetAnEnding) {
  EXPECT_EQ(2, Import(u"1;1;0;Pump;1;1\n1;1;0;Pump;2;2\n"));
  EXPECT_EQ("[20000|2|0|Pump_NEW|1|1][20001|3|0|Pump_NEW_NEW|2|2]", Saved());
}

// Kept: hosts rely on one row for every line.
TEST_F(SpreadsheetImport, EmptyLinesBecomeRows) {
  EXPECT_EQ(3, Import(u"\n1;1;0;Rohr;1,5;3\n\n"));
  EXPECT_EQ(
      "[20000|2|0|_NEW|0|0][20001|3|0|Rohr|1.5|3][20002|4|0|_NEW_NEW|0|0]",
      Saved());
}

TEST_F(SpreadsheetImport, TooManyValuesAreLeftOutAndReported) {
  EXPECT_EQ(2, Import(u"1;1;0;Rohr;1,5;3;too;many\n2;2;0;Hahn;2;4\n"));
  EXPECT_EQ(1, error_);
  EXPECT_EQ("[20000|2|0|Rohr|1.5|3][20001|3|0|Hahn|2|4]", Saved());
}

TEST_F(SpreadsheetImport, TooFewValuesLeaveTheRestEmpty) {
  EXPECT_EQ(2, Import(u"1;1;0;Rohr\n2\n"));
  EXPECT_EQ(0, error_);
  EXPECT_EQ("[20000|2|0|Rohr|0|0][20001|3|0|_NEW|0|0]", Saved());
}

TEST_F(SpreadsheetImport, LoneQuoteAtTheEndIsAnEmptyValue) {
  EXPECT_EQ(1, Import(u"1;1;0;Rohr;\"\n", "NOTIZEN"));
  EXPECT_EQ("[20000|2|0|Rohr|]", Saved("NOTIZEN"));
}

// Kept: a quote keeps separators until the next one or the end of the line.
TEST_F(SpreadsheetImport, LoneQuoteInTheMiddleTakesTheRestOfTheLine) {
  EXPECT_EQ(2, Import(u"1;1;0;\";1,5;3\n2;2;0;Hahn;2;4\n"));
  EXPECT_EQ("[20000|2|0|\";1,5;3|0|0][20001|3|0|Hahn|2|4]", Saved());
}

// Kept: a line is read in pieces of 4,095 characters, each a row of its own.
TEST_F(SpreadsheetImport, LineOverTheLimitBecomesSeveralRows) {
  std::u16string const start = u"1;1;0;";
  auto const name = std::u16string(4095 - start.size(), u'a');
  EXPECT_EQ(3, Import(start + name + u"a;1,5;3\n2;2;0;Hahn;2;4\n"));
  EXPECT_EQ("[20000|2|0|" + std::string(name.size(), 'a') +
                "|0|0][20001|3|0|_NEW|0|0][20002|4|0|Hahn|2|4]",
            Saved());
}

TEST_F(SpreadsheetImport, LineAtTheLimitIsOneRow) {
  std::u16string const start = u"1;1;0;";
  std::u16string const rest = u";1,5;3\n";
  auto const name = std::u16string(4095 - start.size() - rest.size(), u'a');
  EXPECT_EQ(1, Import(start + name + rest));
  EXPECT_EQ("[20000|2|0|" + std::string(name.size(), 'a') + "|1.5|3]", Saved());
}

TEST_F(SpreadsheetImport, LastLineWithoutALineFeedCountsOnce) {
  EXPECT_EQ(1, Import(u"1;1;0;Rohr;1,5;3"));
  EXPECT_EQ("[20000|2|0|Rohr|1.5|3]", Saved());
}

TEST_F(SpreadsheetImport, TabsSeparateAsWell) {
  EXPECT_EQ(1, Import(u"1\t1\t0\tRohr; lang\t1,5\t3\r\n", "PREISE", L"\t"));
  EXPECT_EQ("[20000|2|0|Rohr; lang|1.5|3]", Saved());
}

TEST_F(SpreadsheetImport, EmptySheetChangesNothing) {
  EXPECT_EQ(0, Import(u""));
  EXPECT_EQ("", Saved());
}

TEST_F(SpreadsheetImport, WithoutAUserFileNothingComes) {
  Configure("STOCK", {"MAIN.db"});
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), true, false));
  EXPECT_EQ(0, Import(u"1;1;0;Rohr;1,5;3\n"));
  EXPECT_EQ(0, error_);
}

}  // namespace
}  // namespace tabwerk::test
