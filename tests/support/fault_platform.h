// The platform seam of test builds: counts the calls and can make one fail.
//
// Linked in place of platform/seam*.cpp.  Without a FaultGuard every call goes
// to the system.
//
//   FaultGuard faults;
//   faults.FailAt(3);                  // the third file call fails, once
//   EXPECT_FALSE(manager->Write(…));
//   EXPECT_TRUE(faults.Fired());
//
// A sweep over all calls ends with the first n at which Fired() stays false.
#ifndef TABWERK_TESTS_SUPPORT_FAULT_PLATFORM_H
#define TABWERK_TESTS_SUPPORT_FAULT_PLATFORM_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace tabwerk::test {

// The functions of the seam that can fail.
enum class Call : std::uint8_t {
  kOpenFile,
  kOpenPlain,
  kRead,
  kWrite,
  kSeek,
  kTell,
  kFileSize,
  kFlush,
  kSync,
  kClose,
  kExists,
  kCopy,
  kDelete,
  kReplace,
  kSyncFolderOf,
  kClearReadOnly,
  kTempFolder,
  kMakeTempFile,
  kAllocate,
  kReallocate,
};

constexpr std::size_t kCallKinds =
    static_cast<std::size_t>(Call::kReallocate) + 1;

// A set of calls, one bit each.
using CallSet = std::uint32_t;

constexpr CallSet Only(Call call) {
  return CallSet{1} << static_cast<unsigned>(call);
}

constexpr CallSet kMemoryCalls =
    Only(Call::kAllocate) | Only(Call::kReallocate);
constexpr CallSet kAllCalls = (CallSet{1} << kCallKinds) - 1;
constexpr CallSet kFileCalls = kAllCalls & ~kMemoryCalls;

enum class Lasting : bool {
  kOnce,     // the calls behind the failing one work again
  kForGood,  // they fail as well
};

// How much of its bytes a failing Read still gives or a failing Write takes.
enum class Portion : std::uint8_t { kNothing, kOneByte, kHalf, kAllButOne };

// The exit code of a process that KillAt ended.
constexpr int kKilledExitCode = 99;

// What to do to the calls, for as long as the guard lives.  One at a time.
//
// A failing call does what a real failure leaves behind: Close closes the
// stream all the same, Write takes and Read gives a part of the bytes, both
// mark the stream as failed; everything else does nothing.  Once calls fail for
// good, Pause returns at once: nobody that is waited for will come.
class FaultGuard {
 public:
  FaultGuard();
  ~FaultGuard();
  FaultGuard(FaultGuard const&) = delete;
  FaultGuard& operator=(FaultGuard const&) = delete;

  // Makes the n-th call (from 1) of the set fail; counting starts now.
  void FailAt(std::int64_t n, Lasting lasting = Lasting::kOnce,
              CallSet calls = kFileCalls,
              platform::Error error = platform::Error::kInputOutput,
              Portion portion = Portion::kHalf);
  // Ends the process right before the n-th call of the set, without handing
  // buffered output to the system.
  void KillAt(std::int64_t n, CallSet calls = kFileCalls);
  // Does something, for example what another program could do, right before
  // the n-th call of the set.  Calls that it makes are not counted.
  void ActAt(std::int64_t n, CallSet calls, std::function<void()> action);
  // Nothing fails any more; counts and trace stay.
  void Disarm();

  // True once a call was made to fail.
  bool Fired() const;
  // The set of the one call that failed first; nothing before.
  CallSet FirstFailed() const;
  // Calls since the guard began.
  std::int64_t Count(CallSet calls) const;
  // Bytes that were asked for and given, and those taken, by all streams since
  // the guard began; a copy of a file counts as both.
  std::int64_t BytesRead() const;
  std::int64_t BytesWritten() const;
  // The calls that name a path, in order: "Delete MAIN.UDBT" (without folder;
  // "Replace A.UDBT > A.UDB").
  std::vector<std::string> const& Trace() const;
};

// While it lives, nothing waits for the disk: Sync hands the bytes to the
// system only, SyncFolderOf does nothing.  For sweeps that save thousands of
// times and do not look at what a power loss would leave.
class SyncSkip {
 public:
  SyncSkip();
  ~SyncSkip();
  SyncSkip(SyncSkip const&) = delete;
  SyncSkip& operator=(SyncSkip const&) = delete;
};

// Why the last OpenFile that failed did so.
platform::Error LastOpenError();
// Streams that were opened and not yet closed.
int OpenStreams();
// Blocks that were allocated and not yet freed.
int LiveBlocks();

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_FAULT_PLATFORM_H
