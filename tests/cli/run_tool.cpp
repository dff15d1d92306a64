#include "tests/cli/run_tool.h"

#include <gtest/gtest.h>

#include "tests/support/child_process.h"
#include "tests/support/places.h"
#include "tests/support/temp_folder.h"
#include "ztypes.h"

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#endif

namespace tabwerk::test {

namespace {

using Variables = std::vector<std::pair<std::string, std::string>>;

// What colours depend on is the same wherever the test runs.
Variables VariablesOf(ToolCall const& call) {
  Variables variables = {{"NO_COLOR", ""}, {"TERM", "dumb"}};
  variables.insert(variables.end(), call.environment.begin(),
                   call.environment.end());
  return variables;
}

}  // namespace

ToolRun RunTool(std::filesystem::path const& folder,
                std::vector<std::string> const& arguments) {
  return RunTool(folder, ToolCall{arguments, "", {}});
}

#ifdef _WIN32

namespace {

// Sets variables of this process, which a child inherits, for its lifetime.
class EnvironmentGuard {
 public:
  explicit EnvironmentGuard(Variables const& variables) {
    for (auto const& [name, value] : variables) {
      std::wstring const key = zWString::fromUtf8(name).toStdWString();
      wchar_t const* const old = _wgetenv(key.c_str());
      old_.emplace_back(key, old != nullptr ? old : L"");
      Set(key, zWString::fromUtf8(value).toStdWString());
    }
  }
  ~EnvironmentGuard() {
    for (auto it = old_.rbegin(); it != old_.rend(); ++it) {
      Set(it->first, it->second);
    }
  }
  EnvironmentGuard(EnvironmentGuard const&) = delete;
  EnvironmentGuard& operator=(EnvironmentGuard const&) = delete;

 private:
  static void Set(std::wstring const& name, std::wstring const& value) {
    SetEnvironmentVariableW(name.c_str(),
                            value.empty() ? nullptr : value.c_str());
  }

