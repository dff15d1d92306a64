// A program that writes is killed before each call to the kernel, by strace.
//
// Every call that the program makes while it writes is a point: one run under
// strace lists them, then one run each is killed at the entry of the K-th call
// of that name, before it is carried out.
#include <gtest/gtest.h>

#include "tests/support/sweep.h"
#include "tests/sweeps/killed_story.h"
#include "tests/sweeps/traced_child.h"

namespace tabwerk::test {
namespace {

class SweepKillSystemCall : public KilledStory,
                            public testing::WithParamInterface<Writing> {
 protected:
  void SetUp() override {
    auto const reason = WhyNoStrace();
    if (!reason.empty()) GTEST_SKIP() << reason;
  }
};

TEST_P(SweepKillSystemCall, LeavesTheOldOrTheNewState) {
  ASSERT_NO_FATAL_FAILURE(Begin(GetParam()));
  auto const points = ListKernelCalls("", Folder(), GetParam());
  EXPECT_EQ(new_state_, Observe());
  EXPECT_LT(calls_, static_cast<std::int64_t>(points.size()));
  Sweep const sweep(points.size(), 5);
  for (auto i = sweep.first(); i < points.size(); i += sweep.step()) {
    SCOPED_TRACE(points[i].line);
    PutImage(start_);
    if (!IsKilledBefore(points[i], Folder(), GetParam())) {
      // A random name takes one such call more now and then.
      ASSERT_EQ("getrandom", points[i].name);
      continue;
    }
    JudgeKilled(GetParam());
    ASSERT_FALSE(HasFailure());
  }
  Report("kill before system call", GetParam(), points.size());
}

INSTANTIATE_TEST_SUITE_P(, SweepKillSystemCall, testing::ValuesIn(kWritings),
                         NameOfCase);

}  // namespace
}  // namespace tabwerk::test
