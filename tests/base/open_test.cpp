#include <gtest/gtest.h>

#include <filesystem>

#include "base/manager_access.h"
#include "tests/support/database_fixture.h"
#include "tests/support/fault_platform.h"
#include "tests/support/new_guard.h"

namespace tabwerk::test {
namespace {

class ManagerOpen : public DatabaseTest {
 protected:
  ManagerOpen() {
    MakeArticles("MAIN.db", 1000, {"1|1|0|Anna", "2|2|0|Bert"});
    MakeArticles("USER.UDB", 2000, {"20000|3|0|Carl"});
  }
  static bool IsOpen(bool for_write) {
    return Manager()->GetDirectory()->FileIsOpen(for_write, false);
  }
  static FILE* Stream(std::size_t file) {
    return Manager()->GetDirectory()->GetFile(file);
  }
};

constexpr char kAll[] = "[1|1|0|Anna][2|2|0|Bert][20000|3|0|Carl]";

TEST_F(ManagerOpen, ReadsTheTablesOfAllFiles) {
  OpenStock();
  EXPECT_EQ(kAll, Rows("ARTIKEL"));
}

TEST_F(ManagerOpen, ForReadingClosesTheFilesAgain) {
  OpenStock(false);
  EXPECT_EQ(nullptr, Stream(0));
  EXPECT_EQ(nullptr, Stream(1));
  EXPECT_EQ(kAll, Rows("ARTIKEL"));
}

TEST_F(ManagerOpen, ForWritingKeepsTheFilesOpen) {
  OpenStock(true);
  EXPECT_NE(nullptr, Stream(0));
  EXPECT_NE(nullptr, Stream(1));
  EXPECT_TRUE(IsOpen(true));
}

TEST_F(ManagerOpen, ForReadingDoesNotCountAsOpenForWriting) {
  OpenStock(false);
  EXPECT_TRUE(IsOpen(false));
  EXPECT_FALSE(IsOpen(true));
}

TEST_F(ManagerOpen, SecondOpeningTouchesNoFile) {
  OpenStock();
  FaultGuard faults;
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), true, false));
  EXPECT_EQ(0, faults.Count(kFileCalls));
}

// Kept: hosts open by any name while one database is configured.
TEST_F(ManagerOpen, UnknownNameReadsTheCurrentDatabaseAgain) {
  OpenStock();
  AddArticle(Table("ARTIKEL"), 20001, 4, "Dora");
  EXPECT_EQ(1, Manager()->Open(W("NONE"), true, false));
  EXPECT_EQ(kAll, Rows("ARTIKEL"));
}

TEST_F(ManagerOpen, APathOfFewUnitsIsNoUserFile) {
  DBbase::Init({W("STOCK")}, {{W("a")}});
  EXPECT_EQ(0, Manager()->Open(W("STOCK"), true, false));
  EXPECT_FALSE(std::filesystem::exists("a"));
}

TEST_F(ManagerOpen, WithoutMemoryForAPathOpensNoUserFileToReadOnly) {
  auto const stock = W("STOCK");
  bool fired = true;
  for (int n = 1; fired; ++n) {
    Configure("STOCK", {"MAIN.db", "USER.UDB"});
    NewGuard guard(n, NewGuard::Lasting::kOnce);
    int const opened = Manager()->Open(stock, true, false);
    fired = guard.Disarm();
    EXPECT_TRUE(opened == 0 || IsOpen(true)) << n;
  }
  EXPECT_EQ(kAll, Rows("ARTIKEL"));
}

TEST_F(ManagerOpen, WithoutMemoryForTheNameOpensNoOtherDatabase) {
  auto const name = W("ANOTHER DATABASE OF A LONG NAME");
  bool fired = true;
  for (int n = 1; fired; ++n) {
    DBbase::Init({name, W("STOCK")}, {{W(Path("MAIN.db"))}, {}});
    ASSERT_TRUE(Manager()->SelectDB(W("STOCK")));
    NewGuard guard(n, NewGuard::Lasting::kOnce);
    int const opened = Manager()->Open(name, false, false);
    fired = guard.Disarm();
    if (opened == 1) {
      EXPECT_EQ(name.toUtf8(), Manager()->GetDirectory()->GetName().toUtf8())
          << n;
    }
  }
  EXPECT_EQ("[1|1|0|Anna][2|2|0|Bert]", Rows("ARTIKEL"));
}

TEST_F(ManagerOpen, EmptyCatalogueGetsANamelessDirectory) {
  EXPECT_EQ(1, Manager()->Open(W("ANY"), false, false));
  EXPECT_EQ(1, Manager()->FilesCount());
  EXPECT_EQ("", Manager()->GetDirectory()->GetName().toUtf8());
}

