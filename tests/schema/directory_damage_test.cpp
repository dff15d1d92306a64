// Directory numbers that cannot be true, and exhausted memory.
#include <gtest/gtest.h>

#include <string>

#include "DBDirectory.h"
#include "schema/corrupt.h"
#include "schema/directory_access.h"
#include "tests/schema/observers.h"
#include "tests/support/container_bytes.h"
#include "tests/support/fault_platform.h"
#include "tests/support/hex_file.h"
#include "tests/support/new_guard.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {
namespace {

constexpr std::int32_t kMost = 0x7fffffff;
constexpr std::int32_t kLeast = -kMost - 1;

class DirectoryDamage : public testing::Test {
 protected:
  // Two tables and a data area of 40 bytes: GOOD with 3 rows in its first 12
  // bytes, and this one.
  bool Open(RecordBytes const& record,
            std::string const& header = CurrentHeader(1)) {
    RecordBytes const good{.name = "GOOD", .row_count = 3, .row_size = 12};
    folder_.WriteBytes("A", header + test::Record(good) + test::Record(record) +
                                std::string(41, '\0'));
    directory_ = DBDirectory();
    Initialize(&directory_, folder_, {"A"});
    return directory_.OpenDBdatei(0, false, false);
  }

  // "sound", "damaged", or what is wrong with the test itself.
  std::string State(RecordBytes const& record,
                    std::string const& header = CurrentHeader(1)) {
    std::uint64_t const before = CorruptCount();
    if (!Open(record, header)) return "not opened";
    if (Damaged("GOOD")) return "the other table is damaged";
    bool const damaged = Damaged("T");
    if (CorruptCount() != before + (damaged ? 1 : 0)) return "not counted";
    return damaged ? "damaged" : "sound";
  }

  bool Damaged(char const* table) {
    DBDirEntry* const entry =
        directory_.FindTable(table, directory_.GetEntries());
    return DirectoryAccess::Part(*entry, 0)->damaged;
  }

