// How far a sweep goes.
//
// A sweep tries every point of a space: each call that can fail, each length
// that a file can be cut at.  A normal test run takes points at even distances;
// TABWERK_SWEEP=whole takes them all.
//
//   Sweep const sweep(length, 200);
//   for (auto i = sweep.first(); i < length; i += sweep.step()) …
//   ReportSweep("cuts of main_2025", "points 4711, refused 4700, read 11");
#ifndef TABWERK_TESTS_SUPPORT_SWEEP_H
#define TABWERK_TESTS_SUPPORT_SWEEP_H

#include <cstddef>
#include <string>

namespace tabwerk::test {

// True when TABWERK_SWEEP says "whole".
bool WholeSweep();

class Sweep {
 public:
  // A sweep over points 0 … points-1, at most `at_most` of them in a short run.
  Sweep(std::size_t points, std::size_t at_most);

  // Differs from test to test and stays the same from run to run, so that
  // short runs of different tests do not all take the same points.
  std::size_t first() const { return first_; }
  std::size_t step() const { return step_; }

 private:
  std::size_t first_ = 0;
  std::size_t step_ = 1;
};

// Prints "[ SWEEP    ] NAME: FIGURES", which scripts/sweep.sh collects.
void ReportSweep(std::string const& name, std::string const& figures);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_SWEEP_H
