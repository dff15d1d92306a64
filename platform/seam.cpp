// The seam as the product links it: every function goes straight to the
// system.
#include "platform/platform.h"

namespace tabwerk::platform {

FILE* OpenFile(zWString const& path, Mode mode, Share share, Error* error) {
  return os::OpenFile(path, mode, share, error);
}

FILE* OpenPlain(char const* path, char const* mode) {
  return os::OpenPlain(path, mode);
}

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

bool Sync(FILE* stream) { return os::Sync(stream); }

bool Close(FILE* stream) { return os::Close(stream); }

bool Exists(zWString const& path) { return os::Exists(path); }

bool SameFile(zWString const& one, zWString const& other) {
  return os::SameFile(one, other);
}

Error Copy(zWString const& from, zWString const& to) {
  return os::Copy(from, to);
}

Error Delete(zWString const& path) { return os::Delete(path); }

Error Replace(zWString const& from, zWString const& to) {
  return os::Replace(from, to);
}

bool SyncFolderOf(zWString const& path) { return os::SyncFolderOf(path); }

bool ClearReadOnly(zWString const& path) { return os::ClearReadOnly(path); }

zWString TempFolder() { return os::TempFolder(); }

zWString MakeTempFile(zWString const& folder, char const* prefix) {
  return os::MakeTempFile(folder, prefix);
}

std::int64_t Now() { return os::Now(); }

void Pause(int milliseconds) { os::Pause(milliseconds); }

void* Allocate(std::size_t size) { return os::Allocate(size); }

void* Reallocate(void* block, std::size_t size) {
  return os::Reallocate(block, size);
}

void Free(void* block) { os::Free(block); }

}  // namespace tabwerk::platform
