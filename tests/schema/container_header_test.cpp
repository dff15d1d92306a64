// The header of a database file.
#include <gtest/gtest.h>

#include <string>

#include "DBDirectory.h"
#include "platform/platform.h"
#include "tests/support/container_bytes.h"
#include "tests/support/hex_file.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {
namespace {

class ContainerHeader : public testing::Test {
 protected:
  // "version V stamp S at P" of a file of these bytes.
  std::string Header(std::string const& bytes) {
    folder_.WriteBytes("H", bytes);
    FILE* const stream = Open();
    short version = -1;
    long long stamp = -1;
    bool const read = DBDirectory::ReadFileVersion(stream, version, stamp);
    auto const place = platform::Tell(stream);
    platform::Close(stream);
    return (read ? "version " : "failed ") + std::to_string(version) +
           " stamp " + std::to_string(stamp) + " at " + std::to_string(place);
  }

  FILE* Open() {
    platform::Error error;
    return platform::OpenFile(folder_.Path("H"), platform::Mode::kRead,
                              platform::Share::kDenyNone, &error);
  }

  TempFolder folder_;
};

TEST_F(ContainerHeader, GoldenFilesAreRecognised) {
  EXPECT_EQ("version 2014 stamp 0 at 0", Header(HexFile("headerless_2014")));
  EXPECT_EQ("version 2016 stamp 0 at 7", Header(HexFile("version_2016")));
  EXPECT_EQ("version 2018 stamp 0 at 7", Header(HexFile("version_2018")));
  EXPECT_EQ("version 2025 stamp 1700000000 at 19",
            Header(HexFile("current_2025")));
}

TEST_F(ContainerHeader, TimeStampBeginsWithVersion2017) {
  std::string const rest = "time" + Le64(5) + "anf";
  EXPECT_EQ("version 2016 stamp 0 at 7", Header("ver2016" + rest));
  EXPECT_EQ("version 2017 stamp 5 at 19", Header("ver2017" + rest));
  EXPECT_EQ("version 9999 stamp 5 at 19", Header("ver9999" + rest));
}

TEST_F(ContainerHeader, RecordInPlaceOfTheTimeTagIsLeft) {
  EXPECT_EQ("version 2016 stamp 0 at 7", Header("ver2016anfT"));
  EXPECT_EQ("version 2017 stamp 0 at 7", Header("ver2017anfT"));
  EXPECT_EQ("version 2018 stamp 0 at 7", Header("ver2018anfT"));
  // Even where the file ends within the four bytes.
  EXPECT_EQ("version 2018 stamp 0 at 7", Header("ver2018anf"));
}

TEST_F(ContainerHeader, TagsAreNotExamined) {
  EXPECT_EQ("version 2025 stamp 7 at 19", Header("xyz2025TIME" + Le64(7)));
  EXPECT_EQ("version 2025 stamp 7 at 19",
            Header("ver2025" + std::string(4, '\0') + Le64(7)));
}

TEST_F(ContainerHeader, TimeStampIsSignedAnd64BitsLong) {
  EXPECT_EQ("version 2025 stamp -1 at 19", Header(CurrentHeader(-1)));
  EXPECT_EQ("version 2025 stamp 9223372036854775807 at 19",
            Header(CurrentHeader(0x7fffffffffffffff)));
}

TEST_F(ContainerHeader, NonsensicalVersionCountsAsItsDecimalPrefix) {
  EXPECT_EQ("version 0 stamp 0 at 7", Header("verABCDtime" + Le64(1)));
  EXPECT_EQ("version 20 stamp 0 at 7", Header("ver20X9time" + Le64(1)));
  EXPECT_EQ("version -99 stamp 0 at 7", Header("ver-99 time" + Le64(1)));
  EXPECT_EQ("version 99 stamp 0 at 7", Header("ver +99time" + Le64(1)));
  EXPECT_EQ("version 0 stamp 0 at 7",
            Header("ver" + std::string(4, '\0') + "time" + Le64(1)));
}

TEST_F(ContainerHeader, FileMayEndAnywhereInTheHeader) {
  EXPECT_EQ("version 0 stamp 0 at 0", Header(""));
  EXPECT_EQ("version 0 stamp 0 at 2", Header("an"));
  EXPECT_EQ("version 2014 stamp 0 at 0", Header("anf"));
  EXPECT_EQ("version 0 stamp 0 at 3", Header("ver"));
  EXPECT_EQ("version 20 stamp 0 at 5", Header("ver20"));
  EXPECT_EQ("version 2025 stamp 0 at 7", Header("ver2025"));
  EXPECT_EQ("version 2025 stamp 0 at 11", Header("ver2025time"));
  // A time stamp that is cut counts as none.
  EXPECT_EQ("version 2025 stamp 0 at 14", Header("ver2025time\1\1\1"));
}

TEST_F(ContainerHeader, ReadsFromTheStartWhereverTheStreamStands) {
  folder_.WriteBytes("H", HexFile("current_2025"));
  FILE* const stream = Open();
  ASSERT_TRUE(platform::Seek(stream, 40, platform::Origin::kStart));
  short version = 0;
  long long stamp = 0;
  EXPECT_TRUE(DBDirectory::ReadFileVersion(stream, version, stamp));
  EXPECT_EQ(2025, version);
  platform::Close(stream);
}

TEST_F(ContainerHeader, NullStreamFails) {
  short version = 0;
  long long stamp = 0;
  EXPECT_FALSE(DBDirectory::ReadFileVersion(nullptr, version, stamp));
}

}  // namespace
}  // namespace tabwerk::test
