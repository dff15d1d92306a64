// Writing the header and the directory of a database file.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "DBDirectory.h"
#include "platform/platform.h"
#include "schema/directory_access.h"
#include "tests/schema/observers.h"
#include "tests/support/container_bytes.h"
#include "tests/support/fault_platform.h"
#include "tests/support/hex_file.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {
namespace {

constexpr char kArtikel[] =
    "integer ID,integer FOLGE,integer STATUS,string NAME,real PREIS\n";
constexpr std::size_t kDataAreaSize = 18 + 48;  // of the golden file

class ContainerWrite : public testing::Test {
 protected:
  ContainerWrite() { Initialize(&directory_, folder_, {"A", "B"}); }
  ~ContainerWrite() override {
    directory_ = DBDirectory();
    EXPECT_EQ(0, OpenStreams());
  }

  TablePart* Add(char const* name, char const* definition) {
    directory_.AddEntry(new DBDefinition(definition), name, folder_.Path("A"),
                        false, 0, 0, 0, 0, 0);
    DBDirEntry* last = directory_.GetEntries();
    while (last->GetNext() != nullptr) last = last->GetNext();
    return DirectoryAccess::Part(*last, 0);
  }

  void AddArtikel() {
    TablePart* const part = Add("ARTIKEL", kArtikel);
    part->row_count = 2;
    part->reserved = 5;
    part->row_block_size = 48;
    part->row_block_offset = 18;
    part->string_block_size = 9;
  }

  FILE* Create() {
    platform::Error error;
    return platform::OpenFile(folder_.Path("OUT"), platform::Mode::kCreate,
                              platform::Share::kDenyAll, &error);
  }

  // Result of WriteToFile.
  int Write(std::size_t file = 0) {
    FILE* const stream = Create();
    int const result = directory_.WriteToFile(stream, file);
    platform::Close(stream);
    return result;
  }

  // What was written, the time stamp replaced by that of the golden file.
  std::string Written() {
    std::string bytes = folder_.ReadBytes("OUT");
    if (bytes.size() >= 19) bytes.replace(11, 8, Le64(1700000000));
    return bytes;
  }

