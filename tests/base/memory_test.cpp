// Exhausted memory: every allocation of an operation fails, once it is reached
// and from then on.
#include <gtest/gtest.h>

#include "tests/support/database_fixture.h"
#include "tests/support/fault_platform.h"
#include "tests/support/new_guard.h"

namespace tabwerk::test {
namespace {

class ManagerMemory : public DatabaseTest {
 protected:
  ManagerMemory() {
    MakeArticles("MAIN.db", 1000, {"1|1|0|Anna", "2|2|0|Bert"});
    MakeArticles("USER.UDB", 2000, {"20000|3|0|Carl"});
    OpenStock();
    EXPECT_TRUE(SetNumber(Table("ARTIKEL"), 0, "STATUS", 1));
    EXPECT_TRUE(Save());
    index_ = Bytes("STOCK.idx");
  }
  static bool Save() {
    static zWString const name = W("STOCK");
    static zWString const nothing;
    return Manager()->Write(name, true, nothing);
  }
  void ExpectUnharmed() {
    OpenStock();
    EXPECT_EQ("[1|0|1|Anna][2|1|0|Bert][20000|2|0|Carl]", Rows("ARTIKEL"));
  }

  std::vector<unsigned char> index_;
};

// Runs work with the n-th allocation failing, n = 1, 2, 3 …, until none does;
// after(failed) looks at what is left.
template <typename Before, typename Work, typename After>
void Sweep(Before before, Work work, After after) {
  for (int n = 1;; ++n) {
    SCOPED_TRACE(n);
    before();
    bool fired = false;
    {
      NewGuard guard(n);
      work();
      fired = guard.Disarm();
    }
    after();
    if (!fired || testing::Test::HasFailure()) break;
    ASSERT_LT(n, 10000);
  }
}

TEST_F(ManagerMemory, OpeningKeepsTheUsersOrder) {
  auto const name = W("STOCK");
  Sweep(
      [&] {
        Configure("STOCK", {"MAIN.db", "USER.UDB"});
      },
      [&] { (void)Manager()->Open(name, true, false); },
      [&] { ExpectUnharmed(); });
}

TEST_F(ManagerMemory, OpeningAStaleIndexKeepsTheUsersOrder) {
  auto const name = W("STOCK");
  auto stamp = std::int64_t{1000};
  Sweep(
      [&] {
        DBbase::Init({}, {});
        MakeArticles("MAIN.db", ++stamp, {"1|1|0|Anna", "2|2|0|Bert"});
        Configure("STOCK", {"MAIN.db", "USER.UDB"});
      },
      [&] { (void)Manager()->Open(name, true, false); },
      [&] { ExpectUnharmed(); });
}

TEST_F(ManagerMemory, SavingLeavesTheOldOrTheNewFile) {
  Sweep([&] { OpenStock(); }, [] { (void)Save(); }, [&] { ExpectUnharmed(); });
}

TEST_F(ManagerMemory, ASaveAfterAPoorOpeningKeepsTheUsersOrder) {
  auto const name = W("STOCK");
  Sweep(
      [&] {
        Configure("STOCK", {"MAIN.db", "USER.UDB"});
      },
      [&] { (void)Manager()->Open(name, true, false); },
      [&] {
        (void)Save();
        ExpectUnharmed();
      });
}

TEST_F(ManagerMemory, ConfiguringIsAllOrNothing) {
  std::vector<zWString> const names{W("A DATABASE WITH A LONG NAME"), W("B")};
  std::vector<std::vector<zWString>> const files{
      {W("a long path to a file.db"), W("another long path.UDB")}, {W("b.db")}};
  bool done = false;
  Sweep([] { DBbase::Init({}, {}); },
        [&] { done = DBbase::Init(names, files); },
        [&] { EXPECT_EQ(done ? 2 : 0, Manager()->FilesCount()); });
  EXPECT_TRUE(done);
}

}  // namespace
}  // namespace tabwerk::test
