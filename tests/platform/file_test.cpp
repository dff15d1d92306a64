// Streams and simple file services.
#include <gtest/gtest.h>

#include "platform/platform.h"
#include "tests/platform/refusal.h"
#include "tests/support/fault_platform.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {
namespace {

using platform::Error;
using platform::Mode;
using platform::Origin;
using platform::Share;

class PlatformFile : public testing::Test {
 protected:
  ~PlatformFile() override { EXPECT_EQ(0, OpenStreams()); }

  FILE* Open(zWString const& path, Mode mode) {
    error_ = Error::kInputOutput;
    return platform::OpenFile(path, mode, Share::kDenyAll, &error_);
  }

  static std::string ReadSome(FILE* stream, std::size_t size) {
    std::string bytes(size, '\0');
    bytes.resize(platform::Read(stream, bytes.data(), size));
    return bytes;
  }

  static bool WriteText(FILE* stream, std::string_view text) {
    return platform::Write(stream, text.data(), text.size()) == text.size();
  }

  TempFolder folder_;
  Error error_ = Error::kNone;
};

TEST_F(PlatformFile, MissingFileIsNotFound) {
  EXPECT_EQ(Error::kNotFound, Refusal(folder_.Path("none"), Mode::kRead));
  EXPECT_EQ(Error::kNotFound, Refusal(folder_.Path("none"), Mode::kUpdate));
  EXPECT_EQ(Error::kNotFound, Refusal(folder_.Path("no/file"), Mode::kCreate));
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(PlatformFile, EmptyPathIsNotFound) {
  EXPECT_EQ(Error::kNotFound, Refusal(zWString(), Mode::kRead));
  EXPECT_EQ(Error::kNotFound, Refusal(zWString(), Mode::kCreate));
  EXPECT_FALSE(platform::Exists(zWString()));
}

TEST_F(PlatformFile, PathWithNulIsRefusedNotCut) {
  folder_.Make("a", "x");
  zWString const path = folder_.Path("a") + zWString(std::u16string(2, u'\0'));
  EXPECT_EQ(Error::kNotFound, Refusal(path, Mode::kRead));
  EXPECT_EQ(Error::kNotFound, Refusal(path, Mode::kCreate));
  EXPECT_EQ(Error::kNotFound, platform::Delete(path));
  EXPECT_EQ(Error::kNotFound, platform::Copy(path, folder_.Path("b")));
  EXPECT_EQ(Error::kNotFound, platform::Copy(folder_.Path("a"), path));
  EXPECT_EQ(Error::kNotFound, platform::Replace(folder_.Path("a"), path));
  EXPECT_EQ(Error::kNotFound, platform::Replace(path, folder_.Path("a")));
  EXPECT_FALSE(platform::Exists(path));
  EXPECT_FALSE(platform::ClearReadOnly(path));
  EXPECT_EQ("x", folder_.Content("a"));
}

TEST_F(PlatformFile, FolderDoesNotOpen) {
  folder_.MakeFolder("sub");
  EXPECT_EQ(Error::kAccessDenied, Refusal(folder_.Path("sub"), Mode::kRead));
  EXPECT_EQ(Error::kAccessDenied, Refusal(folder_.Path("sub"), Mode::kUpdate));
  EXPECT_EQ(Error::kAccessDenied, Refusal(folder_.Path("sub"), Mode::kCreate));
  EXPECT_EQ(nullptr,
            platform::OpenPlain(folder_.Path("sub").toUtf8().c_str(), "rb"));
  EXPECT_FALSE(platform::ClearReadOnly(folder_.Path("sub")));
}

TEST_F(PlatformFile, ReadOnlyFileOpensForReadingOnly) {
  zWString const path = folder_.Make("a", "x");
  folder_.SetReadOnly("a", true);
  EXPECT_EQ(Error::kNone, Refusal(path, Mode::kRead));
  EXPECT_EQ(Error::kAccessDenied, Refusal(path, Mode::kUpdate));
  EXPECT_EQ(Error::kAccessDenied, Refusal(path, Mode::kCreate));
  EXPECT_EQ(Error::kAccessDenied, Refusal(path, Mode::kCreateKeep));
  EXPECT_EQ("x", folder_.Content("a"));
}

TEST_F(PlatformFile, CreationEmptiesTheFile) {
  for (Mode const mode : {Mode::kCreate, Mode::kCreateUpdate}) {
    zWString const path = folder_.Make("a", "long content");
    FILE* const stream = Open(path, mode);
    ASSERT_NE(nullptr, stream);
    EXPECT_EQ(0, platform::FileSize(stream));
    EXPECT_TRUE(WriteText(stream, "new"));
    EXPECT_TRUE(platform::Close(stream));
    EXPECT_EQ("new", folder_.Content("a"));
  }
}

TEST_F(PlatformFile, CreationForKeepingLeavesTheContent) {
  zWString const path = folder_.Make("a", "long content");
  FILE* const stream = Open(path, Mode::kCreateKeep);
  ASSERT_NE(nullptr, stream);
  EXPECT_EQ("long", ReadSome(stream, 4));
  EXPECT_TRUE(platform::Seek(stream, 0, Origin::kStart));
  EXPECT_TRUE(WriteText(stream, "LONG"));
  EXPECT_TRUE(platform::Close(stream));
  EXPECT_EQ("LONG content", folder_.Content("a"));
}

TEST_F(PlatformFile, CreationMakesAMissingFile) {
  EXPECT_EQ(Error::kNone, Refusal(folder_.Path("a"), Mode::kCreate));
  EXPECT_EQ(Error::kNone, Refusal(folder_.Path("b"), Mode::kCreateUpdate));
  EXPECT_EQ(Error::kNone, Refusal(folder_.Path("c"), Mode::kCreateKeep));
  EXPECT_EQ((std::vector<std::string>{"a", "b", "c"}), folder_.Names());
}

TEST_F(PlatformFile, CreationOnlyWrites) {
  FILE* const stream = Open(folder_.Path("a"), Mode::kCreate);
  ASSERT_NE(nullptr, stream);
  EXPECT_TRUE(WriteText(stream, "x"));
  EXPECT_TRUE(platform::Seek(stream, 0, Origin::kStart));
  EXPECT_EQ("", ReadSome(stream, 1));
  EXPECT_TRUE(platform::Close(stream));
}

TEST_F(PlatformFile, BytesPassUnchanged) {
  std::string const bytes("\r\n\n\x1A\0\xFF", 6);
  FILE* stream = Open(folder_.Path("a"), Mode::kCreate);
  ASSERT_NE(nullptr, stream);
  EXPECT_TRUE(WriteText(stream, bytes));
  EXPECT_TRUE(platform::Close(stream));
  EXPECT_EQ(bytes, folder_.Content("a"));
  stream = Open(folder_.Path("a"), Mode::kRead);
  ASSERT_NE(nullptr, stream);
  EXPECT_EQ(bytes, ReadSome(stream, 100));
  EXPECT_FALSE(platform::Failed(stream));
  EXPECT_TRUE(platform::Close(stream));
}

TEST_F(PlatformFile, SizeCountsBufferedOutputAndKeepsThePosition) {
  FILE* const stream = Open(folder_.Make("a", "0123456789"), Mode::kUpdate);
  ASSERT_NE(nullptr, stream);
  EXPECT_EQ("012", ReadSome(stream, 3));
  EXPECT_EQ(10, platform::FileSize(stream));
  EXPECT_EQ("345", ReadSome(stream, 3));
  EXPECT_TRUE(platform::Seek(stream, 0, Origin::kEnd));
  EXPECT_TRUE(WriteText(stream, "ab"));
  EXPECT_EQ(12, platform::FileSize(stream));
  EXPECT_TRUE(WriteText(stream, "c"));
  EXPECT_TRUE(platform::Close(stream));
  EXPECT_EQ("0123456789abc", folder_.Content("a"));
}

TEST_F(PlatformFile, SeeksBeyondFourGigabytes) {
  FILE* const stream = Open(folder_.Path("a"), Mode::kCreateUpdate);
  ASSERT_NE(nullptr, stream);
  constexpr std::int64_t kFar = 5'000'000'000;
  EXPECT_TRUE(platform::Seek(stream, kFar, Origin::kStart));
  EXPECT_EQ(kFar, platform::Tell(stream));
  EXPECT_TRUE(platform::Seek(stream, -1, Origin::kCurrent));
  EXPECT_EQ(kFar - 1, platform::Tell(stream));
  EXPECT_FALSE(platform::Seek(stream, -1, Origin::kStart));
  EXPECT_EQ(0, platform::FileSize(stream));
  EXPECT_TRUE(platform::Close(stream));
}

TEST_F(PlatformFile, FlushAndSyncHandOutputToTheSystem) {
  FILE* const stream = platform::OpenFile(folder_.Path("a"), Mode::kCreate,
                                          Share::kDenyNone, &error_);
  ASSERT_NE(nullptr, stream);
  EXPECT_TRUE(WriteText(stream, "one"));
  EXPECT_TRUE(platform::Flush(stream));
  EXPECT_EQ("one", folder_.Content("a"));
  EXPECT_TRUE(WriteText(stream, "two"));
  EXPECT_TRUE(platform::Sync(stream));
  EXPECT_EQ("onetwo", folder_.Content("a"));
  EXPECT_TRUE(platform::Close(stream));
  EXPECT_TRUE(platform::SyncFolderOf(folder_.Path("a")));
}

TEST_F(PlatformFile, NamesMayHoldAnyLetter) {
  std::string const name =
      "Gr\xC3\xB6\xC3\x9F"
      "e \xE6\x97\xA5 \xF0\x9F\x98\x80.UDB";
  EXPECT_EQ(Error::kNone, Refusal(folder_.Path(name), Mode::kCreate));
  EXPECT_TRUE(platform::Exists(folder_.Path(name)));
  EXPECT_EQ(std::vector<std::string>{name}, folder_.Names());
  FILE* const stream =
      platform::OpenPlain(folder_.Path(name).toUtf8().c_str(), "rb");
  ASSERT_NE(nullptr, stream);
  EXPECT_TRUE(platform::Close(stream));
}

TEST_F(PlatformFile, LongPathsWork) {
  std::string const name(220, 'x');
  EXPECT_EQ(Error::kNone, Refusal(folder_.Path(name), Mode::kCreate));
  EXPECT_TRUE(platform::Exists(folder_.Path(name)));
  EXPECT_EQ(Error::kNone,
            platform::Copy(folder_.Path(name), folder_.Path(name + "y")));
  EXPECT_EQ(Error::kNone,
            platform::Replace(folder_.Path(name + "y"), folder_.Path(name)));
  EXPECT_EQ(Error::kNone, platform::Delete(folder_.Path(name)));
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(PlatformFile, PlainStreamsOpenAsTheModeSays) {
  std::string const path = folder_.Path("a").toUtf8();
  EXPECT_EQ(nullptr, platform::OpenPlain(path.c_str(), "rb"));
  FILE* stream = platform::OpenPlain(path.c_str(), "wb");
  ASSERT_NE(nullptr, stream);
  EXPECT_TRUE(WriteText(stream, "x"));
  EXPECT_TRUE(platform::Close(stream));
  stream = platform::OpenPlain(path.c_str(), "rt");
  ASSERT_NE(nullptr, stream);
  EXPECT_EQ("x", ReadSome(stream, 9));
  EXPECT_TRUE(platform::Close(stream));
  EXPECT_EQ(nullptr, platform::OpenPlain("", "rb"));
  EXPECT_EQ(nullptr, platform::OpenPlain(nullptr, "rb"));
  EXPECT_EQ(nullptr, platform::OpenPlain(path.c_str(), nullptr));
  EXPECT_EQ(nullptr,
            platform::OpenPlain(std::string(100'000, 'a').c_str(), "rb"));
}

TEST_F(PlatformFile, ExistsTakesNoPatterns) {
  folder_.Make("a", "");
  EXPECT_TRUE(platform::Exists(folder_.Path("a")));
  EXPECT_FALSE(platform::Exists(folder_.Path("b")));
  EXPECT_FALSE(platform::Exists(folder_.Path("*")));
  EXPECT_FALSE(platform::Exists(folder_.Path("?")));
}

TEST_F(PlatformFile, CopiesWhatIsLargerThanOnePiece) {
  std::string content;
  for (int i = 0; i < 50000; ++i) content += std::to_string(i);
  zWString const from = folder_.Make("a", content);
  EXPECT_EQ(Error::kNone, platform::Copy(from, folder_.Path("b")));
  EXPECT_TRUE(content == folder_.Content("b"));
}

TEST_F(PlatformFile, ABegunSyncChangesNothing) {
  std::string const content(20000, 'x');
  folder_.Make("a", content);
  auto error = Error::kNone;
  FILE* const stream =
      platform::OpenFile(folder_.Path("a"), platform::Mode::kUpdate,
                         platform::Share::kDenyNone, &error);
  ASSERT_NE(nullptr, stream);
  platform::BeginSync(stream, 100, 12000);
  platform::BeginSync(stream, 100, 10);  // no whole page
  platform::BeginSync(stream, 90000, 8192);
  EXPECT_EQ(0, platform::Tell(stream));
  EXPECT_TRUE(platform::Sync(stream));
  EXPECT_TRUE(platform::Close(stream));
  EXPECT_TRUE(content == folder_.Content("a"));
}

TEST_F(PlatformFile, CopyNeverOverwrites) {
  zWString const from = folder_.Make("a", "content");
  EXPECT_EQ(Error::kNone, platform::Copy(from, folder_.Path("b")));
  EXPECT_EQ("content", folder_.Content("b"));
  folder_.Make("b", "old");
  EXPECT_EQ(Error::kExists, platform::Copy(from, folder_.Path("b")));
  EXPECT_EQ("old", folder_.Content("b"));
  EXPECT_EQ(Error::kNotFound,
            platform::Copy(folder_.Path("none"), folder_.Path("c")));
  EXPECT_EQ((std::vector<std::string>{"a", "b"}), folder_.Names());
}

TEST_F(PlatformFile, CopyTakesReadOnlyAlong) {
  zWString const from = folder_.Make("a", "content");
  folder_.SetReadOnly("a", true);
  EXPECT_EQ(Error::kNone, platform::Copy(from, folder_.Path("b")));
  EXPECT_TRUE(folder_.IsReadOnly("b"));
  EXPECT_TRUE(platform::ClearReadOnly(folder_.Path("b")));
  EXPECT_FALSE(folder_.IsReadOnly("b"));
  EXPECT_TRUE(platform::ClearReadOnly(folder_.Path("b")));
  EXPECT_FALSE(platform::ClearReadOnly(folder_.Path("none")));
}

TEST_F(PlatformFile, CopyOfAnExclusivelyHeldFileIsRefused) {
  zWString const from = folder_.Make("a", "content");
  FILE* const stream = Open(from, Mode::kUpdate);
  ASSERT_NE(nullptr, stream);
  EXPECT_EQ(Error::kHeld, platform::Copy(from, folder_.Path("b")));
  EXPECT_TRUE(platform::Close(stream));
  EXPECT_FALSE(platform::Exists(folder_.Path("b")));
}

TEST_F(PlatformFile, DeleteRefusesHeldAndReadOnlyFilesAndFolders) {
  zWString const path = folder_.Make("a", "x");
  FILE* const stream =
      platform::OpenFile(path, Mode::kRead, Share::kDenyNone, &error_);
  ASSERT_NE(nullptr, stream);
  EXPECT_EQ(Error::kHeld, platform::Delete(path));
  EXPECT_TRUE(platform::Close(stream));
  folder_.SetReadOnly("a", true);
  EXPECT_EQ(Error::kAccessDenied, platform::Delete(path));
  folder_.SetReadOnly("a", false);
  folder_.MakeFolder("sub");
  EXPECT_EQ(Error::kAccessDenied, platform::Delete(folder_.Path("sub")));
  EXPECT_EQ(Error::kNone, platform::Delete(path));
  EXPECT_EQ(Error::kNotFound, platform::Delete(path));
}

TEST_F(PlatformFile, TemporaryFilesAreNewAndEmpty) {
  zWString const folder = platform::TempFolder();
  ASSERT_FALSE(folder.isEmpty());
  EXPECT_EQ(folder,
            zSplitPath(folder).GetDrive() + zSplitPath(folder).GetDirectory());
  zWString const first = platform::MakeTempFile(folder, "dta");
  zWString const second = platform::MakeTempFile(folder, "dta");
  EXPECT_NE(first, second);
  for (zWString const& path : {first, second}) {
    EXPECT_EQ("dta", zSplitPath(path).GetFileName().toUtf8().substr(0, 3));
    EXPECT_TRUE(platform::Exists(path));
    EXPECT_EQ(Error::kNone, platform::Delete(path));
  }
  EXPECT_EQ(zWString(), platform::MakeTempFile(folder_.Path("none/"), "dta"));
  EXPECT_EQ(zWString(), platform::MakeTempFile(zWString(), "dta"));
}

TEST_F(PlatformFile, NowIsInThisCentury) {
  EXPECT_LT(1'700'000'000, platform::Now());
  EXPECT_GT(4'102'444'800, platform::Now());
}

}  // namespace
}  // namespace tabwerk::test