TEST_F(ManagerOpen, MissingFileRemovesTheDatabase) {
  Configure("STOCK", {"MAIN.db", "NONE.UDB"});
  EXPECT_EQ(0, Manager()->Open(W("STOCK"), false, false));
  EXPECT_EQ(0, Manager()->FilesCount());
  EXPECT_FALSE(Manager()->SelectDB(W("STOCK")));
}

TEST_F(ManagerOpen, FirstFileWithoutTablesDoesNotOpen) {
  MakeFile("EMPTY.db", {});
  Configure("STOCK", {"EMPTY.db"});
  EXPECT_EQ(0, Manager()->Open(W("STOCK"), false, false));
}

TEST_F(ManagerOpen, LaterFileMayBeEmpty) {
  WriteFileBytes(Path("USER.UDB"), {});
  OpenStock();
  EXPECT_EQ("[1|1|0|Anna][2|2|0|Bert]", Rows("ARTIKEL"));
}

TEST_F(ManagerOpen, OpenDateiUsesTheFileNameOfAPath) {
  Configure("STOCK", {"MAIN.db"});
  EXPECT_EQ(1, Manager()->OpenDatei(W(Path("stock.xyz")), false, false));
  EXPECT_EQ("[1|1|0|Anna][2|2|0|Bert]", Rows("ARTIKEL"));
}

TEST_F(ManagerOpen, CreatingEmptiesTheFiles) {
  Configure("STOCK", {"MAIN.db"});
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), true, true));
  EXPECT_EQ(0U, Bytes("MAIN.db").size());
  EXPECT_NE(nullptr, Stream(0));
}

// Kept: closing leaves the flags that FileIsOpen looks at.
TEST_F(ManagerOpen, CreatingAnOpenDatabaseWithoutUserFileDoesNothing) {
  Configure("STOCK", {"MAIN.db"});
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), false, false));
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), true, true));
  EXPECT_NE(0U, Bytes("MAIN.db").size());
}

TEST_F(ManagerOpen, ReplacingKeepsTheContentAndKeepsOthersOut) {
  Configure("STOCK", {"MAIN.db"});
  bool made = true;
  EXPECT_EQ(1,
            ManagerAccess::OpenForReplacement(*Manager(), W("STOCK"), &made));
  EXPECT_FALSE(made);
  EXPECT_NE(0U, std::filesystem::file_size(Path("MAIN.db")));
  DBDirectory other;
  other.Initialize(W("X"), {W(Path("MAIN.db"))});
  EXPECT_FALSE(other.OpenDBdatei(0, false, false));
}

TEST_F(ManagerOpen, ReplacingMakesAMissingFile) {
  Configure("NEW", {"NEW.db"});
  bool made = false;
  EXPECT_EQ(1, ManagerAccess::OpenForReplacement(*Manager(), W("NEW"), &made));
  EXPECT_TRUE(made);
  EXPECT_TRUE(FileExists("NEW.db"));
}

class ManagerTables : public ManagerOpen {
 protected:
  ManagerTables() { OpenStock(); }
};

TEST_F(ManagerTables, TableInMemoryIsHandedOutAgainOnRowZero) {
  auto* const table = Table("ARTIKEL");
  table->SelectColumn("ID");
  table->SelectZeile(2L);
  EXPECT_EQ(table, Table("ARTIKEL"));
  long id = 0;
  EXPECT_EQ(1, table->GetWert(id));
  EXPECT_EQ(1, id);
}

TEST_F(ManagerTables, UnknownTableLeavesThePointer) {
  auto* table = Table("ARTIKEL");
  auto* const before = table;
  EXPECT_EQ(0, Manager()->OpenTabelle("NONE", table));
  EXPECT_EQ(before, table);
  EXPECT_EQ(0, Manager()->OpenTabelle(nullptr, table));
}

TEST_F(ManagerTables, WithAUserFileStandsOnStatusAndRowZero) {
  auto* const table = Table("ARTIKEL");
  ASSERT_NE(nullptr, table->GetAktuelleFeldDef());
  EXPECT_STREQ("STATUS", table->GetAktuelleFeldDef()->name);
  EXPECT_EQ(1, table->SelectZeile("ID", 20000L));
}

// Kept: without a user file nothing is indexed.
TEST_F(ManagerTables, WithoutAUserFileHasNoIndices) {
  Configure("STOCK", {"MAIN.db"});
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), false, false));
  auto* const table = Table("ARTIKEL");
  EXPECT_EQ(nullptr, table->GetAktuelleFeldDef());
  EXPECT_EQ(0, table->SelectZeile("ID", 1L));
  EXPECT_EQ(20000, table->NewUserID());
}

