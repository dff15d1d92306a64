// Values of a record that the caller provides.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "DBDefinition.h"
#include "DBZeile.h"
#include "schema/bytes.h"

namespace {

class Zeile : public testing::Test {
 protected:
  Zeile() {
    field_.type = DBTypeInteger;
    zeile_.SetMemory(record_.data());
    zeile_.SelectField(&field_, 4);
  }

  std::array<std::byte, 16> record_{};
  DBFeld field_;
  DBZeile zeile_;
};

TEST_F(Zeile, IntegerLiesAtItsOffsetInLittleEndianOrder) {
  EXPECT_EQ(1, zeile_.SetWert(0x01020304L));
  EXPECT_EQ(std::byte{0}, record_[3]);
  EXPECT_EQ(std::byte{4}, record_[4]);
  EXPECT_EQ(std::byte{1}, record_[7]);
  EXPECT_EQ(std::byte{0}, record_[8]);
  long value = 0;
  EXPECT_EQ(1, zeile_.GetWert(value));
  EXPECT_EQ(0x01020304L, value);
}

TEST_F(Zeile, RealTakesEightBytes) {
  field_.type = DBTypeReal;
  EXPECT_EQ(1, zeile_.SetWert(-1.5));
  EXPECT_EQ(-1.5, tabwerk::LoadValue<double>(record_.data() + 4));
  double value = 0;
  EXPECT_EQ(1, zeile_.GetWert(value));
  EXPECT_EQ(-1.5, value);
}

TEST_F(Zeile, OtherTypeFailsAndChangesNothing) {
  double real = 7.0;
  EXPECT_EQ(0, zeile_.GetWert(real));
  EXPECT_EQ(7.0, real);
  EXPECT_EQ(0, zeile_.SetWert(1.0));
  field_.type = DBTypeString;
  long integer = 7;
  EXPECT_EQ(0, zeile_.GetWert(integer));
  EXPECT_EQ(7, integer);
  EXPECT_EQ(0, zeile_.SetWert(1L));
  EXPECT_EQ((std::array<std::byte, 16>{}), record_);
}

TEST_F(Zeile, FreshOneHasNothing) {
  DBZeile fresh;
  long integer = 7;
  double real = 7.0;
  EXPECT_EQ(nullptr, fresh.GetField());
  EXPECT_EQ(nullptr, fresh.GetMemory(4));
  EXPECT_EQ(DBTypeUnknown, fresh.GetType());
  EXPECT_EQ(0, fresh.GetWert(integer));
  EXPECT_EQ(0, fresh.GetWert(real));
  EXPECT_EQ(0, fresh.SetWert(1L));
  EXPECT_EQ(0, fresh.SetWert(1.0));
}

TEST_F(Zeile, WithoutRecordFails) {
  zeile_.SetMemory(nullptr);
  EXPECT_EQ(0, zeile_.SetWert(1L));
}

TEST_F(Zeile, WithoutFieldFails) {
  zeile_.SelectField(nullptr, 4);
  EXPECT_EQ(0, zeile_.SetWert(1L));
}

TEST_F(Zeile, NegativeOffsetFails) {
  zeile_.SelectField(&field_, -4);
  EXPECT_EQ(0, zeile_.SetWert(1L));
}

TEST_F(Zeile, OffsetBeyond32BitsFails) {
  if (sizeof(long) == 4) {
    GTEST_SKIP() << "no offset here is that large";
  }
  auto const beyond = std::int64_t{1} << 32;
  zeile_.SelectField(&field_, static_cast<long>(beyond));
  EXPECT_EQ(0, zeile_.SetWert(1L));
  zeile_.SelectField(&field_, static_cast<long>(-beyond));
  EXPECT_EQ(0, zeile_.SetWert(1L));
  EXPECT_EQ((std::array<std::byte, 16>{}), record_);
}

TEST_F(Zeile, GetMemoryCountsBytesFromTheRecordsStart) {
  EXPECT_EQ(record_.data() + 5, zeile_.GetMemory(5));
  EXPECT_EQ(&field_, zeile_.GetField());
  EXPECT_EQ(DBTypeInteger, zeile_.GetType());
}

TEST_F(Zeile, CopiesReferToTheSameRecord) {
  DBZeile copy(zeile_);
  DBZeile assigned;
  assigned = zeile_;
  EXPECT_EQ(1, copy.SetWert(5L));
  long value = 0;
  EXPECT_EQ(1, assigned.GetWert(value));
  EXPECT_EQ(5, value);
}

TEST_F(Zeile, TheWholeRangeOf32BitsFits) {
  long value = 0;
  EXPECT_EQ(1, zeile_.SetWert(long{std::numeric_limits<std::int32_t>::min()}));
  EXPECT_EQ(1, zeile_.GetWert(value));
  EXPECT_EQ(long{std::numeric_limits<std::int32_t>::min()}, value);
  EXPECT_EQ(1, zeile_.SetWert(long{std::numeric_limits<std::int32_t>::max()}));
  EXPECT_EQ(1, zeile_.GetWert(value));
  EXPECT_EQ(long{std::numeric_limits<std::int32_t>::max()}, value);
}

TEST_F(Zeile, ValueBeyond32BitsIsNotStored) {
  if (sizeof(long) == 4) GTEST_SKIP() << "no long value is that large here";
  EXPECT_EQ(1, zeile_.SetWert(5L));
  EXPECT_EQ(0, zeile_.SetWert(std::numeric_limits<long>::max()));
  EXPECT_EQ(0, zeile_.SetWert(std::numeric_limits<long>::min()));
  EXPECT_EQ(5, tabwerk::LoadValue<std::int32_t>(record_.data() + 4));
}

}  // namespace
