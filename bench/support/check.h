// Ends a benchmark whose answers are wrong.
#ifndef TABWERK_BENCH_SUPPORT_CHECK_H
#define TABWERK_BENCH_SUPPORT_CHECK_H

#include <cstdio>
#include <cstdlib>

namespace tabwerk::bench {

// A wrong answer makes every figure worthless: the program ends at once.
inline void Require(bool right, char const* what) {
  if (right) return;
  std::fprintf(stderr, "benchmark: %s\n", what);
  std::_Exit(1);
}

}  // namespace tabwerk::bench

#endif  // TABWERK_BENCH_SUPPORT_CHECK_H
