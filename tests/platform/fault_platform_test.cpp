// The failing seam of the test builds itself.
#include "tests/support/fault_platform.h"

#include <gtest/gtest.h>

#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {
namespace {

using platform::Error;
using platform::Mode;
using platform::Share;

// Writes "abcd" in two pieces; false where a step failed.
bool WriteFile(zWString const& path) {
  Error error = Error::kNone;
  FILE* const stream =
      platform::OpenFile(path, Mode::kCreate, Share::kDenyAll, &error);
  if (stream == nullptr) {
    return false;
  }
  bool good = platform::Write(stream, "ab", 2) == 2;
  good = good && platform::Write(stream, "cd", 2) == 2;
  good = good && !platform::Failed(stream);
  return platform::Close(stream) && good;
}

CHILD_FUNCTION(WriteUntilKilled) {
  FaultGuard faults;
  faults.KillAt(std::stoi(args[1]));
  return WriteFile(zWString::fromUtf8(args[0])) ? 0 : 1;
}

class FaultPlatform : public testing::Test {
 protected:
  ~FaultPlatform() override { EXPECT_EQ(0, OpenStreams()); }

  TempFolder folder_;
  zWString path_ = folder_.Path("A.UDB");
};

TEST_F(FaultPlatform, SweepEndsWithAnUntouchedRun) {
  int n = 1;
  for (;; ++n) {
    FaultGuard faults;
    faults.FailAt(n);
    bool const good = WriteFile(path_);
    EXPECT_NE(faults.Fired(), good) << n;
    if (!faults.Fired()) {
      break;
    }
  }
  EXPECT_EQ(5, n);  // open, write, write, close
  EXPECT_EQ("abcd", folder_.Content("A.UDB"));
}

TEST_F(FaultPlatform, FailedWriteTakesHalf) {
  FaultGuard faults;
  faults.FailAt(2, Lasting::kOnce, Only(Call::kWrite));
  EXPECT_FALSE(WriteFile(path_));
  EXPECT_EQ("abc", folder_.Content("A.UDB"));
}

TEST_F(FaultPlatform, FailedCallGivesThePortionAsked) {
  struct Case {
    Portion portion;
    char const* content;
  };
  for (auto const& [portion, content] :
       {Case{Portion::kNothing, "ab"}, Case{Portion::kOneByte, "abc"},
        Case{Portion::kAllButOne, "abc"}}) {
    FaultGuard faults;
    faults.FailAt(2, Lasting::kOnce, Only(Call::kWrite), Error::kDiskFull,
                  portion);
    EXPECT_FALSE(WriteFile(path_));
    EXPECT_EQ(content, folder_.Content("A.UDB"));
    EXPECT_EQ(Only(Call::kWrite), faults.FirstFailed());
  }
}

TEST_F(FaultPlatform, NobodyWaitsOnceCallsFailForGood) {
  constexpr int kHour = 3600000;
  FaultGuard faults;
  faults.FailAt(1, Lasting::kForGood, kFileCalls, Error::kHeld);
  EXPECT_EQ(Error::kHeld, platform::Delete(path_));
  platform::Pause(kHour);
}

TEST_F(FaultPlatform, LastingFailureLastsUntilDisarmed) {
  FaultGuard faults;
  faults.FailAt(1, Lasting::kForGood, kFileCalls, Error::kDiskFull);
  EXPECT_EQ(Error::kDiskFull, platform::Delete(path_));
  EXPECT_EQ(Error::kDiskFull, platform::Delete(path_));
  faults.Disarm();
  EXPECT_EQ(Error::kNotFound, platform::Delete(path_));
  EXPECT_EQ(3, faults.Count(Only(Call::kDelete)));
}

TEST_F(FaultPlatform, GuardEndsTheFailures) {
  {
    FaultGuard faults;
    faults.FailAt(1, Lasting::kForGood, kAllCalls);
    EXPECT_EQ(nullptr, platform::Allocate(1));
    EXPECT_FALSE(WriteFile(path_));
  }
  EXPECT_TRUE(WriteFile(path_));
}

TEST_F(FaultPlatform, TraceNamesTheFiles) {
  FaultGuard const faults;
  EXPECT_TRUE(WriteFile(path_));
  EXPECT_EQ(Error::kNone, platform::Replace(path_, folder_.Path("B.UDB")));
  EXPECT_EQ(
      (std::vector<std::string>{"OpenFile A.UDB", "Replace A.UDB > B.UDB"}),
      faults.Trace());
}

TEST_F(FaultPlatform, KillEndsTheProcessBeforeTheCall) {
  ChildProcess child("WriteUntilKilled", {path_.toUtf8(), "4"});
  EXPECT_EQ(kKilledExitCode, child.Wait());
  EXPECT_EQ("", folder_.Content("A.UDB"));
  ChildProcess whole("WriteUntilKilled", {path_.toUtf8(), "5"});
  EXPECT_EQ(0, whole.Wait());
  EXPECT_EQ("abcd", folder_.Content("A.UDB"));
}

}  // namespace
}  // namespace tabwerk::test
