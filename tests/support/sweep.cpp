#include "tests/support/sweep.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace tabwerk::test {
namespace {

// A number that belongs to the running test's name, the same on all systems.
std::size_t NumberOfTest() {
  auto const* test = testing::UnitTest::GetInstance()->current_test_info();
  std::size_t number = 0;
  if (test == nullptr) return number;
  for (char const character : std::string_view(test->name())) {
    number = (number * 31 + static_cast<unsigned char>(character)) % 65521;
  }
  return number;
}

}  // namespace

bool WholeSweep() {
  char const* extent = std::getenv("TABWERK_SWEEP");
  return extent != nullptr && std::string_view(extent) == "whole";
}

Sweep::Sweep(std::size_t points, std::size_t at_most) {
  if (WholeSweep() || points <= at_most) return;
  step_ = (points + at_most - 1) / at_most;
  first_ = NumberOfTest() % step_;
}

void ReportSweep(std::string const& name, std::string const& figures) {
  std::printf("[ SWEEP    ] %s: %s\n", name.c_str(), figures.c_str());
  std::fflush(stdout);
}

}  // namespace tabwerk::test
