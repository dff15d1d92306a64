// A stream that closes itself.
#ifndef TABWERK_INTERP_STREAM_H
#define TABWERK_INTERP_STREAM_H

#include <cstdio>
#include <memory>

#include "platform/platform.h"

namespace tabwerk {

struct CloseStream {
  void operator()(FILE* stream) const {
    // The result is of no use: only the host can have written to the stream,
    // and a reading one loses nothing.
    static_cast<void>(platform::Close(stream));
  }
};

using StreamHandle = std::unique_ptr<FILE, CloseStream>;

}  // namespace tabwerk

#endif  // TABWERK_INTERP_STREAM_H
