#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "DBInterpreter.h"
#include "tests/interp/text_folder.h"
#include "tests/support/fault_platform.h"
#include "tests/support/table_builder.h"

using tabwerk::test::OpenStreams;
using tabwerk::test::Rows;
using tabwerk::test::TestTable;
using tabwerk::test::TextFolder;

namespace {

constexpr char const* kPlain = "string A,real PRICE\n";

class RowImport : public testing::Test {
 protected:
  ~RowImport() override { EXPECT_EQ(0, OpenStreams()); }

  void ImportBytes(TestTable& target, std::string_view bytes,
                   wchar_t const* conditions) {
    DBInterpreter reader;
    reader.SetTabelle(&target.table);
    EXPECT_EQ(1,
              reader.OpenDatei(folder.Bytes("rows.txt", bytes).c_str(), "rb"));
    zWString version;
    EXPECT_EQ(1, reader.ReadDatei(version, true, conditions));
    error = std::to_string(reader.GetError()) + " " + reader.GetErrorString();
  }
  // The user's rows after importing the text.
  std::string After(char const* definition, std::u16string_view text,
                    wchar_t const* conditions = L";") {
    TestTable target(definition, 2);
    ImportBytes(target, tabwerk::test::Utf16Bytes(text), conditions);
    EXPECT_EQ("", Rows(*target.entry, 0));
    return Rows(*target.entry, 1);
  }