  TempFolder folder_;
  DBDirectory directory_;
};

TEST_F(ContainerWrite, DirectoryIsThatOfTheGoldenFile) {
  AddArtikel();
  EXPECT_EQ(1, Write());
  std::string const golden = HexFile("current_2025");
  EXPECT_EQ(golden.substr(0, golden.size() - kDataAreaSize), Written());
}

TEST_F(ContainerWrite, StreamStandsBehindTheDirectory) {
  AddArtikel();
  FILE* const stream = Create();
  ASSERT_TRUE(platform::Seek(stream, 50, platform::Origin::kStart));
  EXPECT_EQ(1, directory_.WriteToFile(stream, 0));
  EXPECT_EQ(122, platform::Tell(stream));
  platform::Close(stream);
}

TEST_F(ContainerWrite, EmptyDirectoryIsHeaderAndZeroByte) {
  EXPECT_EQ(1, Write());
  EXPECT_EQ(CurrentHeader(1700000000) + kNul, Written());
}

TEST_F(ContainerWrite, TimeStampIsTheCurrentSecond) {
  auto const before = platform::Now();
  EXPECT_EQ(1, Write());
  std::string const stamp = folder_.ReadBytes("OUT").substr(11, 8);
  auto const after = platform::Now();
  EXPECT_TRUE(stamp == Le64(before) || stamp == Le64(after));
}

TEST_F(ContainerWrite, TimeStampIsGreaterThanTheLastOne) {
  DirectoryAccess::Files(directory_)[0].time_stamp = 5000000000;
  EXPECT_EQ(1, Write());
  EXPECT_EQ(Le64(5000000001), folder_.ReadBytes("OUT").substr(11, 8));
  // The record keeps the stamp of the file as it was read.
  EXPECT_EQ((std::vector<long long>{5000000000, 0}),
            directory_.GetTimeStamps());
}

TEST_F(ContainerWrite, GreatestTimeStampDoesNotOverflow) {
  DirectoryAccess::Files(directory_)[0].time_stamp =
      std::numeric_limits<std::int64_t>::max();
  EXPECT_GE(platform::Now(), DirectoryAccess::NextTimeStamp(directory_, 0));
}

TEST_F(ContainerWrite, TimeStampMayBeChosen) {
  FILE* const stream = Create();
  EXPECT_TRUE(DirectoryAccess::WriteContainer(directory_, stream, 0, 77));
  platform::Close(stream);
  EXPECT_EQ(CurrentHeader(77) + kNul, folder_.ReadBytes("OUT"));
}

TEST_F(ContainerWrite, TablesAreWrittenInListOrder) {
  Add("T1", "integer ID\n");
  Add("T2", "LONG ID\n");
  EXPECT_EQ(1, Write());
  EXPECT_EQ(CurrentHeader(1700000000) + Record({.name = "T1"}) +
                Record({.name = "T2"}) + kNul,
            Written());
}

TEST_F(ContainerWrite, FileThatIsReadAndWrittenIsReversed) {
  folder_.WriteBytes("A", FileWith({{"T1", 0}, {"T2", 0}}));
  ASSERT_TRUE(directory_.OpenDBdatei(0, false, false));
  directory_.AdjustOffset(-DirectoryAccess::Files(directory_)[0].data_start, 0);
  EXPECT_EQ(1, Write());
  EXPECT_EQ(CurrentHeader(1700000000) + Record({.name = "T2"}) +
                Record({.name = "T1"}) + kNul,
            Written());
}

TEST_F(ContainerWrite, TableWithoutFieldsHasAnEmptyDefinition) {
  Add("T", "");
  EXPECT_EQ(1, Write());
  EXPECT_EQ(CurrentHeader(1700000000) +
                Record({.name = "T", .definition = ""}) + kNul,
            Written());
}

TEST_F(ContainerWrite, NameOf63CharactersReadsBack) {
  std::string const name(63, 'N');
  Add(name.c_str(), "integer ID\n");
  EXPECT_EQ(1, Write());
  DBDirectory reader;
  Initialize(&reader, folder_, {"OUT"});
  EXPECT_TRUE(reader.OpenDBdatei(0, false, false));
  EXPECT_EQ(name + ":1", Tables(reader));
}

TEST_F(ContainerWrite, PartOfThatFileIsWritten) {
  Add("T", "integer ID\n");
  ASSERT_TRUE(DirectoryAccess::PadParts(directory_, 1));
  DirectoryAccess::Part(*directory_.GetEntries(), 1)->row_count = 7;
  EXPECT_EQ(1, Write(1));
  EXPECT_EQ(
      CurrentHeader(1700000000) + Record({.name = "T", .row_count = 7}) + kNul,
      Written());
}

TEST_F(ContainerWrite, LeavesNoCurrentTable) {
  AddArtikel();
  ASSERT_TRUE(directory_.SelectTabelle("ARTIKEL"));
  EXPECT_EQ(1, Write());
  EXPECT_EQ(nullptr, directory_.GetAktuelleTabelle());
}

TEST_F(ContainerWrite, NullStreamFails) {
  AddArtikel();
  EXPECT_EQ(0, directory_.WriteToFile(nullptr, 0));
}

TEST_F(ContainerWrite, TableWithoutThatPartFails) {
  AddArtikel();
  EXPECT_EQ(0, Write(1));
}

TEST_F(ContainerWrite, WithoutTablesTheHeaderOfAnyFileIsWritten) {
  EXPECT_EQ(1, Write(99));
  AddArtikel();
  EXPECT_EQ(0, Write(99));
}

TEST_F(ContainerWrite, NamelessEntryFails) {
  directory_.AddEntry(new DBDefinition, "", folder_.Path("A"), false, 0, 0, 0,
                      0, 0);
  EXPECT_EQ(0, Write());
  ASSERT_TRUE(DirectoryAccess::PadParts(directory_, 0));
  EXPECT_EQ(0, Write());
}

TEST_F(ContainerWrite, DefinitionThatWouldNotReadBackFails) {
  std::string const blank = "real " + std::string(64, 'N') + ",integer A\n";
  Add("T", blank.c_str());
  EXPECT_EQ(0, Write());
}

TEST_F(ContainerWrite, UnknownFieldReadsBack) {
  Add("T", "float X,integer A\n");
  EXPECT_EQ(1, Write());
}

TEST_F(ContainerWrite, DefinitionFitsUpToTheLimit) {
  // 1,170 fields of 14 characters, the last one longer: 16,383 characters.
  std::string text;
  for (int i = 0; i < 1169; ++i) text += "integer ABCDE,";
  std::string const last = "integer " + std::string(8, 'Z');
  Add("T", (text + last + "\n").c_str());
  ASSERT_EQ(16383u, text.size() + last.size() + 1);
  EXPECT_EQ(1, Write());
  DBDirectory reader;
  Initialize(&reader, folder_, {"OUT"});
  EXPECT_TRUE(reader.OpenDBdatei(0, false, false));
  EXPECT_TRUE(reader.SelectTabelle("T"));
  EXPECT_EQ(4680, reader.GetDefinition()->GetMemorySize());
  reader.CloseDBdatei();

  // Read from "LONG", such a text is short enough; written it is too long.
  directory_.ResetEntries();
  Add("T", (text + "LONG " + std::string(9, 'Z') + "\n").c_str());
  EXPECT_EQ(0, Write());
}

TEST_F(ContainerWrite, DefinitionThatGrowsFarBeyondTheLimitFails) {
  std::string text;
  for (int i = 0; i < 2000; ++i) text += "LONG A,";
  Add("T", (text + "LONG B\n").c_str());
  EXPECT_EQ(0, Write());
}

TEST_F(ContainerWrite, RowsWithoutBytesFail) {
  Add("T", "")->row_count = 1;
  EXPECT_EQ(0, Write());
}

TEST_F(ContainerWrite, EveryFailingCallGivesZero) {
  for (int i = 0; i < 3000; ++i) {
    Add("ANY", "integer ID\n");  // more than one piece
  }
  std::int64_t n = 1;
  for (;; ++n) {
    FILE* const stream = Create();
    FaultGuard faults;
    faults.FailAt(n);
    int const result = directory_.WriteToFile(stream, 0);
    bool const fired = faults.Fired();
    faults.Disarm();
    platform::Close(stream);
    EXPECT_EQ(fired ? 0 : 1, result) << n;
    if (!fired) break;
  }
  EXPECT_GE(n, 4);
}

}  // namespace
}  // namespace tabwerk::test
