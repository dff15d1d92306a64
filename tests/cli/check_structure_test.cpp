// Each rule for header, list of tables, blocks and texts with a file that
// breaks it.
#include "tests/cli/check_fixture.h"

namespace tabwerk::test {
namespace {

using CheckHeaderRules = CheckTest;
using CheckListRules = CheckTest;
using CheckBlockRules = CheckTest;
using CheckTextRules = CheckTest;

constexpr char kIdAndName[] = "integer ID,string NAME\n";

// Two rows: the record of T begins at byte 19, its numbers at 48, the data
// area at 76.
std::string TwoRows() {
  return CurrentHeader(1000) +
         Record({"T", kIdAndName, 2, 16, 20, 0, 10, "anf", "end"}) + kNul +
         Utf16("Anna^Bert^") + Le32(1) + Le32(0) + Le32(2) + Le32(5);
}

// The same with other bytes at a place.
std::string With(std::size_t at, std::string const& bytes) {
  std::string file = TwoRows();
  return file.replace(at, bytes.size(), bytes);
}

TEST_F(CheckHeaderRules, FindNothingInASoundFile) {
  EXPECT_EQ("", Check(TwoRows()));
  EXPECT_EQ(0, ExitCode());
}

TEST_F(CheckHeaderRules, FindAnUnknownStart) {
  EXPECT_EQ("E310@0", Check(With(0, "x")));
  EXPECT_EQ(1, ExitCode());
}

TEST_F(CheckHeaderRules, FindACutHeader) {
  EXPECT_EQ("E311@5\nE315@5", Check("ver20"));
  EXPECT_EQ(4, ExitCode());
}

TEST_F(CheckHeaderRules, FindAnOddVersion) {
  EXPECT_EQ("W312@3", Check(With(3, "2026")));
  EXPECT_EQ("W312", Codes(With(3, "20x5")).substr(0, 4));
  // Version 2013 has neither time nor a record behind its seven bytes.
  EXPECT_EQ("W312", Codes(With(3, "2013")).substr(0, 4));
}

TEST_F(CheckHeaderRules, FindAnOddTime) {
  EXPECT_EQ("W313@7", Check(With(7, "date")));
  EXPECT_EQ("W314@11", Check(With(11, Le64(-1))));
  EXPECT_EQ("W314@11", Check(With(11, Le64(253402300800))));
  EXPECT_EQ("", Check(With(11, Le64(253402300799))));
}

TEST_F(CheckListRules, FindAMainFileWithoutTables) {
  EXPECT_EQ("E315@19", Check(CurrentHeader(1) + kNul));
  EXPECT_EQ(4, ExitCode());
  EXPECT_EQ("E315@0", Check(""));
  EXPECT_EQ(4, ExitCode());
}

TEST_F(CheckListRules, FindWrongTags) {
  EXPECT_EQ("E320@19", Check(With(19, "A")));
  EXPECT_EQ(4, ExitCode());
  EXPECT_EQ("E326@72", Check(With(72, "END")));
  EXPECT_EQ(4, ExitCode());
}

TEST_F(CheckListRules, FindACutList) {
  EXPECT_EQ("E325@60", Check(TwoRows().substr(0, 60)));
  EXPECT_EQ(4, ExitCode());
}

TEST_F(CheckListRules, FindTablesWithoutProperNames) {
  EXPECT_EQ("E322@22",
            Check(File({"", "integer ID\n", 0, 0, 0, 0, 0, "anf", "end"}, "")));
  std::string const name(64, 'N');
  std::string file =
      File({name, "integer ID\n", 0, 0, 0, 0, 0, "anf", "end"}, "");
  file.erase(22 + name.size(), 1);
  EXPECT_EQ("E321@22 " + name.substr(1), Check(file));
  EXPECT_EQ(1, ExitCode());
}

TEST_F(CheckListRules, FindTwoTablesOfOneName) {
  EXPECT_EQ("E323@63 T", Check(FileWith({{"T", 0}, {"T", 0}})));
}

TEST_F(CheckListRules, FindADefinitionThatDoesNotEnd) {
  std::string definition = "integer ID\n";
  definition.resize(16384, ' ');
  std::string file = File({"T", definition, 0, 0, 0, 0, 0, "anf", "end"}, "");
  file.erase(24 + definition.size(), 1);
  EXPECT_EQ("E324@24 T", Check(file));
}

TEST_F(CheckListRules, FindAListWithoutAnEnd) {
  EXPECT_EQ("E327@63", Check(CurrentHeader(1) + Record(RecordBytes())));
}

TEST_F(CheckListRules, FindColumnsThatCannotBeUsed) {
  EXPECT_EQ("W328@24 T B", Check(File({{"T", "integer A,blob B\n", {}}})));
  EXPECT_EQ("W330@24 T A", Check(File({{"T", "integer A,real A\n", {}}})));
  EXPECT_EQ(
      "W329@24 T",
      Check(File(
          {{"T", "integer A,integer " + std::string(64, 'N') + "\n", {}}})));
}

TEST_F(CheckListRules, FindANumberThatHasToBe0) {
  EXPECT_EQ("W331@52 T", Check(With(52, Le32(7))));
}

TEST_F(CheckBlockRules, FindNegativeNumbers) {
  for (std::size_t const at : {48U, 56U, 60U, 64U, 68U}) {
    EXPECT_EQ("E340@" + std::to_string(at) + " T", Check(With(at, Le32(-1))));
    EXPECT_EQ(4, ExitCode());
  }
}

TEST_F(CheckBlockRules, FindWrongNumbersOfRows) {
  EXPECT_EQ("E341@48 T", Check(With(48, Le32(3))));
  EXPECT_EQ(4, ExitCode());
  EXPECT_EQ("E343@25 T",
            Check(File({"T", "", 1, 0, 0, 0, 0, "anf", "end"}, "")));
  EXPECT_EQ(4, ExitCode());
}

TEST_F(CheckBlockRules, FindARowBlockThatIsTooLarge) {
  std::string const file = With(56, Le32(20)) + "rest";
  EXPECT_EQ("W342@112 T", Check(file));
}

TEST_F(CheckBlockRules, FindBlocksOutsideTheFile) {
  EXPECT_EQ("E344@60 T", Check(With(60, Le32(21))));
  EXPECT_EQ(4, ExitCode());
  EXPECT_EQ("E344@64 T", Check(With(68, Le32(100))));
  EXPECT_EQ(4, ExitCode());
  EXPECT_EQ("E345@60 T", Check(With(60, Le32(0x7FFFFFFF))));
  EXPECT_EQ(4, ExitCode());
}

// The row block of B begins with the last row of A.
std::string Overlapping() {
  RecordBytes a{"A", "integer X\n", 2, 8, 0, 0, 0, "anf", "end"};
  RecordBytes b{"B", "integer X\n", 2, 8, 4, 0, 0, "anf", "end"};
  return CurrentHeader(1) + Record(a) + Record(b) + kNul + Le32(1) + Le32(2) +
         Le32(3);
}

TEST_F(CheckBlockRules, FindOverlaps) {
  std::string const file = Overlapping();
  EXPECT_EQ("E346@" + std::to_string(file.size() - 8) + " B", Check(file));
  EXPECT_EQ(1, ExitCode());
}

// More than the file has: the library refuses one of the tables.
TEST_F(CheckBlockRules, FindOverlapsThatKeepATableFromBeingLoaded) {
  std::string tables;
  for (int i = 0; i < 10; ++i) {
    tables += Record({"T" + std::to_string(i), "integer X\n", 100, 400, 0, 0, 0,
                      "anf", "end"});
  }
  EXPECT_EQ(0U, Codes(CurrentHeader(1) + tables + kNul + std::string(400, 'x'))
                    .find("E346 E346 E346"));
  EXPECT_EQ(4, ExitCode());
}

TEST_F(CheckBlockRules, FindUnusedBytes) {
  EXPECT_EQ("W347@112", Check(TwoRows() + "?"));
  // A gap of one unit between the blocks.
  std::string gap = With(60, Le32(22));
  gap.insert(96, "\0\0", 2);
  EXPECT_EQ("W347@96", Check(gap));
}

TEST_F(CheckBlockRules, FindAnOddStringBlock) {
  std::string const file =
      Record({"T", "integer X,string S\n", 1, 8, 9, 0, 9, "anf", "end"}) +
      kNul + Utf16("abc^") + "?" + Le32(1) + Le32(0);
  EXPECT_EQ("W348@45 T", Check(file));
}

// Units: "Anna" at 0, "Bert" at 5, ten in all.
TEST_F(CheckTextRules, FindTextsOutside) {
  EXPECT_EQ("E360@108 T row 1 id 2 NAME\nN365@86 T",
            Check(With(108, Le32(11))));
  EXPECT_EQ("E360@108 T row 1 id 2 NAME\nN365@86 T",
            Check(With(108, Le32(-1))));
  EXPECT_EQ(1, ExitCode());
}

TEST_F(CheckTextRules, FindATextAtTheEnd) {
  EXPECT_EQ("W362@108 T row 1 id 2 NAME\nN365@86 T",
            Check(With(108, Le32(10))));
}

TEST_F(CheckTextRules, FindAMissingNul) {
  EXPECT_EQ("W361@96 T", Check(With(94, Utf16("!"))));
}

TEST_F(CheckTextRules, NoteSharedTexts) {
  EXPECT_EQ("N363@108 T row 1 id 2 NAME\nN365@86 T", Check(With(108, Le32(0))));
  EXPECT_EQ(0, ExitCode());
  EXPECT_EQ("N364@108 T row 1 id 2 NAME\nN365@86 T", Check(With(108, Le32(1))));
}

std::string LongText(std::size_t units) {
  auto const size = static_cast<std::int32_t>(units) + 1;
  return CurrentHeader(1) +
         Record({"T", kIdAndName, 1, 8, 2 * size, 0, size, "anf", "end"}) +
         kNul + Utf16(std::string(units, 'x') + "^") + Le32(1) + Le32(0);
}

TEST_F(CheckTextRules, FindTextsThatCannotBeSaved) {
  EXPECT_EQ("", Check(LongText(8095)));
  EXPECT_EQ("E370@" + std::to_string(76 + 2 * 8097 + 4) + " T row 0 id 1 NAME",
            Check(LongText(8096)));
  // A value that begins one unit later is short enough.
  std::string later = LongText(8096);
  later.replace(later.size() - 4, 4, Le32(1));
  EXPECT_EQ("N364 N365", Codes(later));
}

TEST_F(CheckTextRules, FindMarkersThatDoNotFit) {
  auto const check = [this](std::string const& text) {
    return Codes(File({{"T", kIdAndName, {"1|" + text}}}));
  };
  EXPECT_EQ("", check("#TS(a¬b)TS~ - #TS(c¬d)TS~"));
  EXPECT_EQ("", check("#TS()TS~"));
  EXPECT_EQ("", check("TS( #TS )TS ~"));
  EXPECT_EQ("W510", check("#TS(a¬b"));
  EXPECT_EQ("W510", check("#TS(a¬b)TS~ #TS(c"));
  EXPECT_EQ("W511", check("#TS(a#TS(b)TS~¬c)TS~"));
  EXPECT_EQ("W512", check("a)TS~"));
  EXPECT_EQ("W512", check("#TS(a¬b)TS~)TS~"));
  EXPECT_EQ("W513", check("#TS(a)TS~ #TS(b¬c)TS~"));
  EXPECT_EQ("", check("#TS(a¬b)TS~ #TS(c)TS~"));
}

// The place is that of the marker: unit 4 of the string block at byte 76.
TEST_F(CheckTextRules, TellWhereAMarkerStands) {
  EXPECT_EQ("W510@84 T row 0 id 1 NAME",
            Check(File({{"T", kIdAndName, {"1|abc #TS(d"}}})));
}

}  // namespace
}  // namespace tabwerk::test
