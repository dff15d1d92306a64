#include "tests/sweeps/traced_child.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include "tests/support/child_process.h"

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

// Runs a program that prepares a writing and carries it out; true when it came
// to its end.
bool RunUnderStrace(std::string const& options, std::string const& folder,
                    Writing writing) {
  auto const self = fs::read_symlink("/proc/self/exe").string();
  // The leak checker cannot run where the process is traced already.
  auto const line = "ASAN_OPTIONS=detect_leaks=0 strace -f -qqq " + options +
                    " " + self + " --child WriteBetweenMarks " + folder + " " +
                    NameOf(writing) + " >/dev/null 2>&1";
  return std::system(line.c_str()) == 0;
}

}  // namespace

std::string WhyNoStrace() {
#ifdef _WIN32
  return "strace is a tool of Linux";
#else
  bool const works =
      std::system("strace -o /dev/null -e trace=none true 2>/dev/null") == 0;
  return works ? "" : "strace is missing, or the system forbids it to trace";
#endif
}

bool IsKilledBefore(KernelCall const& call, std::string const& folder,
                    Writing writing) {
  return !RunUnderStrace("-o /dev/null -e trace=" + call.name +
                             " -e inject=" + call.name +
                             ":signal=KILL:when=" + std::to_string(call.number),
                         folder, writing);
}

// A line is "PID name(arguments…".
std::vector<KernelCall> ListKernelCalls(std::string const& options,
                                        std::string const& folder,
                                        Writing writing) {
  auto const log = folder + "tmp/calls";
  EXPECT_TRUE(RunUnderStrace(options + " -o " + log, folder, writing));
  std::vector<KernelCall> calls;
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
    if (between_marks) calls.push_back({name, number, line});
    if (line.find(kBeginMark) != std::string::npos) between_marks = true;
  }
  EXPECT_FALSE(between_marks) << "the second mark is missing";
  return calls;
}

}  // namespace tabwerk::test
