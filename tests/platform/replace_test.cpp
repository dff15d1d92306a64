// Moving a file onto another one.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "platform/platform.h"
#include "tests/support/fault_platform.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {
namespace {

using platform::Error;
using platform::Mode;
using platform::Share;

class PlatformReplace : public testing::Test {
 protected:
  ~PlatformReplace() override { EXPECT_EQ(0, OpenStreams()); }

  FILE* Hold(zWString const& path) {
    Error error = Error::kNone;
    return platform::OpenFile(path, Mode::kRead, Share::kDenyNone, &error);
  }

  TempFolder folder_;
  zWString from_ = folder_.Make("new", "new content");
  zWString to_ = folder_.Path("target");
};

TEST_F(PlatformReplace, TakesTheTargetsPlace) {
  folder_.Make("target", "old");
  EXPECT_EQ(Error::kNone, platform::Replace(from_, to_));
  EXPECT_EQ("new content", folder_.Content("target"));
  EXPECT_EQ(std::vector<std::string>{"target"}, folder_.Names());
}

TEST_F(PlatformReplace, MissingTargetIsMade) {
  EXPECT_EQ(Error::kNone, platform::Replace(from_, to_));
  EXPECT_EQ("new content", folder_.Content("target"));
  EXPECT_EQ(std::vector<std::string>{"target"}, folder_.Names());
}

TEST_F(PlatformReplace, ReadOnlyTargetIsReplacedByAWritableFile) {
  folder_.Make("target", "old");
  folder_.SetReadOnly("target", true);
  EXPECT_EQ(Error::kNone, platform::Replace(from_, to_));
  EXPECT_EQ("new content", folder_.Content("target"));
  EXPECT_FALSE(folder_.IsReadOnly("target"));
}

TEST_F(PlatformReplace, MissingSourceLeavesTheTarget) {
  folder_.Make("target", "old");
  folder_.SetReadOnly("target", true);
  EXPECT_EQ(Error::kNotFound, platform::Replace(folder_.Path("none"), to_));
  EXPECT_EQ("old", folder_.Content("target"));
  EXPECT_TRUE(folder_.IsReadOnly("target"));
}

TEST_F(PlatformReplace, HeldTargetStaysAfterTwoSeconds) {
  folder_.Make("target", "old");
  folder_.SetReadOnly("target", true);
  FILE* const holder = Hold(to_);
  ASSERT_NE(nullptr, holder);
  auto const begin = std::chrono::steady_clock::now();
  EXPECT_EQ(Error::kHeld, platform::Replace(from_, to_));
  auto const time = std::chrono::steady_clock::now() - begin;
  EXPECT_LE(std::chrono::milliseconds(1900), time);
  EXPECT_GE(std::chrono::seconds(4), time);
  EXPECT_TRUE(platform::Close(holder));
  EXPECT_EQ("old", folder_.Content("target"));
  EXPECT_EQ("new content", folder_.Content("new"));
  EXPECT_TRUE(folder_.IsReadOnly("target"));
}

TEST_F(PlatformReplace, HeldSourceIsNotMoved) {
  folder_.Make("target", "old");
  FILE* const holder = Hold(from_);
  ASSERT_NE(nullptr, holder);
  EXPECT_EQ(Error::kHeld, platform::Replace(from_, to_));
  EXPECT_TRUE(platform::Close(holder));
  EXPECT_EQ("old", folder_.Content("target"));
}

TEST_F(PlatformReplace, WaitsForAHolderThatLetsGo) {
  folder_.Make("target", "old");
  Error error = Error::kNone;
  FILE* const holder =
      platform::os::OpenFile(to_, Mode::kRead, Share::kDenyNone, &error);
  ASSERT_NE(nullptr, holder);
  std::thread releaser([holder] {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_TRUE(platform::os::Close(holder));
  });
  EXPECT_EQ(Error::kNone, platform::Replace(from_, to_));
  releaser.join();
  EXPECT_EQ("new content", folder_.Content("target"));
}

TEST_F(PlatformReplace, FolderIsNoTarget) {
  folder_.MakeFolder("target");
  EXPECT_EQ(Error::kAccessDenied, platform::Replace(from_, to_));
  EXPECT_EQ("new content", folder_.Content("new"));
}

// Reads the whole file while others replace it; empty when it did not open.
std::string ReadWhole(zWString const& path) {
  Error error = Error::kNone;
  FILE* const stream =
      platform::os::OpenFile(path, Mode::kRead, Share::kDenyNone, &error);
  if (stream == nullptr) {
    EXPECT_NE(Error::kNotFound, error);
    return std::string();
  }
  std::string text(100, '\0');
  text.resize(platform::os::Read(stream, text.data(), text.size()));
  EXPECT_TRUE(platform::os::Close(stream));
  return text;
}

TEST_F(PlatformReplace, ReadersSeeTheWholeOldOrTheWholeNewFile) {
  folder_.Make("target", std::string(90, 'a'));
  std::thread writer([this] {
    for (char letter = 'b'; letter <= 'z'; ++letter) {
      folder_.Make("new", std::string(90, letter));
      EXPECT_EQ(Error::kNone, platform::os::Replace(from_, to_));
    }
  });
  int reads = 0;
  for (int round = 0; round < 200; ++round) {
    std::string const text = ReadWhole(to_);
    if (!text.empty()) {
      ++reads;
      EXPECT_EQ(std::string(90, text[0]), text);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  writer.join();
  EXPECT_LT(0, reads);
  EXPECT_EQ(std::string(90, 'z'), folder_.Content("target"));
}

}  // namespace
}  // namespace tabwerk::test
