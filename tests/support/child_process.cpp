#include "tests/support/child_process.h"

#include <cstdio>
#include <cstdlib>
#include <map>

#ifdef _WIN32
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include "ztypes.h"
#else
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#endif

namespace tabwerk::test {
namespace {

constexpr char kChildOption[] = "--child";

std::map<std::string, ChildFunction>& Registry() {
  static std::map<std::string, ChildFunction> registry;
  return registry;
}

}  // namespace

bool RegisterChild(char const* name, ChildFunction function) {
  Registry()[name] = function;
  return true;
}

std::optional<int> RunAsChild(int argc, char** argv) {
  if (argc < 3 || std::string(argv[1]) != kChildOption) {
    return std::nullopt;
  }
  auto const found = Registry().find(argv[2]);
  if (found == Registry().end()) {
    return 127;
  }
  return found->second(Arguments(argv + 3, argv + argc));
}

void TellParent(std::string const& line) {
  std::fputs((line + "\n").c_str(), stdout);
  std::fflush(stdout);
}

void AwaitParent() {
  while (std::getchar() != EOF) {
  }
}

#ifdef _WIN32

void EndAtOnce(int exit_code) {
  // The C library's own way out flushes the streams.
  TerminateProcess(GetCurrentProcess(), static_cast<UINT>(exit_code));
  std::abort();
}

std::wstring QuotedWord(std::string const& argument) {
  std::wstring text = L"\"";
  std::size_t backslashes = 0;
  for (wchar_t const unit : zWString::fromUtf8(argument).toStdWString()) {
    if (unit == L'"') text.append(backslashes + 1, L'\\');
    backslashes = unit == L'\\' ? backslashes + 1 : 0;
    text += unit;
  }
  text.append(backslashes, L'\\');
  return text + L"\"";
}

struct ChildProcess::System {
  HANDLE process = nullptr;
  HANDLE to_child = nullptr;
  HANDLE from_child = nullptr;

  // One byte; false at the end.
  bool ReadByte(char* byte) {
    DWORD got = 0;
    return ReadFile(from_child, byte, 1, &got, nullptr) && got == 1;
  }
};

namespace {

std::wstring CommandLine(std::string const& name, Arguments const& args) {
  wchar_t self[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, self, MAX_PATH);
  std::wstring line = L"\"" + std::wstring(self) + L"\" --child";
  Arguments words = {name};
  words.insert(words.end(), args.begin(), args.end());
  for (std::string const& word : words) {
    line += L" " + QuotedWord(word);
  }
  return line;
}

void Discard(HANDLE* handle) {
  if (*handle != nullptr) {
    CloseHandle(*handle);
    *handle = nullptr;
  }
}

}  // namespace

ChildProcess::ChildProcess(std::string const& name, Arguments const& args)
    : system_(std::make_unique<System>()) {
  SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
  HANDLE child_input = nullptr;
  HANDLE child_output = nullptr;
  CreatePipe(&child_input, &system_->to_child, &inherited, 0);
  CreatePipe(&system_->from_child, &child_output, &inherited, 0);
  SetHandleInformation(system_->to_child, HANDLE_FLAG_INHERIT, 0);
  SetHandleInformation(system_->from_child, HANDLE_FLAG_INHERIT, 0);

  STARTUPINFOW start = {};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = child_input;
  start.hStdOutput = child_output;
  start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION made = {};
  std::wstring line = CommandLine(name, args);
  if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                     nullptr, &start, &made)) {
    CloseHandle(made.hThread);
    system_->process = made.hProcess;
  }
  CloseHandle(child_input);
  CloseHandle(child_output);
}

void ChildProcess::LetGo() { Discard(&system_->to_child); }

int ChildProcess::Wait() {
  LetGo();
  if (system_->process == nullptr) {
    return -1;
  }
  WaitForSingleObject(system_->process, INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(system_->process, &code);
  Discard(&system_->process);
  return static_cast<int>(code);
}

void ChildProcess::Kill() {
  if (system_->process != nullptr) {
    TerminateProcess(system_->process, static_cast<UINT>(-1));
    static_cast<void>(Wait());
  }
}

ChildProcess::~ChildProcess() {
  Kill();
  Discard(&system_->to_child);
  Discard(&system_->from_child);
}

#else

void EndAtOnce(int exit_code) { _exit(exit_code); }

struct ChildProcess::System {
  pid_t process = -1;
  int to_child = -1;
  int from_child = -1;

  // One byte; false at the end.
  bool ReadByte(char* byte) { return read(from_child, byte, 1) == 1; }
};

namespace {

void Discard(int* file) {
  if (*file >= 0) {
    close(*file);
    *file = -1;
  }
}

// The link itself would lead to what runs the program, where that is something
// else: valgrind for example.
[[noreturn]] void BecomeChild(int input, int output, char** words) {
  dup2(input, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  char path[4096] = {};
  if (readlink("/proc/self/exe", path, sizeof path - 1) > 0) execv(path, words);
  _exit(127);
}

}  // namespace

ChildProcess::ChildProcess(std::string const& name, Arguments const& args)
    : system_(std::make_unique<System>()) {
  Arguments words = {"child", kChildOption, name};
  words.insert(words.end(), args.begin(), args.end());
  std::vector<char*> pointers;
  for (std::string& word : words) {
    pointers.push_back(word.data());
  }
  pointers.push_back(nullptr);

  int input[2] = {-1, -1};
  int output[2] = {-1, -1};
  if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0) {
    return;
  }
  system_->process = fork();
  if (system_->process == 0) {
    BecomeChild(input[0], output[1], pointers.data());
  }
  close(input[0]);
  close(output[1]);
  system_->to_child = input[1];
  system_->from_child = output[0];
}

void ChildProcess::LetGo() { Discard(&system_->to_child); }

int ChildProcess::Wait() {
  LetGo();
  if (system_->process < 0) {
    return -1;
  }
  int status = 0;
  waitpid(system_->process, &status, 0);
  system_->process = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void ChildProcess::Kill() {
  if (system_->process >= 0) {
    kill(system_->process, SIGKILL);
    static_cast<void>(Wait());
  }
}

ChildProcess::~ChildProcess() {
  Kill();
  Discard(&system_->to_child);
  Discard(&system_->from_child);
}

#endif

std::string ChildProcess::ReadLine() {
  std::string line;
  for (char byte = 0; system_->ReadByte(&byte) && byte != '\n';) {
    if (byte != '\r') {
      line += byte;
    }
  }
  return line;
}

}  // namespace tabwerk::test
