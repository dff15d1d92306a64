// What only Linux has: permissions, links, pipes, inherited descriptors.
#ifndef _WIN32

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <random>

#include "platform/numbers.h"
#include "platform/platform.h"
#include "tests/platform/refusal.h"
#include "tests/support/fault_platform.h"
#include "tests/support/random_cases.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {
namespace {

using platform::Error;
using platform::Mode;
using platform::Share;

class LinuxFile : public testing::Test {
 protected:
  ~LinuxFile() override { EXPECT_EQ(0, OpenStreams()); }

  std::string Native(std::string const& name) {
    return folder_.Path(name).toUtf8();
  }

  unsigned Permissions(std::string const& name) {
    struct stat status = {};
    return stat(Native(name).c_str(), &status) == 0 ? status.st_mode & 0777 : 0;
  }

  TempFolder folder_;
};

TEST_F(LinuxFile, PipesAndDevicesAreRefusedWithoutWaiting) {
  ASSERT_EQ(0, mkfifo(Native("pipe").c_str(), 0600));
  for (Mode const mode : {Mode::kRead, Mode::kUpdate, Mode::kCreate}) {
    EXPECT_EQ(Error::kInputOutput, Refusal(folder_.Path("pipe"), mode));
    EXPECT_EQ(Error::kInputOutput, Refusal(zWString(u"/dev/null"), mode));
  }
}

TEST_F(LinuxFile, LoneSurrogateNamesNoFile) {
  zWString const path = folder_.Path("a") + zWString(u"\xD800");
  EXPECT_EQ(Error::kNotFound, Refusal(path, Mode::kCreate));
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(LinuxFile, StreamsAreNotInheritedByPrograms) {
  Error error = Error::kNone;
  FILE* const shared = platform::OpenFile(folder_.Path("a"), Mode::kCreate,
                                          Share::kDenyAll, &error);
  ASSERT_NE(nullptr, shared);
  FILE* const plain = platform::OpenPlain(Native("b").c_str(), "wb");
  ASSERT_NE(nullptr, plain);
  EXPECT_EQ(FD_CLOEXEC, fcntl(fileno(shared), F_GETFD) & FD_CLOEXEC);
  EXPECT_EQ(FD_CLOEXEC, fcntl(fileno(plain), F_GETFD) & FD_CLOEXEC);
  EXPECT_TRUE(platform::Close(shared));
  EXPECT_TRUE(platform::Close(plain));
}

TEST_F(LinuxFile, ReplaceKeepsTheTargetsPermissions) {
  folder_.Make("new", "new");
  folder_.Make("target", "old");
  ASSERT_EQ(0, chmod(Native("new").c_str(), 0600));
  ASSERT_EQ(0, chmod(Native("target").c_str(), 0464));
  EXPECT_EQ(Error::kNone,
            platform::Replace(folder_.Path("new"), folder_.Path("target")));
  EXPECT_EQ(0664u, Permissions("target"));
}

TEST_F(LinuxFile, ReplaceGivesANewFileTheUsualPermissions) {
  mode_t const mask = umask(027);
  zWString const made = platform::MakeTempFile(folder_.Path(""), "dir");
  EXPECT_EQ(Error::kNone, platform::Replace(made, folder_.Path("target")));
  umask(mask);
  EXPECT_EQ(0640u, Permissions("target"));
}

TEST_F(LinuxFile, CopyKeepsThePermissions) {
  folder_.Make("a", "x");
  ASSERT_EQ(0, chmod(Native("a").c_str(), 0604));
  EXPECT_EQ(Error::kNone, platform::Copy(folder_.Path("a"), folder_.Path("b")));
  EXPECT_EQ(0604u, Permissions("b"));
}

TEST_F(LinuxFile, ReplaceWritesThroughALink) {
  folder_.Make("new", "new");
  folder_.Make("real", "old");
  ASSERT_EQ(0, symlink("real", Native("link").c_str()));
  EXPECT_EQ(Error::kNone,
            platform::Replace(folder_.Path("new"), folder_.Path("link")));
  EXPECT_EQ("new", folder_.Content("real"));
  struct stat status = {};
  ASSERT_EQ(0, lstat(Native("link").c_str(), &status));
  EXPECT_TRUE(S_ISLNK(status.st_mode));
}

TEST_F(LinuxFile, DeleteRemovesTheLinkAndNotTheFile) {
  folder_.Make("real", "old");
  ASSERT_EQ(0, symlink("real", Native("link").c_str()));
  EXPECT_EQ(Error::kNone, platform::Delete(folder_.Path("link")));
  EXPECT_EQ("old", folder_.Content("real"));
}

TEST_F(LinuxFile, TempFolderFollowsTheEnvironment) {
  char const* const before = std::getenv("TMPDIR");
  std::string const saved = before == nullptr ? "" : before;
  setenv("TMPDIR", folder_.folder().c_str(), 1);
  EXPECT_EQ(folder_.Path(""), platform::TempFolder());
  setenv("TMPDIR", "relative", 1);
  EXPECT_EQ(zWString(u"/tmp/"), platform::TempFolder());
  setenv("TMPDIR", "/no such folder", 1);
  EXPECT_EQ(zWString(u"/tmp/"), platform::TempFolder());
  unsetenv("TMPDIR");
  EXPECT_EQ(zWString(u"/tmp/"), platform::TempFolder());
  if (before != nullptr) {
    setenv("TMPDIR", saved.c_str(), 1);
  }
}

TEST_F(LinuxFile, OpenerFollowsAReplacedName) {
  zWString const path = folder_.Make("a", "old");
  Error error = Error::kNone;
  FILE* const old =
      platform::OpenFile(path, Mode::kUpdate, Share::kDenyAll, &error);
  ASSERT_NE(nullptr, old);
  folder_.Make("b", "new");
  ASSERT_EQ(0, rename(Native("b").c_str(), Native("a").c_str()));
  EXPECT_EQ(Error::kNone, Refusal(path, Mode::kUpdate));
  EXPECT_TRUE(platform::Close(old));
}

// A random test begins anew with the next seed after so many.
constexpr int kTexts = 100;

// A random decimal text around the interesting lengths and exponents.
std::string RandomDecimal(std::mt19937* random) {
  std::string text = (*random)() % 2 != 0 ? "-" : "";
  std::size_t const length = 1 + (*random)() % 40;
  std::size_t const point = (*random)() % 45;
  for (std::size_t index = 0; index < length; ++index) {
    if (index == point) {
      text += '.';
    }
    text += static_cast<char>('0' + (*random)() % 10);
  }
  int const exponent = static_cast<int>((*random)() % 720) - 360;
  return text + "e" + std::to_string(exponent);
}

// Judges texts that make_text makes.
void AgreeWithTheSystemsOwn(std::string (*make_text)(std::mt19937* random)) {
  JudgeRandomly(20'000, kTexts, [make_text](std::uint32_t seed) {
    std::mt19937 random(seed);
    for (int i = 0; i < kTexts; ++i) {
      std::string const text = make_text(&random);
      ASSERT_EQ(std::strtod(text.c_str(), nullptr),
                platform::ParseReal(zWString::fromLatin1(text).view()))
          << text;
    }
  });
}

TEST(LinuxNumbers, RandomOnesAgreeWithTheSystemsOwn) {
  AgreeWithTheSystemsOwn(&RandomDecimal);
}

// A random hexadecimal text around the interesting lengths and exponents.
std::string RandomHexadecimal(std::mt19937* random) {
  std::string text = "0x";
  std::size_t const length = 1 + (*random)() % 24;
  std::size_t const point = (*random)() % 30;
  for (std::size_t index = 0; index < length; ++index) {
    if (index == point) {
      text += '.';
    }
    text += "0123456789abcdeF08"[(*random)() % 18];
  }
  int const exponent = static_cast<int>((*random)() % 2300) - 1150;
  return text + "p" + std::to_string(exponent);
}

TEST(LinuxNumbers, RandomHexadecimalOnesAgreeWithTheSystemsOwn) {
  AgreeWithTheSystemsOwn(&RandomHexadecimal);
}

}  // namespace
}  // namespace tabwerk::test

#endif  // !_WIN32
