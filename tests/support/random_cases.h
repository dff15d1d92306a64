// Random cases, each made by the seed that it is given.
#ifndef TABWERK_TESTS_SUPPORT_RANDOM_CASES_H
#define TABWERK_TESTS_SUPPORT_RANDOM_CASES_H

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tests/support/random_run.h"

namespace tabwerk::test {

// Calls judge(seed) from the first seed on until OperationCount(fallback) cases
// are judged, `cases` by each call, or one fails.  With that seed as
// TABWERK_SEED, the failing call comes first.  The name of the test says
// "Random", so that long runs (scripts/sweep.sh) find it.
template <typename Judge>
void JudgeRandomly(int fallback, int cases, Judge const& judge) {
  auto const* const test =
      testing::UnitTest::GetInstance()->current_test_info();
  auto const name =
      std::string(test->test_suite_name()) + "." + std::string(test->name());
  ASSERT_NE(name.npos, name.find("Random")) << name;
  auto seed = FirstSeed();
  for (int left = OperationCount(fallback); left > 0; left -= cases, ++seed) {
    SCOPED_TRACE("TABWERK_SEED=" + std::to_string(seed));
    judge(seed);
    if (testing::Test::HasFailure()) return;
  }
}

// One case by each call.
template <typename Judge>
void JudgeRandomly(int fallback, Judge const& judge) {
  JudgeRandomly(fallback, 1, judge);
}

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_RANDOM_CASES_H
