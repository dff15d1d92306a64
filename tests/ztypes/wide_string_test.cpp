// zWString: the value.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>

#include "ztypes.h"

namespace tabwerk::test {
namespace {

// The pieces in brackets.
std::string Pieces(std::u16string_view text, bool keep_empty) {
  std::string shown;
  for (zWString const& piece : zWString(text).ToStringList(u',', keep_empty)) {
    shown += "[" + piece.toUtf8() + "]";
  }
  return shown;
}

std::u16string Upper(std::u16string_view text) {
  return std::u16string(zWString(text).ToUpper().view());
}

std::string Decimal(double value) { return zWString(value, 0).toUtf8(); }

TEST(WideString, NullPointersGiveTheEmptyText) {
  EXPECT_TRUE(zWString().isEmpty());
  EXPECT_TRUE(zWString(static_cast<char16_t const*>(nullptr)).isEmpty());
  EXPECT_TRUE(zWString(static_cast<wchar_t const*>(nullptr)).isEmpty());
  EXPECT_TRUE(zWString::fromLatin1(nullptr).isEmpty());
  EXPECT_TRUE(zWString::fromUtf8(nullptr).isEmpty());
  EXPECT_EQ(u'\0', zWString().utf16()[0]);
}

TEST(WideString, CopiesAreIndependent) {
  zWString first(u"one");
  zWString second = first;
  second += u"two";
  EXPECT_EQ(zWString(u"one"), first);
  EXPECT_EQ(zWString(u"onetwo"), second);
  first = std::move(second);
  EXPECT_EQ(zWString(u"onetwo"), first);
  EXPECT_EQ(zWString(u"onetwothree"), first + u"three");
}

TEST(WideString, LengthCountsUnits) {
  EXPECT_EQ(2u, zWString(u"\U0001F600").length());
  EXPECT_EQ(3u, zWString(std::u16string(3, u'\0')).length());
}

TEST(WideString, ComparesUnitByUnit) {
  EXPECT_EQ(0, zWString(u"a").compare(u"a"));
  EXPECT_GT(0, zWString(u"a").compare(u"b"));
  EXPECT_LT(0, zWString(u"aa").compare(u"a"));
  EXPECT_LT(0, zWString(u"\xFFFD").compare(u"\xD800"));
  EXPECT_TRUE(zWString(u"A") < zWString(u"a"));
  EXPECT_TRUE(zWString(u"A") != zWString(u"a"));
  EXPECT_FALSE(zWString(u"a") < zWString(u"a"));
}

TEST(WideString, ListKeepsEmptyPieces) {
  EXPECT_EQ("[a][b]", Pieces(u"a,b", true));
  EXPECT_EQ("[]", Pieces(u"", true));
  EXPECT_EQ("[][]", Pieces(u",", true));
  EXPECT_EQ("[][a][][b][]", Pieces(u",a,,b,", true));
}

TEST(WideString, ListLeavesEmptyPiecesOut) {
  EXPECT_EQ("[a][b]", Pieces(u",a,,b,", false));
  EXPECT_EQ("", Pieces(u"", false));
  EXPECT_EQ("", Pieces(u",,", false));
}

TEST(WideString, UpperCaseOfLatin) {
  EXPECT_EQ(u"MAIN.UDB 09_[`{@", Upper(u"main.udb 09_[`{@"));
  EXPECT_EQ(u"\u00C4\u00D6\u00DC\u00C9\u00D8\u00DE",
            Upper(u"\u00E4\u00F6\u00FC\u00E9\u00F8\u00FE"));
  EXPECT_EQ(u"\u0178", Upper(u"\u00FF"));
  EXPECT_EQ(u"\u0100\u0141\u017D\u0152", Upper(u"\u0101\u0142\u017E\u0153"));
  EXPECT_EQ(u"\u0218\u021A", Upper(u"\u0219\u021B"));
  EXPECT_EQ(u"\u1EA0\u1EF8", Upper(u"\u1EA1\u1EF9"));
}

TEST(WideString, UpperCaseOfGreekAndCyrillic) {
  EXPECT_EQ(u"\u0391\u03A9\u03A3\u03A3", Upper(u"\u03B1\u03C9\u03C3\u03C2"));
  EXPECT_EQ(u"\u0386\u038C\u038F", Upper(u"\u03AC\u03CC\u03CE"));
  EXPECT_EQ(u"\u0410\u042F\u0401\u040F", Upper(u"\u0430\u044F\u0451\u045F"));
  EXPECT_EQ(u"\u0490\u052E\u04C0", Upper(u"\u0491\u052F\u04CF"));
}

TEST(WideString, UpperCaseLeavesTheRest) {
  std::u16string_view const text =
      u"\u00DF\u00F7\u00D7\u0138\u05D0\u65E5\uFF41\xD801\xDC28\xDC00";
  EXPECT_EQ(text, Upper(text));
  EXPECT_EQ(Upper(u"\u00E4\u0101"), Upper(Upper(u"\u00E4\u0101")));
}

TEST(WideString, NumberIsTheShortestText) {
  EXPECT_EQ("1.5", Decimal(1.5));
  EXPECT_EQ("0.1", Decimal(0.1));
  EXPECT_EQ("0", Decimal(0.0));
  EXPECT_EQ("-0", Decimal(-0.0));
  EXPECT_EQ("42", Decimal(42));
  EXPECT_EQ("-12345.678", Decimal(-12345.678));
  EXPECT_EQ("1e+300", Decimal(1e300));
  EXPECT_EQ("5e-324", Decimal(5e-324));
  EXPECT_EQ("1.7976931348623157e+308",
            Decimal(std::numeric_limits<double>::max()));
  EXPECT_EQ(zWString(1.5, 0), zWString(1.5, 7));
}

TEST(WideString, NumberMayBeNone) {
  double const infinity = std::numeric_limits<double>::infinity();
  double const nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ("inf", Decimal(infinity));
  EXPECT_EQ("-inf", Decimal(-infinity));
  EXPECT_EQ("nan", Decimal(nan));
  EXPECT_EQ("nan", Decimal(-nan));
}

TEST(WideString, CapitalsAmongSmallLettersStay) {
  EXPECT_EQ(u"\u0100\u0100\u0102\u0102", Upper(u"\u0100\u0101\u0102\u0103"));
}

}  // namespace
}  // namespace tabwerk::test
