// Texts at the current row and column, and the string store behind them.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <utility>

#include "schema/bytes.h"
#include "schema/format.h"
#include "tests/support/table_builder.h"

namespace {

using tabwerk::LoadValue;
using tabwerk::StoreValue;
using tabwerk::test::Rows;
using tabwerk::test::Store;
using tabwerk::test::TestTable;
using tabwerk::test::Units;
using tabwerk::test::Value;

class TabelleText : public testing::Test {
 protected:
  TabelleText() : t_("string NAME,integer ID,real PRICE\n") {
    t_.AddRows(0, {"abcdef|0|0", "b|0|0"});
    Stand("NAME", 0);
  }

  void Stand(char const* column, long row) {
    ASSERT_EQ(1, t_.table.SelectColumn(column));
    ASSERT_EQ(1, t_.table.SelectZeile(row));
  }

  // The string index of row 0.
  std::int32_t Index() {
    return LoadValue<std::int32_t>(t_.Part(0).rows.data());
  }
  void SetIndex(std::int32_t index) {
    StoreValue(t_.Part(0).rows.data(), index);
  }

  // Replaces the store's content by these units, without a NUL at the end.
  void SetStore(std::u16string_view units) {
    tabwerk::platform::Block block;
    ASSERT_TRUE(block.Reset(2 * units.size()));
    std::memcpy(block.data(), units.data(), block.size());
    t_.Part(0).strings->Adopt(std::move(block));
  }

