// What the Linux sources of the platform share among themselves.
#ifndef TABWERK_PLATFORM_OS_LINUX_H
#define TABWERK_PLATFORM_OS_LINUX_H

#ifndef _WIN32

#include <optional>
#include <string>

#include "platform/platform.h"

namespace tabwerk::platform::os {

// An owned file descriptor, closed at the end of its life.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(other.Release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor();

  bool IsOpen() const { return number_ >= 0; }
  int number() const { return number_; }
  // Hands the descriptor to the caller.
  int Release();
  // Closes; false when the system reports lost output.
  bool Close();

 private:
  int number_ = -1;
};

// What an opener does with a file, and what it denies all others.
struct Claim {
  bool reads = false;
  bool writes = false;
  bool denies_reading = false;
  bool denies_writing = false;
};

// Conflicts with every other opener.
constexpr Claim kExclusiveClaim{true, false, true, true};

// The path as the system takes it; nothing when it names no file.
std::optional<std::string> NativePath(zWString const& path);

Error ErrorFromErrno(int number);

// Opens a regular file under the name path with the flags of open() and holds
// the claim on it until the descriptor is closed.  The flags must allow
// reading, which the locks behind a claim need; O_TRUNC must not be among
// them.
Error OpenClaimed(std::string const& path, int flags, unsigned mode,
                  Claim const& claim, Descriptor* file);

// Sleeps.
void Nap(int milliseconds);

}  // namespace tabwerk::platform::os

#endif  // !_WIN32

#endif  // TABWERK_PLATFORM_OS_LINUX_H
