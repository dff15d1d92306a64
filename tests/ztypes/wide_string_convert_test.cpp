// zWString: between encodings.
#include <gtest/gtest.h>

#include <string>

#include "ztypes.h"

namespace tabwerk::test {
namespace {

std::u16string FromUtf8(std::string_view bytes) {
  return std::u16string(zWString::fromUtf8(bytes).view());
}

TEST(WideStringConvert, Utf8RoundTrip) {
  std::string const bytes =
      "A\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF"
      "\xEE\x80\x80\xEF\xBF\xBF\xF0\x90\x80\x80"
      "\xF4\x8F\xBF\xBF";
  EXPECT_EQ(u"A\x7F\x80\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF",
            FromUtf8(bytes));
  EXPECT_EQ(bytes, zWString::fromUtf8(bytes).toUtf8());
}

TEST(WideStringConvert, Utf8KeepsNulInAView) {
  EXPECT_EQ(std::u16string(u"a\0b", 3), FromUtf8(std::string_view("a\0b", 3)));
  EXPECT_EQ(zWString(u"a"), zWString::fromUtf8("a\0b"));
}

TEST(WideStringConvert, EachIllFormedRunIsOneReplacement) {
  EXPECT_EQ(u"\uFFFD", FromUtf8("\x80"));
  EXPECT_EQ(
      u"a\uFFFD"
      u"b",
      FromUtf8("a\xFF"
               "b"));
  EXPECT_EQ(u"\uFFFD\uFFFD", FromUtf8("\xC0\x80"));            // long form
  EXPECT_EQ(u"\uFFFD\uFFFD\uFFFD", FromUtf8("\xE0\x80\x80"));  // long form
  EXPECT_EQ(u"\uFFFD\uFFFD\uFFFD", FromUtf8("\xED\xA0\x80"));  // surrogate
  EXPECT_EQ(u"\uFFFD\uFFFD\uFFFD\uFFFD", FromUtf8("\xF4\x90\x80\x80"));
  EXPECT_EQ(u"\uFFFD\uFFFD\uFFFD\uFFFD", FromUtf8("\xF5\x80\x80\x80"));
  EXPECT_EQ(u"\uFFFD\uFFFD\uFFFD\uFFFD", FromUtf8("\xFF\x80\x80\x80"));
  EXPECT_EQ(u"\uFFFD", FromUtf8("\xE2\x82"));  // breaks off
  EXPECT_EQ(
      u"\uFFFD"
      u"a",
      FromUtf8("\xF0\x9F\x98"
               "a"));
  EXPECT_EQ(u"\uFFFD\u00E9", FromUtf8("\xE2\x82\xC3\xA9"));
  EXPECT_EQ(
      u"a\uFFFD\uFFFD\uFFFD"
      u"b\uFFFD"
      u"c\uFFFD\uFFFD"
      u"d",
      FromUtf8("a\xF1\x80\x80\xE1\x80\xC2"
               "b\x80"
               "c\x80\xBF"
               "d"));
}

TEST(WideStringConvert, LoneSurrogatesHaveNoUtf8) {
  EXPECT_EQ(
      "a\xEF\xBF\xBD"
      "b",
      zWString(u"a\xD800"
               u"b")
          .toUtf8());
  EXPECT_EQ("\xEF\xBF\xBD\xEF\xBF\xBD", zWString(u"\xDC00\xD800").toUtf8());
  EXPECT_EQ("\xEF\xBF\xBD\xF0\x90\x80\x80",
            zWString(u"\xD800\xD800\xDC00").toUtf8());
}

TEST(WideStringConvert, LoneSurrogatesPassThroughWideText) {
  for (std::u16string_view const units :
       {u"a\xD800", u"\xDC00\xD800", u"\xD83D\xDE00", u"\xD83D\xD83D\xDE00"}) {
    zWString const text(units);
    EXPECT_EQ(text, zWString(text.toStdWString()));
    EXPECT_EQ(text, zWString(text.toStdWString().c_str()));
  }
}

TEST(WideStringConvert, WideTextBecomesUnits) {
  EXPECT_EQ(zWString(u"\u00E9\u65E5\U0001F600"),
            zWString(L"\u00E9\u65E5\U0001F600"));
  EXPECT_EQ(L"\u00E9\u65E5\U0001F600",
            zWString(u"\u00E9\u65E5\U0001F600").toStdWString());
  EXPECT_EQ(3u, zWString(std::wstring(3, L'\0')).length());
}

TEST(WideStringConvert, ValuesBeyondTheLastAreReplaced) {
  if constexpr (sizeof(wchar_t) == 4) {
    auto const wide = [](unsigned long value) {
      return zWString(std::wstring(1, static_cast<wchar_t>(value)));
    };
    EXPECT_EQ(zWString(u"\uFFFD"), wide(0x110000));
    EXPECT_EQ(zWString(u"\uFFFD"), wide(0xFFFFFFFF));
    EXPECT_EQ(zWString(u"\U0010FFFF"), wide(0x10FFFF));
    EXPECT_EQ(zWString(u"\xDFFF"), wide(0xDFFF));
  } else {
    GTEST_SKIP() << "wchar_t holds no such value here";
  }
}

TEST(WideStringConvert, Latin1IsByteForUnit) {
  std::string bytes;
  for (int value = 0; value < 256; ++value) {
    bytes += static_cast<char>(value);
  }
  zWString const text = zWString::fromLatin1(bytes);
  EXPECT_EQ(256u, text.length());
  EXPECT_EQ(u'\xFF', text.view()[255]);
  EXPECT_EQ(bytes, text.toLatin1());
  EXPECT_EQ(zWString(u"a"), zWString::fromLatin1("a\0b"));
  EXPECT_EQ("a?\xFF??", zWString(u"a\u0100\u00FF\U0001F600").toLatin1());
}

}  // namespace
}  // namespace tabwerk::test
