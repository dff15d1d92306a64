// The platform seam of the fuzz targets: whatever an input names, nothing
// outside the private folder is opened, made, moved or removed.
//
// It is linked with platform/seam_streams.cpp.  Nothing waits for the disk or
// for other programs: durability is tested elsewhere, and both would cost most
// of the time.
#include <filesystem>
#include <string>

#include "fuzz/fuzz_support.h"
#include "platform/platform.h"

namespace tabwerk {
namespace {

int open_streams = 0;

bool Reachable(zWString const& path) {
  auto const utf8 = path.toUtf8();
  return fuzz::PrivateFolder::Get().Holds(
      std::filesystem::path(std::u8string(utf8.begin(), utf8.end())));
}

FILE* Opened(FILE* stream) {
  open_streams += stream != nullptr ? 1 : 0;
  return stream;
}

}  // namespace

int fuzz::OpenStreams() { return open_streams; }

namespace platform {

FILE* OpenFile(zWString const& path, Mode mode, Share share, Error* error) {
  if (Reachable(path)) return Opened(os::OpenFile(path, mode, share, error));
  *error = Error::kNotFound;
  return nullptr;
}

FILE* OpenPlain(char const* path, char const* mode) {
  return path != nullptr && Reachable(zWString::fromUtf8(path))
             ? Opened(os::OpenPlain(path, mode))
             : nullptr;
}

bool Sync(FILE* stream) { return os::Flush(stream); }

bool Close(FILE* stream) {
  --open_streams;
  return os::Close(stream);
}

bool Exists(zWString const& path) {
  return Reachable(path) && os::Exists(path);
}

bool SameFile(zWString const& one, zWString const& other) {
  return Reachable(one) && Reachable(other) && os::SameFile(one, other);
}

Error Copy(zWString const& from, zWString const& to) {
  return Reachable(from) && Reachable(to) ? os::Copy(from, to)
                                          : Error::kNotFound;
}

Error Delete(zWString const& path) {
  return Reachable(path) ? os::Delete(path) : Error::kNotFound;
}

Error Replace(zWString const& from, zWString const& to) {
  return Reachable(from) && Reachable(to) ? os::Replace(from, to)
                                          : Error::kNotFound;
}

bool SyncFolderOf(zWString const& path) { return Reachable(path); }

bool ClearReadOnly(zWString const& path) {
  return Reachable(path) && os::ClearReadOnly(path);
}

zWString TempFolder() {
  return zWString(fuzz::PrivateFolder::Get().TemporaryFiles().u16string());
}

zWString MakeTempFile(zWString const& folder, char const* prefix) {
  return Reachable(folder) ? os::MakeTempFile(folder, prefix) : zWString();
}

void Pause(int milliseconds) { (void)milliseconds; }

}  // namespace platform
}  // namespace tabwerk
