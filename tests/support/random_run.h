// How long random tests go on, and where they begin.
//
//   TABWERK_OPERATIONS=100000 build/dev/bin/table_test --gtest_filter='Resort*'
#ifndef TABWERK_TESTS_SUPPORT_RANDOM_RUN_H
#define TABWERK_TESTS_SUPPORT_RANDOM_RUN_H

#include <cstdint>

namespace tabwerk::test {

// Value of an environment variable as a number; fallback without one.
std::uint32_t Setting(char const* variable, std::uint32_t fallback);

// The seed of the first case or sequence (TABWERK_SEED), else 1.
std::uint32_t FirstSeed();

// The number of cases or operations in all: TABWERK_OPERATIONS, else fallback,
// shortened.
int OperationCount(int fallback);

// A quarter of a number where test programs are slow: under address sanitizer
// and on Windows, which is Wine.  Else all of it.
int Shortened(int number) noexcept;

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_RANDOM_RUN_H
