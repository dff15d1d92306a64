#include "cli/console.h"

#include <array>
#include <cstdlib>
#include <string>

// The one file of the tool that asks which system it is for: consoles, binary
// streams and refused openings are different things there.
#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include "ztypes.h"
#else
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#endif

namespace tabwerk::tool::console {
namespace {

constexpr int kUnknownWidth = 80;

bool out_failed = false;
bool reader_left = false;

// Of a writing that has just failed.
bool IsForLackOfReader() {
#ifdef _WIN32
  // Writing into a pipe fails for no other reason; what error it is differs
  // between its kinds.
  return GetFileType(GetStdHandle(STD_OUTPUT_HANDLE)) == FILE_TYPE_PIPE;
#else
  return errno == EPIPE;
#endif
}

// To be called right behind what failed.
void NoteFailure() {
  if (!out_failed) reader_left = IsForLackOfReader();
  out_failed = true;
}

void WriteBytes(std::FILE* stream, std::string_view text) {
  bool const whole =
      std::fwrite(text.data(), 1, text.size(), stream) == text.size();
  if (!whole && stream == stdout) NoteFailure();
}

}  // namespace

bool ReadIn(std::string* content) {
  std::array<char, 65536> piece;
  for (;;) {
    std::size_t const size = std::fread(piece.data(), 1, piece.size(), stdin);
    content->append(piece.data(), size);
    if (size < piece.size()) return std::ferror(stdin) == 0;
  }
}

bool FlushOut() {
  if (std::fflush(stdout) != 0) NoteFailure();
  return !OutFailed();
}

bool ReaderLeft() { return reader_left; }

bool OutFailed() { return out_failed || std::ferror(stdout) != 0; }

#ifdef _WIN32

namespace {

HANDLE HandleOf(std::FILE* stream) {
  return GetStdHandle(stream == stdout ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

bool IsConsole(std::FILE* stream) {
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

// A console takes a limited number of units at once.
constexpr std::size_t kUnitsAtOnce = 8192;

void Write(std::FILE* stream, std::string_view text) {
  if (!IsConsole(stream)) return WriteBytes(stream, text);
  std::wstring const units = zWString::fromUtf8(text).toStdWString();
  std::wstring_view rest = units;
  while (!rest.empty()) {
    std::wstring_view piece = rest.substr(0, kUnitsAtOnce);
    // The halves of one character stay together.
    bool const halved = piece.size() < rest.size() && piece.back() >= 0xD800 &&
                        piece.back() <= 0xDBFF;
    if (halved) piece.remove_suffix(1);
    DWORD written = 0;
    if (!WriteConsoleW(HandleOf(stream), piece.data(),
                       static_cast<DWORD>(piece.size()), &written, nullptr)) {
      if (stream == stdout) out_failed = true;
      return;
    }
    rest.remove_prefix(piece.size());
  }
}

}  // namespace

void SetUp() {
  out_failed = false;
  reader_left = false;
  // A console does not see these bytes.
  static_cast<void>(_setmode(_fileno(stdin), _O_BINARY));
  static_cast<void>(_setmode(_fileno(stdout), _O_BINARY));
  static_cast<void>(_setmode(_fileno(stderr), _O_BINARY));
}

void Out(std::string_view text) { Write(stdout, text); }
void Err(std::string_view text) { Write(stderr, text); }

bool OutIsTerminal() { return IsConsole(stdout); }
bool ErrIsTerminal() { return IsConsole(stderr); }

namespace {

bool TakesColor(std::FILE* stream) {
  DWORD mode = 0;
  HANDLE const handle = HandleOf(stream);
  return GetConsoleMode(handle, &mode) != 0 &&
         SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

int WidthOf(std::FILE* stream) {
  CONSOLE_SCREEN_BUFFER_INFO info = {};
  if (!GetConsoleScreenBufferInfo(HandleOf(stream), &info)) {
    return kUnknownWidth;
  }
  return info.srWindow.Right - info.srWindow.Left + 1;
}

}  // namespace

bool OutTakesColor() { return TakesColor(stdout); }
bool ErrTakesColor() { return TakesColor(stderr); }

int OutWidth() { return WidthOf(stdout); }
int ErrWidth() { return WidthOf(stderr); }

bool OutTakesUtf8() { return !IsConsole(stdout); }

std::FILE* OpenStream(std::filesystem::path const& path, char const* mode) {
  return _wfopen(path.c_str(), std::wstring(mode, mode + strlen(mode)).c_str());
}

bool IsStandardOutput(std::filesystem::path const&) { return false; }
bool IsStandardError(std::filesystem::path const&) { return false; }

bool IsDevice(std::filesystem::path const& path) {
  // As the system reads it: in either case, also with a colon behind.
  std::wstring name = path.native();
  for (wchar_t& it : name) {
    if (it >= L'a' && it <= L'z') it = static_cast<wchar_t>(it - L'a' + L'A');
  }
  if (name.starts_with(L"\\\\.\\")) return true;
  if (name.ends_with(L':')) name.pop_back();
  if (name == L"NUL" || name == L"CON" || name == L"CONOUT$" ||
      name == L"AUX" || name == L"PRN") {
    return true;
  }
  bool const is_port = name.starts_with(L"COM") || name.starts_with(L"LPT");
  return is_port && name.size() == 4 && name[3] >= L'1' && name[3] <= L'9';
}

bool IsHeld(std::filesystem::path const& path, bool) {
  HANDLE const handle =
      CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    return GetLastError() == ERROR_SHARING_VIOLATION;
  }
  CloseHandle(handle);
  return false;
}

#else

void SetUp() {
  out_failed = false;
  reader_left = false;
  // A pipe that nobody reads is a failure to write, not the end of the tool in
  // the middle of its work.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
}

void Out(std::string_view text) { WriteBytes(stdout, text); }
void Err(std::string_view text) { WriteBytes(stderr, text); }

bool OutIsTerminal() { return isatty(STDOUT_FILENO) != 0; }
bool ErrIsTerminal() { return isatty(STDERR_FILENO) != 0; }

namespace {

bool KnowsColors() {
  char const* const terminal = std::getenv("TERM");
  return terminal == nullptr || std::string_view(terminal) != "dumb";
}

int WidthOf(int stream) {
  struct winsize size = {};
  bool const known = ioctl(stream, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? size.ws_col : kUnknownWidth;
}

}  // namespace

bool OutTakesColor() { return OutIsTerminal() && KnowsColors(); }
bool ErrTakesColor() { return ErrIsTerminal() && KnowsColors(); }

int OutWidth() { return WidthOf(STDOUT_FILENO); }
int ErrWidth() { return WidthOf(STDERR_FILENO); }

bool OutTakesUtf8() { return true; }

std::FILE* OpenStream(std::filesystem::path const& path, char const* mode) {
  return std::fopen(path.c_str(), mode);
}

namespace {

bool LeadsTo(std::filesystem::path const& path, char const* stream,
             int number) {
  std::string const name = path.lexically_normal().native();
  std::string const digits = std::to_string(number);
  return name == stream || name == "/dev/fd/" + digits ||
         name == "/proc/self/fd/" + digits;
}

}  // namespace

bool IsStandardOutput(std::filesystem::path const& path) {
  return LeadsTo(path, "/dev/stdout", STDOUT_FILENO);
}

bool IsStandardError(std::filesystem::path const& path) {
  return LeadsTo(path, "/dev/stderr", STDERR_FILENO);
}

bool IsDevice(std::filesystem::path const& path) {
  std::string const name = path.lexically_normal().native();
  return name.starts_with("/dev/fd/") || name.starts_with("/proc/self/fd/");
}

bool IsHeld(std::filesystem::path const& path, bool for_writing) {
  // The share modes are the library's own: the system does not know them, so
  // it is them when the system would let us in.
  return access(path.c_str(), for_writing ? R_OK | W_OK : R_OK) == 0;
}

#endif

}  // namespace tabwerk::tool::console
