// A lock that keeps several programs from doing the same work at once.
#ifndef TABWERK_BASE_FILE_LOCK_H
#define TABWERK_BASE_FILE_LOCK_H

#include <cstdio>

#include "platform/platform.h"
#include "ztypes.h"

namespace tabwerk {

// Opens a file that is kept from everybody else; waits for up to two seconds
// while another program holds it.
FILE* OpenPatiently(zWString const& path, platform::Mode mode,
                    platform::Error* error);

// For files that are in nobody's way: what cannot be deleted stays.  Nothing
// happens for an empty path.
void DeleteLeftover(zWString const& path) noexcept;

// Holds an empty file that nobody else can open meanwhile, and deletes it at
// its end.  What a program that was killed has left there does not matter.
class FileLock {
 public:
  enum class Patience : bool {
    kNone,
    kTwoSeconds,  // while another program has the lock
  };
  explicit FileLock(zWString path, Patience patience = Patience::kTwoSeconds);
  FileLock(FileLock const&) = delete;
  FileLock& operator=(FileLock const&) = delete;
  ~FileLock();

  bool IsHeld() const { return stream_ != nullptr; }

 private:
  zWString path_;
  FILE* stream_;
};

}  // namespace tabwerk

#endif  // TABWERK_BASE_FILE_LOCK_H
