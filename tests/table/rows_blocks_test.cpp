// Row blocks and string blocks on their way from and to a file.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"
#include "schema/bytes.h"
#include "schema/directory_access.h"
#include "schema/format.h"
#include "table/table_access.h"
#include "tests/support/fault_platform.h"
#include "tests/support/table_builder.h"

namespace {

using tabwerk::DirectoryAccess;
using tabwerk::LoadValue;
using tabwerk::StoreValue;
using tabwerk::TableAccess;
using tabwerk::TablePart;
using tabwerk::test::FaultGuard;
using tabwerk::test::Rows;
using tabwerk::test::Store;
using tabwerk::test::TestTable;
namespace platform = tabwerk::platform;

std::string Hex(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string hex;
  for (char const byte : bytes) {
    auto const value = static_cast<unsigned char>(byte);
    hex += kDigits[value >> 4U];
    hex += kDigits[value & 15U];
  }
  return hex;
}

// A table of the columns ID and NAME and an empty file of part 0's directory.
class TabelleBlocks : public testing::Test {
 protected:
  TabelleBlocks() : t_("integer ID,string NAME\n", 2) {}

  void SetUp() override {
    path_ = platform::MakeTempFile(platform::TempFolder(), "tw");
    platform::Error error{};
    file_ = platform::OpenFile(path_, platform::Mode::kUpdate,
                               platform::Share::kDenyNone, &error);
    ASSERT_NE(nullptr, file_);
    t_.directory.SetFile(0, file_);
  }

  void TearDown() override {
    t_.directory.CloseDBdatei();
    EXPECT_EQ(platform::Error::kNone, platform::Delete(path_));
  }

  void Put(std::string_view bytes) {
    ASSERT_TRUE(platform::Seek(file_, 0, platform::Origin::kStart));
    ASSERT_EQ(bytes.size(), platform::Write(file_, bytes.data(), bytes.size()));
    ASSERT_TRUE(platform::Flush(file_));
  }

  std::string Content() {
    EXPECT_TRUE(platform::Flush(file_));
    std::string bytes(static_cast<std::size_t>(platform::FileSize(file_)), 0);
    EXPECT_TRUE(platform::Seek(file_, 0, platform::Origin::kStart));
    EXPECT_EQ(bytes.size(), platform::Read(file_, bytes.data(), bytes.size()));
    return bytes;
  }

  // Part 0 as a directory record of the file would describe it.
  void Describe(std::int32_t rows, std::int32_t offset,
                std::int32_t string_offset, std::int32_t string_size) {
    TablePart& part = t_.Part(0);
    part.row_count = rows;
    part.row_block_offset = offset;
    part.row_block_size = 8 * rows;
    part.string_block_offset = string_offset;
    part.string_block_size = string_size;
    part.loaded = false;
  }

  bool WriteStrings(long offset, long* end) {
    return t_.table.WriteStrings(file_, offset, *end, false,
                                 zWString(u"part0"));
  }
  bool WriteTabelle(long offset, long* end) {
    return t_.table.WriteTabelle(file_, offset, *end, false,
                                 zWString(u"part0"));
  }

