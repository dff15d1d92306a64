// Streams and simple file services on Linux.
#ifndef _WIN32

#include "platform/os_linux.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cwchar>
#include <string_view>
#include <utility>

namespace tabwerk::platform::os {
namespace {

struct OpenPlan {
  int flags;
  char const* stream_mode;
  bool empties;
  bool reads;
  bool writes;
};

// What a mode means for open() and fdopen().  Every descriptor can read: the
// share locks need it.
OpenPlan PlanOf(Mode mode) {
  switch (mode) {
    case Mode::kUpdate:
      return {O_RDWR, "r+", false, true, true};
    case Mode::kCreate:
      return {O_RDWR | O_CREAT, "w", true, false, true};
    case Mode::kCreateUpdate:
      return {O_RDWR | O_CREAT, "r+", true, true, true};
    case Mode::kCreateKeep:
      return {O_RDWR | O_CREAT, "r+", false, true, true};
    case Mode::kRead:
      break;
  }
  return {O_RDONLY, "r", false, true, false};
}

FILE* Fail(Error reason, Error* error) {
  *error = reason;
  return nullptr;
}

// A text with the same UTF-8 form, or nothing.
std::optional<zWString> ExactText(std::string_view bytes) {
  zWString text = zWString::fromUtf8(bytes);
  if (text.toUtf8() != bytes) {
    return std::nullopt;
  }
  return text;
}

bool IsFolder(char const* path) {
  struct stat status = {};
  return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  std::swap(number_, other.number_);
  return *this;
}

Descriptor::~Descriptor() {
  // A descriptor that matters for output is closed by Close().
  static_cast<void>(Close());
}

int Descriptor::Release() { return std::exchange(number_, -1); }

bool Descriptor::Close() {
  int const number = Release();
  return number < 0 || close(number) == 0;
}

std::optional<std::string> NativePath(zWString const& path) {
  std::string bytes = path.toUtf8();
  if (bytes.empty() || bytes.find('\0') != std::string::npos ||
      zWString::fromUtf8(bytes) != path) {
    return std::nullopt;
  }
  return bytes;
}

Error ErrorFromErrno(int number) {
  switch (number) {
    case ENOENT:
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP:
      return Error::kNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
      return Error::kAccessDenied;
    case EEXIST:
      return Error::kExists;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return Error::kDiskFull;
    case ETXTBSY:
    case EBUSY:
      return Error::kHeld;
    default:
      return Error::kInputOutput;
  }
}

FILE* OpenFile(zWString const& path, Mode mode, Share share, Error* error) {
  std::optional<std::string> const native = NativePath(path);
  if (!native) {
    return Fail(Error::kNotFound, error);
  }
  OpenPlan const plan = PlanOf(mode);
  Claim const claim = {plan.reads, plan.writes, share == Share::kDenyAll,
                       share != Share::kDenyNone};
  Descriptor file;
  Error const result = OpenClaimed(*native, plan.flags, 0666, claim, &file);
  if (result != Error::kNone) {
    return Fail(result, error);
  }
  if (plan.empties && ftruncate(file.number(), 0) != 0) {
    return Fail(ErrorFromErrno(errno), error);
  }
  FILE* const stream = fdopen(file.number(), plan.stream_mode);
  if (stream == nullptr) {
    return Fail(ErrorFromErrno(errno), error);
  }
  file.Release();
  *error = Error::kNone;
  return stream;
}

FILE* OpenPlain(char const* path, char const* mode) {
  if (path == nullptr || mode == nullptr) {
    return nullptr;
  }
  // "e": programs that the host starts do not inherit the stream.
  std::string const full_mode = std::string(mode) + "e";
  FILE* const stream = std::fopen(path, full_mode.c_str());
  struct stat status = {};
  if (stream != nullptr && fstat(fileno(stream), &status) == 0 &&
      S_ISDIR(status.st_mode)) {
    static_cast<void>(std::fclose(stream));  // nothing was written
    return nullptr;
  }
  return stream;
}

bool Seek(FILE* stream, std::int64_t offset, Origin origin) {
  int const whence = origin == Origin::kStart     ? SEEK_SET
                     : origin == Origin::kCurrent ? SEEK_CUR
                                                  : SEEK_END;
  return fseeko(stream, offset, whence) == 0;
}

std::int64_t Tell(FILE* stream) { return ftello(stream); }

bool Sync(FILE* stream) {
  return std::fflush(stream) == 0 && fsync(fileno(stream)) == 0;
}

void BeginSync(FILE* stream, std::int64_t offset, std::int64_t size) {
  // Whole pages: one that still grows would be written twice.
  constexpr std::int64_t kPage = 4096;
  std::int64_t const start = offset / kPage * kPage;
  std::int64_t const end = (offset + size) / kPage * kPage;
  if (end <= start) {  // for the system a size of 0 means the whole file
    return;
  }
  static_cast<void>(sync_file_range(fileno(stream), start, end - start,
                                    SYNC_FILE_RANGE_WRITE));
}

bool Exists(zWString const& path) {
  std::optional<std::string> const native = NativePath(path);
  struct stat status = {};
  return native && stat(native->c_str(), &status) == 0;
}

// Claims the file first: on Windows nobody can delete an open file, and a
// program that holds a database relies on that here as well.
Error Delete(zWString const& path) {
  std::optional<std::string> const native = NativePath(path);
  if (!native) {
    return Error::kNotFound;
  }
  struct stat status = {};
  if (lstat(native->c_str(), &status) != 0) {
    return ErrorFromErrno(errno);
  }
  Descriptor file;
  if (S_ISREG(status.st_mode)) {
    if ((status.st_mode & 0222) == 0) {
      return Error::kAccessDenied;
    }
    Error const claimed =
        OpenClaimed(*native, O_RDONLY, 0, kExclusiveClaim, &file);
    if (claimed == Error::kHeld || claimed == Error::kNotFound) {
      return claimed;
    }
  }
  return unlink(native->c_str()) == 0 ? Error::kNone : ErrorFromErrno(errno);
}

bool SyncFolderOf(zWString const& path) {
  std::optional<std::string> const native = NativePath(path);
  if (!native) {
    return false;
  }
  std::size_t const slash = native->rfind('/');
  std::string const folder =
      slash == std::string::npos ? "." : native->substr(0, slash + 1);
  Descriptor const opened(
      open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // EINVAL: the file system has no such step.
  return opened.IsOpen() && (fsync(opened.number()) == 0 || errno == EINVAL);
}

bool ClearReadOnly(zWString const& path) {
  std::optional<std::string> const native = NativePath(path);
  struct stat status = {};
  if (!native || stat(native->c_str(), &status) != 0 ||
      S_ISDIR(status.st_mode)) {
    return false;
  }
  return (status.st_mode & S_IWUSR) != 0 ||
         chmod(native->c_str(), (status.st_mode & 07777) | S_IWUSR) == 0;
}

zWString TempFolder() {
  char const* const wanted = std::getenv("TMPDIR");
  if (wanted != nullptr && wanted[0] == '/' && IsFolder(wanted)) {
    std::string folder = wanted;
    if (folder.back() != '/') {
      folder += '/';
    }
    if (std::optional<zWString> text = ExactText(folder)) {
      return *text;
    }
  }
  return zWString(u"/tmp/");
}

zWString MakeTempFile(zWString const& folder, char const* prefix) {
  std::optional<std::string> const native = NativePath(folder);
  if (!native || prefix == nullptr) {
    return zWString();
  }
  constexpr std::string_view kSuffix = ".tmp";
  std::string path = *native + prefix + "XXXXXX" + std::string(kSuffix);
  Descriptor const file(
      mkostemps(path.data(), static_cast<int>(kSuffix.size()), O_CLOEXEC));
  return file.IsOpen() ? zWString::fromUtf8(path) : zWString();
}

bool WriteText(FILE* stream, std::u16string_view text) {
  zWString const units(text);
  if (std::fwide(stream, 0) > 0) {
    return std::fputws(units.toStdWString().c_str(), stream) >= 0;
  }
  std::string const bytes = units.toUtf8();
  return os::Write(stream, bytes.data(), bytes.size()) == bytes.size();
}

void Pause(int milliseconds) { Nap(milliseconds); }

bool SameFile(zWString const& one, zWString const& other) {
  std::optional<std::string> const first = NativePath(one);
  std::optional<std::string> const second = NativePath(other);
  struct stat of_first = {};
  struct stat of_second = {};
  return first && second && stat(first->c_str(), &of_first) == 0 &&
         stat(second->c_str(), &of_second) == 0 &&
         of_first.st_dev == of_second.st_dev &&
         of_first.st_ino == of_second.st_ino;
}

}  // namespace tabwerk::platform::os

#endif  // !_WIN32
