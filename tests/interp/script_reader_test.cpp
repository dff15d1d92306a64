#include "interp/script_reader.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "tests/interp/text_folder.h"
#include "tests/support/fault_platform.h"

using tabwerk::ScriptReader;
using tabwerk::Words;
using tabwerk::test::Call;
using tabwerk::test::FaultGuard;
using tabwerk::test::Lasting;
using tabwerk::test::Only;
using tabwerk::test::TextFolder;

namespace {

// All lines, "|" at the end of each and "$" where the end was met.
std::string Lines(std::string_view bytes) {
  TextFolder folder;
  auto const reader = ScriptReader::Open(folder.Bytes("s", bytes).c_str());
  std::string text;
  while (!reader->AtEnd()) {
    text += reader->ReadLine();
    text += reader->AtEnd() ? '$' : '|';
  }
  return text;
}

TEST(ScriptReader, EndIsMetBehindTheLastLine) {
  EXPECT_EQ("a\n|b\n|$", Lines("a\nb\n"));
  EXPECT_EQ("a\n|b$", Lines("a\nb"));
  EXPECT_EQ("$", Lines(""));
}

TEST(ScriptReader, CarriageReturnAndLineFeedAreALineFeed) {
  EXPECT_EQ("a\n|b\n|$", Lines("a\r\nb\r\n"));
  EXPECT_EQ("a\r\n|\rb\r$", Lines("a\r\r\n\rb\r"));
}

TEST(ScriptReader, CtrlZEndsTheText) {
  EXPECT_EQ("a\n|$", Lines("a\n\x1A"
                           "b\n"));
  EXPECT_EQ("a\n|b$", Lines("a\nb\x1A\nc\n"));
}

TEST(ScriptReader, NulEndsALine) {
  EXPECT_EQ("a|b\n|$", Lines(std::string_view("a\0x\nb\n", 6)));
}

TEST(ScriptReader, LongLineIsReadInPieces) {
  std::string const full(4095, 'a');
  EXPECT_EQ(full + "|b\n|$", Lines(full + "b\n"));
  EXPECT_EQ(full + "|\n|$", Lines(full + "\n"));
  EXPECT_EQ(full + "|$", Lines(full));
}

TEST(ScriptReader, LineEndsAreFoundAcrossReads) {
  std::string text;
  std::string expected;
  for (int i = 0; i < 9000; ++i) {
    text += "a\r\n";
    expected += "a\n|";
  }
  EXPECT_EQ(expected + "$", Lines(text));
}

TEST(ScriptReader, FailedReadEndsTheText) {
  TextFolder folder;
  auto const reader =
      ScriptReader::Open(folder.Bytes("s", std::string(50000, 'a')).c_str());
  FaultGuard faults;
  faults.FailAt(2, Lasting::kOnce, Only(Call::kRead));
  while (!reader->AtEnd()) static_cast<void>(reader->ReadLine());
  EXPECT_TRUE(reader->Failed());
  EXPECT_EQ("", reader->ReadLine());
}

TEST(ScriptReader, MissingFileDoesNotOpen) {
  TextFolder folder;
  EXPECT_EQ(nullptr, ScriptReader::Open(folder.Path("none").c_str()));
}

TEST(ScriptWords, EachWordHasSeparatorsOfItsOwn) {
  Words words(" ;a\tb;c d\n");
  EXPECT_EQ("a", words.Next(" \t\n;"));
  EXPECT_EQ("b;c", words.Next(" \n"));
  EXPECT_EQ("d", words.Next(" \n"));
  EXPECT_EQ("", words.Next(" \n"));
}

TEST(ScriptWords, OnlyTheSeparatorBehindAWordIsUsedUp) {
  Words words("a \tb");
  EXPECT_EQ("a", words.Next(" "));
  EXPECT_EQ("\tb", words.Next(" "));
}

TEST(ScriptWords, LineWithoutWordHasNone) {
  EXPECT_EQ("", Words("").Next(" \n"));
  EXPECT_EQ("", Words("  \n").Next(" \n"));
  EXPECT_EQ("\t", Words("\t\n").Next(" \n"));
}

}  // namespace
