// The part of the system that the C library gives in the same way everywhere.
#include <ctime>

#include "platform/platform.h"

namespace tabwerk::platform::os {

std::size_t Read(FILE* stream, void* bytes, std::size_t size) {
  return size == 0 ? 0 : std::fread(bytes, 1, size, stream);
}

std::size_t Write(FILE* stream, void const* bytes, std::size_t size) {
  return size == 0 ? 0 : std::fwrite(bytes, 1, size, stream);
}

// By seeking: flushing would throw away what a reading stream has buffered on
// Windows, and with it the position.
std::int64_t FileSize(FILE* stream) {
  std::int64_t const position = os::Tell(stream);
  if (position < 0 || !os::Seek(stream, 0, Origin::kEnd)) {
    return -1;
  }
  std::int64_t const size = os::Tell(stream);
  return os::Seek(stream, position, Origin::kStart) ? size : -1;
}

bool Failed(FILE* stream) { return std::ferror(stream) != 0; }

bool Flush(FILE* stream) { return std::fflush(stream) == 0; }

bool Close(FILE* stream) { return std::fclose(stream) == 0; }

std::int64_t Now() { return static_cast<std::int64_t>(std::time(nullptr)); }

}  // namespace tabwerk::platform::os
