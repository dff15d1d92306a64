// The searches judged by their plain forms on random tables.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/support/plain_table_search.h"
#include "tests/support/random_cases.h"
#include "tests/support/random_table.h"
#include "tests/support/table_state.h"

namespace {

namespace plain = tabwerk::test::plain;
using tabwerk::test::JudgeRandomly;
using tabwerk::test::Random;
using tabwerk::test::RandomTable;
using tabwerk::test::State;
using tabwerk::test::TestTable;

constexpr int kCases = 10'500;
constexpr std::array kColumns{"ID",    "FOLGE", "STATUS", "NAME",
                              "PRICE", "N",     "X"};

// Runs both forms on equal tables and one of the columns, and compares results
// and what is left of the tables.
template <typename Fast, typename Slow>
void Compare(std::uint32_t seed, Fast const& fast_form, Slow const& slow_form) {
  char const* const column = kColumns[seed % kColumns.size()];
  SCOPED_TRACE(std::string("column ") + column);
  auto const fast = RandomTable(seed, 70);
  auto const slow = RandomTable(seed, 70);
  ASSERT_EQ(slow_form(slow->table, column), fast_form(fast->table, column));
  ASSERT_EQ(State(*slow), State(*fast));
}

TEST(SearchRandom, IntegersAreFoundAsRowByRow) {
  JudgeRandomly(kCases, [](std::uint32_t seed) {
    long const value = Random(seed + 7).Between(-1, 75);
    Compare(
        seed,
        [&](DBTabelle& table, char const* column) {
          return table.SelectZeile(column, value);
        },
        [&](DBTabelle& table, char const* column) {
          return plain::Select(table, column, value);
        });
  });
}

TEST(SearchRandom, RealsAreFoundAsRowByRow) {
  JudgeRandomly(kCases, [](std::uint32_t seed) {
    double const value = Random(seed + 7).Between(-1, 75);
    Compare(
        seed,
        [&](DBTabelle& table, char const* column) {
          return table.SelectZeile(column, value);
        },
        [&](DBTabelle& table, char const* column) {
          return plain::Select(table, column, value);
        });
  });
}

TEST(SearchRandom, TextsAreFoundAsRowByRow) {
  JudgeRandomly(kCases, [](std::uint32_t seed) {
    auto const text = Random(seed + 7).PickOf(
        {"1", "a", "abc", "", "x", "2", "zz", "xb", "#TS(ab", "b"});
    zWString const wide = zWString::fromUtf8(text);
    Compare(
        seed,
        [&](DBTabelle& table, char const* column) {
          return table.SelectZeile(column, wide.toStdWString().c_str());
        },
        [&](DBTabelle& table, char const* column) {
          return plain::SelectText(table, column, wide);
        });
  });
}

TEST(SearchRandom, PatternsAreFoundAsRowByRow) {
  JudgeRandomly(kCases, [](std::uint32_t seed) {
    Random random(seed + 7);
    auto const pattern = zWString::fromUtf8(
        random.PickOf({".*", "a.*", "[ab]", "a|x", "", "1?", "(abc)+"}));
    bool const ids = random.OneIn(2);
    Compare(
        seed,
        [&](DBTabelle& table, char const* column) {
          return table.FindRows(column, pattern, ids);
        },
        [&](DBTabelle& table, char const* column) {
          return plain::FindRows(table, column, pattern, ids);
        });
  });
}

}  // namespace
