// Everything that touches the operating system, in one place.
//
// The rest of the library calls only these functions.  The product links
// platform/seam.cpp and seam_streams.cpp, which forward each one to the system
// (namespace os); a test build links another file in their place that counts
// the calls and can make the N-th one fail.
#ifndef TABWERK_PLATFORM_PLATFORM_H
#define TABWERK_PLATFORM_PLATFORM_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "ztypes.h"

namespace tabwerk::platform {

// Why an operation failed.
enum class Error : std::uint8_t {
  kNone,
  kNotFound,      // no such file or folder
  kHeld,          // another opener's share mode forbids it
  kAccessDenied,  // no permission, or a read-only target
  kExists,        // the target is there and must not be
  kDiskFull,
  kInputOutput,  // everything else
};

// How a file is opened.  All modes are binary.
enum class Mode : std::uint8_t {
  kRead,          // existing file, reading
  kUpdate,        // existing file, reading and writing
  kCreate,        // writing; an existing file is emptied once the lock is held
  kCreateUpdate,  // as kCreate, reading and writing
  kCreateKeep,    // reading and writing; an existing file keeps its content
};

// What an opener denies all other openers, in this process and in others, for
// as long as its stream is open.
enum class Share : std::uint8_t {
  kDenyAll,      // reading and writing
  kDenyWriters,  // writing
  kDenyNone,
};

enum class Origin : std::uint8_t { kStart, kCurrent, kEnd };

// The seam.
#include "platform/functions.inc"

// The system behind it.
namespace os {
// The same functions once more, on purpose.
// NOLINTNEXTLINE(readability-duplicate-include)
#include "platform/functions.inc"
}  // namespace os

}  // namespace tabwerk::platform

#endif  // TABWERK_PLATFORM_PLATFORM_H
