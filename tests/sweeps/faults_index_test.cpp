// Writing the index file while calls to the system fail: it is the whole old or
// the whole new one.
#include <gtest/gtest.h>

#include "tests/sweeps/fault_sweep.h"

namespace tabwerk::test {
namespace {

class IndexSweep : public FaultSweepTest {
 protected:
  void SweepIndex(bool for_write) {
    SweepCalls("", {[this, for_write] {
                      Restore(old_);
                      OpenStock(for_write);
                      ASSERT_TRUE(SetNumber(Table("ARTIKEL"), 1, "STATUS", 0));
                      ASSERT_TRUE(SetNumber(Table("ARTIKEL"), 1, "FOLGE", 4));
                      ASSERT_TRUE(SetNumber(Table("FARBE"), 0, "STATUS", 1));
                      ASSERT_TRUE(SetNumber(Table("FARBE"), 0, "FOLGE", 0));
                      rows_ = BothTables();
                    },
                    [] { return Manager()->WriteIndexToFile(nullptr); },
                    [this](Outcome const& outcome) { Judge(outcome); }});
  }
  void Judge(Outcome const& outcome) {
    EXPECT_TRUE(outcome.result == 2 || (outcome.fired && outcome.result == 0));
    EXPECT_EQ(rows_, BothTables());
    EXPECT_EQ(1, Table("ARTIKEL")->SelectZeile("ID", 20000L));
    EXPECT_EQ(3, Table("ARTIKEL")->GetRowByFolge(1));
    for (auto const* name : {"MAIN.db", "USER.UDB"}) {
      EXPECT_EQ(old_.at(name), Bytes(name)) << name;
    }
    ExpectNoForeignFiles({"MAIN.db", "USER.UDB", "STOCK.idx"});
    EXPECT_EQ(0U, TempFiles().size());
    if (outcome.CouldCleanUp()) {
      EXPECT_EQ(kClean, Files());
    }
    if (outcome.result == 0) {
      EXPECT_EQ(old_.at("STOCK.idx"), Bytes("STOCK.idx"));
      EXPECT_EQ(2, Manager()->WriteIndexToFile(nullptr)) << "second attempt";
    }
    DBbase::Init({}, {});
    ExpectSoundFiles();
    EXPECT_EQ(rows_, Reopened());
    ExpectSoundFiles();
  }

  std::string rows_;
};

INSTANTIATE_FAULT_SWEEP(IndexSweep);

TEST_P(IndexSweep, OfFilesOpenForWriting) { SweepIndex(true); }

TEST_P(IndexSweep, OfFilesOpenForReading) { SweepIndex(false); }

}  // namespace
}  // namespace tabwerk::test
