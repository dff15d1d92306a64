// What only Windows has: devices by name, streams of Unicode text, paths of
// servers, the system's numbers of errors.
#ifdef _WIN32

#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/os_windows.h"
#include "tests/platform/refusal.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {
namespace {

using platform::Error;
using platform::Mode;

class WindowsFile : public testing::Test {
 protected:
  TempFolder folder_;
};

TEST_F(WindowsFile, DevicesAreRefused) {
  for (Mode const mode : {Mode::kRead, Mode::kUpdate, Mode::kCreate}) {
    EXPECT_EQ(Error::kInputOutput, Refusal(zWString(u"NUL"), mode));
  }
}

TEST_F(WindowsFile, UnicodeStreamsTakeWideText) {
  FILE* const stream = platform::OpenPlain(folder_.PathUtf8("a").c_str(), "wb");
  ASSERT_NE(nullptr, stream);
  _setmode(_fileno(stream), _O_U16TEXT);
  EXPECT_TRUE(platform::WriteText(stream, u"\u00E4\n"));
  EXPECT_TRUE(platform::Close(stream));
  EXPECT_EQ(std::string("\xE4\0\r\0\n\0", 6), folder_.ReadBytes("a"));
}

TEST_F(WindowsFile, LongPathsOfServersTakeTheExtendedForm) {
  std::wstring const name(250, L'a');
  EXPECT_EQ(L"\\\\?\\UNC\\server\\share\\" + name,
            platform::os::ExtendLongPath(L"\\\\server\\share\\" + name));
  EXPECT_EQ(L"\\\\?\\C:\\" + name,
            platform::os::ExtendLongPath(L"\\\\?\\C:\\" + name));
  EXPECT_EQ(L"\\\\server\\share\\a",
            platform::os::ExtendLongPath(L"\\\\server\\share\\a"));
}

TEST_F(WindowsFile, NoPrefixMakesNoTemporaryFile) {
  EXPECT_EQ(zWString(), platform::os::MakeTempFile(folder_.Path(""), nullptr));
}

TEST_F(WindowsFile, FolderIsNotMoved) {
  folder_.MakeFolder("sub");
  EXPECT_EQ(Error::kAccessDenied,
            platform::Replace(folder_.Path("sub"), folder_.Path("a")));
  EXPECT_EQ(std::vector<std::string>{"sub"}, folder_.Names());
}

// "x" is for creation only.
TEST_F(WindowsFile, ReadingKnowsNoNewFiles) {
  folder_.Make("a", "text");
  FILE* const stream =
      platform::OpenPlain(folder_.PathUtf8("a").c_str(), "rbx");
  ASSERT_NE(nullptr, stream);
  EXPECT_TRUE(platform::Close(stream));
}

// It says so of some folders that are shown in a form of their own.
TEST_F(WindowsFile, ReadOnlyFolderIsAFolder) {
  folder_.MakeFolder("sub");
  zWString const path = folder_.Path("sub");
  std::wstring const native = path.toStdWString();
  ASSERT_TRUE(SetFileAttributesW(native.c_str(), FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(Error::kAccessDenied, Refusal(path, Mode::kUpdate));
  SetFileAttributesW(native.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(WindowsFile, ErrorsAreToldApart) {
  constexpr std::pair<DWORD, Error> kCodes[] = {
      {ERROR_SUCCESS, Error::kNone},
      {ERROR_BAD_NETPATH, Error::kNotFound},
      {ERROR_LOCK_VIOLATION, Error::kHeld},
      {ERROR_WRITE_PROTECT, Error::kAccessDenied},
      {ERROR_ALREADY_EXISTS, Error::kExists},
      {ERROR_DISK_FULL, Error::kDiskFull},
      {ERROR_HANDLE_DISK_FULL, Error::kDiskFull},
      {ERROR_CRC, Error::kInputOutput}};
  for (auto const& [code, error] : kCodes) {
    EXPECT_EQ(error, platform::os::ErrorFromSystem(code)) << code;
  }
}

}  // namespace
}  // namespace tabwerk::test

#endif  // _WIN32
