// What Linux refuses: a full disk, a limit, files that are not what they seem.
#ifndef _WIN32

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/os_linux.h"
#include "platform/platform.h"
#include "tests/platform/refusal.h"
#include "tests/support/fault_platform.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {
namespace {

using platform::Error;
using platform::Mode;
namespace os = platform::os;

class LinuxRefusal : public testing::Test {
 protected:
  ~LinuxRefusal() override { EXPECT_EQ(0, OpenStreams()); }

  TempFolder folder_;
};

// A limit of the process that holds as long as the object lives.
class Limit {
 public:
  Limit(__rlimit_resource kind, rlim_t most) : kind_(kind) {
    EXPECT_EQ(0, getrlimit(kind_, &before_));
    rlimit const lower = {most, before_.rlim_max};
    EXPECT_EQ(0, setrlimit(kind_, &lower));
  }
  Limit(Limit const&) = delete;
  Limit& operator=(Limit const&) = delete;
  ~Limit() { EXPECT_EQ(0, setrlimit(kind_, &before_)); }

 private:
  __rlimit_resource kind_;
  rlimit before_ = {};
};

TEST_F(LinuxRefusal, EveryReasonHasAnError) {
  EXPECT_EQ(Error::kNotFound, os::ErrorFromErrno(ENOTDIR));
  EXPECT_EQ(Error::kAccessDenied, os::ErrorFromErrno(EROFS));
  EXPECT_EQ(Error::kExists, os::ErrorFromErrno(EEXIST));
  EXPECT_EQ(Error::kDiskFull, os::ErrorFromErrno(ENOSPC));
  EXPECT_EQ(Error::kDiskFull, os::ErrorFromErrno(EDQUOT));
  EXPECT_EQ(Error::kHeld, os::ErrorFromErrno(EBUSY));
  EXPECT_EQ(Error::kInputOutput, os::ErrorFromErrno(EIO));
}

// It would have counted as success: half a copy, for example.
TEST_F(LinuxRefusal, AFailureWithoutAReasonIsOneAllTheSame) {
  EXPECT_EQ(Error::kInputOutput, os::ErrorFromErrno(0));
}

TEST_F(LinuxRefusal, SyncTellsOfAFullDisk) {
  FILE* const full = os::OpenPlain("/dev/full", "wb");
  ASSERT_NE(nullptr, full);
  EXPECT_EQ(3u, os::Write(full, "abc", 3));
  EXPECT_FALSE(os::Sync(full));
  EXPECT_TRUE(os::Failed(full));
  static_cast<void>(os::Close(full));
}

TEST_F(LinuxRefusal, SyncTellsOfADeviceThatCannotBeWaitedFor) {
  FILE* const null = os::OpenPlain("/dev/null", "wb");
  ASSERT_NE(nullptr, null);
  EXPECT_FALSE(os::Sync(null));
  EXPECT_TRUE(os::Close(null));
}

TEST_F(LinuxRefusal, TextTellsOfAFullDisk) {
  for (char const* const path : {"/dev/null", "/dev/full"}) {
    FILE* const stream = os::OpenPlain(path, "wb");
    ASSERT_NE(nullptr, stream);
    ASSERT_EQ(0, std::setvbuf(stream, nullptr, _IONBF, 0));
    EXPECT_EQ(path == std::string_view("/dev/null"),
              os::WriteText(stream, u"text"));
    static_cast<void>(os::Close(stream));
  }
}

TEST_F(LinuxRefusal, ACopyThatDoesNotFitIsRemoved) {
  zWString const source = folder_.Make("a", std::string(1000, 'x'));
  auto const before = std::signal(SIGXFSZ, SIG_IGN);
  {
    Limit const limit(RLIMIT_FSIZE, 500);
    EXPECT_EQ(Error::kDiskFull, platform::Copy(source, folder_.Path("b")));
  }
  std::signal(SIGXFSZ, before);
  EXPECT_EQ(std::vector<std::string>{"a"}, folder_.Names());
}

TEST_F(LinuxRefusal, ACopyOfWhatCannotBeReadIsRemoved) {
  EXPECT_EQ(Error::kInputOutput,
            platform::Copy(zWString(u"/proc/self/mem"), folder_.Path("b")));
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(LinuxRefusal, WithoutADescriptorNothingOpens) {
  zWString const path = folder_.Make("a", "x");
  Limit const limit(RLIMIT_NOFILE, 0);
  EXPECT_EQ(Error::kInputOutput, Refusal(path, Mode::kRead));
}

TEST_F(LinuxRefusal, ARunningProgramIsNotWrittenTo) {
  EXPECT_EQ(Error::kHeld, Refusal(zWString(u"/proc/self/exe"), Mode::kUpdate));
}

TEST_F(LinuxRefusal, AFileThatCannotBeEmptiedIsNotCreated) {
  int const sealed = memfd_create("sealed", MFD_CLOEXEC | MFD_ALLOW_SEALING);
  ASSERT_LE(0, sealed);
  ASSERT_EQ(1, write(sealed, "x", 1));
  ASSERT_EQ(0, fcntl(sealed, F_ADD_SEALS, F_SEAL_SHRINK));
  auto const path =
      zWString::fromUtf8("/proc/self/fd/" + std::to_string(sealed));
  EXPECT_EQ(Error::kAccessDenied, Refusal(path, Mode::kCreate));
  EXPECT_EQ(0, close(sealed));
}

// A program that locks whole files, for example a backup.
TEST_F(LinuxRefusal, AFileThatAnotherProgramLocksIsHeld) {
  zWString const path = folder_.Make("a", "x");
  int const other = open(path.toUtf8().c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_LE(0, other);
  struct flock whole = {};
  whole.l_type = F_WRLCK;
  whole.l_whence = SEEK_SET;
  ASSERT_EQ(0, fcntl(other, F_OFD_SETLK, &whole));
  EXPECT_EQ(Error::kHeld, Refusal(path, Mode::kUpdate));
  EXPECT_EQ(Error::kHeld, Refusal(path, Mode::kRead));
  EXPECT_EQ(0, close(other));
  EXPECT_EQ(Error::kNone, Refusal(path, Mode::kUpdate));
}

TEST_F(LinuxRefusal, AStreamWithoutPlacesHasNoSize) {
  int ends[2] = {-1, -1};
  ASSERT_EQ(0, pipe(ends));
  FILE* const stream = fdopen(ends[0], "r");
  ASSERT_NE(nullptr, stream);
  EXPECT_EQ(-1, os::FileSize(stream));
  EXPECT_TRUE(os::Close(stream));
  EXPECT_EQ(0, close(ends[1]));
}

TEST_F(LinuxRefusal, WhatStaysReadOnlyIsToldSo) {
  EXPECT_FALSE(platform::ClearReadOnly(zWString(u"/proc/self/status")));
  EXPECT_FALSE(platform::ClearReadOnly(folder_.Path("")));
  EXPECT_FALSE(platform::ClearReadOnly(folder_.Path("none")));
}

TEST_F(LinuxRefusal, NamesThatAreNoneAreRefused) {
  EXPECT_TRUE(os::MakeTempFile(folder_.Path(""), nullptr).isEmpty());
  zWString const none(u"\xD800");
  zWString const file = folder_.Make("a", "x");
  EXPECT_FALSE(platform::SyncFolderOf(none));
  EXPECT_EQ(Error::kNotFound, platform::Copy(file, none));
  EXPECT_EQ(Error::kNotFound, platform::Copy(none, file));
  EXPECT_EQ(Error::kNotFound, platform::Replace(file, none));
  EXPECT_EQ(Error::kNotFound, platform::Replace(none, file));
  EXPECT_EQ("x", folder_.Content("a"));
}

TEST_F(LinuxRefusal, OnlyAFolderThatIsThereIsSynced) {
  EXPECT_TRUE(platform::SyncFolderOf(zWString(u"a")));
  EXPECT_TRUE(platform::SyncFolderOf(zWString(u"/a")));
  EXPECT_FALSE(platform::SyncFolderOf(folder_.Path("none/a")));
  // A file system that has no such step.
  EXPECT_TRUE(platform::SyncFolderOf(zWString(u"/proc/self/a")));
}

TEST_F(LinuxRefusal, OnlyExistingFilesAreTheSame) {
  zWString const one = folder_.Make("a", "x");
  zWString const other = folder_.Make("b", "x");
  zWString const none = folder_.Path("none");
  EXPECT_TRUE(platform::SameFile(one, one));
  EXPECT_FALSE(platform::SameFile(one, other));
  EXPECT_FALSE(platform::SameFile(one, none));
  EXPECT_FALSE(platform::SameFile(none, one));
  EXPECT_FALSE(platform::SameFile(one, zWString()));
  EXPECT_FALSE(platform::SameFile(one, zWString(u"/proc/self/status")));
}

TEST_F(LinuxRefusal, ATempFolderWhoseNameIsNoTextIsNotTaken) {
  char const* const before = std::getenv("TMPDIR");
  std::string const saved = before == nullptr ? "" : before;
  setenv("TMPDIR", (folder_.PathUtf8("") + "/").c_str(), 1);
  EXPECT_EQ(folder_.PathUtf8("") + "/", platform::TempFolder().toUtf8());
  auto const odd = folder_.PathUtf8("") + "\xFF";
  ASSERT_EQ(0, mkdir(odd.c_str(), 0700));
  setenv("TMPDIR", odd.c_str(), 1);
  EXPECT_EQ(zWString(u"/tmp/"), platform::TempFolder());
  setenv("TMPDIR", folder_.Make("file", "x").toUtf8().c_str(), 1);
  EXPECT_EQ(zWString(u"/tmp/"), platform::TempFolder());
  if (before != nullptr) {
    setenv("TMPDIR", saved.c_str(), 1);
  } else {
    unsetenv("TMPDIR");
  }
}

TEST_F(LinuxRefusal, ALinkIntoAnotherFileSystemIsItselfReplaced) {
  folder_.Make("new", "new");
  std::string const link = folder_.PathUtf8("link");
  ASSERT_EQ(0, symlink("/proc/version", link.c_str()));
  EXPECT_EQ(Error::kNone,
            platform::Replace(folder_.Path("new"), folder_.Path("link")));
  struct stat status = {};
  ASSERT_EQ(0, lstat(link.c_str(), &status));
  EXPECT_TRUE(S_ISREG(status.st_mode));
  EXPECT_EQ("new", folder_.Content("link"));
}

TEST_F(LinuxRefusal, ALinkThatLeadsNowhereStays) {
  folder_.Make("new", "new");
  std::string const link = folder_.PathUtf8("link");
  ASSERT_EQ(0, symlink("nowhere", link.c_str()));
  EXPECT_EQ(Error::kHeld,
            platform::Replace(folder_.Path("new"), folder_.Path("link")));
  struct stat status = {};
  ASSERT_EQ(0, lstat(link.c_str(), &status));
  EXPECT_TRUE(S_ISLNK(status.st_mode));
  EXPECT_EQ("new", folder_.Content("new"));
}

// The old file's owner cannot be given to the new one.  Its group can where it
// is the saver's own; a foreign one gets nothing that it had.
TEST_F(LinuxRefusal, AForeignGroupGetsNoRights) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can take somebody else's place";
  }
  constexpr unsigned kNobody = 65534;
  constexpr unsigned kForeign = 65533;
  ASSERT_EQ(0, chmod(folder_.folder().c_str(), 0777));
  for (unsigned const group : {kNobody, kForeign}) {
    zWString const target = folder_.Make("target", "old");
    std::string const path = target.toUtf8();
    ASSERT_EQ(0, chown(path.c_str(), 0, group));
    ASSERT_EQ(0, chmod(path.c_str(), 0664));
    ASSERT_EQ(0, setegid(kNobody));
    ASSERT_EQ(0, seteuid(kNobody));
    EXPECT_EQ(Error::kNone,
              platform::Replace(folder_.Make("new", "new"), target));
    ASSERT_EQ(0, seteuid(0));
    ASSERT_EQ(0, setegid(0));
    struct stat status = {};
    ASSERT_EQ(0, stat(path.c_str(), &status));
    EXPECT_EQ(group == kNobody ? 0664u : 0604u, status.st_mode & 0777);
    EXPECT_EQ(kNobody, status.st_uid);
  }
}

}  // namespace
}  // namespace tabwerk::test

#endif  // !_WIN32
