// Copying and replacing files on Linux.
#ifndef _WIN32

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <string_view>

#include "platform/guarded.h"
#include "platform/os_linux.h"

namespace tabwerk::platform::os {
namespace {

constexpr std::chrono::milliseconds kPatience{2000};
constexpr int kPauseMilliseconds = 20;
constexpr std::size_t kChunkBytes = 65536;

bool WriteAll(int file, char const* bytes, std::size_t size) {
  while (size > 0) {
    ssize_t const taken = write(file, bytes, size);
    if (taken < 0 && errno == EINTR) {
      continue;
    }
    if (taken <= 0) {
      return false;
    }
    bytes += taken;
    size -= static_cast<std::size_t>(taken);
  }
  return true;
}

Error CopyContent(int from, int to) {
  std::array<char, kChunkBytes> chunk;
  for (;;) {
    ssize_t const got = read(from, chunk.data(), chunk.size());
    if (got == 0) {
      return Error::kNone;
    }
    if (got < 0) {
      if (errno == EINTR) {
        continue;
      }
      return ErrorFromErrno(errno);
    }
    if (!WriteAll(to, chunk.data(), static_cast<std::size_t>(got))) {
      return ErrorFromErrno(errno);
    }
  }
}

// Permissions that the system would give a new file.  Read from the kernel's
// report, because asking umask() means changing it for all threads.
mode_t NewFilePermissions() {
  constexpr mode_t kCautious = 0600;
  FILE* const report = std::fopen("/proc/self/status", "re");
  if (report == nullptr) {
    return kCautious;
  }
  std::array<char, 256> line;
  mode_t permissions = kCautious;
  while (std::fgets(line.data(), line.size(), report) != nullptr) {
    std::string_view const text = line.data();
    constexpr std::string_view kKey = "Umask:";
    if (text.substr(0, kKey.size()) == kKey) {
      unsigned long const mask =
          std::strtoul(line.data() + kKey.size(), nullptr, 8);
      permissions = 0666 & ~static_cast<mode_t>(mask);
      break;
    }
  }
  static_cast<void>(std::fclose(report));  // nothing was written
  return permissions | S_IWUSR;
}

// Gives the new file what people set on the old one.  None of it can stop the
// move: a file that its owner alone can read is better than none.
void TakeOverPermissions(int from, int old_file) {
  struct stat old_status = {};
  mode_t permissions = 0;
  if (old_file >= 0 && fstat(old_file, &old_status) == 0) {
    if (fchown(from, old_status.st_uid, old_status.st_gid) != 0 &&
        fchown(from, static_cast<uid_t>(-1), old_status.st_gid) != 0) {
      old_status.st_mode &= ~static_cast<mode_t>(S_IRWXG);
    }
    permissions = (old_status.st_mode & 0777) | S_IWUSR;
  } else {
    permissions = NewFilePermissions();
  }
  static_cast<void>(fchmod(from, permissions));
}

// Moves where no target is; kExists when one has come up meanwhile.
Error MoveToNewName(std::string const& from, std::string const& to) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(),
                RENAME_NOREPLACE) == 0) {
    return Error::kNone;
  }
  bool const lacks_the_flag = errno == EINVAL || errno == ENOSYS;
  if (lacks_the_flag && rename(from.c_str(), to.c_str()) == 0) {
    return Error::kNone;
  }
  return ErrorFromErrno(errno);
}

// One try.  Both files are claimed from before the move until after it, so
// nobody works on a file that is about to lose its name.
Error TryReplace(std::string const& from, std::string const& to) {
  Descriptor source;
  Error error = OpenClaimed(from, O_RDONLY, 0, kExclusiveClaim, &source);
  if (error != Error::kNone) {
    return error;
  }
  Descriptor target;
  error = OpenClaimed(to, O_RDONLY, 0, kExclusiveClaim, &target);
  if (error == Error::kNotFound) {
    TakeOverPermissions(source.number(), -1);
    return MoveToNewName(from, to);
  }
  if (error != Error::kNone) {
    return error;
  }
  TakeOverPermissions(source.number(), target.number());
  return rename(from.c_str(), to.c_str()) == 0 ? Error::kNone
                                               : ErrorFromErrno(errno);
}

// Where the file from is to go: where to is a symbolic link, the file that it
// names, so that the link survives.  A link into another file system, where no
// move leads, is itself replaced.
std::string MoveTarget(std::string const& from, std::string const& to) {
  struct stat link = {};
  struct stat named = {};
  struct stat source = {};
  if (lstat(to.c_str(), &link) != 0 || !S_ISLNK(link.st_mode) ||
      stat(to.c_str(), &named) != 0 || stat(from.c_str(), &source) != 0 ||
      named.st_dev != source.st_dev) {
    return to;
  }
  std::array<char, PATH_MAX> resolved;
  return realpath(to.c_str(), resolved.data()) != nullptr
             ? std::string(resolved.data())
             : to;
}

}  // namespace

Error Copy(zWString const& from, zWString const& to) {
  std::optional<std::string> const source_path = NativePath(from);
  std::optional<std::string> const target_path = NativePath(to);
  if (!source_path || !target_path) {
    return Error::kNotFound;
  }
  Descriptor source;
  Error error =
      OpenClaimed(*source_path, O_RDONLY, 0, Claim{.reads = true}, &source);
  struct stat status = {};
  if (error == Error::kNone && fstat(source.number(), &status) != 0) {
    error = ErrorFromErrno(errno);
  }
  if (error != Error::kNone) {
    return error;
  }
  // Made for its owner alone until its permissions are set.
  Descriptor target(
      open(target_path->c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!target.IsOpen()) {
    return ErrorFromErrno(errno);
  }
  error = CopyContent(source.number(), target.number());
  // Some file systems have no permissions to set; the copy is as good there.
  static_cast<void>(fchmod(target.number(), status.st_mode & 0777));
  if (!target.Close() && error == Error::kNone) {
    error = ErrorFromErrno(errno);
  }
  if (error != Error::kNone) {
    unlink(target_path->c_str());
  }
  return error;
}

Error Replace(zWString const& from, zWString const& to) {
  std::optional<std::string> const source = NativePath(from);
  std::optional<std::string> const target = NativePath(to);
  if (!source || !target) {
    return Error::kNotFound;
  }
  std::string const final_target = MoveTarget(*source, *target);
  auto const deadline = std::chrono::steady_clock::now() + kPatience;
  Error error = TryReplace(*source, final_target);
  while ((error == Error::kHeld || error == Error::kExists) &&
         std::chrono::steady_clock::now() < deadline) {
    Nap(kPauseMilliseconds);
    error = TryReplace(*source, final_target);
  }
  if (error == Error::kNone) {
    // The move cannot be undone and is whole with or without this step, so a
    // failure of it is no failure of the move.
    static_cast<void>(Guarded(
        false, [&] { return SyncFolderOf(zWString::fromUtf8(final_target)); }));
  }
  return error == Error::kExists ? Error::kHeld : error;
}

}  // namespace tabwerk::platform::os

#endif  // !_WIN32
