// A program that writes is killed before each call to the system.
#include <gtest/gtest.h>

#include "tests/support/child_process.h"
#include "tests/support/fault_platform.h"
#include "tests/support/sweep.h"
#include "tests/sweeps/killed_story.h"

namespace tabwerk::test {
namespace {

CHILD_FUNCTION(WriteUntilKilled) {
  auto const writing = WritingOf(args[1]);
  if (!Prepare(args[0], writing)) return 1;
  FaultGuard faults;
  faults.KillAt(std::stoll(args[2]));
  return CarryOut(args[0], writing) ? 0 : 2;
}

class SweepKillCall : public KilledStory,
                      public testing::WithParamInterface<Writing> {
 protected:
  int ExitCodeOfChild(std::int64_t n) const {
    ChildProcess child("WriteUntilKilled",
                       {Folder(), NameOf(GetParam()), std::to_string(n)});
    return child.Wait();
  }
};

TEST_P(SweepKillCall, LeavesTheOldOrTheNewState) {
  ASSERT_NO_FATAL_FAILURE(Begin(GetParam()));
  auto const points = static_cast<std::size_t>(calls_);
  Sweep const sweep(points, 8);
  for (auto i = sweep.first(); i < points; i += sweep.step()) {
    SCOPED_TRACE("call " + std::to_string(i + 1));
    PutImage(start_);
    ASSERT_EQ(kKilledExitCode,
              ExitCodeOfChild(static_cast<std::int64_t>(i) + 1));
    JudgeKilled(GetParam());
    ASSERT_FALSE(HasFailure());
  }
  PutImage(start_);
  EXPECT_EQ(0, ExitCodeOfChild(calls_ + 1));
  EXPECT_EQ(new_state_, Observe());
  Report("kill before seam call", GetParam(), points);
}

INSTANTIATE_TEST_SUITE_P(, SweepKillCall, testing::ValuesIn(kWritings),
                         NameOfCase);

}  // namespace
}  // namespace tabwerk::test
