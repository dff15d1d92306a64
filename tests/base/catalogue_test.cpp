#include <gtest/gtest.h>

#include "base/manager_access.h"
#include "tests/support/database_fixture.h"
#include "tests/support/new_guard.h"

namespace tabwerk::test {
namespace {

class ManagerCatalogue : public DatabaseTest {
 protected:
  static void Init(std::vector<std::string> const& names) {
    std::vector<zWString> wide;
    std::vector<std::vector<zWString>> files;
    for (auto const& name : names) {
      wide.push_back(W(name));
      files.push_back({W(name + ".db")});
    }
    DBbase::Init(wide, files);
  }

  static std::string Current() {
    auto* const directory = Manager()->GetDirectory();
    return directory == nullptr ? "-" : directory->GetName().toUtf8();
  }

  // Names in the order of the chain.
  static std::string Chain() {
    std::string names;
    for (auto* directory = ManagerAccess::First(*Manager());
         directory != nullptr; directory = directory->Getnextdbdir()) {
      names += "[" + directory->GetName().toUtf8() + "]";
    }
    return names;
  }
};

TEST_F(ManagerCatalogue, IsEmptyAtFirst) {
  EXPECT_EQ(0, Manager()->FilesCount());
  EXPECT_EQ("-", Current());
}

TEST_F(ManagerCatalogue, HoldsTheDatabasesInReverseOrder) {
  Init({"A", "B", "C"});
  EXPECT_EQ(3, Manager()->FilesCount());
  EXPECT_EQ("[C][B][A]", Chain());
  EXPECT_EQ("C", Current());
}

TEST_F(ManagerCatalogue, FindsANameInAnyCaseAndWithExtension) {
  Init({"ABC", "X"});
  EXPECT_TRUE(Manager()->SelectDB(W("abc.db")));
  EXPECT_EQ("ABC", Current());
  EXPECT_TRUE(Manager()->SelectDB(W("x")));
  EXPECT_TRUE(Manager()->SelectDB(W("ABC")));
  EXPECT_TRUE(Manager()->SelectDB(W("Abc.x.y")));
  EXPECT_EQ("ABC", Current());
}

TEST_F(ManagerCatalogue, FailedSearchLeavesTheCurrentDatabase) {
  Init({"A", "B"});
  EXPECT_TRUE(Manager()->SelectDB(W("A")));
  EXPECT_FALSE(Manager()->SelectDB(W("NONE")));
  EXPECT_EQ("A", Current());
}

// Kept: only the key of a search is upper-cased and cut.
TEST_F(ManagerCatalogue, NeverFindsANameWithALowerCaseLetterOrADot) {
  Init({"Stock", "A.B"});
  EXPECT_FALSE(Manager()->SelectDB(W("Stock")));
  EXPECT_FALSE(Manager()->SelectDB(W("STOCK")));
  EXPECT_FALSE(Manager()->SelectDB(W("A.B")));
}

TEST_F(ManagerCatalogue, RegistersExactNamesOnly) {
  EXPECT_TRUE(Manager()->NotRegistered(W("A")));
  Init({"A"});
  EXPECT_FALSE(Manager()->NotRegistered(W("A")));
  EXPECT_TRUE(Manager()->NotRegistered(W("a")));
}

// Kept: names are compared with the stored configuration, which is stored last.
TEST_F(ManagerCatalogue, OneNameTwiceMakesTwoDatabases) {
  Init({"A", "A"});
  EXPECT_EQ(2, Manager()->FilesCount());
  auto* const front = ManagerAccess::First(*Manager());
  EXPECT_TRUE(Manager()->SelectDB(W("A")));
  EXPECT_EQ(front, Manager()->GetDirectory());
}

TEST_F(ManagerCatalogue, AddedDatabasesAreNotRegistered) {
  Init({"A", "B"});
  DBbase::AddFiles({W("B"), W("C")}, {{W("x.db")}, {W("c.db")}}, Manager());
  EXPECT_EQ("[C][B][A]", Chain());
  EXPECT_EQ("B", Current());
  EXPECT_TRUE(Manager()->NotRegistered(W("C")));
  std::vector<zWString> names;
  std::vector<std::vector<zWString>> files;
  Manager()->GetInit(names, files);
  EXPECT_EQ(2U, names.size());
}

TEST_F(ManagerCatalogue, InitReplacesTheInstance) {
  Init({"A", "B"});
  Init({"C"});
  EXPECT_EQ("[C]", Chain());
}

TEST_F(ManagerCatalogue, InitTakesItsOwnConfiguration) {
  Init({"A", "B"});
  std::vector<zWString> names;
  std::vector<std::vector<zWString>> files;
  Manager()->GetInit(names, files);
  EXPECT_TRUE(Manager()->Init(names, files));
  EXPECT_EQ("[B][A]", Chain());
}

TEST_F(ManagerCatalogue, MissingNamesAreEmpty) {
  EXPECT_TRUE(DBbase::Init({W("A")}, {{W("a.db")}, {W("b.db")}}));
  EXPECT_EQ("[][A]", Chain());
}

TEST_F(ManagerCatalogue, FindLastFileMovesToTheEndOfTheChain) {
  EXPECT_EQ(1, ManagerAccess::FindLastFile(*Manager()));
  EXPECT_EQ("-", Current());
  Init({"A", "B"});
  EXPECT_EQ(1, ManagerAccess::FindLastFile(*Manager()));
  EXPECT_EQ("A", Current());
}

TEST_F(ManagerCatalogue, ManagerOfADirectoryDoesNotOwnIt) {
  DBDirectory directory;
  directory.Initialize(W("OWN"), {});
  {
    DBbase manager(&directory);
    EXPECT_EQ(&directory, manager.GetDirectory());
    EXPECT_EQ(0, manager.FilesCount());
    EXPECT_EQ(0, manager.Close(W("")));
  }
  EXPECT_EQ("OWN", directory.GetName().toUtf8());
}

TEST_F(ManagerCatalogue, CopiesShareTheDatabases) {
  Init({"A", "B"});
  DBbase copy(*Manager());
  EXPECT_EQ(2, copy.FilesCount());
  EXPECT_TRUE(copy.SelectDB(W("A")));
  EXPECT_EQ("B", Current());
  EXPECT_EQ(1, copy.Close(W("B")));
  EXPECT_EQ("-", Current());
}

TEST_F(ManagerCatalogue, CopiesSurviveTheReplacementOfTheInstance) {
  Init({"A", "B"});
  DBbase copy(*Manager());
  Init({"C"});
  EXPECT_EQ(0, copy.FilesCount());
  EXPECT_EQ(nullptr, copy.GetDirectory());
  EXPECT_FALSE(copy.SelectDB(W("A")));
  EXPECT_FALSE(copy.NotRegistered(W("A")));
}

// Kept: what is added later belongs to this instance only.
TEST_F(ManagerCatalogue, AddedDatabasesAreGoneAfterReopening) {
  Init({"A"});
  DBbase::AddFiles({W("C")}, {{W("c.db")}}, Manager());
  EXPECT_EQ("[C][A]", Chain());
  DBbase::ReOpen(false);
  EXPECT_FALSE(Manager()->SelectDB(W("C")));
}

TEST_F(ManagerCatalogue, ADottedNameCanNeitherBeClosedNorWritten) {
  Init({"A.B"});
  EXPECT_EQ(0, Manager()->Close(W("A.B")));
  EXPECT_FALSE(Manager()->Write(W("A.B"), false, W("")));
  EXPECT_EQ(1, Manager()->FilesCount());
}

TEST_F(ManagerCatalogue, AssignmentTakesTheSharedDatabases) {
  Init({"A", "B"});
  DBbase copy(*Manager());
  Init({"C"});
  copy = *Manager();
  EXPECT_EQ(1, copy.FilesCount());
  EXPECT_EQ(Manager()->GetDirectory(), copy.GetDirectory());
  EXPECT_FALSE(copy.NotRegistered(W("C")));
  EXPECT_TRUE(copy.NotRegistered(W("A")));
}

TEST_F(ManagerCatalogue, IsMadeEmptyWhereThereIsNone) {
  Init({"A"});
  DBbase const copy(*Manager());
  ManagerAccess::Install(nullptr);
  {
    NewGuard const guard(1);
    EXPECT_EQ(nullptr, DBbase::GetDBBaseInstance());
    EXPECT_EQ(nullptr, DBbase::ReOpen(false));
  }
  ASSERT_NE(nullptr, Manager());
  EXPECT_EQ(0, Manager()->FilesCount());
  EXPECT_TRUE(Manager()->NotRegistered(W("A")));
}

TEST_F(ManagerCatalogue, AddingToNoManagerChangesNothing) {
  Init({"A"});
  DBbase::AddFiles({W("C")}, {{W("c.db")}}, nullptr);
  EXPECT_EQ("[A]", Chain());
}

// A copy of the manager whose current database another one has closed.
TEST_F(ManagerCatalogue, WithoutACurrentDatabaseNothingOpens) {
  MakeArticles("MAIN.db", 1000, {"1|1|0|Anna"});
  DBbase::Init({W("A"), W("B")}, {{W(Path("MAIN.db"))}, {W(Path("MAIN.db"))}});
  DBbase copy(*Manager());
  EXPECT_TRUE(copy.SelectDB(W("A")));
  EXPECT_EQ(1, Manager()->Close(W("A")));
  EXPECT_EQ(nullptr, copy.GetDirectory());
  EXPECT_EQ(1, copy.FilesCount());
  DBTabelle* table = nullptr;
  EXPECT_EQ(0, copy.OpenTabelle("ARTIKEL", table));
  EXPECT_EQ(0, copy.Open(W("NONE"), false, false));
  EXPECT_EQ(0, copy.Close(W("")));
  EXPECT_FALSE(copy.Write(W(""), false, W("")));
}

TEST_F(ManagerCatalogue, WithoutAnOpenDatabaseThereIsNoTable) {
  DBTabelle* table = nullptr;
  EXPECT_FALSE(Manager()->NeueTabelle("ARTIKEL", table));
  EXPECT_EQ(0, Manager()->OpenTabelle("ARTIKEL", table));
  Init({"A"});
  EXPECT_FALSE(Manager()->NeueTabelle("ARTIKEL", table));
  EXPECT_EQ(0, Manager()->OpenTabelle("ARTIKEL", table));
  EXPECT_EQ(nullptr, table);
}

TEST_F(ManagerCatalogue, ADatabaseWithoutFilesIsNotWritten) {
  DBbase::Init({W("A")}, {{}});
  EXPECT_EQ(1, Manager()->Open(W("A"), false, false));
  EXPECT_FALSE(Manager()->Write(W("A"), false, W(Path("NEW.db"))));
  EXPECT_FALSE(Manager()->Write(W("A"), false, W("")));
  EXPECT_EQ("", Files());
}

TEST_F(ManagerCatalogue, ADatabaseWithoutANameIsNotWrittenWithoutOne) {
  MakeArticles("MAIN.db", 1000, {"1|1|0|Anna"});
  DBbase::Init({W("")}, {{W(Path("MAIN.db"))}});
  EXPECT_EQ(1, Manager()->Open(W(""), false, false));
  auto const before = Bytes("MAIN.db");
  EXPECT_FALSE(Manager()->Write(W(""), false, W("")));
  EXPECT_EQ(before, Bytes("MAIN.db"));
}

}  // namespace
}  // namespace tabwerk::test
