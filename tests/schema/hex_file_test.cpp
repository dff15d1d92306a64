// The reader of golden files.
#include "tests/support/hex_file.h"

#include <gtest/gtest.h>

#include <string>

namespace tabwerk::test {
namespace {

TEST(HexFile, ReadsPairsAndSkipsComments) {
  bool sound = false;
  EXPECT_EQ(std::string("\x61\0\xfF", 3),
            BytesOfHex("# 62\n61 00 # 63\r\n\tfF", &sound));
  EXPECT_TRUE(sound);
}

TEST(HexFile, RefusesEverythingElse) {
  for (char const* text : {"6", "6 1", "61 6", "6g", "0x61", "61,62"}) {
    bool sound = true;
    EXPECT_EQ("", BytesOfHex(text, &sound)) << text;
    EXPECT_FALSE(sound) << text;
  }
}

}  // namespace
}  // namespace tabwerk::test
