// The list of tables of a directory.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "DBDirectory.h"
#include "schema/directory_access.h"
#include "tests/schema/observers.h"
#include "tests/support/container_bytes.h"
#include "tests/support/fault_platform.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {
namespace {

class DirectoryTables : public testing::Test {
 protected:
  ~DirectoryTables() override {
    directory_ = DBDirectory();
    EXPECT_EQ(0, OpenStreams());
  }

  // Makes the files A, B, C … of these tables and a directory of them.
  void Make(std::vector<std::vector<TableRows>> const& files) {
    std::vector<std::string> names;
    for (auto const& tables : files) {
      names.push_back(std::string(1, static_cast<char>('A' + names.size())));
      folder_.WriteBytes(names.back(), FileWith(tables));
    }
    Initialize(&directory_, folder_, names);
  }

  // Opens all files: one digit each.
  std::string OpenAll() {
    std::string results;
    for (std::size_t i = 0; i < directory_.GetNumberFiles(); ++i) {
      results += directory_.OpenDBdatei(i, false, false) ? "1" : "0";
    }
    return results;
  }

  int Add(char const* name, int rows = 0, long row_offset = 0,
          long string_offset = 0, std::size_t part = 0) {
    return directory_.AddEntry(new DBDefinition("integer ID\n"), name,
                               zWString(u"A"), false, rows, row_offset, 99,
                               string_offset, part);
  }

  DBDirEntry* Entry(char const* name) {
    return directory_.FindTable(name, directory_.GetEntries());
  }

