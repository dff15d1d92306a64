#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "DBInterpreter.h"
#include "ztypes.h"

namespace {

std::string Text(wchar_t const* token) {
  return token == nullptr ? "-" : zWString(token).toUtf8();
}

std::string First(DBInterpreter& interpreter, std::wstring line,
                  wchar_t separator = L',') {
  return Text(interpreter.GetNextToken(line.data(), separator));
}

std::string Next(DBInterpreter& interpreter, wchar_t separator = L',') {
  return Text(interpreter.GetNextToken(nullptr, separator));
}

// All tokens of a line: "[a][b]".
std::string Tokens(std::wstring line, wchar_t separator = L',') {
  DBInterpreter interpreter;
  std::string text;
  for (wchar_t* token = interpreter.GetNextToken(line.data(), separator);
       token != nullptr; token = interpreter.GetNextToken(nullptr, separator)) {
    text += "[" + Text(token) + "]";
  }
  return text;
}

TEST(Tokenizer, SplitsAtSeparators) {
  EXPECT_EQ("[a][b][c]", Tokens(L"a,b,c"));
  EXPECT_EQ("[a,b][c]", Tokens(L"a,b;c", L';'));
  EXPECT_EQ("[abc]", Tokens(L"abc"));
}

TEST(Tokenizer, EmptyOrBlankLineHasNoToken) {
  EXPECT_EQ("", Tokens(L""));
  EXPECT_EQ("", Tokens(L" \t "));
}

TEST(Tokenizer, InnerEmptyValuesCount) {
  EXPECT_EQ("[a][][b]", Tokens(L"a,,b"));
  EXPECT_EQ("[][x]", Tokens(L",x"));
  EXPECT_EQ("[][]", Tokens(L",,"));
}

TEST(Tokenizer, SeparatorAtTheEndGivesNoToken) {
  EXPECT_EQ("[a]", Tokens(L"a,"));
  EXPECT_EQ("[a]", Tokens(L"a, \t"));
  EXPECT_EQ("[a][]", Tokens(L"a,,"));
}

TEST(Tokenizer, LeadingBlanksAndTabsAreDroppedTrailingOnesStay) {
  EXPECT_EQ("[a  ][b\t]", Tokens(L" \ta  , \t b\t"));
}

TEST(Tokenizer, EmptyValuesVanishBetweenBlanksAndTabs) {
  EXPECT_EQ("[a][b]", Tokens(L"a   b", L' '));
  EXPECT_EQ("[a][b]", Tokens(L"\ta\t\tb\t", L'\t'));
}

TEST(Tokenizer, WithoutSeparatorTheLineIsOneToken) {
  EXPECT_EQ("[a,b;c]", Tokens(L"a,b;c", L'\0'));
}

TEST(Tokenizer, QuotesKeepSeparatorsAndStay) {
  EXPECT_EQ("[\"a,b\"][c]", Tokens(L"\"a,b\",c"));
  EXPECT_EQ("[x\"a,b\"y][c]", Tokens(L"x\"a,b\"y,c"));
}

TEST(Tokenizer, MarkersKeepSeparators) {
  EXPECT_EQ("[#TS(a,b)TS~][c]", Tokens(L"#TS(a,b)TS~,c"));
  EXPECT_EQ("[#TS][(a][b)TS~]", Tokens(L"#TS,(a,b)TS~"));
}

TEST(Tokenizer, OddQuoteInsideAMarkerSwallowsTheLine) {
  EXPECT_EQ("[#TS(a\"b)TS~,c,d]", Tokens(L"#TS(a\"b)TS~,c,d"));
}

TEST(Tokenizer, MarkerInsideQuotesOutlivesThem) {
  EXPECT_EQ("[\"#TS(\",a,b]", Tokens(L"\"#TS(\",a,b"));
  EXPECT_EQ("[\"#TS(\",a)TS~][b]", Tokens(L"\"#TS(\",a)TS~,b"));
}

TEST(Tokenizer, UnclosedQuoteOrMarkerEndsWithTheLine) {
  EXPECT_EQ("[a][\"b,c]", Tokens(L"a,\"b,c"));
  EXPECT_EQ("[a][#TS(b,c]", Tokens(L"a,#TS(b,c"));
  EXPECT_EQ("[#TS(b)TS]", Tokens(L"#TS(b)TS"));
  EXPECT_EQ("[\"]", Tokens(L"\""));
}

TEST(Tokenizer, SeparatorIsTestedBeforeQuotesAndMarkers) {
  EXPECT_EQ("[a][b]", Tokens(L"a\"b", L'"'));
  EXPECT_EQ("[a][TS(b]", Tokens(L"a#TS(b", L'#'));
}

TEST(Tokenizer, SeparatorMayChangeFromTokenToToken) {
  DBInterpreter interpreter;
  EXPECT_EQ("a", First(interpreter, L"a,b;c,d"));
  EXPECT_EQ("b", Next(interpreter, L';'));
  EXPECT_EQ("c", Next(interpreter));
  EXPECT_EQ("d", Next(interpreter));
}

TEST(Tokenizer, NoTokenBehindTheLastOne) {
  DBInterpreter interpreter;
  EXPECT_EQ("a", First(interpreter, L"a"));
  EXPECT_EQ("-", Next(interpreter));
  EXPECT_EQ("-", Next(interpreter));
}

TEST(Tokenizer, NoTokenBeforeTheFirstLine) {
  DBInterpreter interpreter;
  EXPECT_EQ("-", Next(interpreter));
}

TEST(Tokenizer, NewLineDiscardsTheOldOne) {
  DBInterpreter interpreter;
  EXPECT_EQ("a", First(interpreter, L"a,b,c,d,e"));
  EXPECT_EQ("x", First(interpreter, L"x"));
  EXPECT_EQ("-", Next(interpreter));
}

TEST(Tokenizer, LineMayBeATokenOfTheSameInterpreter) {
  DBInterpreter interpreter;
  std::wstring line = L"a,b;c,d";
  interpreter.GetNextToken(line.data(), L',');
  wchar_t* const inner = interpreter.GetNextToken(nullptr, L',');
  EXPECT_EQ("b", Text(interpreter.GetNextToken(inner, L';')));
  EXPECT_EQ("c", Next(interpreter, L';'));
  EXPECT_EQ("-", Next(interpreter, L';'));
}

TEST(Tokenizer, LineOfExactlyTheLimitIsTaken) {
  DBInterpreter interpreter;
  EXPECT_EQ(std::string(16384, 'a'),
            First(interpreter, std::wstring(16384, L'a')));
  EXPECT_EQ("-", Next(interpreter));
  std::wstring const line = std::wstring(16382, L'a') + L",b";
  EXPECT_EQ(std::string(16382, 'a'), First(interpreter, line));
  EXPECT_EQ("b", Next(interpreter));
  EXPECT_EQ("-", Next(interpreter));
}

TEST(Tokenizer, LineOverTheLimitIsRefusedAndTheOldOneStays) {
  DBInterpreter interpreter;
  EXPECT_EQ("a", First(interpreter, L"a,b"));
  EXPECT_EQ("-", First(interpreter, std::wstring(16385, L'x')));
  EXPECT_EQ("b", Next(interpreter));
}

TEST(Tokenizer, CallsBehindTheLongestLineStayInside) {
  DBInterpreter interpreter;
  First(interpreter, std::wstring(16384, L'a'));
  for (int i = 0; i < 20000; ++i) {
    ASSERT_EQ("-", Next(interpreter));
  }
}

TEST(Tokenizer, LoneSurrogatesPassThrough) {
  DBInterpreter interpreter;
  std::wstring line = {L'\xD800', L',', L'\xDC01'};
  EXPECT_EQ(L'\xD800', interpreter.GetNextToken(line.data(), L',')[0]);
  EXPECT_EQ(L'\xDC01', interpreter.GetNextToken(nullptr, L',')[0]);
}

TEST(InterpreterCopy, GoesOnInTheLineOfItsSource) {
  DBInterpreter source;
  EXPECT_EQ("a", First(source, L"a,b,c"));
  DBInterpreter copy(source);
  EXPECT_EQ("b", Next(copy));
  EXPECT_EQ("c", Next(copy));
  // The source's cursor is where it was; its separators have become ends.
  EXPECT_EQ("b", Next(source));
}

TEST(InterpreterCopy, SeesTheNextLineOfItsSource) {
  DBInterpreter source;
  First(source, L"a,b,c");
  DBInterpreter copy(source);
  First(source, L"x,y,z");
  EXPECT_EQ("y", Next(copy));
}

TEST(InterpreterCopy, ItsOwnLineLeavesTheSourceAlone) {
  DBInterpreter source;
  First(source, L"a,b");
  DBInterpreter copy(source);
  EXPECT_EQ("x", First(copy, L"x,y"));
  EXPECT_EQ("b", Next(source));
  EXPECT_EQ("y", Next(copy));
}

TEST(InterpreterCopy, OutlivesItsSource) {
  auto source = std::make_unique<DBInterpreter>();
  First(*source, L"a,b");
  DBInterpreter copy(*source);
  source.reset();
  EXPECT_EQ("b", Next(copy));
}

TEST(InterpreterCopy, AssignmentReplacesTheLine) {
  DBInterpreter source;
  DBInterpreter target;
  First(source, L"a,b");
  First(target, L"x,y");
  DBInterpreter third(target);
  target = source;
  EXPECT_EQ("b", Next(target));
  // The copied line has taken the place of the one that the third looks into.
  EXPECT_EQ("b", Next(third));
}

TEST(InterpreterCopy, SelfAssignmentChangesNothing) {
  DBInterpreter interpreter;
  First(interpreter, L"a,b");
  DBInterpreter& same = interpreter;
  interpreter = same;
  EXPECT_EQ("b", Next(interpreter));
}

TEST(InterpreterCopy, OfOneThatHasReadNothingIsEmpty) {
  DBInterpreter const source;
  DBInterpreter target;
  First(target, L"x,y");
  DBInterpreter third(target);
  target = source;
  EXPECT_EQ("-", Next(target));
  EXPECT_EQ("-", Next(third));
}

}  // namespace
