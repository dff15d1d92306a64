#include <gtest/gtest.h>

#include <cwchar>
#include <string>
#include <string_view>

#include "DBInterpreter.h"
#include "tests/interp/text_folder.h"
#include "tests/support/fault_platform.h"
#include "tests/support/table_builder.h"

using tabwerk::test::FaultGuard;
using tabwerk::test::Lasting;
using tabwerk::test::OpenStreams;
using tabwerk::test::Rows;
using tabwerk::test::TestTable;
using tabwerk::test::TextFolder;

namespace {

constexpr char const* kArticles = "integer ID,string NAME,real PRICE\n";

class TableData : public testing::Test {
 protected:
  ~TableData() override { EXPECT_EQ(0, OpenStreams()); }

  // Result of ReadDatei for a file of these bytes.
  int ReadBytes(TestTable& target, std::string_view bytes) {
    DBInterpreter reader;
    reader.SetTabelle(&target.table);
    EXPECT_EQ(1,
              reader.OpenDatei(folder.Bytes("data.txt", bytes).c_str(), "rb"));
    int const result = reader.ReadDatei(version, false, L"");
    reader.CloseDatei();
    error = std::to_string(reader.GetError()) + " " + reader.GetErrorString();
    return result;
  }
  int Read(TestTable& target, std::u16string_view text) {
    return ReadBytes(target, "\xFF\xFE" + tabwerk::test::Utf16Bytes(text));
  }
  // What a table of that definition holds after reading the text.
  std::string After(char const* definition, std::u16string_view text) {
    TestTable target(definition);
    EXPECT_EQ(1, Read(target, text));
    return Rows(*target.entry);
  }

