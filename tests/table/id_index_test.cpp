// The index of IDs, judged by the standard library's ordered map.
#include "table/id_index.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <random>
#include <string>

#include "table/bit_tree.h"
#include "tests/support/new_guard.h"
#include "tests/support/processor_time.h"
#include "tests/support/random_cases.h"

namespace {

using tabwerk::BitTree;
using tabwerk::IdIndex;
using tabwerk::test::JudgeRandomly;
using tabwerk::test::ProcessorTime;

constexpr std::int32_t kSmallestId = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kLargestId = std::numeric_limits<std::int32_t>::max();

using Model = std::map<std::int32_t, std::int32_t>;

std::optional<std::int32_t> LowestFree(Model const& model, std::int32_t from) {
  std::int64_t id = from;
  for (auto entry = model.lower_bound(from);
       entry != model.end() && entry->first == id; ++entry) {
    ++id;
  }
  if (id > kLargestId) return std::nullopt;
  return static_cast<std::int32_t>(id);
}

// IDs as they come in tables: close together, around 20000, or anywhere.
std::int32_t RandomId(std::mt19937& random, int kind) {
  auto const between = [&random](std::int32_t first, std::int32_t last) {
    return std::uniform_int_distribution<std::int32_t>(first, last)(random);
  };
  switch (kind) {
    case 0:
      return between(1, 300);
    case 1:
      return between(0, 1) == 0 ? between(1, 100) : between(20000, 20200);
    case 2:
      return between(kLargestId - 200, kLargestId);
    case 3:
      return between(kSmallestId, kSmallestId + 200);
    case 4:
      return between(-3000, 3000);
    default:
      return between(0, 9) == 0 ? between(kSmallestId, kLargestId)
                                : between(0, 50) * 1'000'003;
  }
}

void ExpectSame(Model const& model, IdIndex const& index) {
  ASSERT_EQ(model.size(), index.size());
  std::vector<IdIndex::Entry> const expected(model.begin(), model.end());
  ASSERT_EQ(expected, index.Entries());
  if (!model.empty()) {
    ASSERT_EQ(model.rbegin()->first, index.LargestId());
  }
  for (std::int32_t const from : {0, 20000, kLargestId - 100, kSmallestId}) {
    ASSERT_EQ(LowestFree(model, from), index.LowestFreeId(from));
  }
}

constexpr int kSteps = 3000;

void RunRandomly(std::uint32_t seed) {
  std::mt19937 random(seed);
  Model model;
  IdIndex index;
  int kind = 0;
  for (int step = 0; step < kSteps; ++step) {
    if (step % 250 == 0) kind = static_cast<int>(random() % 6);
    std::int32_t const id = RandomId(random, kind);
    auto const action = random() % (step % 1000 < 600 ? 8U : 3U);
    if (action == 0 || action == 2) {
      model.erase(id);
      index.Erase(id);
    } else {
      auto const row = static_cast<std::int32_t>(random()) >> (random() % 32);
      model[id] = row;
      index.Set(id, row);
    }
    auto const known = model.find(id);
    ASSERT_EQ(
        known == model.end() ? std::nullopt : std::optional(known->second),
        index.Find(id));
    if (step % 100 == 0) ExpectSame(model, index);
  }
  IdIndex const copy(index);
  index.Clear();
  ExpectSame(Model(), index);
  ExpectSame(model, copy);
}

TEST(IdIndex, EqualsAnOrderedMapOnRandomOperations) {
  JudgeRandomly(60 * kSteps, kSteps, RunRandomly);
}

TEST(IdIndex, RowsOfAnyNumberArePresent) {
  for (std::int32_t const distance : {1, 100'000'000}) {
    IdIndex index;
    index.Set(7, -1);
    index.Set(7 + distance, kSmallestId);
    EXPECT_EQ(-1, index.Find(7));
    EXPECT_EQ(kSmallestId, index.Find(7 + distance));
    EXPECT_EQ(std::nullopt, index.Find(8 + distance));
  }
}

TEST(IdIndex, FreeIdFollowsAnArrayWithoutGaps) {
  for (std::int32_t const first : {20'000, kLargestId - 3, kLargestId - 2}) {
    IdIndex index;
    index.Reserve(3, first, first + 2);
    for (std::int32_t i = 0; i < 3; ++i) index.Set(first + i, i);
    auto const behind = first + 2 == kLargestId
                            ? std::nullopt
                            : std::optional<std::int32_t>(first + 3);
    EXPECT_EQ(behind, index.LowestFreeId(first)) << first;
  }
}

TEST(IdIndex, SmallestAndLargestIdAreIdsLikeOthers) {
  IdIndex index;
  index.Set(kSmallestId, 1);
  index.Set(kLargestId, 2);
  index.Set(0, 3);
  EXPECT_EQ(1, index.Find(kSmallestId));
  EXPECT_EQ(kLargestId, index.LargestId());
  EXPECT_EQ(std::nullopt, index.LowestFreeId(kLargestId));
  index.Erase(kSmallestId);
  index.Erase(kLargestId);
  EXPECT_EQ(0, index.LargestId());
  EXPECT_EQ(1u, index.size());
}

IdIndex WithIds(std::int32_t first, std::int32_t end) {
  IdIndex index;
  for (std::int32_t id = first; id < end; ++id) index.Set(id, id);
  return index;
}

Model ModelOf(IdIndex const& index) {
  auto const entries = index.Entries();
  return Model(entries.begin(), entries.end());
}

TEST(IdIndex, StaysRightWhenMostIdsGo) {
  for (std::int32_t const step : {1, 1000}) {
    // What stays lies close together or far apart.
    IdIndex index = WithIds(0, 50'000);
    Model model = ModelOf(index);
    for (std::int32_t id = 0; id < 50'000; ++id) {
      if (step == 1 ? id >= 49'950 : id % step == 0) continue;
      index.Erase(id);
      model.erase(id);
    }
    ExpectSame(model, index);
    index.Set(50'001, 7);
    model[50'001] = 7;
    ExpectSame(model, index);
  }
}

TEST(IdIndex, StaysRightWhenItsOnlyIdGoes) {
  IdIndex index;
  index.Reserve(10'000, 1, 30'000);
  index.Set(5, 1);
  index.Erase(5);
  ExpectSame(Model(), index);
  index.Set(-7, 2);
  ExpectSame(Model{{-7, 2}}, index);
}

TEST(IdIndex, StaysRightWhenScatteredIdsBecomeDense) {
  IdIndex index;
  index.Set(kLargestId, 1);
  index.Set(0, 0);
  Model model = {{0, 0}, {kLargestId, 1}};
  ExpectSame(model, index);
  index.Erase(kLargestId);
  model.erase(kLargestId);
  for (std::int32_t id = 1; id < 20'000; ++id) {
    index.Set(id, id);
    model[id] = id;
  }
  ExpectSame(model, index);
}

TEST(IdIndex, StaysRightWhenRoomIsMadeForScatteredIds) {
  IdIndex index;
  index.Set(kLargestId, 1);
  index.Set(0, 0);
  for (std::size_t const count : {10'000u, 1u}) {
    index.Reserve(count);
    ExpectSame(Model{{0, 0}, {kLargestId, 1}}, index);
  }
}

// The array answers without asking for memory, the hash does not.
TEST(IdIndex, ExpectedIdsAreNotTakenForScattered) {
  for (bool const expected : {false, true}) {
    IdIndex index;
    if (expected) index.Reserve(1000);
    index.Set(0, 1);
    index.Set(4000, 2);
    auto const before = tabwerk::test::CountNews();
    auto const largest = index.LargestId();
    EXPECT_EQ(expected, before == tabwerk::test::CountNews());
    EXPECT_EQ(4000, largest);
  }
}

TEST(IdIndex, FreeIdBehindAFullArray) {
  for (std::int32_t const first : {0, kLargestId - 99}) {
    IdIndex index;
    index.Reserve(100, first, first + 99);
    for (std::int32_t i = 0; i < 100; ++i) index.Set(first + i, i);
    ExpectSame(ModelOf(index), index);
    EXPECT_EQ(first == 0 ? std::optional(100) : std::nullopt,
              index.LowestFreeId(first));
  }
}

TEST(IdIndex, CopiesAreIndependent) {
  IdIndex const index = WithIds(1, 4);
  IdIndex copy = WithIds(7, 9);
  copy = index;
  copy.Erase(2);
  EXPECT_EQ(2u, copy.size());
  EXPECT_EQ(2, index.Find(2));
}

// Runs work with every request for memory failing; what it gives.
auto WithoutMemory(auto const& work) {
  tabwerk::test::NewGuard guard(1);
  auto const result = work();
  guard.Disarm();
  return result;
}

TEST(IdIndex, AnswersWithoutMemory) {
  IdIndex index;
  for (std::int32_t i = 1; i <= 100; ++i) index.Set(i * 1'000'000, i);
  EXPECT_EQ(100'000'000, WithoutMemory([&] { return index.LargestId(); }));
  EXPECT_EQ(1'000'001,
            WithoutMemory([&] { return index.LowestFreeId(1'000'000); }));
  index.Set(kLargestId, 0);
  EXPECT_EQ(std::nullopt,
            WithoutMemory([&] { return index.LowestFreeId(kLargestId); }));
}

TEST(IdIndex, ShrinksWithoutMemoryOrNot) {
  IdIndex index = WithIds(0, 50'000);
  EXPECT_TRUE(WithoutMemory([&] {
    for (std::int32_t id = 0; id < 49'000; ++id) index.Erase(id);
    return true;
  }));
  EXPECT_EQ(1000u, index.size());
  EXPECT_EQ(49'000, index.Find(49'000));
  EXPECT_EQ(std::nullopt, index.Find(48'999));
}

double Seconds(auto const& work) {
  ProcessorTime const time;
  work();
  return time.Seconds();
}

// Far above what linear work needs, far below what quadratic work does.
constexpr double kEnoughSeconds = 5;

TEST(IdIndex, NewLargestIdThatGoesAgainIsFoundQuickly) {
  for (std::int32_t const distance : {1, 4000}) {
    IdIndex index;
    EXPECT_GT(kEnoughSeconds, Seconds([&] {
                for (std::int32_t i = 0; i < 200'000; ++i) {
                  index.Set(20'000 + i * distance, i);
                  std::int32_t const largest = index.LargestId();
                  index.Set(largest + 1, i);
                  index.Erase(largest + 1);
                }
              }));
    EXPECT_EQ(200'000u, index.size());
  }
}

TEST(IdIndex, FreeIdsAtTheEndOfTheRangeAreFoundQuickly) {
  for (std::int32_t const first : {0, -1'000'000'000}) {
    IdIndex index;
    index.Set(first, 0);
    index.Set(kLargestId, 0);
    EXPECT_GT(kEnoughSeconds, Seconds([&] {
                for (std::int32_t i = 0; i < 200'000; ++i) {
                  std::int32_t const id = index.LowestFreeId(20'000).value();
                  ASSERT_EQ(20'000 + i, id);
                  index.Set(id, i);
                }
              }));
  }
}

TEST(IdIndex, ScatteredIdsAreFoundQuickly) {
  IdIndex index;
  EXPECT_GT(kEnoughSeconds, Seconds([&] {
              std::uint32_t id = 1;
              for (std::int32_t i = 0; i < 500'000; ++i) {
                id = id * 2654435761U + 12345U;
                index.Set(static_cast<std::int32_t>(id), i);
              }
              for (std::int32_t i = 0; i < 500'000; ++i) {
                index.Set(i << 12, i);
              }
            }));
}

TEST(IdIndex, FarIdThatComesAndGoesDoesNotRebuildEachTime) {
  IdIndex index;
  for (std::int32_t i = 0; i < 200'000; ++i) index.Set(i, i);
  EXPECT_GT(kEnoughSeconds, Seconds([&] {
              for (std::int32_t i = 0; i < 200'000; ++i) {
                index.Set(kLargestId, 0);
                index.Erase(kLargestId);
                index.Set(200'000 + i % 2, 0);
                if (i % 2 == 1) index.Erase(200'001);
              }
            }));
}

TEST(BitTree, FindsTheEndsAndTheGaps) {
  for (std::size_t const size : {1u, 63u, 64u, 65u, 4096u, 4097u, 300'000u}) {
    BitTree tree(size);
    for (std::size_t i = 0; i < size; ++i) tree.Insert(i);
    EXPECT_EQ(std::nullopt, tree.LowestMissing(0)) << size;
    EXPECT_EQ(size - 1, tree.Largest());
    tree.Remove(size - 1);
    EXPECT_EQ(size - 1, tree.LowestMissing(0));
    tree.Remove(size / 2);
    EXPECT_EQ(size / 2, tree.LowestMissing(size / 3));
    tree.Insert(size - 1);
    EXPECT_EQ(std::nullopt, tree.LowestMissing(size / 2 + 1));
    EXPECT_EQ(std::nullopt, tree.LowestMissing(size - 1));
    EXPECT_EQ(std::nullopt, tree.LowestMissing(size));
  }
}

// The same set, made number by number.
BitTree PlainShifted(BitTree const& tree, std::int64_t less, std::size_t size) {
  BitTree shifted(size);
  for (std::size_t i = 0; i < tree.size(); ++i) {
    if (!tree.Has(i)) continue;
    shifted.Insert(
        static_cast<std::size_t>(static_cast<std::int64_t>(i) - less));
  }
  return shifted;
}

TEST(BitTree, ShiftsRandomNumbersAsIfEachWereInsertedAnew) {
  JudgeRandomly(1000, [](std::uint32_t seed) {
    std::mt19937 random(seed);
    std::size_t const size = 1 + random() % (random() % 10 == 0 ? 9000 : 300);
    std::size_t const lowest = random() % size;
    BitTree tree(size);
    bool const dense = random() % 2 == 0;
    for (auto i = lowest; i < size; ++i) {
      if (dense || random() % 50 == 0) tree.Insert(i);
    }
    tree.Insert(lowest);
    auto const less = static_cast<std::int64_t>(lowest) -
                      static_cast<std::int64_t>(random() % 200);
    auto const moved_size = static_cast<std::size_t>(
        static_cast<std::int64_t>(size + random() % 200) - less);
    auto const expected = PlainShifted(tree, less, moved_size);
    auto const moved = tree.Shifted(less, moved_size);
    ASSERT_EQ(expected.size(), moved.size());
    ASSERT_EQ(expected.Smallest(), moved.Smallest());
    ASSERT_EQ(expected.Largest(), moved.Largest());
    for (std::size_t i = 0; i < moved_size; ++i) {
      ASSERT_EQ(expected.Has(i), moved.Has(i));
      ASSERT_EQ(expected.LowestMissing(i), moved.LowestMissing(i));
    }
  });
}

}  // namespace