  TempFolder folder_;
  DBDirectory directory_;
};

TEST_F(DirectoryTables, FirstFileDecidesWhichTablesExist) {
  Make({{{"T1", 1}, {"T2", 2}}, {{"T2", 3}, {"T3", 4}}});
  EXPECT_EQ("11", OpenAll());
  EXPECT_EQ("T2:2 T1:1", Tables(directory_));
  EXPECT_EQ("2 3", PartRows(directory_, "T2"));
  EXPECT_EQ("1", PartRows(directory_, "T1"));
}

TEST_F(DirectoryTables, MissingPartInBetweenIsEmpty) {
  Make({{{"T1", 1}, {"T2", 2}}, {{"T2", 3}}, {{"T1", 4}}});
  EXPECT_EQ("111", OpenAll());
  EXPECT_EQ("T2:2 T1:3", Tables(directory_));
  EXPECT_EQ("1 0 4", PartRows(directory_, "T1"));
  EXPECT_EQ("rows 0 in 0@0 texts 0@0", Numbers(directory_, "T1", 1));
  TablePart const& empty = *DirectoryAccess::Part(*Entry("T1"), 1);
  EXPECT_EQ(directory_.GetFileiName(1), empty.file_name);
  EXPECT_FALSE(empty.loaded);
  EXPECT_FALSE(empty.damaged);
}

TEST_F(DirectoryTables, PartsStayInPlaceWhenListsGrow) {
  Make({{{"T1", 1}}, {{"T1", 2}}, {{"T1", 3}}});
  ASSERT_TRUE(directory_.OpenDBdatei(0, false, false));
  TablePart* const first = DirectoryAccess::Part(*Entry("T1"), 0);
  first->loaded = true;
  EXPECT_TRUE(directory_.OpenDBdatei(1, false, false));
  EXPECT_TRUE(directory_.OpenDBdatei(2, false, false));
  EXPECT_EQ(first, DirectoryAccess::Part(*Entry("T1"), 0));
  EXPECT_TRUE(Entry("T1")->GetPartLoaded(0));
  EXPECT_FALSE(Entry("T1")->GetPartLoaded(1));
}

TEST_F(DirectoryTables, SecondFileMayBeOpenedFirst) {
  Make({{{"T1", 1}, {"T2", 1}}, {{"T2", 2}}});
  EXPECT_TRUE(directory_.OpenDBdatei(1, false, false));
  EXPECT_EQ("0 2", PartRows(directory_, "T2"));
  EXPECT_TRUE(directory_.OpenDBdatei(0, false, false));
  EXPECT_EQ("T2:2", Tables(directory_));
  EXPECT_EQ("1 2", PartRows(directory_, "T2"));
}

TEST_F(DirectoryTables, FileOpenedTwiceReplacesTheNumbersInPlace) {
  Make({{{"T1", 1}, {"T2", 2}, {"T3", 3}}});
  ASSERT_TRUE(directory_.OpenDBdatei(0, false, false));
  TablePart* const part = DirectoryAccess::Part(*Entry("T2"), 0);
  part->loaded = true;
  auto const revision = part->revision;
  folder_.WriteBytes("A", FileWith({{"T2", 5}, {"T1", 4}}));
  EXPECT_TRUE(directory_.OpenDBdatei(0, false, false));
  EXPECT_EQ("T3:1 T2:1 T1:1", Tables(directory_));
  EXPECT_EQ(part, DirectoryAccess::Part(*Entry("T2"), 0));
  EXPECT_EQ(5, part->row_count);
  EXPECT_FALSE(part->loaded);
  EXPECT_LT(revision, part->revision);
  EXPECT_EQ("4", PartRows(directory_, "T1"));
  EXPECT_EQ("0", PartRows(directory_, "T3"));
  std::string const start =
      std::to_string(DirectoryAccess::Files(directory_)[0].data_start);
  EXPECT_EQ("rows 5 in 20@" + start + " texts 0@" + start,
            Numbers(directory_, "T2"));
}

TEST_F(DirectoryTables, LaterFileMayBeEmpty) {
  Make({{{"T1", 1}}, {}, {}});
  folder_.WriteBytes("C", "");
  EXPECT_EQ("111", OpenAll());
  EXPECT_EQ("T1:1", Tables(directory_));
}

TEST_F(DirectoryTables, LaterFileOfAnotherLayoutIsRefused) {
  for (char const* other : {"real ID\n", "string ID\n", "integer ID,real B\n",
                            "integer ID,unknown B\n", ""}) {
    directory_ = DBDirectory();
    Make({{{"T1", 1}, {"T2", 2}}, {{"T1", 1}, {"T2", 0, other}}});
    EXPECT_EQ("10", OpenAll()) << other;
    EXPECT_EQ("T2:1 T1:1", Tables(directory_)) << other;
    EXPECT_EQ(0, directory_.GetFileOpen(1)) << other;
  }
}

TEST_F(DirectoryTables, LaterFileMayNameFieldsOtherwise) {
  Make({{{"T1", 1}}, {{"T1", 2, "LONG NUMMER\n"}}});
  EXPECT_EQ("11", OpenAll());
  EXPECT_STREQ("ID", Entry("T1")->GetDefinition()->GetDefinition()->name);
}

TEST_F(DirectoryTables, TableOfAnotherLayoutThatIsNotUsedIsNoMatter) {
  Make({{{"T1", 1}}, {{"T1", 2}, {"T2", 0, "real X\n"}}});
  EXPECT_EQ("11", OpenAll());
}

TEST_F(DirectoryTables, OfTablesOfOneNameLookUpsFindTheFirstInTheList) {
  Make({{{"T", 1}, {"T", 2}}, {{"T", 3}, {"T", 4}}});
  EXPECT_EQ("11", OpenAll());
  // The last record stands first in the list.
  EXPECT_EQ("T:2 T:1", Tables(directory_));
  EXPECT_EQ("2 4", PartRows(directory_, "T"));
}

TEST_F(DirectoryTables, CharFactorIsTheFilesOwnAndReportsTheLastRead) {
  Make({{{"T", 1}}, {{"T", 1}}});
  RecordBytes const old{.name = "T", .row_count = 1, .row_size = 4};
  folder_.WriteBytes("A", Record(old) + std::string(1, '\0') + Le32(1));
  EXPECT_EQ("11", OpenAll());
  EXPECT_EQ(1, directory_.GetCharFactor());
  EXPECT_EQ(2, DirectoryAccess::Files(directory_)[0].char_factor);
  EXPECT_EQ(1, DirectoryAccess::Files(directory_)[1].char_factor);
}

TEST_F(DirectoryTables, RowsOfAllPartsAreCounted) {
  Make({{{"T1", 10}, {"T2", 1}}, {{"T1", 5}}});
  EXPECT_EQ("11", OpenAll());
  EXPECT_TRUE(directory_.SelectTabelle("T1"));
  EXPECT_EQ(15, directory_.GetAnzahlZeilen());
}

TEST_F(DirectoryTables, AddEntryAppendsATable) {
  EXPECT_EQ(1, Add("T1"));
  EXPECT_EQ(1, Add("T2", 3, 10, 20));
  EXPECT_EQ("T1:1 T2:1", Tables(directory_));
  EXPECT_EQ("rows 3 in 0@10 texts 0@20", Numbers(directory_, "T2"));
  EXPECT_EQ(Entry("T1"), Entry("T2")->GetPrevious());
  EXPECT_EQ(u"A", DirectoryAccess::Part(*Entry("T2"), 0)->file_name.view());
  EXPECT_EQ("ID:2@0 size 4", Layout(*Entry("T2")->GetDefinition()));
  EXPECT_EQ(nullptr, DirectoryAccess::Companion(*Entry("T2")));
}

TEST_F(DirectoryTables, AddEntrySetsTheLoadedFlag) {
  directory_.AddEntry(nullptr, "T", zWString(u"A"), true, 0, 0, 0, 0, 0);
  EXPECT_TRUE(Entry("T")->GetPartLoaded(0));
  EXPECT_EQ("size 0", Layout(*Entry("T")->GetDefinition()));
}

TEST_F(DirectoryTables, EntryWithoutAProperNameStaysNameless) {
  EXPECT_EQ(1, Add(std::string(63, 'N').c_str()));
  EXPECT_EQ(0, Add(std::string(64, 'N').c_str()));
  EXPECT_EQ(0, Add(""));
  EXPECT_EQ(0, Add(nullptr));
  EXPECT_EQ(std::string(63, 'N') + ":1 :0 :0 :0", Tables(directory_));
  EXPECT_EQ("ID:2@0 size 4", Layout(*Entry("")->GetDefinition()));
  EXPECT_EQ(0, Entry("")->GetPartRows(0));
  EXPECT_FALSE(Entry("")->GetPartLoaded(0));
}

TEST_F(DirectoryTables, AddEntryRefusesAPartThatIsNotTheFirst) {
  EXPECT_EQ(0, Add("T", 0, 0, 0, 1));
  EXPECT_EQ("", Tables(directory_));
}

TEST_F(DirectoryTables, FindTableStartsWhereItIsTold) {
  Add("T1");
  Add("T2");
  DBDirEntry* const second = Entry("T2");
  EXPECT_EQ(second, directory_.FindTable("T2", second));
  EXPECT_EQ(nullptr, directory_.FindTable("T1", second));
  EXPECT_EQ(nullptr, directory_.FindTable("t2", directory_.GetEntries()));
  EXPECT_EQ(nullptr, directory_.FindTable("T2", nullptr));
  EXPECT_EQ(nullptr, directory_.FindTable(nullptr, second));
}

TEST_F(DirectoryTables, FailedSelectionLeavesNoCurrentTable) {
  Add("T1", 4);
  EXPECT_TRUE(directory_.SelectTabelle("T1"));
  EXPECT_EQ(Entry("T1"), directory_.GetAktuelleTabelle());
  EXPECT_EQ(4, directory_.GetAnzahlZeilen());
  EXPECT_FALSE(directory_.SelectTabelle("T2"));
  EXPECT_EQ(nullptr, directory_.GetAktuelleTabelle());
  EXPECT_TRUE(directory_.SelectTabelle("T1"));
  EXPECT_FALSE(directory_.SelectTabelle(nullptr));
  EXPECT_EQ(nullptr, directory_.GetAktuelleTabelle());
}

TEST_F(DirectoryTables, WithoutACurrentTableAccessorsGiveNothing) {
  Add("T1", 4, 5, 6);
  directory_.SetOffsetTabelle(1, 0);
  directory_.SetOffsetStrings(1, 0);
  EXPECT_EQ(nullptr, directory_.GetDefinition());
  EXPECT_EQ(0, directory_.GetAnzahlZeilen());
  EXPECT_EQ(0, directory_.GetOffsetTabelle(0));
  EXPECT_EQ(0, directory_.GetOffsetStrings(0));
  EXPECT_EQ(0, directory_.GetSizeStrings(0));
  EXPECT_EQ("rows 4 in 0@5 texts 0@6", Numbers(directory_, "T1"));
}

TEST_F(DirectoryTables, OffsetsOfTheCurrentTable) {
  Add("T1");
  ASSERT_TRUE(directory_.SelectTabelle("T1"));
  DirectoryAccess::Part(*Entry("T1"), 0)->string_block_size = 9;
  directory_.SetOffsetTabelle(7, 0);
  directory_.SetOffsetStrings(8, 0);
  directory_.SetOffsetTabelle(7, 1);
  directory_.SetOffsetStrings(8, 1);
  EXPECT_EQ(7, directory_.GetOffsetTabelle(0));
  EXPECT_EQ(8, directory_.GetOffsetStrings(0));
  EXPECT_EQ(9, directory_.GetSizeStrings(0));
  EXPECT_EQ(0, directory_.GetOffsetTabelle(1));
  EXPECT_EQ(0, directory_.GetOffsetStrings(1));
  EXPECT_EQ(0, directory_.GetSizeStrings(1));
}

TEST_F(DirectoryTables, NumbersOver32BitsChangeNothing) {
  if (sizeof(long) == 4) GTEST_SKIP() << "long has no such numbers here";
  auto const big = static_cast<long>(std::int64_t{1} << 32);
  Add("T1", 0, 5, 6);
  ASSERT_TRUE(directory_.SelectTabelle("T1"));
  directory_.SetOffsetTabelle(big, 0);
  directory_.SetOffsetStrings(-big, 0);
  EXPECT_EQ(0, directory_.AdjustOffset(big, 0));
  EXPECT_EQ(0, Add("T2", 0, big, 0));
  EXPECT_EQ(0, Add("T2", 0, 0, big));
  EXPECT_EQ("T1:1", Tables(directory_));
  EXPECT_EQ("rows 0 in 0@5 texts 0@6", Numbers(directory_, "T1"));
}

TEST_F(DirectoryTables, AdjustOffsetMovesOnePartOfEveryTable) {
  Add("T1", 0, 5, 6);
  Add("T2", 0, 7, 8);
  directory_.SelectTabelle("T1");
  EXPECT_EQ(1, directory_.AdjustOffset(100, 0));
  EXPECT_EQ(nullptr, directory_.GetAktuelleTabelle());
  EXPECT_EQ(1, directory_.AdjustOffset(1000, 1));
  EXPECT_EQ("rows 0 in 0@105 texts 0@106", Numbers(directory_, "T1"));
  EXPECT_EQ("rows 0 in 0@107 texts 0@108", Numbers(directory_, "T2"));
}

TEST_F(DirectoryTables, AdjustOffsetDoesNotOverflow) {
  Add("T1", 0, 0x7ffffff0, 5);
  Add("T2", 0, 5, 0x7fffffff);
  EXPECT_EQ(1, directory_.AdjustOffset(100, 0));
  EXPECT_EQ("rows 0 in 0@2147483647 texts 0@105 damaged",
            Numbers(directory_, "T1"));
  EXPECT_EQ("rows 0 in 0@105 texts 0@2147483647 damaged",
            Numbers(directory_, "T2"));
}

// A table that remembers its rows learns that there are none any more.
TEST_F(DirectoryTables, AdjustOffsetThatDamagesAPartChangesItsRevision) {
  Add("T1", 0, 0x7ffffff0, 5);
  Add("T2", 0, 5, 5);
  auto const revision = [this](char const* name) {
    return DirectoryAccess::Part(*Entry(name), 0)->revision;
  };
  auto const damaged = revision("T1");
  auto const sound = revision("T2");
  EXPECT_EQ(1, directory_.AdjustOffset(100, 0));
  EXPECT_NE(damaged, revision("T1"));
  EXPECT_EQ(sound, revision("T2"));
}

TEST_F(DirectoryTables, NegativeRowCountShowsNoRows) {
  EXPECT_EQ(1, Add("T1", -3));
  EXPECT_EQ(-3, Entry("T1")->GetPartRows(0));
  EXPECT_EQ(0, DirectoryAccess::Part(*Entry("T1"), 0)->Rows());
  ASSERT_TRUE(directory_.SelectTabelle("T1"));
  EXPECT_EQ(0, directory_.GetAnzahlZeilen());
}

TEST_F(DirectoryTables, PadPartsGivesEveryTableAPart) {
  Make({{{"T1", 1}, {"T2", 2}}, {{"T2", 3}}});
  EXPECT_EQ("11", OpenAll());
  EXPECT_TRUE(DirectoryAccess::PadParts(directory_, 1));
  EXPECT_EQ("T2:2 T1:2", Tables(directory_));
  EXPECT_EQ("2 3", PartRows(directory_, "T2"));
  EXPECT_EQ("1 0", PartRows(directory_, "T1"));
  EXPECT_EQ(directory_.GetFileiName(1),
            DirectoryAccess::Part(*Entry("T1"), 1)->file_name);
  EXPECT_FALSE(DirectoryAccess::PadParts(directory_, 2));
}

TEST_F(DirectoryTables, MergeAppendsCopiesOfFirstParts) {
  Add("T1", 1);
  Add("T2", 2);
  DBDirectory other;
  other.AddEntry(new DBDefinition, "T3", zWString(u"B"), false, 9, 0, 0, 0, 0);
  other.AddEntry(new DBDefinition, "T2", zWString(u"B"), false, 8, 1, 0, 2, 0);
  TablePart& source = *DirectoryAccess::Part(*other.GetEntries()->GetNext(), 0);
  ASSERT_TRUE(source.strings->Append(u"x"));
  EXPECT_TRUE(directory_.Merge(directory_.GetEntries(), other.GetEntries()));
  EXPECT_EQ("T1:1 T2:2", Tables(directory_));
  EXPECT_EQ("T3:1 T2:1", Tables(other));
  EXPECT_EQ("rows 8 in 0@1 texts 0@2", Numbers(directory_, "T2", 1));
  TablePart const& copy = *DirectoryAccess::Part(*Entry("T2"), 1);
  EXPECT_NE(source.strings, copy.strings);
  EXPECT_EQ(2u, copy.strings->count());
}

TEST_F(DirectoryTables, MergeTakesEmptyListsAndEntriesWithoutParts) {
  EXPECT_TRUE(directory_.Merge(nullptr, nullptr));
  Add("");
  EXPECT_TRUE(
      directory_.Merge(directory_.GetEntries(), directory_.GetEntries()));
  EXPECT_TRUE(directory_.Merge(directory_.GetEntries(), nullptr));
  EXPECT_EQ(":0", Tables(directory_));
}

TEST_F(DirectoryTables, ResetLeavesNoCurrentTable) {
  Add("T1");
  directory_.SelectTabelle("T1");
  directory_.ResetEntries();
  EXPECT_EQ(nullptr, directory_.GetEntries());
  EXPECT_EQ(nullptr, directory_.GetAktuelleTabelle());
  EXPECT_EQ(1, Add("T2"));
  EXPECT_EQ("T2:1", Tables(directory_));
}

TEST_F(DirectoryTables, LongListIsDeletedWithoutRecursion) {
  std::vector<TableRows> const tables(60000, TableRows{"T"});
  Make({tables});
  EXPECT_EQ("1", OpenAll());
  directory_.ResetEntries();
  EXPECT_EQ("", Tables(directory_));
}

TEST_F(DirectoryTables, CompanionDiesWithItsEntry) {
  struct Companion : EntryCompanion {
    explicit Companion(bool* flag) : died(flag) {}
    ~Companion() override { *died = true; }
    bool* died;
  };
  bool died = false;
  Add("T1");
  DirectoryAccess::Companion(*Entry("T1")) = std::make_unique<Companion>(&died);
  directory_.ResetEntries();
  EXPECT_TRUE(died);
}

}  // namespace
}  // namespace tabwerk::test