TEST_F(ManagerTables, NewTableIsANewViewOfTheSameRows) {
  auto* const old = Table("ARTIKEL");
  DBTabelle* fresh = nullptr;
  EXPECT_TRUE(Manager()->NeueTabelle("ARTIKEL", fresh));
  EXPECT_NE(old, fresh);
  EXPECT_EQ(3, fresh->GetAnzahlZeilen());
  EXPECT_EQ(nullptr, fresh->GetAktuelleFeldDef());
  EXPECT_EQ(0, fresh->SelectZeile("ID", 1L));
  EXPECT_EQ(1, old->SelectZeile("ID", 1L));
  EXPECT_EQ(fresh, Table("ARTIKEL"));
}

TEST_F(ManagerTables, NewTableOfAnUnknownNameFailsOnTheLastDatabase) {
  DBTabelle* fresh = nullptr;
  EXPECT_FALSE(Manager()->NeueTabelle("NONE", fresh));
  EXPECT_EQ(nullptr, fresh);
}

TEST_F(ManagerTables, DamagedTableIsHandedOutWithFailureOnEveryCall) {
  auto bytes = Bytes("MAIN.db");
  bytes.resize(bytes.size() - 4);  // cuts the last row
  WriteFileBytes(Path("MAIN.db"), bytes);
  Configure("STOCK", {"MAIN.db"});
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), false, false));
  DBTabelle* first = nullptr;
  DBTabelle* second = nullptr;
  EXPECT_EQ(0, Manager()->OpenTabelle("ARTIKEL", first));
  EXPECT_EQ(0, Manager()->OpenTabelle("ARTIKEL", second));
  ASSERT_NE(nullptr, first);
  ASSERT_NE(nullptr, second);
  EXPECT_NE(first, second);
  EXPECT_EQ(0, first->is_open());
}

class ManagerClose : public ManagerOpen {};

TEST_F(ManagerClose, WithoutACurrentDatabaseReturnsZero) {
  EXPECT_EQ(0, Manager()->Close(W("")));
}

TEST_F(ManagerClose, UnknownNameReturnsZero) {
  OpenStock();
  EXPECT_EQ(0, Manager()->Close(W("NONE")));
  EXPECT_EQ(1, Manager()->FilesCount());
}

TEST_F(ManagerClose, FirstOfTheChainMakesItsSuccessorCurrent) {
  DBbase::Init({W("A"), W("B"), W("C")}, {{}, {}, {}});
  EXPECT_EQ(1, Manager()->Close(W("C")));
  EXPECT_EQ("B", Manager()->GetDirectory()->GetName().toUtf8());
}

TEST_F(ManagerClose, OtherDatabasesMakeTheirPredecessorCurrent) {
  DBbase::Init({W("A"), W("B"), W("C")}, {{}, {}, {}});
  EXPECT_EQ(1, Manager()->Close(W("A")));
  EXPECT_EQ("B", Manager()->GetDirectory()->GetName().toUtf8());
  EXPECT_EQ(2, Manager()->FilesCount());
}

class ManagerReOpen : public ManagerOpen {};

TEST_F(ManagerReOpen, OpensEveryDatabaseAgain) {
  OpenStock();
  AddArticle(Table("ARTIKEL"), 20001, 4, "Dora");
  auto* const manager = Manager()->ReOpen(true);
  EXPECT_EQ(Manager(), manager);
  EXPECT_EQ(kAll, Rows("ARTIKEL"));
}

TEST_F(ManagerReOpen, StopsAtTheFirstFailure) {
  DBbase::Init(
      {W("A"), W("B"), W("C")},
      {{W(Path("MAIN.db"))}, {W(Path("NONE.db"))}, {W(Path("USER.UDB"))}});
  EXPECT_EQ(nullptr, DBbase::ReOpen(false));
  EXPECT_TRUE(Manager()->SelectDB(W("A")));
  EXPECT_TRUE(IsOpen(false));
  EXPECT_TRUE(Manager()->SelectDB(W("C")));
  EXPECT_FALSE(IsOpen(false));
  EXPECT_FALSE(Manager()->SelectDB(W("B")));
}

TEST_F(ManagerReOpen, WithoutDatabasesGivesAnEmptyManager) {
  auto* const fresh = DBbase::ReOpen(true);
  EXPECT_EQ(Manager(), fresh);
}

// Part positions stay those of the files whatever a file lacks.
TEST_F(ManagerOpen, TableThatAMiddleFileLacksGetsAnEmptyPart) {
  MakeArticles("LATE.db", 3000, {"9|9|0|Zoe"});
  MakeFile("OTHER.db",
           {PlainHeader::kCurrent, 1, {{"OTHER", "integer ID\n", {}}}});
  Configure("STOCK", {"MAIN.db", "OTHER.db", "LATE.db"});
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), false, false));
  EXPECT_EQ("[1|1|0|Anna][2|2|0|Bert][9|9|0|Zoe]", Rows("ARTIKEL"));
  EXPECT_EQ(3U, Table("ARTIKEL")->GetDirEntry(false)->GetNumberOfParts());
}