  TestTable t_;
};

TEST_F(TabelleText, ShorterTextReusesThePlace) {
  EXPECT_EQ(1, t_.table.SetWert(L"abc"));
  EXPECT_EQ("abc^ef^b^", Store(t_.Part(0)));
  EXPECT_EQ(0, Index());
  EXPECT_EQ("abc", Value(t_.table));
}

TEST_F(TabelleText, TextOfTheSameLengthReusesThePlace) {
  EXPECT_EQ(1, t_.table.SetWert(L"ABCDEF"));
  EXPECT_EQ("ABCDEF^b^", Store(t_.Part(0)));
}

TEST_F(TabelleText, LongerTextIsAppendedAndTheOldOneStays) {
  EXPECT_EQ(1, t_.table.SetWert(L"abcdefgh"));
  EXPECT_EQ("abcdef^b^abcdefgh^", Store(t_.Part(0)));
  EXPECT_EQ(9, Index());
  EXPECT_EQ("abcdefgh", Value(t_.table));
}

TEST_F(TabelleText, LengthOfTheRunDecidesNotThatOfThePlace) {
  EXPECT_EQ(1, t_.table.SetWert(L"ab"));
  EXPECT_EQ(1, t_.table.SetWert(L"abc"));
  EXPECT_EQ("ab^def^b^abc^", Store(t_.Part(0)));
}

TEST_F(TabelleText, EmptyTextIsStoredInPlace) {
  EXPECT_EQ(1, t_.table.SetWert(L""));
  EXPECT_EQ("^bcdef^b^", Store(t_.Part(0)));
  EXPECT_EQ("", Value(t_.table));
}

TEST_F(TabelleText, RowsThatShareAPlaceChangeTogether) {
  SetIndex(7);
  EXPECT_EQ(1, t_.table.SetWert(L"x"));
  EXPECT_EQ("[x|0|0][x|0|0]", Rows(*t_.entry));
}

TEST_F(TabelleText, IndexInsideATextNamesItsTail) {
  SetIndex(3);
  EXPECT_EQ("def", Value(t_.table));
  EXPECT_EQ(1, t_.table.SetWert(L"xy"));
  EXPECT_EQ("abcxy^^b^", Store(t_.Part(0)));
}

TEST_F(TabelleText, BytesAreSignExtended) {
  EXPECT_EQ(1, t_.table.SetWert("a\xE4\x80\xFF\x7F"));
  EXPECT_EQ("a<FFE4><FF80><FFFF><007F>^^b^", Store(t_.Part(0)));
}

TEST_F(TabelleText, AtMost8095BytesAreTaken) {
  EXPECT_EQ(1, t_.table.SetWert(std::string(8095, 'x').c_str()));
  EXPECT_EQ(9U + 8096U, t_.Part(0).strings->count());
  EXPECT_EQ(1, t_.table.SetWert(std::string(9000, 'y').c_str()));
  EXPECT_EQ(9U + 8096U, t_.Part(0).strings->count());
  EXPECT_EQ(std::string(8095, 'y'), Value(t_.table));
}

TEST_F(TabelleText, WideTextsHaveNoLimit) {
  EXPECT_EQ(1, t_.table.SetWert(std::wstring(9000, L'x').c_str()));
  EXPECT_EQ(std::string(9000, 'x'), Value(t_.table));
}

TEST_F(TabelleText, LoneSurrogatesPassThrough) {
  char16_t const text[] = {0xD800, u'a', 0xDFFF, 0};
  EXPECT_EQ(1, t_.table.SetWert(text));
  zWString value;
  EXPECT_EQ(1, t_.table.GetWert(value));
  EXPECT_EQ("<D800>a<DFFF>", Units(value.view()));
  EXPECT_EQ(1, t_.table.SetWert(value.toStdWString().c_str()));
  EXPECT_EQ("<D800>a<DFFF>^ef^b^", Store(t_.Part(0)));
}

TEST_F(TabelleText, CharactersBeyond16BitsBecomeSurrogatePairs) {
  EXPECT_EQ(1, t_.table.SetWert(L"\U0001F600"));
  EXPECT_EQ("<D83D><DE00>^def^b^", Store(t_.Part(0)));
}

TEST_F(TabelleText, NullTextIsRefused) {
  EXPECT_EQ(0, t_.table.SetWert(static_cast<wchar_t const*>(nullptr)));
  EXPECT_EQ(0, t_.table.SetWert(static_cast<char16_t const*>(nullptr)));
  EXPECT_EQ(0, t_.table.SetWert(static_cast<char const*>(nullptr)));
  EXPECT_EQ("abcdef", Value(t_.table));
}

TEST_F(TabelleText, IndexOutsideTheStoreFails) {
  for (std::int32_t const index : {-1, 10, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
    SetIndex(index);
    EXPECT_EQ("-", Value(t_.table)) << index;
    EXPECT_EQ(0, t_.table.SetWert(L"x")) << index;
    EXPECT_EQ(index, Index());
  }
  EXPECT_EQ("abcdef^b^", Store(t_.Part(0)));
}

TEST_F(TabelleText, IndexAtTheEndReadsEmptyAndASetAppends) {
  SetIndex(9);
  EXPECT_EQ("", Value(t_.table));
  EXPECT_EQ(1, t_.table.SetWert(L"x"));
  EXPECT_EQ("abcdef^b^x^", Store(t_.Part(0)));
  SetIndex(11);
  EXPECT_EQ(1, t_.table.SetWert(L""));
  EXPECT_EQ("abcdef^b^x^^", Store(t_.Part(0)));
  EXPECT_EQ(11, Index());
}

TEST_F(TabelleText, StoreWithoutFinalNulReadsAsIfItHadOne) {
  SetStore(u"xyz");
  EXPECT_EQ("xyz", Value(t_.table));
  EXPECT_EQ(1, t_.table.SetWert(L"XYZ"));
  EXPECT_EQ("XYZ", Store(t_.Part(0)));
  EXPECT_EQ("XYZ", Value(t_.table));
}

TEST_F(TabelleText, LastTextWithoutNulDoesNotRunIntoTheNextOne) {
  SetStore(u"xyz");
  Stand("NAME", 1);
  StoreValue(t_.Part(0).rows.data() + 16, std::int32_t{3});
  EXPECT_EQ(1, t_.table.SetWert(L"new"));
  EXPECT_EQ("xyz^new^", Store(t_.Part(0)));
  EXPECT_EQ("[xyz|0|0][new|0|0]", Rows(*t_.entry));
}

TEST_F(TabelleText, IntegerColumnIsTakenAsAPlaceInTheStore) {
  Stand("ID", 1);
  // ID 0 overwrites the store's first text, which row 0 shows.
  EXPECT_EQ(1, t_.table.SetWert(L"wrong"));
  EXPECT_EQ("[wrong|0|0][b|0|0]", Rows(*t_.entry));
  EXPECT_EQ(1, t_.table.SetWert("longer than that"));
  EXPECT_EQ("[wrong|0|0][b|9|0]", Rows(*t_.entry));
}

TEST_F(TabelleText, RealColumnGivesItsFirstFourBytes) {
  Stand("PRICE", 0);
  EXPECT_EQ(1, t_.table.SetWert(L"wrong"));
  EXPECT_EQ("[wrong|0|0][b|0|0]", Rows(*t_.entry));
}

TEST_F(TabelleText, TextMayLieInTheStoreItself) {
  auto const* const inside = reinterpret_cast<char16_t const*>(
      static_cast<void const*>(t_.Part(0).strings->data()));
  Stand("NAME", 1);
  EXPECT_EQ(1, t_.table.SetWert(inside));
  EXPECT_EQ("[abcdef|0|0][abcdef|0|0]", Rows(*t_.entry));
  Stand("NAME", 0);
  auto const* const moved = reinterpret_cast<char16_t const*>(
      static_cast<void const*>(t_.Part(0).strings->data()));
  EXPECT_EQ(1, t_.table.SetWert(moved + 2));
  EXPECT_EQ("[cdef|0|0][abcdef|0|0]", Rows(*t_.entry));
}

TEST_F(TabelleText, SectionsAreTranslatedOnReadingOnly) {
  EXPECT_EQ(1, t_.table.SetWert(L"#TS(Rot\u00ACRed)TS~"));
  EXPECT_EQ("Rot", Value(t_.table));
  EXPECT_EQ("[#TS(Rot\xC2\xACRed)TS~|0|0][b|0|0]", Rows(*t_.entry));
}

}  // namespace
