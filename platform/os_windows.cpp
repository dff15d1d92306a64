// Streams on Windows.
//
// The C library's own share-mode streams are inherited by programs that the
// host starts and tell only errno.  So the file is opened by the system call
// that stands behind them, with the same share modes, and then made a stream.
#ifdef _WIN32

#include "platform/os_windows.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>
#include <string_view>

namespace tabwerk::platform::os {
namespace {

struct OpenPlan {
  DWORD access;
  DWORD disposition;
  int descriptor_flags;
  char const* stream_mode;
};

// CREATE_ALWAYS empties a file in the step that opens it, so a refused opener
// empties nothing.
OpenPlan PlanOf(Mode mode) {
  constexpr DWORD kBoth = GENERIC_READ | GENERIC_WRITE;
  switch (mode) {
    case Mode::kUpdate:
      return {kBoth, OPEN_EXISTING, _O_RDWR | _O_BINARY, "r+b"};
    case Mode::kCreate:
      return {GENERIC_WRITE, CREATE_ALWAYS, _O_WRONLY | _O_BINARY, "wb"};
    case Mode::kCreateUpdate:
      return {kBoth, CREATE_ALWAYS, _O_RDWR | _O_BINARY, "r+b"};
    case Mode::kCreateKeep:
      return {kBoth, OPEN_ALWAYS, _O_RDWR | _O_BINARY, "r+b"};
    case Mode::kRead:
      break;
  }
  return {GENERIC_READ, OPEN_EXISTING, _O_RDONLY | _O_BINARY, "rb"};
}

DWORD SharingOf(Share share) {
  switch (share) {
    case Share::kDenyWriters:
      return FILE_SHARE_READ;
    case Share::kDenyNone:
      return FILE_SHARE_READ | FILE_SHARE_WRITE;
    case Share::kDenyAll:
      break;
  }
  return 0;
}

// The system refuses to write to such a file, too, but emulations of it let an
// administrator through.
bool IsReadOnly(std::wstring const& path) {
  DWORD const attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES &&
         (attributes & FILE_ATTRIBUTE_READONLY) != 0 &&
         (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

FILE* Fail(Error reason, Error* error) {
  *error = reason;
  return nullptr;
}

// The stream takes the handle over; null, and the handle closed, on failure.
FILE* StreamOf(HANDLE handle, OpenPlan const& plan) {
  int const descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle),
                                         plan.descriptor_flags);
  if (descriptor < 0) {
    CloseHandle(handle);
    return nullptr;
  }
  FILE* const stream = _fdopen(descriptor, plan.stream_mode);
  if (stream == nullptr) {
    _close(descriptor);
  }
  return stream;
}

// Empty when bytes is no text in the code page.
std::wstring Widen(std::string_view bytes, UINT code_page, DWORD flags) {
  int const size = static_cast<int>(bytes.size());
  int const length =
      MultiByteToWideChar(code_page, flags, bytes.data(), size, nullptr, 0);
  if (length <= 0) {
    return std::wstring();
  }
  std::wstring text(static_cast<std::size_t>(length), L'\0');
  MultiByteToWideChar(code_page, flags, bytes.data(), size, text.data(),
                      length);
  return text;
}

// Makes a file that must not be there yet.  The C library does not know "x" on
// every Windows: it would empty the file that is there.
FILE* OpenNew(std::wstring const& path, std::string const& mode) {
  int const access = mode.find('+') != mode.npos ? _O_RDWR : _O_WRONLY;
  int const descriptor =
      _wopen(path.c_str(), access | _O_CREAT | _O_EXCL | _O_BINARY,
             _S_IREAD | _S_IWRITE);
  if (descriptor < 0) {
    return nullptr;
  }
  FILE* const stream = _fdopen(descriptor, mode.c_str());
  if (stream == nullptr) {
    _close(descriptor);
  }
  return stream;
}

}  // namespace

FILE* OpenFile(zWString const& path, Mode mode, Share share, Error* error) {
  std::wstring const native = NativePath(path);
  if (native.empty()) {
    return Fail(Error::kNotFound, error);
  }
  OpenPlan const plan = PlanOf(mode);
  if ((plan.access & GENERIC_WRITE) != 0 && IsReadOnly(native)) {
    return Fail(Error::kAccessDenied, error);
  }
  HANDLE const handle =
      CreateFileW(native.c_str(), plan.access, SharingOf(share), nullptr,
                  plan.disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    return Fail(ErrorFromSystem(GetLastError()), error);
  }
  if (GetFileType(handle) != FILE_TYPE_DISK) {
    CloseHandle(handle);
    return Fail(Error::kInputOutput, error);
  }
  FILE* const stream = StreamOf(handle, plan);
  *error = stream == nullptr ? Error::kInputOutput : Error::kNone;
  return stream;
}

FILE* OpenPlain(char const* path, char const* mode) {
  constexpr std::size_t kLongestPath = 32767 * 3;
  if (path == nullptr || mode == nullptr || std::strlen(path) > kLongestPath) {
    return nullptr;
  }
  std::wstring wide = Widen(path, CP_UTF8, MB_ERR_INVALID_CHARS);
  if (wide.empty()) {
    wide = Widen(path, CP_ACP, 0);
  }
  std::wstring const native = ExtendLongPath(wide);
  if (native.empty()) {
    return nullptr;
  }
  std::string known_mode = mode;
  bool const only_new = std::erase(known_mode, 'x') > 0 && *mode != 'r';
  FILE* const stream =
      only_new
          ? OpenNew(native, known_mode)
          : _wfopen(native.c_str(),
                    std::wstring(known_mode.begin(), known_mode.end()).c_str());
  if (stream != nullptr) {
    // Programs that the host starts do not inherit the stream.
    SetHandleInformation(
        reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))),
        HANDLE_FLAG_INHERIT, 0);
  }
  return stream;
}

bool Seek(FILE* stream, std::int64_t offset, Origin origin) {
  int const whence = origin == Origin::kStart     ? SEEK_SET
                     : origin == Origin::kCurrent ? SEEK_CUR
                                                  : SEEK_END;
  return _fseeki64(stream, offset, whence) == 0;
}

std::int64_t Tell(FILE* stream) { return _ftelli64(stream); }

bool Sync(FILE* stream) {
  return std::fflush(stream) == 0 && _commit(_fileno(stream)) == 0;
}

// The system only has the step that waits.
void BeginSync(FILE* /*stream*/, std::int64_t /*offset*/,
               std::int64_t /*size*/) {}

// A stream is wide-oriented here when its file is in a Unicode text mode.
bool WriteText(FILE* stream, std::u16string_view text) {
  zWString const units(text);
  int const file = _fileno(stream);
  // The mode can only be read by setting one.
  int const mode = _setmode(file, _O_BINARY);
  _setmode(file, mode);
  if ((mode & (_O_WTEXT | _O_U16TEXT | _O_U8TEXT)) != 0) {
    return std::fputws(units.toStdWString().c_str(), stream) >= 0;
  }
  std::string const bytes = units.toUtf8();
  return os::Write(stream, bytes.data(), bytes.size()) == bytes.size();
}

void* Allocate(std::size_t size) { return std::malloc(size == 0 ? 1 : size); }

void* Reallocate(void* block, std::size_t size) {
  return std::realloc(block, size == 0 ? 1 : size);
}

void Free(void* block) { std::free(block); }

void Pause(int milliseconds) { Sleep(static_cast<DWORD>(milliseconds)); }

}  // namespace tabwerk::platform::os

#endif  // _WIN32
