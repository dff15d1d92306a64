#include "tests/support/processor_time.h"

#include <ctime>

namespace tabwerk::test {

namespace {

double UsedSeconds() {
  timespec used = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
  constexpr double kNanoseconds = 1e9;
  return static_cast<double>(used.tv_sec) +
         static_cast<double>(used.tv_nsec) / kNanoseconds;
}

}  // namespace

ProcessorTime::ProcessorTime() : begin_(UsedSeconds()) {}

double ProcessorTime::Seconds() const { return UsedSeconds() - begin_; }

}  // namespace tabwerk::test
