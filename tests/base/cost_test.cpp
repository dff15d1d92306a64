// What opening, saving, a script and an import ask of the system may grow with
// the rows, but no faster: twice as many rows, at most twice the bytes and the
// calls.  Counted, not timed, so that it holds on both systems.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "DBInterpreter.h"
#include "tests/support/database_fixture.h"
#include "tests/support/fault_platform.h"

namespace {

using tabwerk::test::DatabaseTest;
using tabwerk::test::FaultGuard;
using tabwerk::test::kAllCalls;
using tabwerk::test::W;

constexpr int kRows = 4000;

// What a piece of work has cost.
struct Cost {
  std::int64_t calls;
  std::int64_t bytes_read;
  std::int64_t bytes_written;
};

class CostOfRows : public DatabaseTest {
 protected:
  // Table data of so many rows, each as long as the others.
  std::string MakeTableData(int rows) const {
    std::string text = "\xFF\xFE";
    for (int i = 0; i < rows; ++i) {
      auto const number = std::to_string(100000 + i);
      for (char const c :
           number + "," + number + ",0,\"Name " + number + "\"\n") {
        text += {c, '\0'};
      }
    }
    WriteBytes("rows.txt", text);
    return Path("rows.txt");
  }

  void WriteBytes(std::string const& name, std::string const& bytes) const {
    auto error = tabwerk::platform::Error::kNone;
    auto* const stream = tabwerk::platform::OpenFile(
        W(Path(name)), tabwerk::platform::Mode::kCreate,
        tabwerk::platform::Share::kDenyAll, &error);
    ASSERT_NE(nullptr, stream);
    EXPECT_EQ(bytes.size(),
              tabwerk::platform::Write(stream, bytes.data(), bytes.size()));
    EXPECT_TRUE(tabwerk::platform::Close(stream));
  }

  void RunScript(std::string const& file, int rows) const {
    auto const data = MakeTableData(rows);
    WriteBytes("make.script",
               "NEWDATABASE STOCK " + Path(file) +
                   "\nNEWTABLE ARTICLE\nID integer\nFOLGE integer\n"
                   "STATUS integer\nNAME string\nENDDEF\n" +
                   (rows > 0 ? "TABLEDATA ARTICLE " + data + "\n" : ""));
    EXPECT_EQ(
        1, DBInterpreter().ReadScript(Path("make.script").c_str(), zWString()));
  }

  // MAIN.db of so many rows, an empty user file and a valid index.
  void MakeStock(int rows) const {
    RunScript("MAIN.db", rows);
    RunScript("USER.UDB", 0);
    OpenStock();
    DBbase::Init({}, {});
  }

  static Cost CostOf(std::function<void()> const& work) {
    FaultGuard const counts;
    work();
    return {counts.Count(kAllCalls), counts.BytesRead(), counts.BytesWritten()};
  }

  static void ExpectNotMoreThanTwice(Cost const& once, Cost const& twice) {
    EXPECT_LE(twice.calls, 2 * once.calls);
    EXPECT_LE(twice.bytes_read, 2 * once.bytes_read);
    EXPECT_LE(twice.bytes_written, 2 * once.bytes_written);
    // It was the rows that were read or written.
    EXPECT_GT(twice.bytes_read + twice.bytes_written,
              (once.bytes_read + once.bytes_written) * 3 / 2);
  }
};

TEST_F(CostOfRows, OpeningReadsEveryByteOnce) {
  Cost costs[2];
  for (int const times : {1, 2}) {
    MakeStock(times * kRows);
    auto const file_bytes = static_cast<std::int64_t>(
        Bytes("MAIN.db").size() + Bytes("USER.UDB").size() +
        Bytes("STOCK.idx").size());
    costs[times - 1] = CostOf([&] { OpenStock(); });
    // The headers are read ahead.
    EXPECT_LE(costs[times - 1].bytes_read, file_bytes + 200'000);
    DBbase::Init({}, {});
  }
  ExpectNotMoreThanTwice(costs[0], costs[1]);
}

TEST_F(CostOfRows, SavingWritesTheDataTwice) {
  Cost costs[2];
  for (int const times : {1, 2}) {
    MakeStock(times * kRows);
    OpenStock();
    costs[times - 1] = CostOf(
        [&] { EXPECT_TRUE(Manager()->Write(W("STOCK"), false, zWString())); });
    // The temporary file and the trial copy, and two indices.
    auto const data = static_cast<std::int64_t>(Bytes("MAIN.db").size());
    auto const index = static_cast<std::int64_t>(Bytes("STOCK.idx").size());
    EXPECT_LE(costs[times - 1].bytes_written, 2 * (data + index) + 10'000);
    // The temporary file for the trial copy, the rest at the reopening.  The
    // headers are read ahead.
    EXPECT_LE(costs[times - 1].bytes_read, 2 * (data + index) + 300'000);
    DBbase::Init({}, {});
  }
  ExpectNotMoreThanTwice(costs[0], costs[1]);
}

TEST_F(CostOfRows, ScriptGrowsWithItsRows) {
  Cost const once = CostOf([&] { RunScript("MAIN.db", kRows); });
  DBbase::Init({}, {});
  Cost const twice = CostOf([&] { RunScript("MAIN.db", 2 * kRows); });
  ExpectNotMoreThanTwice(once, twice);
}

TEST_F(CostOfRows, ImportGrowsWithItsRowsNotWithTheTable) {
  Cost costs[2];
  for (int const times : {1, 2}) {
    MakeStock(times * kRows);
    OpenStock();
    std::string text;
    for (int i = 0; i < kRows; ++i) {
      for (char const c : "0;0;0;New " + std::to_string(100000 + i) + "\n") {
        text += {c, '\0'};
      }
    }
    WriteBytes("import.txt", text);
    auto* const table = Table("ARTICLE");
    costs[times - 1] = CostOf([&] {
      DBInterpreter interpreter;
      interpreter.SetTabelle(table);
      EXPECT_EQ(1, interpreter.OpenDatei(Path("import.txt").c_str(), "rb"));
      zWString version;
      EXPECT_EQ(1, interpreter.ReadDatei(version, true, L";"));
      interpreter.CloseDatei();
    });
    EXPECT_EQ((times + 1) * kRows, table->GetAnzahlZeilen());
    DBbase::Init({}, {});
  }
  EXPECT_EQ(costs[0].bytes_read, costs[1].bytes_read);
  EXPECT_EQ(costs[0].calls, costs[1].calls);
}

}  // namespace
