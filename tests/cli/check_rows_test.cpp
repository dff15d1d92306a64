// Each rule for IDs, order, status and index with files that break it.

#include "tests/cli/check_fixture.h"

namespace tabwerk::test {
namespace {

using CheckIdRules = CheckTest;
using CheckOrderRules = CheckTest;
using CheckIndexRules = CheckTest;

constexpr char kCheckedRows[] =
    "integer ID,integer FOLGE,integer STATUS,string NAME\n";

using Rows = std::vector<std::string>;

std::vector<PlainTable> Table(Rows const& rows) {
  return {{"T", kCheckedRows, rows}};
}

Rows const kSound = {"1|1|0|Anna", "2|2|0|Bert", "3|3|0|Cleo"};
Rows const kSoundUser = {"20000|4|0|Dora", "20001|5|0|Emil"};

// The record of T begins at byte 19; its rows stand behind the texts.
std::int64_t RowAt(int row, int column) {
  return 19 + 3 + 2 + 53 + 24 + 3 + 1 + 3 * 5 * 2 + row * 16 + column * 4;
}
std::string At(char const* code, int row, int column) {
  return code + std::string("@") + std::to_string(RowAt(row, column));
}

TEST_F(CheckIdRules, FindDoubleIds) {
  EXPECT_EQ("", Check(File(Table(kSound))));
  EXPECT_EQ(At("W410", 2, 0) + " T row 2 id 1 ID",
            Check(File(Table({"1|1|0|Anna", "2|2|0|Bert", "1|3|0|Cleo"}))));
  EXPECT_EQ(1, ExitCode());
}

TEST_F(CheckIdRules, FindIdsOfTheOtherFile) {
  MakeUser(Table({"20000|4|0|Dora", "19999|5|0|Emil"}));
  EXPECT_EQ("W411", Codes(File(Table(kSound))));
  MakeUser(Table(kSoundUser));
  EXPECT_EQ("W412", Codes(File(Table({"30000|1|0|Anna"}))).substr(0, 4));
  // A database of one file may number its rows as it likes.
  std::filesystem::remove(folder_.folder() / "USER.UDB");
  EXPECT_EQ("", Codes(File(Table({"30000|1|0|Anna"}))));
}

TEST_F(CheckIdRules, FindDoubleIdsInTwoFiles) {
  MakeUser(Table({"20000|4|0|Dora"}));
  EXPECT_EQ("W410 W412",
            Codes(File(Table({"20000|1|0|Anna", "2|2|0|Bert", "3|3|0|C"}))));
}

TEST_F(CheckOrderRules, FindDoublePlaces) {
  EXPECT_EQ(At("W420", 1, 1) + " T row 1 id 2 FOLGE",
            Check(File(Table({"1|1|0|Anna", "2|1|0|Bert", "3|2|0|Cleo"}))));
  // Two inactive rows are not missed.
  EXPECT_EQ("", Codes(File(Table({"1|1|1|Anna", "2|1|1|Bert"}))));
}

TEST_F(CheckOrderRules, FindPlacesOutside) {
  EXPECT_EQ("W421", Codes(File(Table({"1|1|0|A", "2|3|0|B"}))));
  EXPECT_EQ("W421", Codes(File(Table({"1|1|0|A", "2|-1|0|B"}))));
}

TEST_F(CheckOrderRules, FindGaps) {
  EXPECT_EQ("W422 T FOLGE",
            Check(File(Table({"1|1|0|A", "2|3|0|B", "3|0|1|C"}))));
  // The user's rows stand there.
  MakeUser(Table({"20000|2|0|D"}));
  EXPECT_EQ("", Codes(File(Table({"1|1|0|A", "2|3|0|B", "3|0|1|C"}))));
}

TEST_F(CheckOrderRules, NoteActiveRowsWithoutPlace) {
  EXPECT_EQ("N423", Codes(File(Table({"1|1|0|A", "2|0|0|B"}))));
  EXPECT_EQ(0, ExitCode());
  EXPECT_EQ("", Codes(File(Table({"1|0|0|A", "2|0|0|B"}))));
}

TEST_F(CheckOrderRules, NoteRowsThatTheUserHasDisplaced) {
  MakeUser(Table({"20000|1|0|Dora"}));
  EXPECT_EQ("N424@" + std::to_string(RowAt(0, 0)) + " T row 0 id 1",
            Check(File(Table(kSound))));
  EXPECT_EQ(0, ExitCode());
  // The order of the index counts, not that of the files.
  MakeIndex({{1000, 2000},
             {{{{1, 0}, {2, 1}, {3, 2}, {20000, 3}},
               {-1, 3, 0, 1, 2},
               {0, 0, 0, 0}}}});
  EXPECT_EQ("", CheckFiles());
}

TEST_F(CheckOrderRules, FindOddStatus) {
  EXPECT_EQ("", Codes(File(Table({"1|1|0|A", "2|0|1|B", "3|0|2|C"}))));
  EXPECT_EQ("W425", Codes(File(Table({"1|1|0|A", "2|0|3|B"}))));
  EXPECT_EQ("W425", Codes(File(Table({"1|1|0|A", "2|0|-1|B"}))));
}

TEST_F(CheckOrderRules, NoteSystemColumnsOfOtherTypes) {
  EXPECT_EQ("N426@24 T ID\nN426@24 T FOLGE\nN426@24 T STATUS",
            Check(File({{"T", "string ID,real FOLGE,string STATUS\n", {}}})));
  EXPECT_EQ(0, ExitCode());
}

// --- Index -------------------------------------------------------------------

PlainIndex SoundIndex() {
  return {{1000, 2000},
          {{{{1, 0}, {2, 1}, {3, 2}, {20000, 3}, {20001, 4}},
            {1, 3, 0, 2, 4, -1},
            {0, 1, 0, 0, 0}}}};
}

class CheckIndexOf : public CheckTest {
 protected:
  CheckIndexOf() {
    folder_.WriteBytes("main.db", File(Table(kSound)));
    MakeUser(Table(kSoundUser));
  }

