// Definitions and fields: copies, look-up, text form.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "DBDefinition.h"
#include "schema/layout.h"
#include "schema/names.h"
#include "tests/schema/observers.h"
#include "tests/support/new_guard.h"

namespace tabwerk::test {
namespace {

constexpr char kText[] = "integer ID,string NAME,real PREIS\n";
constexpr char kLayout[] = "ID:2@0 NAME:3@4 PREIS:1@8 size 16";

TEST(Definition, StartsEmpty) {
  DBDefinition const definition;
  EXPECT_EQ("size 0", Layout(definition));
  EXPECT_EQ(nullptr, definition.GetDefinition());
}

TEST(Definition, FieldStartsBlank) {
  DBFeld const field;
  EXPECT_EQ(DBTypeUnknown, field.type);
  EXPECT_STREQ("", field.name);
  EXPECT_EQ(nullptr, field.previous);
  EXPECT_EQ(nullptr, field.next);
  EXPECT_EQ(0, field.offset);
}

TEST(Definition, CopyIsIndependent) {
  DBDefinition source(kText);
  DBDefinition const copy(source);
  EXPECT_NE(source.GetDefinition(), copy.GetDefinition());
  source.GenerateDefinition(nullptr);
  EXPECT_EQ(kLayout, Layout(copy));
}

TEST(Definition, AssignmentReplacesTheFields) {
  DBDefinition const source(kText);
  DBDefinition target("real X\n");
  EXPECT_EQ(&target, &(target = source));
  EXPECT_EQ(kLayout, Layout(target));
  EXPECT_EQ(kLayout, Layout(source));
}

TEST(Definition, CopyOfAnEmptyOneIsEmpty) {
  DBDefinition const empty;
  EXPECT_EQ("size 0", Layout(DBDefinition(empty)));
  DBDefinition target(kText);
  target = empty;
  EXPECT_EQ("size 0", Layout(target));
}

TEST(Definition, SelfAssignmentChangesNothing) {
  DBDefinition definition(kText);
  DBFeld const* const first = definition.GetDefinition();
  DBDefinition const& same = definition;
  definition = same;
  EXPECT_EQ(kLayout, Layout(definition));
  EXPECT_EQ(first, definition.GetDefinition());
}

TEST(Definition, CopyKeepsBlankFieldsAndTheirBytes) {
  std::string const text = "real " + std::string(64, 'N') + ",integer A\n";
  DBDefinition const copy{DBDefinition(text.c_str())};
  EXPECT_EQ(":0@0 A:2@8 size 12", Layout(copy));
}

TEST(Definition, FieldCopyTakesTheFollowersOnly) {
  DBDefinition definition(kText);
  DBFeld const copy(*definition.GetDefinition()->next);
  EXPECT_STREQ("NAME", copy.name);
  EXPECT_EQ(nullptr, copy.previous);
  ASSERT_NE(nullptr, copy.next);
  EXPECT_STREQ("PREIS", copy.next->name);
  EXPECT_EQ(8, copy.next->offset);
  EXPECT_EQ(&copy, copy.next->previous);
  EXPECT_EQ(nullptr, copy.next->next);
}

TEST(Definition, FieldMayBeAssignedItsFollower) {
  DBDefinition definition(kText);
  DBFeld* const first = definition.GetDefinition();
  *first = *first->next;
  EXPECT_EQ("NAME:3@4 PREIS:1@8 size 16", Layout(definition));
  DBFeld const& same = *first;
  *first = same;
  EXPECT_EQ("NAME:3@4 PREIS:1@8 size 16", Layout(definition));
}

TEST(Definition, LongChainIsDeletedWithoutRecursion) {
  DBFeld head;
  DBFeld* last = &head;
  for (int i = 0; i < 500000; ++i) {
    last->next = new DBFeld;
    last = last->next;
  }
  DBFeld const copy(head);
  EXPECT_NE(nullptr, copy.next);
}

TEST(Definition, GetOffsetFindsExactNamesOnly) {
  DBDefinition definition(kText);
  DBFeld* field = nullptr;
  EXPECT_EQ(1, definition.GetOffset("NAME", field));
  EXPECT_EQ(definition.GetDefinition()->next, field);
  DBFeld* const before = field;
  for (char const* name : {"name", "NAM", "NAMES", "", " NAME"}) {
    EXPECT_EQ(0, definition.GetOffset(name, field)) << name;
  }
  EXPECT_EQ(0, definition.GetOffset(nullptr, field));
  EXPECT_EQ(0, definition.GetOffset(std::string(70, 'N').c_str(), field));
  EXPECT_EQ(before, field);
}

TEST(Definition, GetOffsetFindsNothingInAnEmptyOne) {
  DBFeld* field = nullptr;
  EXPECT_EQ(0, DBDefinition().GetOffset("ID", field));
  EXPECT_EQ(nullptr, field);
}

TEST(Definition, GetOffsetFindsTheFirstOfTwo) {
  DBDefinition const definition("integer A,real A\n");
  DBFeld* field = nullptr;
  EXPECT_EQ(1, definition.GetOffset("A", field));
  EXPECT_EQ(DBTypeInteger, field->type);
}

TEST(Definition, TextNormalisesTypeWords) {
  EXPECT_EQ(
      "integer ID,string NAME,real PREIS,integer MENGE\n",
      TextOf(DBDefinition("integer ID,string NAME,real PREIS,LONG MENGE\n")));
  EXPECT_EQ("real A,string B,unknown C\n",
            TextOf(DBDefinition("DOUBLE A\nSTRING B\nfloat C\n")));
  EXPECT_EQ("", TextOf(DBDefinition()));
}

TEST(Definition, TextOfAnyOtherTypeIsUnknown) {
  DBDefinition definition("integer A\n");
  std::int32_t const number = 7;
  std::memcpy(&definition.GetDefinition()->type, &number, sizeof number);
  EXPECT_EQ("unknown A\n", TextOf(definition));
}

TEST(Definition, TextReadsBack) {
  for (char const* text : {kText, "integer  ID\n", "integer ,A,real \tB\n",
                           "unknown X,integer A\n", ""}) {
    EXPECT_EQ(LayoutOf(text), LayoutOf(TextOf(DBDefinition(text)).c_str()))
        << text;
  }
}

TEST(Definition, TextNeedsABufferOfItsLength) {
  DBDefinition const definition("integer ID\n");  // 11 characters
  std::string buffer(13, '#');
  EXPECT_EQ(0, definition.GenerateString(buffer.data(), 10));
  EXPECT_EQ(std::string(13, '#'), buffer);
  // The NUL behind the text is not counted: one byte more is written.
  EXPECT_EQ(1, definition.GenerateString(buffer.data(), 11));
  EXPECT_EQ(std::string("integer ID\n\0#", 13), buffer);
}

TEST(Definition, TextOfAnEmptyOneIsANul) {
  std::string buffer(2, '#');
  EXPECT_EQ(1, DBDefinition().GenerateString(buffer.data(), 0));
  EXPECT_EQ(std::string("\0#", 2), buffer);
}

TEST(Definition, TextIsRefusedWithoutABuffer) {
  char byte = '#';
  EXPECT_EQ(0, DBDefinition().GenerateString(&byte, -1));
  EXPECT_EQ('#', byte);
  EXPECT_EQ(0, DBDefinition(kText).GenerateString(nullptr, 1000));
}

// Result of GenerateDefinition and layouts of a copy, an assigned definition
// and the definition itself when the n-th allocation and all behind it fail.
bool WithoutMemory(int n, std::vector<std::string>* results) {
  DBDefinition definition("real A\n");
  DBDefinition target("real B\n");
  DBDefinition const source(kText);
  DBFeld field(*source.GetDefinition());
  NewGuard guard(n);
  int const result = definition.GenerateDefinition(kText);
  DBDefinition const copy(source);
  target = source;
  field = *source.GetDefinition()->next;
  bool const fired = guard.Disarm();
  *results = {std::to_string(result), Layout(definition), Layout(copy),
              Layout(target)};
  return fired;
}

TEST(Definition, WithoutMemoryThingsAreWholeOrNotAtAll) {
  std::vector<std::string> results;
  int n = 1;
  for (; WithoutMemory(n, &results); ++n) {
    EXPECT_EQ(results[0] == "1" ? kLayout : "size 0", results[1]) << n;
    EXPECT_TRUE(results[2] == kLayout || results[2] == "size 0") << n;
    EXPECT_TRUE(results[3] == kLayout || results[3] == "B:1@0 size 8") << n;
  }
  EXPECT_EQ(11, n);  // three fields three times, one follower
  EXPECT_EQ((std::vector<std::string>{"1", kLayout, kLayout, kLayout}),
            results);
}

TEST(Definition, LayoutsAreTheSameByTypePlaceAndNumberOfFields) {
  DBDefinition const two("integer ID,string NAME\n");
  EXPECT_TRUE(SameLayout(two, DBDefinition("integer X,string Y\n")));
  EXPECT_FALSE(SameLayout(two, DBDefinition("string ID,integer NAME\n")));
  EXPECT_FALSE(SameLayout(two, DBDefinition("integer ID\n")));
  // As long as the two, in one field.
  DBDefinition const real("real PRICE\n");
  EXPECT_EQ(two.GetMemorySize(), real.GetMemorySize());
  EXPECT_FALSE(SameLayout(two, real));
  DBDefinition const integers("integer A,integer B\n");
  EXPECT_FALSE(SameLayout(two, integers));
  // A field of no known type takes no room.
  DBDefinition const three("integer ID,string NAME,float X\n");
  EXPECT_FALSE(SameLayout(two, three));
  EXPECT_FALSE(SameLayout(three, two));
  DBDefinition moved(two);
  moved.GetDefinition()->offset = 2;
  EXPECT_FALSE(SameLayout(two, moved));
}

TEST(FieldNames, AreComparedAsFarAsAFieldHoldsThem) {
  std::string const longest(DBFeld::kNameSize, 'x');
  EXPECT_TRUE(SameName(longest.c_str(), (longest + "y").c_str()));
  EXPECT_FALSE(SameName(longest.c_str(), longest.c_str() + 1));
  EXPECT_FALSE(SameName(nullptr, "x"));
  EXPECT_FALSE(SameName("x", nullptr));
}

TEST(FieldNames, OfEightCharactersAreLookedAtBehindThem) {
  DBDefinition const definition(
      "integer ABCDEFGH,integer ABCDEFGHI,integer ABCDEFG\n");
  EXPECT_TRUE(NameKey("ABCDEFGH").IsNameOf(*definition.GetDefinition()));
  EXPECT_FALSE(NameKey("ABCDEFGHI").IsNameOf(*definition.GetDefinition()));
  EXPECT_FALSE(NameKey("ABCDEFG").IsNameOf(*definition.GetDefinition()));
  auto const* const second = definition.GetDefinition()->next;
  EXPECT_FALSE(NameKey("ABCDEFGH").IsNameOf(*second));
  EXPECT_TRUE(NameKey("ABCDEFGHI").IsNameOf(*second));
  EXPECT_TRUE(NameKey("ABCDEFG").IsShort(NameKey("ABCDEFG")));
  EXPECT_FALSE(NameKey("ABCDEFG").IsShort(NameKey("ABCDEFGH")));
}

}  // namespace
}  // namespace tabwerk::test