  TextFolder folder;
  std::string error;  // "number text"
};

TEST_F(RowImport, QuotesGoAndTheDecimalCommaBecomesAFullStop) {
  EXPECT_EQ("[NAME1|1.5]",
            After("string NAME,real PRICE\n", u"NAME1;\"1,5\"\n"));
  EXPECT_EQ("0 ", error);
}

TEST_F(RowImport, TextKeepsItsCommas) {
  EXPECT_EQ("[a,b|0]", After(kPlain, u"a,b\n"));
}

TEST_F(RowImport, EveryCommaOfANumberBecomesAFullStop) {
  EXPECT_EQ("[x|1.234]", After(kPlain, u"x;1.234,5\n"));
  EXPECT_EQ("[1]", After("integer N\n", u"1,9\n"));
}

TEST_F(RowImport, OnlyTheOuterPairOfQuotesGoes) {
  EXPECT_EQ("[\"x\"|0]", After(kPlain, u"\"\"x\"\"\n"));
  EXPECT_EQ("[a\"b\"|0]", After(kPlain, u"a\"b\"\n"));
  EXPECT_EQ("[\"a\"b|0]", After(kPlain, u"\"a\"b\n"));
  EXPECT_EQ("[|0]", After(kPlain, u"\"\"\n"));
}

TEST_F(RowImport, LoneQuoteIsAnEmptyValue) {
  EXPECT_EQ("[|0]", After(kPlain, u"\"\n"));
}

TEST_F(RowImport, TooManyValuesAreRecordedAndTheRowIsWritten) {
  EXPECT_EQ("[a|1][b|2]", After(kPlain, u"a;1;x\nb;2\n"));
  EXPECT_EQ("1 Number of columns and number of token\ndo not match in table T",
            error);
}

TEST_F(RowImport, TooFewValuesLeaveTheRestEmpty) {
  EXPECT_EQ("[a|0][|2]", After(kPlain, u"a\n;2\n"));
}

TEST_F(RowImport, EmptyLineAppendsARow) {
  EXPECT_EQ("[|0][a|0][|0]", After(kPlain, u"\na\n\n"));
  EXPECT_EQ("[_NEW|0]", After("string NAME,real PRICE\n", u"\n"));
}

TEST_F(RowImport, CarriageReturnStaysInTheLastValue) {
  EXPECT_EQ("[1|a\r]", After("integer N,string A\n", u"1;a\r\n"));
  EXPECT_EQ("[1|\"a\"\r]", After("integer N,string A\n", u"1;\"a\"\r\n"));
  EXPECT_EQ("[\r|0]", After(kPlain, u"\r\n"));
}

TEST_F(RowImport, ByteOrderMarkBelongsToTheFirstValue) {
  EXPECT_EQ(
      "[\xEF\xBB\xBF"
      "a|1]",
      After(kPlain,
            u"\xFEFF"
            u"a;1\n"));
}

TEST_F(RowImport, SectionsAndQuotesKeepSeparators) {
  EXPECT_EQ("[#TS(a;b)TS~|1][c;d|2]",
            After(kPlain, u"#TS(a;b)TS~;1\n\"c;d\";2\n"));
}

TEST_F(RowImport, FirstCharacterOfTheConditionsSeparates) {
  EXPECT_EQ("[a;b|1]", After(kPlain, u"a;b|1\n", L"|;"));
}

TEST_F(RowImport, WithoutConditionsALineIsOneValue) {
  EXPECT_EQ("[a;1|0]", After(kPlain, u"a;1\n", L""));
  EXPECT_EQ("[a;1|0]", After(kPlain, u"a;1\n", nullptr));
}

TEST_F(RowImport, EmptyValuesVanishBetweenTabs) {
  EXPECT_EQ("[a|2]", After(kPlain, u"a\t\t2\n", L"\t"));
}

TEST_F(RowImport, SystemColumnsTakeAValueThatIsNotUsed) {
  EXPECT_EQ("[20000|a|0]",
            After("integer ID,string A,integer STATUS\n", u"17;a;1\n"));
}

TEST_F(RowImport, SecondColumnOfANameReplacesTheFirstValue) {
  EXPECT_EQ("[b|]", After("string A,string A\n", u"a;b\n"));
}

TEST_F(RowImport, LongLineIsReadInPieces) {
  EXPECT_EQ("[" + std::string(4095, 'a') + "][b]",
            After("string A\n", std::u16string(4095, u'a') + u"b\n"));
}

TEST_F(RowImport, LastLineWithoutLineFeedCountsOnce) {
  EXPECT_EQ("[a|1][b|2]", After(kPlain, u"a;1\nb;2"));
}

TEST_F(RowImport, EmptyFileChangesNothing) {
  EXPECT_EQ("", After(kPlain, u""));
}

TEST_F(RowImport, WithoutAUserFileNothingChanges) {
  TestTable target(kPlain, 1);
  ImportBytes(target, tabwerk::test::Utf16Bytes(u"a;1\n"), L";");
  EXPECT_EQ("", Rows(*target.entry));
  EXPECT_EQ("0 ", error);
}

TEST_F(RowImport, ColumnOfNoTypeIsNotReported) {
  TestTable target("string A,bogus X,string B\n", 2);
  ImportBytes(target, tabwerk::test::Utf16Bytes(u"a;b;c\nd;e;f\n"), L";");
  EXPECT_EQ("[a||][d||]", Rows(*target.entry, 1));
  EXPECT_EQ("0 ", error);
}

TEST_F(RowImport, LoneSurrogatesPassThrough) {
  TestTable target("string A\n", 2);
  char16_t const text[] = {0xD800, u'x', 0xDC00, 0xD83D, 0xDE00, u'\n', 0};
  ImportBytes(target, tabwerk::test::Utf16Bytes(text), L";");
  std::string const units = "<D800>x<DC00><D83D><DE00>^";
  EXPECT_NE(std::string::npos,
            tabwerk::test::Store(target.Part(1)).find(units));
}

TEST_F(RowImport, WithoutFileOrTableTheResultIs1) {
  DBInterpreter reader;
  zWString version;
  EXPECT_EQ(1, reader.ReadDatei(version, true, L";"));
  reader.OpenDatei(folder.Unmarked("a.txt", u"a\n").c_str(), "rb");
  EXPECT_EQ(1, reader.ReadDatei(version, true, L";"));
  DBTabelle unbound;
  reader.SetTabelle(&unbound);
  EXPECT_EQ(1, reader.ReadDatei(version, true, L";"));
}

}  // namespace