  TestTable t_;
  zWString path_;
  FILE* file_ = nullptr;
};

// Two rows (1, "A") and (2, "Bé") behind one byte, then the texts.
constexpr std::string_view kFile(
    "x"
    "\x01\0\0\0\0\0\0\0"
    "\x02\0\0\0\x02\0\0\0"
    "A\0\0\0B\0\xE9\0\0\0",
    27);

TEST_F(TabelleBlocks, RowsAndTextsAreRead) {
  Put(kFile);
  Describe(2, 1, 17, 5);
  EXPECT_TRUE(t_.table.ReadTabelle(0, &t_.directory));
  EXPECT_TRUE(t_.table.ReadStrings(0, &t_.directory));
  EXPECT_TRUE(t_.entry->GetPartLoaded(0));
  EXPECT_EQ("[1|A][2|B\xC3\xA9]", Rows(*t_.entry, 0));
  EXPECT_EQ(16, t_.Part(0).row_block_size);
  EXPECT_EQ(5U, t_.Part(0).strings->count());
}

TEST_F(TabelleBlocks, StringSizeCountsBytesInFilesOf2014) {
  Put(kFile);
  Describe(2, 1, 17, 11);
  DirectoryAccess::Files(t_.directory)[0].char_factor = 2;
  EXPECT_TRUE(t_.table.ReadStrings(0, &t_.directory));
  EXPECT_EQ("A^B<00E9>^", Store(t_.Part(0)));
}

TEST_F(TabelleBlocks, FactorIsThatOfTheFileRead) {
  Put(kFile);
  Describe(2, 1, 17, 5);
  DirectoryAccess::Files(t_.directory)[1].char_factor = 2;
  EXPECT_TRUE(t_.table.ReadStrings(0, &t_.directory));
  EXPECT_EQ(5U, t_.Part(0).strings->count());
}

TEST_F(TabelleBlocks, EmptyBlocksAreRead) {
  Describe(0, 100, 100, 0);
  EXPECT_TRUE(t_.table.ReadTabelle(0, &t_.directory));
  EXPECT_TRUE(t_.table.ReadStrings(0, &t_.directory));
  EXPECT_TRUE(t_.entry->GetPartLoaded(0));
  EXPECT_TRUE(t_.table.NeueZeile(false));
  EXPECT_EQ("[0|]", Rows(*t_.entry, 0));
}

TEST_F(TabelleBlocks, WithoutDirectoryOrPartNothingIsRead) {
  EXPECT_FALSE(t_.table.ReadTabelle(0, nullptr));
  EXPECT_FALSE(t_.table.ReadStrings(0, nullptr));
  EXPECT_FALSE(t_.table.ReadTabelle(2, &t_.directory));
  EXPECT_FALSE(t_.table.ReadStrings(2, &t_.directory));
  EXPECT_FALSE(t_.directory.SelectTabelle("NONE"));
  EXPECT_FALSE(t_.table.ReadTabelle(0, &t_.directory));
}

TEST_F(TabelleBlocks, WithoutAStreamTheRowsAreZeroAndNotLoaded) {
  Describe(2, 1, 17, 5);
  t_.directory.CloseDBdatei();
  t_.Part(0).loaded = true;
  EXPECT_FALSE(t_.table.ReadTabelle(0, &t_.directory));
  EXPECT_FALSE(t_.table.ReadStrings(0, &t_.directory));
  EXPECT_FALSE(t_.entry->GetPartLoaded(0));
  EXPECT_EQ("[0|?][0|?]", [&] {
    for (std::size_t row = 0; row < 2; ++row) {
      StoreValue(t_.Part(0).rows.data() + 8 * row + 4, std::int32_t{-1});
    }
    return Rows(*t_.entry, 0);
  }());
}

TEST_F(TabelleBlocks, FileCutAnywhereFails) {
  for (std::size_t size = 0; size < 17; ++size) {
    platform::Error error{};
    t_.directory.CloseDBdatei();
    file_ = platform::OpenFile(path_, platform::Mode::kCreateUpdate,
                               platform::Share::kDenyNone, &error);
    t_.directory.SetFile(0, file_);
    Put(kFile.substr(0, size));
    Describe(2, 1, 17, 5);
    EXPECT_FALSE(t_.table.ReadTabelle(0, &t_.directory)) << size;
    EXPECT_FALSE(t_.entry->GetPartLoaded(0)) << size;
    EXPECT_FALSE(t_.table.ReadStrings(0, &t_.directory)) << size;
  }
}

TEST_F(TabelleBlocks, FailedReadOfTextsLeavesTheOldOnes) {
  t_.AddRows(0, {"7|old"});
  Put(kFile);
  Describe(1, 1, 17, 6);
  EXPECT_FALSE(t_.table.ReadStrings(0, &t_.directory));
  EXPECT_EQ("old^", Store(t_.Part(0)));
}

TEST_F(TabelleBlocks, NumbersThatCannotBeTrueAllocateNothing) {
  Put(kFile);
  FaultGuard faults;
  Describe(2, 1, 17, 0x7FFFFFFF);
  t_.Part(0).row_block_size = 0x7FFFFFFF;
  EXPECT_FALSE(t_.table.ReadTabelle(0, &t_.directory));
  EXPECT_FALSE(t_.table.ReadStrings(0, &t_.directory));
  for (std::int32_t const offset : {-1, 0x7FFFFFFF}) {
    Describe(2, offset, offset, 5);
    EXPECT_FALSE(t_.table.ReadTabelle(0, &t_.directory));
    EXPECT_FALSE(t_.table.ReadStrings(0, &t_.directory));
  }
  Describe(2, 1, 17, -1);
  t_.Part(0).row_block_size = -1;
  EXPECT_FALSE(t_.table.ReadTabelle(0, &t_.directory));
  EXPECT_FALSE(t_.table.ReadStrings(0, &t_.directory));
  EXPECT_EQ(0, faults.Count(tabwerk::test::kMemoryCalls));
}

TEST_F(TabelleBlocks, DamagedPartIsNotRead) {
  Put(kFile);
  Describe(2, 1, 17, 5);
  t_.Part(0).damaged = true;
  t_.Part(0).loaded = true;
  EXPECT_FALSE(t_.table.ReadTabelle(0, &t_.directory));
  EXPECT_FALSE(t_.table.ReadStrings(0, &t_.directory));
  EXPECT_FALSE(t_.entry->GetPartLoaded(0));
  long end = -1;
  EXPECT_FALSE(WriteTabelle(0, &end));
  EXPECT_FALSE(WriteStrings(0, &end));
  EXPECT_EQ(-1, end);
}

TEST_F(TabelleBlocks, ReadFailuresLeaveZeroRowsOrTheOldTexts) {
  t_.AddRows(0, {"7|old"});
  Put(kFile);
  for (std::int64_t n = 1;; ++n) {
    Describe(2, 1, 17, 5);
    FaultGuard faults;
    faults.FailAt(n);
    bool const rows = t_.table.ReadTabelle(0, &t_.directory);
    bool const strings = t_.table.ReadStrings(0, &t_.directory);
    if (!faults.Fired()) break;
    EXPECT_FALSE(rows && strings) << n;
    EXPECT_EQ(rows, t_.entry->GetPartLoaded(0)) << n;
    if (!strings) {
      EXPECT_EQ("old^", Store(t_.Part(0))) << n;
    } else {
      EXPECT_NE("[1|A][2|B\xC3\xA9]", Rows(*t_.entry, 0)) << n;
    }
    ASSERT_TRUE(t_.Part(0).strings->CopyFrom(DBStringMemory()));
    ASSERT_TRUE(t_.Part(0).strings->Append(u"old"));
  }
  EXPECT_EQ("[1|A][2|B\xC3\xA9]", Rows(*t_.entry, 0));
}

TEST_F(TabelleBlocks, TextsAreWrittenOneByOneWithTheirPlaces) {
  t_.AddRows(0, {"1|a", "2|"});
  long end = -1;
  EXPECT_TRUE(WriteStrings(0, &end));
  EXPECT_EQ(6, end);
  EXPECT_EQ("610000000000", Hex(Content()));
  EXPECT_EQ(0, LoadValue<std::int32_t>(t_.Part(0).rows.data() + 4));
  EXPECT_EQ(2, LoadValue<std::int32_t>(t_.Part(0).rows.data() + 12));
}

TEST_F(TabelleBlocks, WritingCompactsTheStoreAndSeparatesSharedTexts) {
  t_.AddRows(0, {"1|unused", "2|b", "3|c"});
  StoreValue(t_.Part(0).rows.data() + 4, std::int32_t{7});
  long end = -1;
  EXPECT_TRUE(WriteStrings(2, &end));
  EXPECT_EQ(14, end);
  EXPECT_EQ(
      "00006200000062000000"
      "63000000",
      Hex(Content()));
  // The store stays, so the texts read wrong until they are read again.
  EXPECT_EQ("unused^b^c^", Store(t_.Part(0)));
  EXPECT_EQ("[1|unused][2|used][3|ed]", Rows(*t_.entry, 0));
}

TEST_F(TabelleBlocks, RowsAreWrittenAsTheyLieInMemory) {
  t_.AddRows(0, {"1|A", "2|B"});
  long end = -1;
  EXPECT_TRUE(WriteTabelle(1, &end));
  EXPECT_EQ(17, end);
  EXPECT_EQ(
      "00"
      "0100000000000000"
      "0200000002000000",
      Hex(Content()));
}

TEST_F(TabelleBlocks, WrittenBlocksReadBack) {
  t_.AddRows(0, {"1|A", "2|", "3|#TS(x\xC2\xACy)TS~"});
  std::string const before = Rows(*t_.entry, 0);
  long strings_end = 0;
  long rows_end = 0;
  EXPECT_TRUE(WriteStrings(10, &strings_end));
  EXPECT_TRUE(WriteTabelle(strings_end, &rows_end));
  ASSERT_TRUE(platform::Flush(file_));
  Describe(3, static_cast<std::int32_t>(strings_end), 10,
           static_cast<std::int32_t>((strings_end - 10) / 2));
  EXPECT_TRUE(t_.table.ReadTabelle(0, &t_.directory));
  EXPECT_TRUE(t_.table.ReadStrings(0, &t_.directory));
  EXPECT_EQ(before, Rows(*t_.entry, 0));
}

TEST_F(TabelleBlocks, LoneSurrogatesAreWrittenAsTheyAre) {
  t_.AddRows(0, {"1|abc"});
  char16_t const text[] = {0xDC00, 0xFFFF, 0xD800, 0};
  t_.Part(0).strings->Overwrite(0, text);
  long end = 0;
  EXPECT_TRUE(WriteStrings(0, &end));
  EXPECT_EQ("00dcffff00d80000", Hex(Content()));
}

TEST_F(TabelleBlocks, MoreTextsThanOneBufferHolds) {
  std::string expected;
  for (int row = 0; row < 60; ++row) {
    std::string const text(static_cast<std::size_t>(row) * 137,
                           static_cast<char>('a' + row % 26));
    t_.AddRow(0, "1|" + text);
    expected += "[1|" + text + "]";
  }
  long end = 0;
  EXPECT_TRUE(WriteStrings(0, &end));
  EXPECT_EQ(2 * 60 + 2 * 137 * (59 * 60 / 2), end);
  Describe(60, 0, 0, static_cast<std::int32_t>(end / 2));
  EXPECT_TRUE(t_.table.ReadStrings(0, &t_.directory));
  EXPECT_EQ(expected, Rows(*t_.entry, 0));
}

TEST_F(TabelleBlocks, TextsThatEndWhereTheBufferEnds) {
  // Texts are handed on in pieces of 32,768 units.
  for (std::size_t length = 4085; length < 4100; ++length) {
    TestTable t("string NAME\n");
    for (int row = 0; row < 7; ++row) t.AddRow(0, std::string(4095, 'x'));
    t.AddRows(0, {std::string(length, 'y'), "z"});
    std::string const before = Rows(*t.entry);
    long end = 0;
    EXPECT_TRUE(t.table.WriteStrings(file_, 0, end, false, zWString(u"part0")));
    EXPECT_EQ(2 * (7 * 4096 + static_cast<long>(length) + 1 + 2), end);
    ASSERT_TRUE(platform::Flush(file_));
    Describe(0, 0, 0, static_cast<std::int32_t>(end / 2));
    EXPECT_TRUE(t_.table.ReadStrings(0, &t_.directory));
    ASSERT_TRUE(t.Part(0).strings->CopyFrom(*t_.Part(0).strings));
    EXPECT_EQ(before, Rows(*t.entry)) << length;
  }
}

TEST_F(TabelleBlocks, PartWithoutRowsWritesNothing) {
  long end = -1;
  EXPECT_TRUE(WriteStrings(4, &end));
  EXPECT_EQ(4, end);
  EXPECT_TRUE(WriteTabelle(6, &end));
  EXPECT_EQ(6, end);
  EXPECT_EQ("", Content());
}

TEST_F(TabelleBlocks, FirstPartOfThatFileIsWritten) {
  t_.AddRows(1, {"9|Z"});
  long end = -1;
  EXPECT_TRUE(t_.table.WriteStrings(file_, 0, end, true, zWString(u"part1")));
  EXPECT_EQ(4, end);
  EXPECT_TRUE(t_.table.WriteTabelle(file_, 4, end, true, zWString(u"part1")));
  EXPECT_EQ(
      "5a000000"
      "0900000000000000",
      Hex(Content()));
}

TEST_F(TabelleBlocks, UnknownFileOrNoStreamFails) {
  t_.AddRows(0, {"1|A"});
  long end = -1;
  zWString const other(u"other");
  zWString const part0(u"part0");
  EXPECT_FALSE(t_.table.WriteStrings(file_, 0, end, false, other));
  EXPECT_FALSE(t_.table.WriteTabelle(file_, 0, end, false, other));
  EXPECT_FALSE(t_.table.WriteStrings(nullptr, 0, end, false, part0));
  EXPECT_FALSE(t_.table.WriteTabelle(nullptr, 0, end, false, part0));
  EXPECT_FALSE(WriteStrings(-1, &end));
  EXPECT_FALSE(WriteTabelle(-1, &end));
  EXPECT_EQ(-1, end);
}

TEST_F(TabelleBlocks, RowsThatAreNotInMemoryAreNotWritten) {
  t_.AddRows(0, {"1|A"});
  t_.Part(0).row_count = 2;
  long end = -1;
  EXPECT_FALSE(WriteStrings(0, &end));
  EXPECT_FALSE(WriteTabelle(0, &end));
}

TEST_F(TabelleBlocks, TextOutsideTheStoreFailsAndChangesNothing) {
  t_.AddRows(0, {"1|A", "2|B"});
  StoreValue(t_.Part(0).rows.data() + 12, std::int32_t{5});
  long end = -1;
  EXPECT_FALSE(WriteStrings(2, &end));
  EXPECT_EQ("[1|A][2|?]", Rows(*t_.entry, 0));
  EXPECT_EQ(-1, end);
}

TEST_F(TabelleBlocks, WriteTextsLeavesTheTableAsItIs) {
  t_.AddRows(0, {"1|unused", "2|b"});
  StoreValue(t_.Part(0).rows.data() + 4, std::int32_t{7});
  platform::Block rows;
  EXPECT_TRUE(TableAccess::WriteTexts(t_.table, 0, file_, &rows));
  EXPECT_EQ("[1|b][2|b]", Rows(*t_.entry, 0));
  ASSERT_EQ(16U, rows.size());
  EXPECT_EQ(0, LoadValue<std::int32_t>(rows.data() + 4));
  EXPECT_EQ(2, LoadValue<std::int32_t>(rows.data() + 12));
  EXPECT_FALSE(TableAccess::WriteTexts(t_.table, 2, file_, &rows));
}

TEST_F(TabelleBlocks, FailedCallsWhileWritingChangeNothing) {
  t_.AddRows(0, {"1|unused", "2|b"});
  StoreValue(t_.Part(0).rows.data() + 4, std::int32_t{7});
  for (std::int64_t n = 1;; ++n) {
    FaultGuard faults;
    faults.FailAt(n, tabwerk::test::Lasting::kOnce, tabwerk::test::kAllCalls);
    long end = -1;
    bool const written = WriteStrings(0, &end);
    if (!faults.Fired()) break;
    EXPECT_FALSE(written) << n;
    EXPECT_EQ(-1, end) << n;
    EXPECT_EQ("[1|b][2|b]", Rows(*t_.entry, 0)) << n;
  }
  for (std::int64_t n = 1;; ++n) {
    FaultGuard faults;
    faults.FailAt(n, tabwerk::test::Lasting::kOnce, tabwerk::test::kAllCalls);
    long end = -1;
    bool const written = WriteTabelle(0, &end);
    if (!faults.Fired()) break;
    EXPECT_FALSE(written) << n;
    EXPECT_EQ(-1, end) << n;
  }
}

TEST_F(TabelleBlocks, TextOf8095UnitsIsWritten) {
  t_.AddRow(0, "1|" + std::string(tabwerk::format::kMaxTextUnits, 'x'));
  long end = -1;
  EXPECT_TRUE(WriteStrings(0, &end));
  EXPECT_EQ(2 * 8096, end);
}

#if GTEST_HAS_DEATH_TEST
using TabelleBlocksDeathTest = TabelleBlocks;

TEST_F(TabelleBlocksDeathTest, LongerTextEndsTheProcess) {
  t_.AddRow(0, "1|" + std::string(tabwerk::format::kMaxTextUnits + 1, 'x'));
  long end = -1;
  EXPECT_DEATH(WriteStrings(0, &end), "");
}

TEST_F(TabelleBlocksDeathTest, AlsoWhileTheHostHandlesAnException) {
  t_.AddRow(0, "1|" + std::string(tabwerk::format::kMaxTextUnits + 1, 'x'));
  long end = -1;
  auto const write = [&] {
    try {
      throw std::bad_alloc();
    } catch (std::exception const&) {
      try {
        WriteStrings(0, &end);
      } catch (...) {
      }
    }
  };
  EXPECT_DEATH(write(), "");
}
#endif

}  // namespace
