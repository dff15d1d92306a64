// Reading definitions from their text form.
#include <gtest/gtest.h>

#include <string>

#include "DBDefinition.h"
#include "tests/schema/observers.h"

namespace tabwerk::test {
namespace {

std::string const kName63(63, 'N');
std::string const kName64(64, 'N');

TEST(DefinitionParse, KeywordGivesTypeAndSize) {
  struct Row {
    char const* text;
    char const* layout;
  };
  constexpr Row kRows[] = {
      {"real A\n", "A:1@0 size 8"},     {"DOUBLE A\n", "A:1@0 size 8"},
      {"integer A\n", "A:2@0 size 4"},  {"LONG A\n", "A:2@0 size 4"},
      {"string A\n", "A:3@0 size 4"},   {"STRING A\n", "A:3@0 size 4"},
      {"unknown A\n", "A:0@0 size 0"},  {"Real A\n", "A:0@0 size 0"},
      {"double A\n", "A:0@0 size 0"},   {"INTEGER A\n", "A:0@0 size 0"},
      {"integers A\n", "A:0@0 size 0"}, {"String A\n", "A:0@0 size 0"},
  };
  for (Row const& row : kRows) {
    EXPECT_EQ(row.layout, LayoutOf(row.text)) << row.text;
  }
}

TEST(DefinitionParse, NumbersOfTypesAreFixed) {
  EXPECT_EQ(0, DBTypeUnknown);
  EXPECT_EQ(1, DBTypeReal);
  EXPECT_EQ(2, DBTypeInteger);
  EXPECT_EQ(3, DBTypeString);
  EXPECT_EQ(4u, sizeof(DBType));
}

TEST(DefinitionParse, WorkedExample) {
  EXPECT_EQ("ID:2@0 NAME:3@4 PREIS:1@8 MENGE:2@16 size 20",
            LayoutOf("integer ID,string NAME,real PREIS,LONG MENGE\n"));
}

TEST(DefinitionParse, FieldsAreNotAligned) {
  EXPECT_EQ("A:1@0 B:2@8 size 12", LayoutOf("real A,integer B\n"));
  EXPECT_EQ("A:2@0 B:1@4 size 12", LayoutOf("integer A,real B\n"));
}

TEST(DefinitionParse, UnknownTypeTakesNoBytes) {
  EXPECT_EQ("X:0@0 A:2@0 size 4", LayoutOf("unknown X,integer A\n"));
}

TEST(DefinitionParse, LineFeedSeparatesFields) {
  EXPECT_EQ("A:2@0 B:1@4 size 12", LayoutOf("integer A\nreal B\n"));
}

TEST(DefinitionParse, SecondSeparatorSpoilsTheNextType) {
  EXPECT_EQ("A:2@0 B:0@4 size 4", LayoutOf("integer A;\nreal B\n"));
}

TEST(DefinitionParse, BlanksMayFollowASeparator) {
  EXPECT_EQ("A:2@0 B:1@4 size 12", LayoutOf("integer A,   real B\n"));
  EXPECT_EQ("A:2@0 size 4", LayoutOf("   integer A\n"));
}

TEST(DefinitionParse, EverySeparatorOfNamesCounts) {
  for (char const separator : std::string(" \t,;\n")) {
    std::string const text =
        std::string("integer A") + separator + "real B" + separator;
    EXPECT_EQ("A:2@0 B:1@4 size 12", LayoutOf(text.c_str())) << int{separator};
  }
}

TEST(DefinitionParse, EqualSignOrTabEndsAType) {
  EXPECT_EQ("ID:2@0 size 4", LayoutOf("integer=ID\n"));
  EXPECT_EQ("ID:2@0 size 4", LayoutOf("integer\tID\n"));
}

TEST(DefinitionParse, TypeKeepsLeadingTabLineFeedAndEqualSign) {
  EXPECT_EQ("A:0@0 size 0", LayoutOf("\tinteger A\n"));
  EXPECT_EQ("A:0@0 size 0", LayoutOf("\ninteger A\n"));
  EXPECT_EQ("A:0@0 size 0", LayoutOf("=integer A\n"));
}

TEST(DefinitionParse, TypeLosesEverythingUpToItsLastBlank) {
  EXPECT_EQ("A:2@0 size 4", LayoutOf("= integer A\n"));
  EXPECT_EQ("A:2@0 size 4", LayoutOf("\t integer A\n"));
}

TEST(DefinitionParse, NameKeepsItsLeadingDelimiters) {
  EXPECT_EQ(" ID:2@0 size 4", LayoutOf("integer  ID\n"));
  EXPECT_EQ("\tID:2@0 size 4", LayoutOf("integer \tID\n"));
  EXPECT_EQ(",ID:2@0 size 4", LayoutOf("integer ,ID\n"));
  EXPECT_EQ("=ID:2@0 size 4", LayoutOf("integer==ID\n"));
}

TEST(DefinitionParse, EndOfTextEndsTheLastName) {
  EXPECT_EQ("A:2@0 size 4", LayoutOf("integer A"));
}

TEST(DefinitionParse, MissingNameEndsTheList) {
  EXPECT_EQ("A:2@0 size 4", LayoutOf("integer A,real"));
  EXPECT_EQ("A:2@0 size 4", LayoutOf("integer A,real \n"));
  EXPECT_EQ("size 0", LayoutOf("integer"));
}

TEST(DefinitionParse, TextWithoutWordsGivesNoFields) {
  for (char const* text : {"", " ", "\n", "\t", "=", " \t,;\n", ",;\n", " =\t",
                           ";;;;", ", , ,", "\n\n\n"}) {
    DBDefinition definition("integer A\n");
    EXPECT_EQ(1, definition.GenerateDefinition(text)) << text;
    EXPECT_EQ("size 0", Layout(definition)) << text;
    EXPECT_EQ(nullptr, definition.GetDefinition()) << text;
  }
}

TEST(DefinitionParse, NullTextGivesNoFields) {
  DBDefinition definition("integer A\n");
  EXPECT_EQ(1, definition.GenerateDefinition(nullptr));
  EXPECT_EQ("size 0", Layout(definition));
  EXPECT_EQ("size 0", LayoutOf(nullptr));
}

TEST(DefinitionParse, ReplacesTheFormerFields) {
  DBDefinition definition("integer A,integer B\n");
  EXPECT_EQ(1, definition.GenerateDefinition("real C\n"));
  EXPECT_EQ("C:1@0 size 8", Layout(definition));
}

TEST(DefinitionParse, TextMayStandInAFieldThatIsReplaced) {
  DBDefinition definition("integer A=real=B\n");
  ASSERT_STREQ("A=real=B", definition.GetDefinition()->name);
  EXPECT_EQ(1, definition.GenerateDefinition(definition.GetDefinition()->name));
  EXPECT_EQ("real=B:0@0 size 0", Layout(definition));
}

TEST(DefinitionParse, NameOf63CharactersIsKept) {
  EXPECT_EQ(kName63 + ":2@0 size 4",
            LayoutOf(("integer " + kName63 + "\n").c_str()));
}

TEST(DefinitionParse, LongNameGivesABlankFieldThatKeepsItsBytes) {
  std::string const text = "integer A,real " + kName64 + ",integer B\n";
  // The blank field has no link to A; B is linked to the blank field.
  EXPECT_EQ("A:2@0 :0@0! B:2@12 size 16", LayoutOf(text.c_str()));
}

TEST(DefinitionParse, WordsOfAnyLengthAreSafe) {
  std::string const word(10000, 'x');
  EXPECT_EQ(":0@0 A:2@0 size 4",
            LayoutOf((word + " " + kName64 + ",integer A\n").c_str()));
  EXPECT_EQ(":0@0 A:2@4 size 8",
            LayoutOf(("integer " + word + ",integer A\n").c_str()));
  EXPECT_EQ("A:0@0 size 0", LayoutOf((word + " A\n").c_str()));
}

TEST(DefinitionParse, TextBehindTheLimitIsNotRead) {
  constexpr std::size_t kRead = 16383;
  std::string text = "integer A,";
  text.append(kRead - text.size() - 6, ' ');
  text += "real B";  // up to the last byte that is read
  ASSERT_EQ(kRead, text.size());
  EXPECT_EQ("A:2@0 B:1@4 size 12", LayoutOf(text.c_str()));
  EXPECT_EQ("A:2@0 B:1@4 size 12", LayoutOf((text + "CDE\n").c_str()));
  text.insert(20, " ");
  EXPECT_EQ("A:2@0 size 4", LayoutOf(text.c_str()));
}

TEST(DefinitionParse, ManyFieldsFit) {
  std::string text;
  for (int i = 0; i < 2000; ++i) text += "real A\n";
  EXPECT_EQ(16000, DBDefinition(text.c_str()).GetMemorySize());
}

}  // namespace
}  // namespace tabwerk::test
