// Files that no damage makes, but somebody could: they cost time and memory in
// proportion to their size.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "DBbase.h"
#include "tests/support/container_bytes.h"
#include "tests/support/database_fixture.h"
#include "tests/support/fault_platform.h"
#include "tests/support/memory_meter.h"
#include "tests/support/sweep.h"
#include "tests/support/temp_folder.h"
#include "tests/sweeps/case_watch.h"

namespace tabwerk::test {
namespace {

// The objects of a table without content take much more than its record.
constexpr std::int64_t kMostPerByte = 64;

class SweepDamageMade : public testing::Test {
 protected:
  ~SweepDamageMade() override {
    DBbase::Init({}, {});
    EXPECT_EQ(0, OpenStreams());
  }

  // Opens a file of these records and that many bytes behind them beside a user
  // file of the same bytes, and writes both.
  void Try(std::string const& name, std::string const& records,
           std::size_t data_size) {
    auto const bytes =
        CurrentHeader(1) + records + '\0' + std::string(data_size, '\1');
    folder_.WriteBytes("MAIN.db", bytes);
    folder_.WriteBytes("USER.UDB", bytes);
    watch_.Run(name, [&] {
      MemoryMeter const meter;
      EXPECT_TRUE(DBbase::Init(
          {W("STOCK")}, {{folder_.Path("MAIN.db"), folder_.Path("USER.UDB")}}));
      auto* manager = DBbase::GetDBBaseInstance();
      opened_ += manager->Open(W("STOCK"), true, false) == 1 ? 1 : 0;
      for (bool const user : {true, false}) {
        manager = DBbase::GetDBBaseInstance();
        written_ += manager->Write(W("STOCK"), user, zWString()) ? 1 : 0;
      }
      auto const factor =
          meter.Peak() / static_cast<std::int64_t>(2 * bytes.size());
      most_ = std::max(most_, factor);
      EXPECT_LE(factor, kMostPerByte) << name;
    });
    DBbase::Init({}, {});
  }

  TempFolder folder_;
  SyncSkip sync_skip_;
  CaseWatch watch_;
  int opened_ = 0;
  int written_ = 0;
  std::int64_t most_ = 0;
};

std::string Times(int count, std::string const& text) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

TEST_F(SweepDamageMade, FilesCostInProportionToTheirSize) {
  int const tables = WholeSweep() ? 20'000 : 4'000;
  std::string different;
  for (int i = 0; i < tables; ++i) {
    different += Record({.name = std::to_string(i), .definition = ""});
  }
  Try("many tables", different, 0);
  Try("many tables of one name", Times(tables, Record({.definition = ""})), 0);
  Try("many fields",
      Times(tables / 400, Record({.definition = Times(4'000, "x y,")})), 0);
  Try("many integers",
      Record({.definition = Times(2'300, "LONG a,"),
              .row_count = 10,
              .row_size = 92'000}),
      92'000);
  Try("many rows",
      Record({.definition = "integer ID,integer FOLGE,integer STATUS\n",
              .row_count = tables,
              .row_size = tables * 12}),
      static_cast<std::size_t>(tables) * 12);
  EXPECT_LT(0, written_);
  ReportSweep("damage, made files",
              watch_.Figures() + ", most memory " + std::to_string(most_) +
                  " times the file, opened " + std::to_string(opened_) +
                  ", written " + std::to_string(written_));
}

}  // namespace
}  // namespace tabwerk::test