TEST_F(ManagerOpen, MissingLastPartMeansNoUserRows) {
  MakeFile("USER.UDB",
           {PlainHeader::kCurrent, 1, {{"OTHER", "integer ID\n", {}}}});
  OpenStock();
  EXPECT_EQ("[1|1|0|Anna][2|2|0|Bert]", Rows("ARTIKEL"));
  EXPECT_FALSE(Table("ARTIKEL")->NeueZeile(true));
}

TEST_F(ManagerOpen, LaterFileOfAnotherShapeIsRefused) {
  MakeFile("USER.UDB", {PlainHeader::kCurrent,
                        1,
                        {{"ARTIKEL", "integer ID,real FOLGE\n", {"1|2"}}}});
  Configure("STOCK", {"MAIN.db", "USER.UDB"});
  EXPECT_EQ(0, Manager()->Open(W("STOCK"), true, false));
}

TEST_F(ManagerOpen, OldFormatsBesideACurrentUserFile) {
  for (auto const header :
       {PlainHeader::kNone, PlainHeader::k2016, PlainHeader::k2018}) {
    MakeFile("MAIN.db",
             {header, 0, {{"ARTIKEL", kArticles, {"1|1|0|Änne", "2|2|0|"}}}});
    OpenStock();
    EXPECT_EQ("[1|1|0|Änne][2|2|0|][20000|3|0|Carl]", Rows("ARTIKEL"));
  }
}

// Kept: the files are opened for reading, and no table is read.
TEST_F(ManagerOpen, CreatingWithoutWritingOpensTheFilesOnly) {
  Configure("STOCK", {"MAIN.db"});
  EXPECT_EQ(1, Manager()->Open(W("STOCK"), false, true));
  EXPECT_NE(nullptr, Stream(0));
  EXPECT_EQ("[1|1|0|Anna][2|2|0|Bert]", Rows("ARTIKEL"));
}

// Kept: an unknown name means the current database, in failure as well.
TEST_F(ManagerOpen, UnknownNameThatFailsRemovesTheCurrentDatabase) {
  Configure("STOCK", {"NONE.db"});
  EXPECT_EQ(0, Manager()->Open(W("OTHER"), false, false));
  EXPECT_EQ(0, Manager()->FilesCount());
}

TEST_F(ManagerOpen, NewTableIsSoughtFromTheFirstDatabaseOn) {
  MakeFile("OTHER.db", {PlainHeader::kCurrent, 1, {{"X", "integer ID\n", {}}}});
  DBbase::Init(
      {W("A"), W("B"), W("C")},
      {{W(Path("MAIN.db"))}, {W(Path("MAIN.db"))}, {W(Path("OTHER.db"))}});
  for (auto const* name : {"A", "B", "C"}) {
    ASSERT_EQ(1, Manager()->Open(W(name), false, false));
  }
  DBTabelle* table = nullptr;
  EXPECT_TRUE(Manager()->NeueTabelle("ARTIKEL", table));
  EXPECT_EQ("B", Manager()->GetDirectory()->GetName().toUtf8());
  // Kept: without the table the last one of the chain is current.
  EXPECT_FALSE(Manager()->NeueTabelle("NONE", table));
  EXPECT_EQ("A", Manager()->GetDirectory()->GetName().toUtf8());
}

TEST_F(ManagerOpen, TableOfAManagerWithoutCatalogueIsNotOpened) {
  DBDirectory directory;
  directory.Initialize(W("OWN"), {W(Path("MAIN.db"))});
  ASSERT_TRUE(directory.OpenDBdatei(0, false, false));
  DBbase manager(&directory);
  DBTabelle* table = nullptr;
  EXPECT_EQ(0, manager.OpenTabelle("ARTIKEL", table));
  directory.CloseDBdatei();
}

TEST_F(ManagerOpen, EntryWithoutPartsNeverCountsAsLoaded) {
  OpenStock();
  auto* const directory = Manager()->GetDirectory();
  EXPECT_EQ(0, directory->AddEntry(new DBDefinition("integer ID\n"), "",
                                   W("MAIN.db"), true, 0, 0, 0, 0, 0));
  DBTabelle* table = nullptr;
  EXPECT_EQ(0, Manager()->OpenTabelle("", table));
  // Such an entry cannot be written, either.
  EXPECT_FALSE(Manager()->Write(W("STOCK"), true, W("")));
}

}  // namespace
}  // namespace tabwerk::test
