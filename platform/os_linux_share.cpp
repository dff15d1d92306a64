// Share modes on Linux.
//
// An opener leaves marks on the file: shared open-file-description locks on
// bytes far behind any data, one byte each for "reads", "writes", "denies
// reading" and "denies writing".  It first sets its own marks and then looks
// whether somebody else has set one that contradicts them.  So two openers
// that contradict each other never both get the file.  Marks are shared locks,
// so a read-only descriptor can set them; the kernel removes them when the
// stream is closed or its process ends, however that happens.
//
// Two openers that look at the same moment could each give way to the other.
// Therefore one that may write also locks a fifth byte, the gate, while it
// sets its marks, and keeps them for a few milliseconds before it gives up;
// one that only reads takes its marks back at once and tries again.
//
// Where a file system knows no such locks (some network and user-space file
// systems), the file opens without protection: a database that cannot be
// opened at all would serve nobody.
#ifndef _WIN32

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <utility>

#include "platform/os_linux.h"

namespace tabwerk::platform::os {
namespace {

// The bytes that carry the marks.
constexpr off_t kGate = off_t{1} << 62;
constexpr off_t kReads = kGate + 1;
constexpr off_t kWrites = kGate + 2;
constexpr off_t kDeniesReading = kGate + 3;
constexpr off_t kDeniesWriting = kGate + 4;

// A reader must outlast a writer that is about to give up.
constexpr int kReaderRounds = 10;
constexpr int kWriterRounds = 3;
constexpr int kGateRounds = 500;
// How often a file may be replaced under an opener before it gives up.
constexpr int kOpenRounds = 50;

enum class LockResult { kDone, kTaken, kUnsupported };

struct flock LockOf(short type, off_t byte, off_t length) {
  struct flock lock = {};
  lock.l_type = type;
  lock.l_whence = SEEK_SET;
  lock.l_start = byte;
  lock.l_len = length;
  return lock;
}

LockResult SetLock(int file, short type, off_t byte, off_t length = 1) {
  struct flock lock = LockOf(type, byte, length);
  while (fcntl(file, F_OFD_SETLK, &lock) != 0) {
    if (errno == EAGAIN || errno == EACCES) {
      return LockResult::kTaken;
    }
    if (errno != EINTR) {
      return LockResult::kUnsupported;
    }
  }
  return LockResult::kDone;
}

bool IsMarkedByOthers(int file, off_t byte) {
  struct flock lock = LockOf(F_WRLCK, byte, 1);
  return fcntl(file, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

LockResult SetMarks(int file, Claim const& claim) {
  struct {
    bool wanted;
    off_t byte;
  } const marks[] = {{claim.reads, kReads},
                     {claim.writes, kWrites},
                     {claim.denies_reading, kDeniesReading},
                     {claim.denies_writing, kDeniesWriting}};
  for (auto const& mark : marks) {
    if (mark.wanted) {
      LockResult const result = SetLock(file, F_RDLCK, mark.byte);
      if (result != LockResult::kDone) {
        return result;
      }
    }
  }
  return LockResult::kDone;
}

void TakeMarksBack(int file) {
  // Unlocking cannot be refused; closing the file would do it as well.
  static_cast<void>(SetLock(file, F_UNLCK, kReads, 4));
}

bool IsContradicted(int file, Claim const& claim) {
  return (claim.reads && IsMarkedByOthers(file, kDeniesReading)) ||
         (claim.writes && IsMarkedByOthers(file, kDeniesWriting)) ||
         (claim.denies_reading && IsMarkedByOthers(file, kReads)) ||
         (claim.denies_writing && IsMarkedByOthers(file, kWrites));
}

// One to four milliseconds, so that two openers fall out of step.
void NapAtRandom() {
  auto const now = std::chrono::steady_clock::now().time_since_epoch().count();
  Nap(1 + static_cast<int>((now >> 4) & 3));
}

// True when the gate is held.  Not holding it (its holder may be stopped) only
// costs the certainty that one of two contenders gets the file.
bool EnterGate(int file) {
  for (int round = 0; round < kGateRounds; ++round) {
    LockResult const result = SetLock(file, F_WRLCK, kGate);
    if (result != LockResult::kTaken) {
      return result == LockResult::kDone;
    }
    Nap(1);
  }
  return false;
}

Error ClaimAsWriter(int file, Claim const& claim) {
  bool const in_gate = EnterGate(file);
  LockResult const marked = SetMarks(file, claim);
  bool contradicted = marked == LockResult::kTaken;
  if (marked == LockResult::kDone) {
    contradicted = IsContradicted(file, claim);
    for (int round = 1; contradicted && round < kWriterRounds; ++round) {
      Nap(2);
      contradicted = IsContradicted(file, claim);
    }
  }
  if (contradicted) {
    TakeMarksBack(file);
  }
  if (in_gate) {
    static_cast<void>(SetLock(file, F_UNLCK, kGate));
  }
  return contradicted ? Error::kHeld : Error::kNone;
}

Error ClaimAsReader(int file, Claim const& claim) {
  for (int round = 0; round < kReaderRounds; ++round) {
    if (round > 0) {
      NapAtRandom();
    }
    LockResult const marked = SetMarks(file, claim);
    if (marked == LockResult::kUnsupported ||
        (marked == LockResult::kDone && !IsContradicted(file, claim))) {
      return Error::kNone;
    }
    TakeMarksBack(file);
  }
  return Error::kHeld;
}

// False once the name leads to another file or to none.
bool IsStillNamed(std::string const& path, struct stat const& opened) {
  struct stat named = {};
  return stat(path.c_str(), &named) == 0 && named.st_dev == opened.st_dev &&
         named.st_ino == opened.st_ino;
}

Error CheckKind(struct stat const& status, bool for_writing) {
  if (S_ISDIR(status.st_mode)) {
    return Error::kAccessDenied;
  }
  if (!S_ISREG(status.st_mode)) {
    return Error::kInputOutput;
  }
  bool const read_only = (status.st_mode & 0222) == 0;
  return for_writing && read_only ? Error::kAccessDenied : Error::kNone;
}

}  // namespace

void Nap(int milliseconds) {
  struct timespec const time = {milliseconds / 1000,
                                milliseconds % 1000 * 1000000L};
  nanosleep(&time, nullptr);
}

Error OpenClaimed(std::string const& path, int flags, unsigned mode,
                  Claim const& claim, Descriptor* file) {
  bool const for_writing = (flags & O_ACCMODE) != O_RDONLY;
  for (int round = 0; round < kOpenRounds; ++round) {
    // O_NONBLOCK: a pipe without a partner must not stop us.
    Descriptor opened(
        open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, mode));
    struct stat status = {};
    if (!opened.IsOpen() || fstat(opened.number(), &status) != 0) {
      return ErrorFromErrno(errno);
    }
    Error error = CheckKind(status, for_writing);
    if (error != Error::kNone) {
      return error;
    }
    error = for_writing ? ClaimAsWriter(opened.number(), claim)
                        : ClaimAsReader(opened.number(), claim);
    // A file may be moved onto the name at any moment; whatever was found out
    // about the old one is worth nothing then.
    if (IsStillNamed(path, status)) {
      if (error == Error::kNone) {
        fcntl(opened.number(), F_SETFL, flags & O_APPEND);
        *file = std::move(opened);
      }
      return error;
    }
  }
  return Error::kHeld;
}

}  // namespace tabwerk::platform::os

#endif  // !_WIN32
