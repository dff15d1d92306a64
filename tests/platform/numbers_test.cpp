// Numbers from text.
#include "platform/numbers.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "tests/support/processor_time.h"
#include "tests/support/random_cases.h"
#include "ztypes.h"

namespace tabwerk::test {
namespace {

using platform::ParseInt32;
using platform::ParseReal;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kSmallest = std::numeric_limits<double>::denorm_min();
constexpr double kLargest = std::numeric_limits<double>::max();

double Real(std::string_view text) {
  return ParseReal(zWString::fromLatin1(text).view());
}

TEST(ParseInt32, ReadsTheNumericPrefix) {
  EXPECT_EQ(42, ParseInt32(u"42"));
  EXPECT_EQ(42, ParseInt32(u" \t\n\v\f\r+42abc"));
  EXPECT_EQ(-42, ParseInt32(u"-42,5"));
  EXPECT_EQ(1, ParseInt32(u"1e5"));
  EXPECT_EQ(0, ParseInt32(u"0x10"));
  EXPECT_EQ(8, ParseInt32(u"0008"));
}

TEST(ParseInt32, NoNumberIsZero) {
  EXPECT_EQ(0, ParseInt32(u""));
  EXPECT_EQ(0, ParseInt32(u" "));
  EXPECT_EQ(0, ParseInt32(u"-"));
  EXPECT_EQ(0, ParseInt32(u"+-5"));
  EXPECT_EQ(0, ParseInt32(u"- 5"));
  EXPECT_EQ(0, ParseInt32(u"abc"));
  EXPECT_EQ(0, ParseInt32(u"\xFF15"));  // a digit, but not of these
  EXPECT_EQ(0, ParseInt32(u"\x08"
                          u"5"));  // not white space
  EXPECT_EQ(0, ParseInt32(u"\x0E"
                          u"5"));  // not white space
}

TEST(ParseInt32, SaturatesAtThirtyTwoBits) {
  EXPECT_EQ(2147483647, ParseInt32(u"2147483647"));
  EXPECT_EQ(2147483647, ParseInt32(u"2147483648"));
  EXPECT_EQ(-2147483647 - 1, ParseInt32(u"-2147483648"));
  EXPECT_EQ(-2147483647 - 1, ParseInt32(u"-2147483649"));
  EXPECT_EQ(2147483647, ParseInt32(u"99999999999999999999999999"));
  EXPECT_EQ(2147483647, ParseInt32(std::u16string(100'000, u'9')));
  EXPECT_EQ(-2147483647 - 1, ParseInt32(u"-99999999999999999999999999"));
}

TEST(ParseReal, ReadsTheNumericPrefix) {
  EXPECT_EQ(1.5, Real("1.5"));
  EXPECT_EQ(1.5, Real(" \t\n\v\f\r+1.5abc"));
  EXPECT_EQ(-1.0, Real("-1,5"));
  EXPECT_EQ(0.5, Real(".5"));
  EXPECT_EQ(5.0, Real("5."));
  EXPECT_EQ(1.0, Real("1.0.7"));
  EXPECT_EQ(1200.0, Real("1.2e3"));
  EXPECT_EQ(1200.0, Real("1.2E+3 "));
  EXPECT_EQ(0.0012, Real("1.2e-3"));
}

TEST(ParseReal, AnUnfinishedExponentIsNone) {
  EXPECT_EQ(1.2, Real("1.2e"));
  EXPECT_EQ(1.2, Real("1.2e+"));
  EXPECT_EQ(1.2, Real("1.2e-x"));
  EXPECT_EQ(1.2, Real("1.2 e5"));
}

TEST(ParseReal, NoNumberIsPositiveZero) {
  for (char const* text :
       {"", " ", "-", "+", ".", "-.", "e5", ".e5", "--1", "- 1", "x", "in"}) {
    EXPECT_EQ(0.0, Real(text)) << text;
    EXPECT_FALSE(std::signbit(Real(text))) << text;
  }
  EXPECT_TRUE(std::signbit(Real("-0")));
  EXPECT_TRUE(std::signbit(Real("-0.0e9")));
}

TEST(ParseReal, ReadsInfinityAndNan) {
  EXPECT_EQ(kInfinity, Real("inf"));
  EXPECT_EQ(-kInfinity, Real(" -INFINITY!"));
  EXPECT_EQ(kInfinity, Real("Infinit"));
  EXPECT_TRUE(std::isnan(Real("nan")));
  EXPECT_TRUE(std::isnan(Real("-NaN(7)")));
}

TEST(ParseReal, ReadsHexadecimal) {
  EXPECT_EQ(16.0, Real("0x10"));
  EXPECT_EQ(-1.5, Real("-0X1.8"));
  EXPECT_EQ(6.0, Real("0x1.8p2"));
  EXPECT_EQ(0.5, Real("0x.8"));
  EXPECT_EQ(0.0, Real("0x"));
  EXPECT_EQ(0.0, Real("0x.p1"));
  EXPECT_EQ(0.0, Real("0x0p99999"));
  EXPECT_EQ(1.0, Real("0x1p"));
  EXPECT_EQ(kSmallest, Real("0x1p-1074"));
  EXPECT_EQ(0.0, Real("0x1p-1075"));
  EXPECT_EQ(kSmallest, Real("0x1.0000000000000000000001p-1075"));
  EXPECT_EQ(kLargest, Real("0x1.fffffffffffff7ffffffffp1023"));
  EXPECT_EQ(kInfinity, Real("0x1.fffffffffffff8p1023"));
  EXPECT_EQ(kInfinity, Real("0x1p999999999999999999999999"));
  EXPECT_EQ(0.0, Real("0x1p-999999999999999999999999"));
}

TEST(ParseReal, RangeEndsInInfinityAndZero) {
  EXPECT_EQ(kLargest, Real("1.7976931348623157e308"));
  EXPECT_EQ(kLargest, Real("1.7976931348623158e308"));
  EXPECT_EQ(kInfinity, Real("1.7976931348623159e308"));
  EXPECT_EQ(kInfinity, Real("1e309"));
  EXPECT_EQ(-kInfinity, Real("-1e99999999999999999999999"));
  EXPECT_EQ(2.2250738585072014e-308, Real("2.2250738585072014e-308"));
  EXPECT_EQ(kSmallest, Real("4.9e-324"));
  EXPECT_EQ(kSmallest, Real("2.5e-324"));
  EXPECT_EQ(0.0, Real("2.4e-324"));
  EXPECT_EQ(0.0, Real("1e-99999999999999999999999"));
  EXPECT_TRUE(std::signbit(Real("-1e-400")));
}

TEST(ParseReal, LongTextsAreExact) {
  std::string const zeros(5000, '0');
  EXPECT_EQ(1.0, Real("0." + zeros + "1e5001"));
  EXPECT_EQ(1.0, Real("1" + zeros + "e-5000"));
  EXPECT_EQ(7.0, Real(zeros + "7." + zeros));
  // Half way between 1 and the next number, and a little more.
  std::string const half =
      "1.00000000000000011102230246251565404236316680908203125";
  EXPECT_EQ(1.0, Real(half));
  EXPECT_EQ(1.0, Real(half + zeros));
  EXPECT_EQ(std::nextafter(1.0, 2.0), Real(half + zeros + "1"));
  EXPECT_EQ(std::nextafter(1.0, 2.0), Real(half + zeros + "10"));
}

TEST(ParseReal, HugeTextsTakeLittleTime) {
  ProcessorTime const time;
  std::u16string const nines(2'000'000, u'9');
  EXPECT_EQ(kInfinity, ParseReal(nines));
  EXPECT_EQ(1.0, ParseReal(u"0." + nines));
  EXPECT_EQ(kInfinity, ParseReal(u"1e" + nines));
  EXPECT_EQ(kInfinity, ParseReal(u"0x" + nines));
  EXPECT_GT(2.0, time.Seconds());
}

double DoubleOf(std::uint64_t bits) {
  double value = 0.0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

TEST(ParseReal, ReadsBackWhatRandomNumbersAreAsTexts) {
  constexpr int kNumbers = 100;
  JudgeRandomly(20'000, kNumbers, [](std::uint32_t seed) {
    std::mt19937_64 random(seed);
    for (int i = 0; i < kNumbers; ++i) {
      double const value = DoubleOf(random());
      if (!std::isnan(value)) {
        ASSERT_EQ(value, ParseReal(zWString(value, 0).view()));
      }
    }
  });
}

// Sets a locale with a decimal comma while it lives, where the system has one.
class CommaLocale {
 public:
  CommaLocale() : before_(std::setlocale(LC_ALL, nullptr)) {
    for (char const* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE",
                             "fr_FR.UTF-8", "German_Germany.1252", "German"}) {
      if (std::setlocale(LC_ALL, name) != nullptr &&
          std::localeconv()->decimal_point[0] == ',') {
        found_ = true;
        return;
      }
    }
  }
  ~CommaLocale() { std::setlocale(LC_ALL, before_.c_str()); }
  CommaLocale(CommaLocale const&) = delete;
  CommaLocale& operator=(CommaLocale const&) = delete;

  bool found() const { return found_; }

 private:
  std::string before_;
  bool found_ = false;
};

TEST(ParseReal, IgnoresTheProgramsLocale) {
  CommaLocale const locale;
  if (!locale.found()) {
    GTEST_SKIP() << "this system has no locale with a decimal comma";
  }
  EXPECT_EQ(1.5, Real("1.5"));
  EXPECT_EQ(1.0, Real("1,5"));
  EXPECT_EQ(zWString(u"1.5"), zWString(1.5, 0));
  EXPECT_EQ(0, ParseInt32(u"\u00A0"
                          u"5"));
}

}  // namespace
}  // namespace tabwerk::test