  TempFolder folder_;
  DBDirectory directory_;
};

TEST_F(DirectoryDamage, SoundNumbersAreSound) {
  EXPECT_EQ("sound", State({}));
  EXPECT_EQ("sound", State({.row_count = 7, .row_size = 28, .row_offset = 12}));
  // A block may be longer than its rows, and lie anywhere in the data area.
  EXPECT_EQ("sound", State({.row_count = 1, .row_size = 28}));
  EXPECT_EQ("sound", State({.row_offset = 40, .string_offset = 40}));
  EXPECT_EQ("sound", State({.string_offset = 12, .string_size = 14}));
}

TEST_F(DirectoryDamage, NegativeNumbersAreDamaged) {
  for (std::int32_t const number : {-1, kLeast}) {
    EXPECT_EQ("damaged", State({.row_count = number}));
    EXPECT_EQ("damaged", State({.row_size = number}));
    EXPECT_EQ("damaged", State({.row_offset = number}));
    EXPECT_EQ("damaged", State({.string_offset = number}));
    EXPECT_EQ("damaged", State({.string_size = number}));
  }
}

TEST_F(DirectoryDamage, SmallNegativeOffsetDoesNotBecomeASoundPosition) {
  EXPECT_EQ("damaged",
            State({.row_count = 1, .row_size = 4, .row_offset = -4}));
  EXPECT_EQ("damaged", State({.string_offset = -4, .string_size = 2}));
}

TEST_F(DirectoryDamage, BlocksBeyondTheFileAreDamaged) {
  EXPECT_EQ("damaged",
            State({.row_count = 7, .row_size = 28, .row_offset = 13}));
  EXPECT_EQ("damaged", State({.row_offset = 41}));
  EXPECT_EQ("damaged", State({.string_offset = 13, .string_size = 14}));
  EXPECT_EQ("damaged", State({.string_offset = 41}));
  EXPECT_EQ("damaged", State({.row_size = kMost}));
  EXPECT_EQ("damaged", State({.row_offset = kMost}));
  EXPECT_EQ("damaged", State({.row_size = kMost, .row_offset = kMost}));
  EXPECT_EQ("damaged", State({.string_size = kMost}));
  EXPECT_EQ("damaged", State({.string_offset = kMost}));
}

TEST_F(DirectoryDamage, MoreRowsThanTheBlockHoldsAreDamaged) {
  EXPECT_EQ("damaged", State({.row_count = 2, .row_size = 7}));
  EXPECT_EQ("damaged", State({.row_count = kMost, .row_size = 28}));
  // 2^30 + 1 rows of 4 bytes are 4 bytes in 32 bits.
  EXPECT_EQ("damaged", State({.row_count = (1 << 30) + 1, .row_size = 4}));
}

TEST_F(DirectoryDamage, RowsWithoutBytesAreDamaged) {
  EXPECT_EQ("damaged", State({.definition = "", .row_count = 1}));
  EXPECT_EQ(
      "damaged",
      State({.definition = "unknown X\n", .row_count = kMost, .row_size = 8}));
  EXPECT_EQ("sound", State({.definition = ""}));
}

TEST_F(DirectoryDamage, BlocksThatLieOverEachOtherDoNotAddUpWithoutEnd) {
  // Each of these tables claims all 400 bytes of the data area twice.
  constexpr int kTables = 200;
  std::string records;
  for (int i = 0; i < kTables; ++i) {
    records += test::Record({.name = "T" + std::to_string(i),
                             .definition = "",
                             .row_size = 400,
                             .string_size = 200});
  }
  std::string const file = CurrentHeader(1) + records + std::string(401, '\0');
  folder_.WriteBytes("A", file);
  Initialize(&directory_, folder_, {"A"});
  ASSERT_TRUE(directory_.OpenDBdatei(0, false, false));
  std::size_t claimed = 0;
  for (int i = 0; i < kTables; ++i) {
    claimed += Damaged(("T" + std::to_string(i)).c_str()) ? 0u : 800u;
  }
  EXPECT_TRUE(Damaged("T199"));
  EXPECT_LE(claimed, 3 * file.size());
  EXPECT_LT(3 * file.size(), claimed + 800);
}

// It took the memory of the tables behind it, which then counted as damaged.
TEST_F(DirectoryDamage, TableThatClaimsTheWholeDataAreaTwiceHarmsNoOther) {
  RecordBytes const greedy{.name = "A", .row_size = 1200, .string_size = 600};
  RecordBytes const good{.name = "B", .row_count = 300, .row_size = 1200};
  folder_.WriteBytes("A", CurrentHeader(1) + test::Record(greedy) +
                              test::Record(good) + std::string(1201, '\0'));
  Initialize(&directory_, folder_, {"A"});
  ASSERT_TRUE(directory_.OpenDBdatei(0, false, false));
  EXPECT_FALSE(Damaged("A"));
  EXPECT_FALSE(Damaged("B"));
}

TEST_F(DirectoryDamage, TextsOfVersion2014AreCountedInBytes) {
  EXPECT_EQ("sound", State({.string_offset = 12, .string_size = 28}, ""));
  EXPECT_EQ("sound", State({.string_offset = 12, .string_size = 29}, ""));
  EXPECT_EQ("damaged", State({.string_offset = 12, .string_size = 30}, ""));
  EXPECT_EQ("damaged", State({.string_offset = 12, .string_size = 15}));
}

TEST_F(DirectoryDamage, NumbersStayReadable) {
  ASSERT_TRUE(Open({.row_count = -5, .row_size = 8, .string_size = 77}));
  EXPECT_TRUE(directory_.SelectTabelle("T"));
  EXPECT_EQ(-5, directory_.GetAktuelleTabelle()->GetPartRows(0));
  EXPECT_EQ(77, directory_.GetSizeStrings(0));
  EXPECT_EQ(0, directory_.GetAnzahlZeilen());
}

TEST_F(DirectoryDamage, GreatestOffsetDoesNotOverflow) {
  ASSERT_TRUE(Open({.row_offset = kMost, .string_offset = kMost}));
  directory_.SelectTabelle("T");
  EXPECT_EQ(kMost, directory_.GetOffsetTabelle(0));
  EXPECT_EQ(kMost, directory_.GetOffsetStrings(0));
}

TEST_F(DirectoryDamage, SoundFileOpenedAgainIsSoundAgain) {
  ASSERT_TRUE(Open({.row_size = -1}));
  EXPECT_TRUE(Damaged("T"));
  std::string const file = FileWith({{"T", 2}});
  folder_.WriteBytes("A", file);
  EXPECT_TRUE(directory_.OpenDBdatei(0, false, false));
  EXPECT_FALSE(Damaged("T"));
  EXPECT_EQ("2", PartRows(directory_, "T"));
}

// What a sequence of operations came to when the n-th allocation and all
// behind it failed.
struct Outcome {
  bool fired;
  bool opened;
  int added;
  int written;
};

class DirectoryMemory : public DirectoryDamage {
 protected:
  Outcome Run(int n, FILE* out) {
    DBDefinition* const definition = new DBDefinition("integer ID\n");
    NewGuard guard(n);
    Outcome result{};
    DBDirectory copy(directory_);
    result.opened = directory_.OpenDBdatei(0, false, false);
    result.added = directory_.AddEntry(definition, "NEW", zWString(), false, 0,
                                       0, 0, 0, 0);
    result.written = directory_.WriteToFile(out, 0);
    static_cast<void>(DirectoryAccess::PadParts(directory_, 0));
    static_cast<void>(
        directory_.Merge(directory_.GetEntries(), directory_.GetEntries()));
    static_cast<void>(directory_.GetName());
    static_cast<void>(directory_.GetTimeStamps());
    copy = directory_;
    result.fired = guard.Disarm();
    return result;
  }
};

TEST_F(DirectoryMemory, ExhaustedMemoryIsAFailureResult) {
  folder_.WriteBytes("A", HexFile("current_2025"));
  platform::Error error;
  FILE* const out =
      platform::OpenFile(folder_.Path("OUT"), platform::Mode::kCreate,
                         platform::Share::kDenyAll, &error);
  int n = 1;
  for (bool fired = true; fired; ++n) {
    directory_ = DBDirectory();
    Initialize(&directory_, folder_, {"A"});
    Outcome const outcome = Run(n, out);
    fired = outcome.fired;
    EXPECT_EQ(outcome.opened ? 1 : 0, directory_.GetFileOpen(0)) << n;
    // All of it works once there is memory.
    directory_.ResetEntries();
    EXPECT_TRUE(directory_.OpenDBdatei(0, false, false)) << n;
    EXPECT_EQ("ARTIKEL:1", Tables(directory_)) << n;
    EXPECT_TRUE(fired || outcome.opened) << n;
    EXPECT_TRUE(fired || outcome.added == 1) << n;
    EXPECT_TRUE(fired || outcome.written == 1) << n;
  }
  EXPECT_GT(n, 30);
  platform::Close(out);
}

TEST_F(DirectoryMemory, PlatformMemoryIsNotNeededForDirectories) {
  folder_.WriteBytes("A", HexFile("current_2025"));
  Initialize(&directory_, folder_, {"A"});
  FaultGuard faults;
  faults.FailAt(1, Lasting::kForGood, kMemoryCalls);
  EXPECT_TRUE(directory_.OpenDBdatei(0, false, false));
  EXPECT_FALSE(faults.Fired());
}

}  // namespace
}  // namespace tabwerk::test
