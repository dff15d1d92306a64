// A second process for tests: the test program starts itself again and runs
// one registered function instead of the tests.
//
//   CHILD_FUNCTION(HoldFile) {               // at namespace scope
//     … args[0] …
//     TellParent("held");
//     AwaitParent();
//     return 0;
//   }
//
//   ChildProcess child("HoldFile", {path});
//   EXPECT_EQ("held", child.ReadLine());
//   child.Kill();
#ifndef TABWERK_TESTS_SUPPORT_CHILD_PROCESS_H
#define TABWERK_TESTS_SUPPORT_CHILD_PROCESS_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tabwerk::test {

using Arguments = std::vector<std::string>;
using ChildFunction = int (*)(Arguments const& args);

// Makes the function known under the name; returns true.
bool RegisterChild(char const* name, ChildFunction function);

#define CHILD_FUNCTION(name)                                \
  static int name(::tabwerk::test::Arguments const& args);  \
  [[maybe_unused]] static bool const name##_is_registered = \
      ::tabwerk::test::RegisterChild(#name, name);          \
  static int name([[maybe_unused]] ::tabwerk::test::Arguments const& args)

// For main(): the child's exit code when the program was started as
// "--child NAME ARG…", nothing otherwise.
std::optional<int> RunAsChild(int argc, char** argv);

// In the child: a line for the parent's ReadLine.
void TellParent(std::string const& line);
// In the child: returns when the parent lets go or is gone.
void AwaitParent();

// Ends this process as a crash would: buffered output is lost, nothing is
// cleaned up.
[[noreturn]] void EndAtOnce(int exit_code);

#ifdef _WIN32
// One word of a command line, as the C library takes it apart again.
std::wstring QuotedWord(std::string const& argument);
#endif

// A started child.  The destructor kills it where it still runs.
class ChildProcess {
 public:
  // Arguments are plain ASCII without line ends.
  ChildProcess(std::string const& name, Arguments const& args);
  ~ChildProcess();
  ChildProcess(ChildProcess const&) = delete;
  ChildProcess& operator=(ChildProcess const&) = delete;

  // The next line that the child told; empty when it has ended.
  std::string ReadLine();
  // Lets AwaitParent return.
  void LetGo();
  // Waits for the end; the exit code, -1 when it was killed.
  int Wait();
  // Ends it at once, without any clean-up of its own.
  void Kill();

 private:
  struct System;
  std::unique_ptr<System> system_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_CHILD_PROCESS_H
