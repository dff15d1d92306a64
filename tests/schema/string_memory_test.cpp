// The string store of a part, and copies of parts.
#include "schema/string_memory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "schema/part.h"
#include "tests/support/fault_platform.h"
#include "tests/support/new_guard.h"

namespace tabwerk::test {
namespace {

// The units with "^" for NUL.
std::string Units(DBStringMemory const& store) {
  std::string text;
  for (std::uint32_t i = 0; i < store.count(); ++i) {
    char16_t unit = 0;
    std::memcpy(&unit, store.data() + 2 * i, sizeof unit);
    text += unit == 0 ? '^' : static_cast<char>(unit);
  }
  return text;
}

// The text at an index; "-" when there is none.
std::u16string TextAt(DBStringMemory const& store, std::int32_t index) {
  return std::u16string(store.Text(index).value_or(u"-"));
}

TEST(StringMemory, StartsEmpty) {
  DBStringMemory const store;
  EXPECT_EQ(0u, store.count());
  EXPECT_EQ(u"", TextAt(store, 0));
  EXPECT_EQ(u"-", TextAt(store, 1));
  EXPECT_EQ(u"-", TextAt(store, -1));
}

TEST(StringMemory, AppendedTextBeginsAtTheCountBefore) {
  DBStringMemory store;
  EXPECT_TRUE(store.Append(u"ab"));
  EXPECT_EQ(3u, store.count());
  EXPECT_TRUE(store.Append(u""));
  EXPECT_EQ(4u, store.count());
  EXPECT_TRUE(store.Append(u"c"));
  EXPECT_EQ("ab^^c^", Units(store));
  EXPECT_EQ(u"ab", TextAt(store, 0));
  EXPECT_EQ(u"b", TextAt(store, 1));
  EXPECT_EQ(u"", TextAt(store, 2));
  EXPECT_EQ(u"c", TextAt(store, 4));
}

TEST(StringMemory, IndexAtTheEndIsTheEmptyText) {
  DBStringMemory store;
  ASSERT_TRUE(store.Append(u"a"));
  EXPECT_EQ(u"", TextAt(store, 2));
  EXPECT_EQ(u"-", TextAt(store, 3));
  EXPECT_EQ(u"-", TextAt(store, 0x7fffffff));
  EXPECT_EQ(u"-", TextAt(store, -0x7fffffff - 1));
}

TEST(StringMemory, StoreWithoutFinalNulIsReadAsIfItHadOne) {
  platform::Block block;
  ASSERT_TRUE(block.Reset(4));
  std::memcpy(block.data(), u"ab", 4);
  DBStringMemory store;
  store.Adopt(std::move(block));
  EXPECT_EQ(u"ab", TextAt(store, 0));
  EXPECT_EQ(u"", TextAt(store, 2));
  store.Overwrite(0, u"xy");
  EXPECT_EQ("xy", Units(store));
  store.Overwrite(0, u"z");
  EXPECT_EQ("z^", Units(store));
}

TEST(StringMemory, OverwriteKeepsTheUnitsBehindTheNul) {
  DBStringMemory store;
  ASSERT_TRUE(store.Append(u"abcdef"));
  store.Overwrite(0, u"xyz");
  EXPECT_EQ("xyz^ef^", Units(store));
  store.Overwrite(0, u"");
  EXPECT_EQ("^yz^ef^", Units(store));
}

TEST(StringMemory, TextOfTheStoreItselfMayBeAppended) {
  DBStringMemory store;
  ASSERT_TRUE(store.Append(u"abc"));
  for (unsigned i = 0; i < 10; ++i) {
    EXPECT_EQ(4u + 3 * i, store.count());
    ASSERT_TRUE(store.Append(store.Text(1).value()));
  }
  EXPECT_EQ(u"bc", TextAt(store, 31));
}

TEST(StringMemory, WhatWasTakenBackDoesNotShowInLaterTexts) {
  DBStringMemory store;
  ASSERT_TRUE(store.Append(u"abcdef"));
  store.Truncate(0);
  ASSERT_TRUE(store.Append(u"x"));
  ASSERT_TRUE(store.Append(u""));
  ASSERT_TRUE(store.AppendEmpty(3));
  EXPECT_EQ("x^^^^^", Units(store));
}

TEST(StringMemory, LoneSurrogatesPassThrough) {
  DBStringMemory store;
  std::u16string const text = {char16_t{0xDC00}, char16_t{0xD800}};
  ASSERT_TRUE(store.Append(text));
  EXPECT_EQ(text, TextAt(store, 0));
}

TEST(StringMemory, TruncateTakesAppendBack) {
  DBStringMemory store;
  ASSERT_TRUE(store.Append(u"a"));
  ASSERT_TRUE(store.Append(u"b"));
  store.Truncate(2);
  EXPECT_EQ("a^", Units(store));
  store.Truncate(10);
  EXPECT_EQ("a^", Units(store));
}

TEST(StringMemory, CopyIsIndependent) {
  DBStringMemory store;
  ASSERT_TRUE(store.Append(u"a"));
  DBStringMemory copy;
  EXPECT_TRUE(copy.CopyFrom(store));
  EXPECT_TRUE(copy.CopyFrom(copy));
  store.Overwrite(0, u"x");
  EXPECT_EQ("a^", Units(copy));
  EXPECT_TRUE(copy.CopyFrom(DBStringMemory()));
  EXPECT_EQ("", Units(copy));
}

TEST(StringMemory, FailedAllocationChangesNothing) {
  DBStringMemory store;
  ASSERT_TRUE(store.Append(u"a"));
  DBStringMemory other;
  FaultGuard faults;
  faults.FailAt(1, Lasting::kForGood, kMemoryCalls);
  EXPECT_FALSE(store.Append(u"a longer text"));
  EXPECT_FALSE(other.CopyFrom(store));
  faults.Disarm();
  EXPECT_EQ("a^", Units(store));
  EXPECT_EQ("", Units(other));
}

void Fill(TablePart* part) {
  part->file_name = zWString(u"A.UDB");
  part->reserved = 1;
  part->row_block_size = 8;
  part->row_block_offset = 3;
  part->string_block_offset = 4;
  part->string_block_size = 5;
  part->row_count = 2;
  part->loaded = true;
  part->damaged = true;
  EXPECT_TRUE(part->rows.Reset(8));
  std::memcpy(part->rows.data(), "abcdefgh", 8);
  EXPECT_TRUE(part->strings->Append(u"text"));
}

TEST(Part, CopyIsDeep) {
  TablePart part;
  Fill(&part);
  auto const copy = CopyPart(part);
  ASSERT_NE(nullptr, copy);
  std::memcpy(part.rows.data(), "--------", 8);
  part.strings->Overwrite(0, u"----");
  EXPECT_EQ(u"A.UDB", copy->file_name.view());
  EXPECT_EQ(1, copy->reserved);
  EXPECT_EQ(8, copy->row_block_size);
  EXPECT_EQ(3, copy->row_block_offset);
  EXPECT_EQ(4, copy->string_block_offset);
  EXPECT_EQ(5, copy->string_block_size);
  EXPECT_EQ(2, copy->row_count);
  EXPECT_TRUE(copy->loaded);
  EXPECT_TRUE(copy->damaged);
  EXPECT_EQ(0, std::memcmp(copy->rows.data(), "abcdefgh", 8));
  EXPECT_EQ("text^", Units(*copy->strings));
}

TEST(Part, CopyWithoutMemoryIsNull) {
  TablePart part;
  Fill(&part);
  std::int64_t n = 1;
  for (;; ++n) {
    FaultGuard faults;
    faults.FailAt(n, Lasting::kOnce, kMemoryCalls);
    auto const copy = CopyPart(part);
    if (!faults.Fired()) break;
    EXPECT_EQ(nullptr, copy) << n;
  }
  EXPECT_EQ(3, n);
  NewGuard guard(1);
  bool const made = CopyPart(part) != nullptr;
  guard.Disarm();
  EXPECT_FALSE(made);
}

TEST(Part, RowOutsideTheBlockIsNone) {
  TablePart part;
  part.row_count = 3;
  ASSERT_TRUE(part.rows.Reset(8));
  EXPECT_EQ(part.rows.data(), part.Row(0, 4));
  EXPECT_EQ(part.rows.data() + 4, part.Row(1, 4));
  EXPECT_EQ(nullptr, part.Row(2, 4));
  EXPECT_EQ(nullptr, part.Row(-1, 4));
  EXPECT_EQ(nullptr, part.Row(0, 16));
}

}  // namespace
}  // namespace tabwerk::test
