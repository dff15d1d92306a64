// A program that writes is killed before each call to the kernel, by strace.
//
// Every call that the program makes between two marks is a point: one run
// under strace lists them, then one run each is killed at the entry of the K-th
// call of that name, before it is carried out.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include "tests/support/child_process.h"
#include "tests/support/sweep.h"
#include "tests/sweeps/killed_story.h"

namespace tabwerk::test {
namespace {

namespace fs = std::filesystem;

constexpr char kBeginMark[] = "/tabwerk-writing-begins";
constexpr char kEndMark[] = "/tabwerk-writing-ends";

// Harmless, and seen in the list of calls.
void Mark(char const* mark) { static_cast<void>(fs::exists(mark)); }

CHILD_FUNCTION(WriteBetweenMarks) {
  auto const writing = WritingOf(args[1]);
  if (!Prepare(args[0], writing)) return 1;
  Mark(kBeginMark);
  bool const written = CarryOut(args[0], writing);
  Mark(kEndMark);
  return written ? 0 : 2;
}

// The K-th call of that name in the life of a process.
struct Point {
  std::string name;
  int number;
};

class SweepKillSystemCall : public KilledStory,
                            public testing::WithParamInterface<Writing> {
 protected:
  void SetUp() override {
#ifdef _WIN32
    GTEST_SKIP() << "strace is a tool of Linux";
#endif
    if (std::system("strace -o /dev/null -e trace=none true 2>/dev/null") !=
        0) {
      GTEST_SKIP() << "strace is missing, or the system forbids it to trace";
    }
  }

  // The child under strace; true when it came to its end.
  bool RunToItsEnd(std::string const& options) const {
    auto const self = fs::read_symlink("/proc/self/exe").string();
    // The leak checker cannot run where the process is traced already.
    auto const line = "ASAN_OPTIONS=detect_leaks=0 strace -f -qqq " + options +
                      " " + self + " --child WriteBetweenMarks " + Folder() +
                      " " + NameOf(GetParam()) + " >/dev/null 2>&1";
    return std::system(line.c_str()) == 0;
  }

  std::vector<Point> PointsOfTheWriting() const;
};

// A line is "PID name(arguments…".
std::vector<Point> SweepKillSystemCall::PointsOfTheWriting() const {
  auto const log = Path("tmp/calls");
  EXPECT_TRUE(RunToItsEnd("-o " + log));
  std::vector<Point> points;
  std::map<std::string, int> numbers;
  bool between_marks = false;
  std::ifstream lines(log);
  for (std::string line; std::getline(lines, line);) {
    auto const start = line.find_first_not_of("0123456789 ");
    auto const end = line.find('(');
    if (start == std::string::npos || end == std::string::npos) continue;
    if (line.find(kEndMark) != std::string::npos) between_marks = false;
    auto const name = line.substr(start, end - start);
    auto const number = ++numbers[name];
    if (between_marks) points.push_back({name, number});
    if (line.find(kBeginMark) != std::string::npos) between_marks = true;
  }
  EXPECT_FALSE(between_marks) << "the second mark is missing";
  return points;
}

TEST_P(SweepKillSystemCall, LeavesTheOldOrTheNewState) {
  ASSERT_NO_FATAL_FAILURE(Begin(GetParam()));
  auto const points = PointsOfTheWriting();
  EXPECT_EQ(new_state_, Observe());
  EXPECT_LT(calls_, static_cast<std::int64_t>(points.size()));
  Sweep const sweep(points.size(), 5);
  for (auto i = sweep.first(); i < points.size(); i += sweep.step()) {
    auto const& [name, number] = points[i];
    SCOPED_TRACE(name + " " + std::to_string(number));
    PutImage(start_);
    ASSERT_FALSE(RunToItsEnd("-o /dev/null -e trace=" + name +
                             " -e inject=" + name +
                             ":signal=KILL:when=" + std::to_string(number)));
    JudgeKilled(GetParam());
    ASSERT_FALSE(HasFailure());
  }
  Report(std::string("kill before system call, ") + NameOf(GetParam()),
         points.size());
}

INSTANTIATE_TEST_SUITE_P(, SweepKillSystemCall, testing::ValuesIn(kWritings),
                         NameOfCase);

}  // namespace
}  // namespace tabwerk::test
