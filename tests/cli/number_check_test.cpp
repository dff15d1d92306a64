// Whether a text is a number, against the readers of numbers.
#include "cli/number_check.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

#include "platform/numbers.h"
#include "ztypes.h"

namespace tabwerk::test {
namespace {

using tool::CheckInteger;
using tool::CheckReal;
using tool::NumberText;

NumberText OfInteger(std::u16string_view text) {
  std::int32_t value = 0;
  NumberText const found = CheckInteger(text, &value);
  EXPECT_EQ(platform::ParseInt32(text), value);
  return found;
}

std::u16string RandomText(std::mt19937& random, std::string_view characters) {
  std::u16string text;
  for (std::size_t i = random() % 8; i > 0; --i) {
    text += static_cast<char16_t>(characters[random() % characters.size()]);
  }
  return text;
}

TEST(NumberCheck, TellsIntegers) {
  EXPECT_EQ(NumberText::kWhole, OfInteger(u"-12"));
  EXPECT_EQ(NumberText::kWhole, OfInteger(u" +7\t"));
  EXPECT_EQ(NumberText::kWhole, OfInteger(u"-2147483648"));
  EXPECT_EQ(NumberText::kTooLarge, OfInteger(u"2147483648"));
  EXPECT_EQ(NumberText::kTooLarge, OfInteger(u"-99999999999999999999"));
  EXPECT_EQ(NumberText::kEmpty, OfInteger(u" "));
  EXPECT_EQ(NumberText::kNone, OfInteger(u"\"1\""));
  EXPECT_EQ(NumberText::kNone, OfInteger(u"-"));
  EXPECT_EQ(NumberText::kPrefix, OfInteger(u"1.5"));
  EXPECT_EQ(NumberText::kPrefix, OfInteger(u"1 2"));
  EXPECT_EQ(NumberText::kPrefix, OfInteger(u"1\u0660"));
}

TEST(NumberCheck, ReadsIntegersAsTheLibraryDoes) {
  std::mt19937 random(1);
  for (int i = 0; i < 20000; ++i)
    OfInteger(RandomText(random, "0123456789+- x"));
}

TEST(NumberCheck, TellsReals) {
  for (char16_t const* const text :
       {u"1", u"-1.5e3", u"+.5", u"1.", u"0x1p-3", u"inf", u"-Infinity", u"NaN",
        u" 2 ", u"0"}) {
    EXPECT_EQ(NumberText::kWhole, CheckReal(text)) << zWString(text).toUtf8();
  }
  for (char16_t const* const text :
       {u"1,5", u"1e", u"1.5.2", u"0x", u"nan(1)", u"infinite", u"1 2"}) {
    EXPECT_EQ(NumberText::kPrefix, CheckReal(text)) << zWString(text).toUtf8();
  }
  for (char16_t const* const text :
       {u"x", u"--1", u"+-1", u"-", u".", u"e5", u"\"1\"", u"½"}) {
    EXPECT_EQ(NumberText::kNone, CheckReal(text)) << zWString(text).toUtf8();
    EXPECT_EQ(0.0, platform::ParseReal(text));
  }
  EXPECT_EQ(NumberText::kTooLarge, CheckReal(u"1e999"));
  EXPECT_EQ(NumberText::kTooLarge, CheckReal(u"-0x1p99999"));
  EXPECT_EQ(NumberText::kEmpty, CheckReal(u""));
}

#ifndef _WIN32

// There the C library tells what it has read in the same way.
TEST(NumberCheck, AgreesWithTheCLibrary) {
  std::mt19937 random(2);
  for (int i = 0; i < 50000; ++i) {
    std::u16string const text = RandomText(random, "0123.eExXpP+-inf ");
    std::string const bytes(text.begin(), text.end());
    char* end = nullptr;
    double const value = std::strtod(bytes.c_str(), &end);
    std::string_view const rest = end;
    NumberText expected = NumberText::kWhole;
    if (bytes.find_first_not_of(' ') == bytes.npos) {
      expected = NumberText::kEmpty;
    } else if (end == bytes.c_str()) {
      expected = NumberText::kNone;
    } else if (rest.find_first_not_of(' ') != rest.npos) {
      expected = NumberText::kPrefix;
    } else if (std::isinf(value) && bytes.find('i') == bytes.npos) {
      expected = NumberText::kTooLarge;
    }
    NumberText const found = CheckReal(text);
    // Too small a number is told as well, where the C library does not.
    if (found == NumberText::kTooLarge && std::abs(value) < 1e-300) continue;
    EXPECT_EQ(expected, found) << bytes;
  }
}

#endif

}  // namespace
}  // namespace tabwerk::test