  std::vector<std::pair<std::wstring, std::wstring>> old_;
};

HANDLE OpenInheritable(std::wstring const& path, bool for_writing) {
  SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
  return CreateFileW(path.c_str(), for_writing ? GENERIC_WRITE : GENERIC_READ,
                     FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                     for_writing ? CREATE_ALWAYS : OPEN_EXISTING,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

// The end that a pipe is written to; the other one is closed.
HANDLE PipeWithoutReader() {
  SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
  HANDLE reader = nullptr;
  HANDLE writer = nullptr;
  EXPECT_TRUE(CreatePipe(&reader, &writer, &inherited, 0));
  CloseHandle(reader);
  return writer;
}

HANDLE OpenOutput(OutputTo output, TempFolder const& streams) {
  streams.WriteBytes("out", "");
  if (output == OutputTo::kPipeWithoutReader) return PipeWithoutReader();
  // One for reading stands for a full disk: every writing fails.
  return OpenInheritable(streams.Path("out").toStdWString(),
                         output == OutputTo::kFile);
}

}  // namespace

ToolRun RunTool(std::filesystem::path const& folder, ToolCall const& call) {
  TempFolder const streams;
  EnvironmentGuard const environment(VariablesOf(call));
  streams.WriteBytes("in", call.input);
  std::wstring line = QuotedWord(ToolPath());
  for (std::string const& argument : call.arguments) {
    line += L" " + QuotedWord(argument);
  }

  STARTUPINFOW start = {};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = OpenInheritable(streams.Path("in").toStdWString(), false);
  start.hStdOutput = OpenOutput(call.output, streams);
  start.hStdError = OpenInheritable(streams.Path("err").toStdWString(), true);
  PROCESS_INFORMATION made = {};
  ToolRun run;
  if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                     folder.c_str(), &start, &made)) {
    WaitForSingleObject(made.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(made.hProcess, &code);
    run.exit_code = static_cast<int>(code);
    // A status in place of an exit code: it crashed, or could not begin.
    constexpr DWORD kLeastStatus = 0xC0000000;
    EXPECT_GT(kLeastStatus, code) << "of the tool";
    CloseHandle(made.hThread);
    CloseHandle(made.hProcess);
  } else {
    ADD_FAILURE() << "the tool does not start: error " << GetLastError();
  }
  for (HANDLE const handle :
       {start.hStdInput, start.hStdOutput, start.hStdError}) {
    CloseHandle(handle);
  }
  run.out = streams.Content("out");
  run.err = streams.Content("err");
  return run;
}

#else

namespace {

[[noreturn]] void BecomeTool(std::filesystem::path const& folder,
                             ToolCall const& call) {
  for (auto const& [name, value] : VariablesOf(call)) {
    if (value.empty()) {
      unsetenv(name.c_str());
    } else {
      setenv(name.c_str(), value.c_str(), 1);
    }
  }
  std::vector<std::string> words = {ToolPath()};
  words.insert(words.end(), call.arguments.begin(), call.arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  if (chdir(folder.c_str()) != 0) _exit(127);
  if (call.prepare != nullptr) call.prepare();
  execv(pointers.front(), pointers.data());
  _exit(127);
}

void Redirect(std::string const& path, int flags, int target) {
  int const file = open(path.c_str(), flags, 0600);
  if (file < 0 || dup2(file, target) < 0) _exit(127);
  close(file);
}

void RedirectToPipeWithoutReader(int target) {
  int ends[2] = {};
  if (pipe(ends) != 0 || dup2(ends[1], target) < 0) _exit(127);
  close(ends[0]);
  close(ends[1]);
}

void RedirectOutput(OutputTo output, std::string const& kept) {
  if (output == OutputTo::kPipeWithoutReader) {
    RedirectToPipeWithoutReader(STDOUT_FILENO);
  } else {
    Redirect(output == OutputTo::kFullDisk ? "/dev/full" : kept, O_WRONLY,
             STDOUT_FILENO);
  }
}

int WaitFor(pid_t process) {
  int status = 0;
  EXPECT_TRUE(process >= 0 && waitpid(process, &status, 0) == process);
  EXPECT_FALSE(WIFSIGNALED(status)) << "the tool: signal " << WTERMSIG(status);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

ToolRun RunTool(std::filesystem::path const& folder, ToolCall const& call) {
  TempFolder const streams;
  streams.WriteBytes("in", call.input);
  streams.WriteBytes("out", "");
  pid_t const process = fork();
  if (process == 0) {
    Redirect(streams.PathUtf8("in"), O_RDONLY, STDIN_FILENO);
    RedirectOutput(call.output, streams.PathUtf8("out"));
    Redirect(streams.PathUtf8("err"), O_WRONLY | O_CREAT, STDERR_FILENO);
    BecomeTool(folder, call);
  }
  ToolRun run;
  run.exit_code = WaitFor(process);
  run.out = streams.Content("out");
  run.err = streams.Content("err");
  return run;
}

ToolRun RunToolOnTerminal(std::filesystem::path const& folder,
                          std::vector<std::string> const& arguments,
                          int columns) {
  return RunToolOnTerminal(folder, ToolCall{arguments, "", {}}, columns);
}

ToolRun RunToolOnTerminal(std::filesystem::path const& folder,
                          ToolCall const& call, int columns) {
  struct winsize size = {};
  size.ws_row = 25;
  size.ws_col = static_cast<unsigned short>(columns);
  int terminal = -1;
  pid_t const process = forkpty(&terminal, nullptr, nullptr, &size);
  if (process == 0) BecomeTool(folder, call);
  ToolRun run;
  char byte = 0;
  while (process > 0 && read(terminal, &byte, 1) == 1) {
    if (byte != '\r') run.out += byte;
  }
  run.exit_code = WaitFor(process);
  close(terminal);
  return run;
}

#endif

}  // namespace tabwerk::test
