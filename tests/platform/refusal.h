// What opening a file comes to.
#ifndef TABWERK_TESTS_PLATFORM_REFUSAL_H
#define TABWERK_TESTS_PLATFORM_REFUSAL_H

#include <gtest/gtest.h>

#include "platform/platform.h"

namespace tabwerk::test {

// The reason why the path does not open; kNone, and the stream closed, when it
// does.
inline platform::Error Refusal(zWString const& path, platform::Mode mode) {
  auto error = platform::Error::kInputOutput;
  FILE* const stream =
      platform::OpenFile(path, mode, platform::Share::kDenyAll, &error);
  if (stream != nullptr) {
    EXPECT_TRUE(platform::Close(stream));
  }
  return error;
}

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_PLATFORM_REFUSAL_H