  TextFolder folder;
  zWString version;
  std::string error;  // "number text"
};

TEST_F(TableData, ByteOrderMarkAloneGivesNoRows) {
  EXPECT_EQ("", After(kArticles, u""));
  EXPECT_EQ("0 ", error);
}

TEST_F(TableData, EmptyAndOneByteFilesGiveNoRows) {
  TestTable target(kArticles);
  EXPECT_EQ(1, ReadBytes(target, ""));
  EXPECT_EQ(1, ReadBytes(target, "\xFF"));
  EXPECT_EQ("", Rows(*target.entry));
}

TEST_F(TableData, StoresValuesByTypeAndInOrder) {
  EXPECT_EQ("[1|abc|2.5]", After(kArticles, u"1,\"abc\",2.5\r\n"));
  EXPECT_EQ("[1|Bolt|0.25]", After(kArticles, u"1,\"Bolt\",0.25\n"));
}

TEST_F(TableData, MarkIsSkippedUnseen) {
  TestTable target(kArticles);
  EXPECT_EQ(1, ReadBytes(target, std::string("ab1\0,\0x\0\n\0", 10)));
  EXPECT_EQ("[1|x|0]", Rows(*target.entry));
}

TEST_F(TableData, MissingValuesKeepTheirDefaults) {
  EXPECT_EQ("[7||0][8|x|0]", After(kArticles, u"7\n8,x\n"));
}

TEST_F(TableData, InnerEmptyValuesAreStored) {
  EXPECT_EQ("[7||1.5]", After(kArticles, u"7,,1.5\n"));
}

TEST_F(TableData, OneValueTooManyIsRecordedAndReadingGoesOn) {
  EXPECT_EQ("[1|a|2][3|b|4]", After(kArticles, u"1,a,2,x,y\n3,b,4\n"));
  EXPECT_EQ("1 Number of columns and number of token\ndo not match in table T",
            error);
}

TEST_F(TableData, LineThatStartsWithACommaOverwritesTheRowBefore) {
  EXPECT_EQ("[0|x|2.5]", After(kArticles, u"1,abc,2.5\n,x\n"));
  EXPECT_EQ("[|7]", After("string NAME,integer N\n", u"abc,1\n,7\n"));
}

TEST_F(TableData, LineThatStartsWithACommaFailsWithoutARow) {
  TestTable target(kArticles);
  EXPECT_EQ(0, Read(target, u",x\n"));
  EXPECT_EQ("2 Could not write to table T", error);
}

TEST_F(TableData, EmptyAndBlankLinesAreSkipped) {
  EXPECT_EQ("[1||0][2||0]", After(kArticles, u"\r\n1\n\n \t \n\r\r\n2\n"));
}

TEST_F(TableData, QuotesAndMarkersKeepCommas) {
  EXPECT_EQ("[a,b|1][#TS(c,d)TS~|2]",
            After("string A,integer B\n", u"\"a,b\",1\n#TS(c,d)TS~,2\n"));
}

TEST_F(TableData, OddQuoteInsideASectionSwallowsTheLine) {
  EXPECT_EQ("[#TS(a\"b)TS~,1|0]",
            After("string A,integer B\n", u"#TS(a\"b)TS~,1\n"));
}

TEST_F(TableData, UnclosedQuoteEndsWithTheLine) {
  EXPECT_EQ("[a,1|0][b|2]", After("string A,integer B\n", u"\"a,1\nb,2\n"));
}

TEST_F(TableData, BlanksBeforeTheCommaStayLeadingOnesGo) {
  EXPECT_EQ("[a  |b]", After("string A,string B\n", u" \ta  ,\t b\n"));
}

TEST_F(TableData, AllQuotesAtTheEndsOfATextGo) {
  EXPECT_EQ("[x|y]", After("string A,string B\n", u"\"\"x\"\",\"y\n"));
  EXPECT_EQ("[|a\"\"b]", After("string A,string B\n", u"\"\",\"a\"\"b\"\n"));
}

TEST_F(TableData, BlanksBehindAClosingQuoteKeepIt) {
  EXPECT_EQ("[x\" ]", After("string A\n", u"\"x\" \n"));
}

TEST_F(TableData, NumbersReadAsTheirNumericPrefix) {
  EXPECT_EQ("[12|1.5]", After("integer A,real B\n", u"12abc,1.5kg\n"));
  EXPECT_EQ("[0|0]", After("integer A,real B\n", u"abc,x\n"));
  EXPECT_EQ("[-3|-20]", After("integer A,real B\n", u"-3,-2e1\n"));
}

TEST_F(TableData, IntegersBeyond32BitsAreTheNearestOnes) {
  EXPECT_EQ("[2147483647][-2147483648]",
            After("integer A\n", u"99999999999\n-99999999999\n"));
}

TEST_F(TableData, QuotedNumberIsZero) {
  EXPECT_EQ("[0|0]", After("integer A,real B\n", u"\"12\",\"1.5\"\n"));
}

TEST_F(TableData, VersionColumnSetsTheVersion) {
  EXPECT_EQ("[1|2.0][2|2.1]",
            After("integer ID,string VERSION\n", u"1,\"2.0\"\n2,2.1\n"));
  EXPECT_EQ("2.1", version.toUtf8());
}

TEST_F(TableData, VersionColumnThatIsNoTextLeavesTheVersion) {
  version = zWString(u"old");
  EXPECT_EQ("[7|x]", After("integer VERSION,string Version\n", u"7,x\n"));
  EXPECT_EQ("old", version.toUtf8());
}

TEST_F(TableData, ColumnOfNoTypeEndsTheReading) {
  TestTable target("integer ID,bogus X\n");
  EXPECT_EQ(0, Read(target, u"1,2\n3\n"));
  EXPECT_EQ("2 Invalid type in table T", error);
  EXPECT_EQ("[1|]", Rows(*target.entry));
}

TEST_F(TableData, SecondColumnOfANameGoesIntoTheFirst) {
  EXPECT_EQ("[2|0]", After("integer A,integer A\n", u"1,2\n"));
}

TEST_F(TableData, RealColumnBehindAnIntegerOfThatNameFails) {
  TestTable target("integer A,real A\n");
  EXPECT_EQ(0, Read(target, u"1,2.5\n"));
  EXPECT_EQ("2 Could not write to table T", error);
}

TEST_F(TableData, RowThatCannotBeAddedEndsTheReading) {
  TestTable without_bytes("bogus X\n");
  EXPECT_EQ(0, Read(without_bytes, u"1\n"));
  EXPECT_EQ("3 could not add new line to table T", error);
}

TEST_F(TableData, LastLineWithoutLineFeedCountsOnce) {
  EXPECT_EQ("[1||0][2||0]", After(kArticles, u"1\n2"));
}

TEST_F(TableData, NulEndsTheTextOfALine) {
  EXPECT_EQ("[1|a|0][2||0]",
            After(kArticles, std::u16string_view(u"1,a\r\0,5\n2\n", 10)));
}

TEST_F(TableData, CtrlZIsOrdinaryText) {
  EXPECT_EQ("[\x1A][b]", After("string A\n", u"\x1A\nb\n"));
}

TEST_F(TableData, UnitsThatLookLikeLineEndsInOneByteAreText) {
  // U+0A0D and U+0D0A hold the bytes of CR and LF.
  EXPECT_EQ("[\xE0\xA8\x8D\xE0\xB4\x8A][b]",
            After("string A\n", u"\x0A0D\x0D0A\nb\n"));
}

TEST_F(TableData, OddLastByteIsLeftOut) {
  TestTable target(kArticles);
  EXPECT_EQ(1, ReadBytes(target, std::string("\xFF\xFE"
                                             "1\0,\0x\0y",
                                             9)));
  EXPECT_EQ("[1|x|0]", Rows(*target.entry));
}

TEST_F(TableData, LoneSurrogatesAreStoredAsTheyAre) {
  TestTable target("string A\n");
  char16_t const text[] = {0xD800, u'x', 0xDC00, 0xD83D, 0xDE00, u'\n', 0};
  EXPECT_EQ(1, Read(target, text));
  EXPECT_EQ("^<D800>x<DC00><D83D><DE00>^",
            tabwerk::test::Store(target.Part(0)));
}

TEST_F(TableData, LongLineIsReadInPiecesThatAreRowsOfTheirOwn) {
  std::u16string const line =
      std::u16string(4095, u'a') + std::u16string(4095, u'b') + u"c\nd\n";
  EXPECT_EQ(
      "[" + std::string(4095, 'a') + "][" + std::string(4095, 'b') + "][c][d]",
      After("string A\n", line));
}

TEST_F(TableData, LineFeedBehindAFullPieceIsAnEmptyLine) {
  EXPECT_EQ("[" + std::string(4095, 'a') + "][b]",
            After("string A\n", std::u16string(4095, u'a') + u"\nb\n"));
}

TEST_F(TableData, FileLongerThanTheReadBufferIsReadWhole) {
  std::u16string text;
  std::string expected;
  for (int i = 0; i < 40000; ++i) {
    std::string const number = std::to_string(i);
    text += std::u16string(number.begin(), number.end()) + u"\r\n";
    expected += "[" + number + "]";
  }
  EXPECT_EQ(expected, After("integer A\n", text));
}

TEST_F(TableData, ErrorStaysAfterASuccess) {
  TestTable target("integer A\n");
  DBInterpreter reader;
  reader.SetTabelle(&target.table);
  reader.OpenDatei(folder.Marked("a.txt", u"1,2\n").c_str(), "rb");
  EXPECT_EQ(1, reader.ReadDatei(version, false, L""));
  reader.OpenDatei(folder.Marked("b.txt", u"3\n").c_str(), "rb");
  EXPECT_EQ(1, reader.ReadDatei(version, false, L""));
  EXPECT_EQ(1, reader.GetError());
}

TEST_F(TableData, SecondReadingStartsAgain) {
  TestTable target("integer A\n");
  DBInterpreter reader;
  reader.SetTabelle(&target.table);
  reader.OpenDatei(folder.Marked("a.txt", u"1\n2\n").c_str(), "rb");
  EXPECT_EQ(1, reader.ReadDatei(version, false, L""));
  EXPECT_EQ(1, reader.ReadDatei(version, false, L""));
  EXPECT_EQ("[1][2][1][2]", Rows(*target.entry));
}

TEST_F(TableData, ReadingGoesThroughTheTokenizer) {
  TestTable target("integer A\n");
  DBInterpreter reader;
  reader.SetTabelle(&target.table);
  reader.OpenDatei(folder.Marked("a.txt", u"1,2,3\n").c_str(), "rb");
  EXPECT_EQ(1, reader.ReadDatei(version, false, L""));
  EXPECT_STREQ(L"3", reader.GetNextToken(nullptr, L','));
}

TEST_F(TableData, WithoutFileOrTableTheResultIs0) {
  TestTable target("integer A\n");
  DBTabelle unbound;
  DBInterpreter reader;
  EXPECT_EQ(0, reader.ReadDatei(version, false, L""));
  reader.SetTabelle(&target.table);
  EXPECT_EQ(0, reader.ReadDatei(version, false, nullptr));
  reader.OpenDatei(folder.Marked("a.txt", u"1\n").c_str(), "rb");
  reader.SetTabelle(nullptr);
  EXPECT_EQ(0, reader.ReadDatei(version, false, L""));
  reader.SetTabelle(&unbound);
  EXPECT_EQ(0, reader.ReadDatei(version, false, L""));
  EXPECT_EQ(0, reader.GetError());
}

TEST_F(TableData, FailedReadEndsTheLoopAndGives0) {
  TestTable target("integer A\n");
  DBInterpreter reader;
  reader.SetTabelle(&target.table);
  reader.OpenDatei(folder.Marked("a.txt", u"1\n2\n3").c_str(), "rb");
  FaultGuard faults;
  faults.FailAt(1, Lasting::kForGood, Only(tabwerk::test::Call::kRead));
  EXPECT_EQ(0, reader.ReadDatei(version, false, L""));
  EXPECT_NE("[1][2][3]", Rows(*target.entry));
}

TEST_F(TableData, ExhaustedMemoryIsAnError) {
  for (int n = 1;; ++n) {
    TestTable target("string A\n");
    FaultGuard faults;
    faults.FailAt(n, Lasting::kForGood, tabwerk::test::kMemoryCalls);
    int const result = Read(target, u"first row\nsecond row\nthird row\n");
    faults.Disarm();
    EXPECT_EQ(faults.Fired() ? 0 : 1, result) << n;
    if (!faults.Fired()) break;
    EXPECT_TRUE(error[0] == '2' || error[0] == '3') << error;
  }
}

TEST(InterpreterFile, OpensOnlyWhatIsThere) {
  TextFolder folder;
  DBInterpreter reader;
  EXPECT_EQ(0, reader.OpenDatei(folder.Path("none.txt").c_str(), "rb"));
  EXPECT_EQ(0, reader.OpenDatei(nullptr, "rb"));
  std::string const path = folder.Marked("a.txt", u"1\n");
  EXPECT_EQ(0, reader.OpenDatei(path.c_str(), nullptr));
  EXPECT_EQ(0, reader.OpenDatei(path.c_str(), ""));
  EXPECT_EQ(0, reader.OpenDatei(path.c_str(), "?"));
  EXPECT_EQ(1, reader.OpenDatei(path.c_str(), "rt"));
}

TEST(InterpreterFile, NewInterpreterHasNoError) {
  DBInterpreter reader;
  EXPECT_EQ(0, reader.GetError());
  EXPECT_STREQ("", reader.GetErrorString());
}

TEST(InterpreterFile, OpeningAnotherClosesTheFirst) {
  TextFolder folder;
  std::string const path = folder.Marked("a.txt", u"1\n");
  DBInterpreter reader;
  EXPECT_EQ(1, reader.OpenDatei(path.c_str(), "rb"));
  EXPECT_EQ(1, reader.OpenDatei(path.c_str(), "rb"));
  EXPECT_EQ(1, OpenStreams());
  reader.CloseDatei();
  EXPECT_EQ(0, OpenStreams());
  reader.CloseDatei();
}

TEST(InterpreterFile, IsSharedByCopiesAndClosedOnce) {
  TextFolder folder;
  TestTable target("integer A\n");
  DBInterpreter source;
  source.SetTabelle(&target.table);
  source.OpenDatei(folder.Marked("a.txt", u"1\n").c_str(), "rb");
  {
    DBInterpreter copy(source);
    DBInterpreter assigned;
    assigned = copy;
    zWString version;
    EXPECT_EQ(1, assigned.ReadDatei(version, false, L""));
    source.CloseDatei();
    EXPECT_EQ(1, OpenStreams());
    EXPECT_EQ(1, copy.ReadDatei(version, false, L""));
  }
  EXPECT_EQ(0, OpenStreams());
  EXPECT_EQ("[1][1]", Rows(*target.entry));
}

TEST(InterpreterFile, ErrorIsCopied) {
  TextFolder folder;
  TestTable target("integer A\n");
  DBInterpreter source;
  source.SetTabelle(&target.table);
  source.OpenDatei(folder.Marked("a.txt", u"1,2\n").c_str(), "rb");
  zWString version;
  source.ReadDatei(version, false, L"");
  DBInterpreter const copy(source);
  EXPECT_EQ(1, copy.GetError());
  EXPECT_STREQ(source.GetErrorString(), copy.GetErrorString());
}

TEST_F(TableData, ModesOfTheCLibraryMayBeMoreThanRead) {
  auto const old = folder.Marked("old.txt", u"1\n");
  DBInterpreter reader;
  EXPECT_EQ(1, reader.OpenDatei(old.c_str(), "r+t"));
  reader.CloseDatei();
  for (char const* const mode : {"wx", "w+x", "wxt", "ax"}) {
    EXPECT_EQ(0, reader.OpenDatei(old.c_str(), mode)) << mode;
  }
  auto const made = folder.Path("new.txt");
  EXPECT_EQ(1, reader.OpenDatei(made.c_str(), "wx"));
  reader.CloseDatei();
  EXPECT_EQ(0, reader.OpenDatei(made.c_str(), "wx"));
  EXPECT_EQ(0, reader.OpenDatei(old.c_str(), "+"));
  TestTable target("integer ID\n");
  reader.SetTabelle(&target.table);
  EXPECT_EQ(1, reader.OpenDatei(old.c_str(), "rt, ccs=UTF-8"));
  EXPECT_EQ(1, reader.ReadDatei(version, false, L""));
  reader.CloseDatei();
  EXPECT_EQ("[1]", Rows(*target.entry));
}

}  // namespace
