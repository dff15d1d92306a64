// The part of the seam that reaches nothing which is not open already: streams,
// memory and the clock go straight to the system.
#include "platform/platform.h"

namespace tabwerk::platform {

std::size_t Read(FILE* stream, void* bytes, std::size_t size) {
  return os::Read(stream, bytes, size);
}

std::size_t Write(FILE* stream, void const* bytes, std::size_t size) {
  return os::Write(stream, bytes, size);
}

bool WriteText(FILE* stream, std::u16string_view text) {
  return os::WriteText(stream, text);
}

bool Seek(FILE* stream, std::int64_t offset, Origin origin) {
  return os::Seek(stream, offset, origin);
}

std::int64_t Tell(FILE* stream) { return os::Tell(stream); }

std::int64_t FileSize(FILE* stream) { return os::FileSize(stream); }

bool Failed(FILE* stream) { return os::Failed(stream); }

bool Flush(FILE* stream) { return os::Flush(stream); }

void BeginSync(FILE* stream, std::int64_t offset, std::int64_t size) {
  os::BeginSync(stream, offset, size);
}

std::int64_t Now() { return os::Now(); }

void* Allocate(std::size_t size) { return os::Allocate(size); }

void* Reallocate(void* block, std::size_t size) {
  return os::Reallocate(block, size);
}

void Free(void* block) { os::Free(block); }

}  // namespace tabwerk::platform
