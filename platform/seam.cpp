// The seam as the product links it: what names files, ends their use or waits
// goes straight to the system.
#include "platform/platform.h"

namespace tabwerk::platform {

FILE* OpenFile(zWString const& path, Mode mode, Share share, Error* error) {
  return os::OpenFile(path, mode, share, error);
}

FILE* OpenPlain(char const* path, char const* mode) {
  return os::OpenPlain(path, mode);
}

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

void Pause(int milliseconds) { os::Pause(milliseconds); }

}  // namespace tabwerk::platform
