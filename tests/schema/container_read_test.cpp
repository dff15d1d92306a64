// Reading the directory of a database file.
#include <gtest/gtest.h>

#include <string>

#include "DBDirectory.h"
#include "platform/platform.h"
#include "schema/corrupt.h"
#include "schema/directory_access.h"
#include "tests/schema/observers.h"
#include "tests/support/container_bytes.h"
#include "tests/support/fault_platform.h"
#include "tests/support/hex_file.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {
namespace {

class ContainerRead : public testing::Test {
 protected:
  ~ContainerRead() override {
    directory_ = DBDirectory();
    EXPECT_EQ(0, OpenStreams());
  }

  // Opens a file of these bytes as the only file of a fresh directory.
  bool Open(std::string const& bytes) {
    directory_ = DBDirectory();
    folder_.WriteBytes("A", bytes);
    Initialize(&directory_, folder_, {"A"});
    return directory_.OpenDBdatei(0, false, false);
  }

  std::string Layout() {
    directory_.SelectTabelle("ARTIKEL");
    return test::Layout(*directory_.GetDefinition());
  }

  TempFolder folder_;
  DBDirectory directory_;
};

constexpr char kArtikelLayout[] =
    "ID:2@0 FOLGE:2@4 STATUS:2@8 NAME:3@12 PREIS:1@16 size 24";

TEST_F(ContainerRead, HeaderlessFileCountsTextsInBytes) {
  ASSERT_TRUE(Open(HexFile("headerless_2014")));
  EXPECT_EQ("ARTIKEL:1", Tables(directory_));
  EXPECT_EQ(kArtikelLayout, Layout());
  EXPECT_EQ("rows 2 in 48@121 texts 18@103", Numbers(directory_, "ARTIKEL"));
  EXPECT_EQ(2, directory_.GetCharFactor());
  EXPECT_EQ((std::vector<long long>{0}), directory_.GetTimeStamps());
}

TEST_F(ContainerRead, VersionBelow2017HasNoTimeStamp) {
  ASSERT_TRUE(Open(HexFile("version_2016")));
  EXPECT_EQ(kArtikelLayout, Layout());
  EXPECT_EQ("rows 2 in 48@128 texts 9@110", Numbers(directory_, "ARTIKEL"));
  EXPECT_EQ(1, directory_.GetCharFactor());
  EXPECT_EQ((std::vector<long long>{0}), directory_.GetTimeStamps());
}

TEST_F(ContainerRead, LaterVersionMayHaveNoTimeStamp) {
  ASSERT_TRUE(Open(HexFile("version_2018")));
  EXPECT_EQ(kArtikelLayout, Layout());
  EXPECT_EQ("rows 2 in 48@128 texts 9@110", Numbers(directory_, "ARTIKEL"));
  EXPECT_EQ(1, directory_.GetCharFactor());
  EXPECT_EQ((std::vector<long long>{0}), directory_.GetTimeStamps());
}

TEST_F(ContainerRead, CurrentVersionHasATimeStamp) {
  ASSERT_TRUE(Open(HexFile("current_2025")));
  EXPECT_EQ(kArtikelLayout, Layout());
  EXPECT_EQ("rows 2 in 48@140 texts 9@122", Numbers(directory_, "ARTIKEL"));
  EXPECT_EQ(1, directory_.GetCharFactor());
  EXPECT_EQ((std::vector<long long>{1700000000}), directory_.GetTimeStamps());
}

TEST_F(ContainerRead, Digits2014BehindTheTagMeanSizesInBytes) {
  ASSERT_TRUE(Open("ver2014" + HexFile("headerless_2014")));
  EXPECT_EQ("rows 2 in 48@128 texts 18@110", Numbers(directory_, "ARTIKEL"));
  EXPECT_EQ(2, directory_.GetCharFactor());
}

TEST_F(ContainerRead, ListIsInReverseRecordOrder) {
  ASSERT_TRUE(Open(FileWith({{"T1", 1}, {"T2", 2}, {"T3", 3}})));
  EXPECT_EQ("T3:1 T2:1 T1:1", Tables(directory_));
  EXPECT_STREQ("T2", directory_.GetEntries()->GetNext()->GetName());
  EXPECT_EQ(directory_.GetEntries(),
            directory_.GetEntries()->GetNext()->GetPrevious());
  EXPECT_EQ(nullptr, directory_.GetEntries()->GetPrevious());
}

TEST_F(ContainerRead, OffsetsBecomeAbsolute) {
  std::string const file = FileWith({{"T1", 3}, {"T2", 2}});
  ASSERT_TRUE(Open(file));
  std::string const start = std::to_string(file.size() - 20);
  std::string const behind = std::to_string(file.size() - 8);
  EXPECT_EQ("rows 3 in 12@" + start + " texts 0@" + start,
            Numbers(directory_, "T1"));
  EXPECT_EQ("rows 2 in 8@" + behind + " texts 0@" + behind,
            Numbers(directory_, "T2"));
}

TEST_F(ContainerRead, ReadFromFileLeavesOffsetsRelative) {
  Open("");
  std::string const file = FileWith({{"T1", 3}, {"T2", 2}});
  folder_.WriteBytes("A", file);
  EXPECT_TRUE(directory_.ReadFromFile(directory_.GetFile(0), 0));
  EXPECT_EQ("rows 2 in 8@12 texts 0@12", Numbers(directory_, "T2"));
  TablePart const& part = *DirectoryAccess::Part(*directory_.GetEntries(), 0);
  EXPECT_EQ(2, part.file_rows);
  // The stream stands at the data area.
  EXPECT_EQ(static_cast<std::int64_t>(file.size()) - 20,
            platform::Tell(directory_.GetFile(0)));
}

TEST_F(ContainerRead, TableWithoutFieldsHasAnEmptyDefinition) {
  RecordBytes record;
  record.name = "T";
  record.definition = "";
  ASSERT_TRUE(Open(CurrentHeader(1) + Record(record) + kNul));
  EXPECT_EQ("T:1", Tables(directory_));
  directory_.SelectTabelle("T");
  EXPECT_EQ("size 0", test::Layout(*directory_.GetDefinition()));
}

TEST_F(ContainerRead, NameOf63CharactersIsRead) {
  std::string const name(63, 'N');
  ASSERT_TRUE(Open(FileWith({{name, 1}})));
  EXPECT_EQ(name + ":1", Tables(directory_));
}

TEST_F(ContainerRead, NameWithoutNulEndsAfter64Bytes) {
  std::string file = FileWith({{std::string(64, 'N'), 0}});
  file.erase(19 + 3 + 64, 1);  // the NUL
  ASSERT_TRUE(Open(file));
  EXPECT_EQ(std::string(63, 'N') + ":1", Tables(directory_));
  directory_.SelectTabelle(std::string(63, 'N').c_str());
  EXPECT_EQ("ID:2@0 size 4", test::Layout(*directory_.GetDefinition()));
}

TEST_F(ContainerRead, DefinitionWithoutNulEndsAfter16384Bytes) {
  std::string definition = "integer ID\n";
  definition.append(16384 - definition.size(), ' ');
  std::string file = FileWith({{"T", 0, definition}});
  file.erase(19 + 3 + 2 + 16384, 1);  // the NUL
  ASSERT_TRUE(Open(file));
  directory_.SelectTabelle("T");
  EXPECT_EQ("ID:2@0 size 4", test::Layout(*directory_.GetDefinition()));
}

TEST_F(ContainerRead, LongNameSpoilsTheRecord) {
  EXPECT_FALSE(Open(FileWith({{std::string(64, 'N'), 0}})));
}

TEST_F(ContainerRead, RecordWithoutStartOrEndFails) {
  for (bool const at_start : {true, false}) {
    RecordBytes good;
    good.name = "T";
    RecordBytes bad = good;
    (at_start ? bad.start : bad.end) = "xyz";
    std::uint64_t const before = CorruptCount();
    EXPECT_FALSE(Open(CurrentHeader(1) + Record(good) + Record(bad) + kNul));
    EXPECT_EQ(before + 1, CorruptCount());
    EXPECT_STREQ(
        at_start ? "start of a directory record" : "end of a directory record",
        LastCorruptPlace());
    EXPECT_EQ("", Tables(directory_));
    EXPECT_EQ(0, directory_.GetFileOpen(0));
    EXPECT_NE(nullptr, directory_.GetFile(0));
  }
}

TEST_F(ContainerRead, FirstFileWithoutTablesFails) {
  EXPECT_FALSE(Open(CurrentHeader(1) + kNul));
  EXPECT_FALSE(Open(""));
  EXPECT_EQ(0, directory_.GetFileOpen(0));
}

TEST_F(ContainerRead, ManyTablesAreRead) {
  std::vector<TableRows> tables;
  for (int i = 0; i < 5000; ++i) tables.push_back({"T" + std::to_string(i)});
  ASSERT_TRUE(Open(FileWith(tables)));
  EXPECT_TRUE(directory_.SelectTabelle("T0"));
  EXPECT_EQ(nullptr, directory_.GetAktuelleTabelle()->GetNext());
  EXPECT_STREQ("T4999", directory_.GetEntries()->GetName());
}

TEST_F(ContainerRead, FileOrStreamThatDoesNotExistFails) {
  Open(HexFile("current_2025"));
  directory_.ResetEntries();
  EXPECT_FALSE(directory_.ReadFromFile(nullptr, 0));
  EXPECT_FALSE(directory_.ReadFromFile(directory_.GetFile(0), 1));
  EXPECT_FALSE(directory_.ReadFromFile(directory_.GetFile(0), -1));
  EXPECT_TRUE(directory_.ReadFromFile(directory_.GetFile(0), 0));
}

// Opens a damaged file and looks at whatever came of it.  What is not damaged
// must lie in the file.
class ContainerDamage : public ContainerRead {
 protected:
  void Examine(std::string const& bytes, std::string const& what) {
    if (!Open(bytes)) {
      EXPECT_EQ("", Tables(directory_)) << what;
      return;
    }
    EXPECT_NE("", Tables(directory_)) << what;
    for (DBDirEntry* it = directory_.GetEntries(); it != nullptr;
         it = it->GetNext()) {
      TablePart const& part = *DirectoryAccess::Part(*it, 0);
      if (part.damaged) continue;
      auto const size = static_cast<std::int64_t>(bytes.size());
      auto const factor = directory_.GetCharFactor();
      EXPECT_LE(part.row_count * it->GetDefinition()->GetMemorySize(),
                part.row_block_size)
          << what;
      EXPECT_LE(std::int64_t{part.row_block_offset} + part.row_block_size, size)
          << what;
      EXPECT_LE(part.string_block_offset +
                    std::int64_t{part.string_block_size / factor} * 2,
                size)
          << what;
    }
  }
};

constexpr char const* kGoldenFiles[] = {"headerless_2014", "version_2016",
                                        "version_2018", "current_2025",
                                        "user_2025"};

TEST_F(ContainerDamage, FileIsCutAtEveryLength) {
  for (char const* name : kGoldenFiles) {
    std::string const whole = HexFile(name);
    for (std::size_t length = 0; length < whole.size(); ++length) {
      std::string const what = name + (" cut at " + std::to_string(length));
      Examine(whole.substr(0, length), what);
      // With its last byte gone the row block cannot be whole.
      bool const has_table = Tables(directory_) == "ARTIKEL:1";
      EXPECT_EQ(has_table, Numbers(directory_, "ARTIKEL").ends_with("damaged"))
          << what;
    }
  }
}

TEST_F(ContainerDamage, EveryByteIsFlipped) {
  for (char const* name : kGoldenFiles) {
    std::string const whole = HexFile(name);
    for (std::size_t place = 0; place < whole.size(); ++place) {
      for (int const mask : {0x01, 0x80, 0xFF}) {
        std::string bytes = whole;
        bytes[place] = static_cast<char>(bytes[place] ^ mask);
        Examine(bytes, name + (" flipped at " + std::to_string(place)));
      }
    }
  }
}

}  // namespace
}  // namespace tabwerk::test
