#include "base/file_lock.h"

#include <utility>

#include "platform/guarded.h"
#include "platform/platform.h"

namespace tabwerk {
namespace {

constexpr int kPauseMilliseconds = 20;
constexpr int kTries = 100;

}  // namespace

FILE* OpenPatiently(zWString const& path, platform::Mode mode,
                    platform::Error* error) {
  for (int i = 1;; ++i) {
    auto* const stream =
        platform::OpenFile(path, mode, platform::Share::kDenyAll, error);
    if (stream != nullptr || *error != platform::Error::kHeld || i == kTries) {
      return stream;
    }
    platform::Pause(kPauseMilliseconds);
  }
}

void DeleteLeftover(zWString const& path) noexcept {
  if (path.isEmpty()) return;
  (void)Guarded(platform::Error::kInputOutput,
                [&] { return platform::Delete(path); });
}

FileLock::FileLock(zWString path, Patience patience) : path_(std::move(path)) {
  auto error = platform::Error::kNone;
  stream_ = patience == Patience::kTwoSeconds
                ? OpenPatiently(path_, platform::Mode::kCreate, &error)
                : platform::OpenFile(path_, platform::Mode::kCreate,
                                     platform::Share::kDenyAll, &error);
}

FileLock::~FileLock() {
  if (stream_ == nullptr) return;
  // Not examined: the file is empty.
  (void)platform::Close(stream_);
  DeleteLeftover(path_);
}

}  // namespace tabwerk