  std::string Index(PlainIndex const& index) const {
    MakeIndex(index);
    return CheckFiles();
  }
  std::string IndexBytes(std::string const& bytes) const {
    folder_.WriteBytes("MAIN.idx", bytes);
    return CheckFiles();
  }
  std::string SoundBytes() const {
    MakeIndex(SoundIndex());
    return folder_.ReadBytes("MAIN.idx");
  }
};

TEST_F(CheckIndexOf, ASoundIndexHasNoFindings) {
  EXPECT_EQ("", CheckFiles());  // none is none
  EXPECT_EQ("", Index(SoundIndex()));
  EXPECT_EQ("", CheckFiles(true));
}

TEST_F(CheckIndexOf, AFolderInItsPlaceCannotBeRead) {
  folder_.MakeFolder("MAIN.idx");
  EXPECT_EQ("W430", CheckFiles());
}

// 16 bytes of stamps, then "ID", its count at 18, entries from 22, "FOLGE" at
// 62, its count at 67, entries from 71, "STATUS" at 95, its count at 101.
TEST_F(CheckIndexOf, FindsWhatMakesItUnusable) {
  std::string const sound = SoundBytes();
  auto const with = [&sound](std::size_t at, std::string const& bytes) {
    return std::string(sound).replace(at, bytes.size(), bytes);
  };
  EXPECT_EQ("E431@12", IndexBytes(sound.substr(0, 12)));
  EXPECT_EQ("E431@64 T", IndexBytes(sound.substr(0, 64)));
  EXPECT_EQ("E432@16 T", IndexBytes(with(16, "XD")));
  EXPECT_EQ("E432@95 T", IndexBytes(with(95, "status")));
  EXPECT_EQ("E433@18 T", IndexBytes(with(18, Le32(-1))));
  EXPECT_EQ("E433@101 T", IndexBytes(with(101, Le32(6))));
  EXPECT_EQ("E435@26 T", IndexBytes(with(26, Le32(5))));
  EXPECT_EQ("E435@75 T", IndexBytes(with(75, Le32(-2))));
  EXPECT_EQ("E436@125", IndexBytes(sound + "?"));
  EXPECT_EQ(1, ExitCode());
}

TEST_F(CheckIndexOf, FindsSectionsThatDoNotFit) {
  PlainIndex index = SoundIndex();
  index.tables[0].folge.push_back(-1);
  EXPECT_EQ("E434@18 T", Index(index));
  index.tables[0].status.push_back(0);
  EXPECT_EQ("E437@105 T", Index(index));
}

TEST_F(CheckIndexOf, NotesThatItIsStale) {
  PlainIndex index = SoundIndex();
  index.time_stamps[0] = 999;
  EXPECT_EQ("N438@0", Index(index));
  EXPECT_EQ(0, ExitCode());
}

TEST_F(CheckIndexOf, NotesAWaitingIndex) {
  std::string const sound = SoundBytes();
  folder_.WriteBytes("MAIN.idx.2000", sound);
  EXPECT_EQ("N439", CheckFiles());
  EXPECT_EQ(0, ExitCode());
}

TEST_F(CheckIndexOf, FindsOtherIdsThanTheRows) {
  PlainIndex index = SoundIndex();
  index.tables[0].ids[1] = {4, 1};
  index.tables[0].ids[2] = {5, 2};
  EXPECT_EQ("W440@30 T", Index(index));
  index = SoundIndex();
  index.tables[0].ids.pop_back();
  EXPECT_EQ("W440@117 T", Index(index));
  index = SoundIndex();
  std::swap(index.tables[0].ids[0], index.tables[0].ids[1]);
  EXPECT_EQ("W440@22 T", Index(index));
  index = SoundIndex();
  index.tables[0].ids[1] = index.tables[0].ids[0];
  EXPECT_EQ("W441@30 T", Index(index));
}

TEST_F(CheckIndexOf, FindsARowAtTwoPlaces) {
  PlainIndex index = SoundIndex();
  index.tables[0].folge = {1, 3, 0, 2, 4, 3};
  EXPECT_EQ("W442@91 T", Index(index).substr(0, 9));
}

TEST_F(CheckIndexOf, FindsOddStatus) {
  PlainIndex index = SoundIndex();
  index.tables[0].status[1] = 7;
  EXPECT_EQ("W443@109 T", Index(index));
}

TEST_F(CheckIndexOf, FindsTablesThatDoNotBelongTogether) {
  MakeUser({{"T", "integer ID,real FOLGE\n", {}}});
  EXPECT_EQ("E349@24 T", CheckFiles());
  EXPECT_EQ(1, ExitCode());
  MakeUser({{"T", kCheckedRows, {}}, {"MORE", "integer X\n", {}}});
  EXPECT_EQ("N350", CheckFiles().substr(0, 4));
  EXPECT_EQ(0, ExitCode());
}

// The main file lists its tables backwards when it is read.
TEST_F(CheckIndexOf, TakesTablesInTheOrderOfTheLibrary) {
  folder_.WriteBytes("main.db", File({{"A", "integer ID\n", {"1"}},
                                      {"B", "integer ID\n", {}}}));
  MakeUser({{"A", "integer ID\n", {}}, {"B", "integer ID\n", {}}});
  EXPECT_EQ("",
            Index({{1000, 2000}, {{{}, {-1}, {}}, {{{1, 0}}, {0, -1}, {0}}}}));
}

}  // namespace
}  // namespace tabwerk::test
