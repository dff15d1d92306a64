// Memory blocks that grow.
#include "platform/block.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <utility>

#include "platform/guarded.h"
#include "platform/platform.h"
#include "tests/support/fault_platform.h"
#include "tests/support/processor_time.h"

namespace tabwerk::test {
namespace {

using platform::Block;

// From here on Linux gives a block a mapping of its own.
constexpr std::size_t kMany = std::size_t{16} << 20U;

class MemoryBlock : public testing::Test {
 protected:
  ~MemoryBlock() override { EXPECT_EQ(0, LiveBlocks()); }

  static bool IsAll(Block const& block, std::size_t from, std::byte value) {
    return std::all_of(block.data() + from, block.data() + block.size(),
                       [value](std::byte byte) { return byte == value; });
  }
};

TEST_F(MemoryBlock, StartsEmpty) {
  Block const block;
  EXPECT_EQ(0u, block.size());
  EXPECT_EQ(nullptr, block.data());
}

TEST_F(MemoryBlock, ResetGivesZeroBytes) {
  Block block;
  ASSERT_TRUE(block.Resize(10));
  std::fill_n(block.data(), 10, std::byte{7});
  ASSERT_TRUE(block.Reset(100));
  EXPECT_EQ(100u, block.size());
  EXPECT_TRUE(IsAll(block, 0, std::byte{0}));
}

TEST_F(MemoryBlock, ResetToNothingFrees) {
  Block block;
  ASSERT_TRUE(block.Reset(100));
  ASSERT_TRUE(block.Reset(0));
  EXPECT_EQ(0u, block.size());
  EXPECT_EQ(0, LiveBlocks());
}

TEST_F(MemoryBlock, NewBytesAreZeroAndOldOnesStay) {
  Block block;
  ASSERT_TRUE(block.Resize(1000));
  std::fill_n(block.data(), 1000, std::byte{7});
  ASSERT_TRUE(block.Resize(1));
  EXPECT_EQ(std::byte{7}, block.data()[0]);
  ASSERT_TRUE(block.Resize(1001));
  EXPECT_EQ(std::byte{7}, block.data()[0]);
  EXPECT_TRUE(IsAll(block, 1, std::byte{0}));
}

TEST_F(MemoryBlock, UnsetBytesComeBehindTheOldOnes) {
  Block block;
  ASSERT_TRUE(block.Resize(1000));
  std::fill_n(block.data(), 1000, std::byte{7});
  ASSERT_TRUE(block.ResizeUnset(1'000'000));
  EXPECT_EQ(1'000'000u, block.size());
  std::fill_n(block.data() + 1000, 999'000, std::byte{7});
  EXPECT_TRUE(IsAll(block, 0, std::byte{7}));
  ASSERT_TRUE(block.ResizeUnset(2));
  ASSERT_TRUE(block.Resize(1000));
  EXPECT_TRUE(IsAll(block, 2, std::byte{0}));
}

TEST_F(MemoryBlock, RecordsExactSizes) {
  Block block;
  for (std::size_t size = 12; size <= 12'000; size += 12) {
    ASSERT_TRUE(block.Resize(size));
    ASSERT_EQ(size, block.size());
  }
}

TEST_F(MemoryBlock, AlternatingAppendsAreFast) {
  FaultGuard const counts;
  Block rows;
  Block strings;
  ProcessorTime const time;
  for (int round = 0; round < 200'000; ++round) {
    ASSERT_TRUE(rows.Resize(rows.size() + 12));
    ASSERT_TRUE(strings.Resize(strings.size() + 10));
  }
  double const seconds = time.Seconds();
  EXPECT_EQ(2'400'000u, rows.size());
  EXPECT_EQ(2'000'000u, strings.size());
  EXPECT_GT(1.0, seconds);
  EXPECT_GT(400, counts.Count(kMemoryCalls));
}

TEST_F(MemoryBlock, FailureLeavesItAsItWas) {
  Block block;
  ASSERT_TRUE(block.Resize(3));
  std::fill_n(block.data(), 3, std::byte{7});
  FaultGuard faults;
  faults.FailAt(1, Lasting::kForGood, kMemoryCalls);
  EXPECT_FALSE(block.Resize(4));
  EXPECT_FALSE(block.Reset(4));
  EXPECT_EQ(3u, block.size());
  EXPECT_TRUE(IsAll(block, 0, std::byte{7}));
}

TEST_F(MemoryBlock, GrowsExactlyWhereTheReserveDoesNotFit) {
  Block block;
  ASSERT_TRUE(block.Resize(1000));
  FaultGuard faults;
  faults.FailAt(1, Lasting::kOnce, kMemoryCalls);
  EXPECT_TRUE(block.Resize(1001));
  EXPECT_TRUE(faults.Fired());
  EXPECT_EQ(2, faults.Count(kMemoryCalls));
  EXPECT_EQ(1001u, block.size());
}

TEST_F(MemoryBlock, WithoutAReserveItAsksOnce) {
  Block block;
  FaultGuard faults;
  faults.FailAt(1, Lasting::kForGood, kMemoryCalls);
  EXPECT_FALSE(block.Resize(10));
  EXPECT_EQ(1, faults.Count(kMemoryCalls));
}

TEST_F(MemoryBlock, MovingHandsTheBytesOver) {
  Block first;
  ASSERT_TRUE(first.Reset(5));
  std::byte const* const bytes = first.data();
  Block second = std::move(first);
  EXPECT_EQ(bytes, second.data());
  Block third;
  ASSERT_TRUE(third.Reset(9));
  third = std::move(second);
  EXPECT_EQ(bytes, third.data());
  EXPECT_EQ(5u, third.size());
  EXPECT_EQ(1, LiveBlocks());
}

TEST_F(MemoryBlock, MovedOntoItselfItStays) {
  Block block;
  ASSERT_TRUE(block.Reset(5));
  Block& same = block;
  block = std::move(same);
  EXPECT_EQ(5u, block.size());
}

TEST_F(MemoryBlock, OfNothingIsOneByteOfTheSystems) {
  void* block = platform::os::Allocate(0);
  ASSERT_NE(nullptr, block);
  block = platform::os::Reallocate(block, 0);
  EXPECT_NE(nullptr, block);
  platform::os::Free(block);
}

TEST_F(MemoryBlock, OfManyBytesCanBeWrittenFromFirstToLast) {
  for (std::size_t const size :
       {kMany - 1, kMany, kMany + 1, 2 * kMany + 4097}) {
    auto* const bytes = static_cast<char*>(platform::os::Allocate(size));
    ASSERT_NE(nullptr, bytes);
    bytes[0] = 'a';
    bytes[size - 1] = 'z';
    EXPECT_EQ('a', bytes[0]);
    EXPECT_EQ('z', bytes[size - 1]);
    platform::os::Free(bytes);
  }
}

// Beside others that grow as well, so that they are in each other's way.
TEST_F(MemoryBlock, OfManyBytesKeepsThemAsItGrows) {
  std::array<Block, 3> blocks;
  ASSERT_TRUE(blocks[0].Reset(kMany));
  ASSERT_TRUE(blocks[1].Reset(kMany));
  ASSERT_TRUE(blocks[2].Reset(1));  // stays one of the heap
  for (std::size_t size = kMany; size < 4 * kMany; size += kMany / 4) {
    for (Block& block : blocks) {
      ASSERT_TRUE(block.Resize(size));
      block.data()[size - 1] = std::byte{7};
    }
  }
  for (Block const& block : blocks) {
    for (std::size_t size = kMany; size < 4 * kMany; size += kMany / 4) {
      ASSERT_EQ(std::byte{7}, block.data()[size - 1]);
      ASSERT_EQ(std::byte{0}, block.data()[size - 2]);
      ASSERT_EQ(std::byte{0}, block.data()[size - kMany / 8]);
    }
  }
}

TEST_F(MemoryBlock, OfManyBytesBecomesOneOfFew) {
  auto* bytes = static_cast<char*>(platform::os::Allocate(kMany));
  ASSERT_NE(nullptr, bytes);
  bytes[0] = 'a';
  bytes[99] = 'z';
  bytes = static_cast<char*>(platform::os::Reallocate(bytes, 100));
  ASSERT_NE(nullptr, bytes);
  EXPECT_EQ('a', bytes[0]);
  EXPECT_EQ('z', bytes[99]);
  platform::os::Free(bytes);
}

TEST_F(MemoryBlock, OfMoreBytesThanThereAreIsRefused) {
  auto* const bytes = static_cast<char*>(platform::os::Allocate(kMany));
  ASSERT_NE(nullptr, bytes);
  bytes[kMany - 1] = 'z';
  constexpr std::size_t kAll = ~std::size_t{0};
  for (std::size_t const size : {kAll, kAll - kMany, kAll / 2}) {
    EXPECT_EQ(nullptr, platform::os::Allocate(size));
    EXPECT_EQ(nullptr, platform::os::Reallocate(bytes, size));
  }
  EXPECT_EQ('z', bytes[kMany - 1]);
  platform::os::Free(bytes);
}

TEST(Guarded, ExhaustedMemoryIsAFailure) {
  EXPECT_EQ(7, Guarded(0, [] { return 7; }));
  EXPECT_EQ(-1, Guarded(-1, []() -> int { throw std::bad_alloc(); }));
  EXPECT_EQ(-1, Guarded(-1, []() -> int { throw std::length_error(""); }));
}

TEST(Guarded, OtherExceptionsPass) {
  EXPECT_THROW(Guarded(-1, []() -> int { throw 7; }), int);
}

}  // namespace
}  // namespace tabwerk::test
