// One program saves again and again while another one opens, reads everything
// and closes again and again.
#include <gtest/gtest.h>

#include <chrono>
#include <set>

#include "tests/support/child_process.h"
#include "tests/support/database_fixture.h"
#include "tests/support/fault_platform.h"
#include "tests/support/sweep.h"

namespace tabwerk::test {
namespace {

constexpr char kFields[] =
    "integer ID,integer FOLGE,integer STATUS,integer NUMBER,string NAME\n";
constexpr long kShippedRows = 3;
constexpr long kAllRows = 6;
// Without a generation that is new to the reader the test fails.
constexpr std::chrono::seconds kStandstill{120};

// What tests do to tables, for code that is no test.
struct Generations : DatabaseTest {
  using DatabaseTest::Manager;
  using DatabaseTest::SetNumber;
  using DatabaseTest::SetText;
  using DatabaseTest::Table;
};

// Of another length each time, so that everything in the file moves.
std::string TextOf(long generation) {
  return "generation " + std::to_string(generation) +
         std::string(static_cast<std::size_t>(generation % 61), '+');
}

// A generation is in all rows: in those of the user file as number and text,
// in those of the first file as the status, which stands in the index alone.
bool SetGeneration(long generation) {
  auto* const table = Generations::Table("A");
  bool done = table != nullptr;
  for (long row = 0; row < kAllRows; ++row) {
    done = done &&
           (row < kShippedRows
                ? Generations::SetNumber(table, row, "STATUS", generation)
                : Generations::SetNumber(table, row, "NUMBER", generation) &&
                      Generations::SetText(table, row, "NAME",
                                           TextOf(generation)));
  }
  return done;
}

// Saves generation 1 and then args[2] more of them, and tells how often
// it was refused.  A save that is refused is tried again.
CHILD_FUNCTION(SaveGenerations) {
  DBbase::Init({W("STOCK")}, {{W(args[0]), W(args[1])}});
  if (Generations::Manager()->Open(W("STOCK"), true, false) != 1) return 1;
  long const last = std::stol(args[2]) + 1;
  long refusals = 0;
  for (long generation = 1; generation <= last; ++generation) {
    // The first one is there before anybody reads.
    if (generation == 2) TellParent("open");
    if (!SetGeneration(generation)) return 2;
    while (!Generations::Manager()->Write(W("STOCK"), true, W(""))) {
      if (++refusals > last) return 3;
    }
  }
  WriteFileBytes(args[3], {});
  TellParent(std::to_string(refusals));
  return 0;
}

class SweepShareGenerations : public DatabaseTest {
 protected:
  void MakeFirst() const {
    std::vector<std::string> shipped;
    std::vector<std::string> own;
    for (long row = 1; row <= kShippedRows; ++row) {
      auto const number = std::to_string(row);
      shipped.push_back(number + "|" + number + "|0|0|shipped");
      own.push_back("2000" + number + "|" + number + "|0|0|own");
    }
    MakeFile("MAIN.db",
             {PlainHeader::kCurrent, 1000, {{"A", kFields, shipped}}});
    MakeFile("USER.UDB", {PlainHeader::kCurrent, 2000, {{"A", kFields, own}}});
  }

  // The generation of the whole database; 0 when it is held, -1 with *seen
  // for anything else.
  static long ReadGeneration(Arguments const& files, std::string* seen);
};

long SweepShareGenerations::ReadGeneration(Arguments const& files,
                                           std::string* seen) {
  DBbase::Init({W("STOCK")}, {{W(files[0]), W(files[1])}});
  if (Manager()->Open(W("STOCK"), false, false) != 1) {
    if (LastOpenError() == platform::Error::kHeld) return 0;
    *seen = "error " + std::to_string(static_cast<int>(LastOpenError()));
    return -1;
  }
  auto* const table = Table("A");
  *seen =
      Column(table, "STATUS") + Column(table, "NUMBER") + Column(table, "NAME");
  long generation = 0;
  table->SelectColumn("STATUS");
  if (table->SelectZeile(0L) != 1 || table->GetWert(generation) != 1) return -1;
  auto const number = "[" + std::to_string(generation) + "]";
  auto const text = "[" + TextOf(generation) + "]";
  auto const expected = number + number + number + "[0][0][0]" +  // STATUS
                        "[0][0][0]" + number + number + number +  // NUMBER
                        "[shipped][shipped][shipped]" + text + text + text;
  return *seen == expected ? generation : -1;
}

TEST_F(SweepShareGenerations, AReaderSeesOneWholeGeneration) {
  using Clock = std::chrono::steady_clock;
  auto const begin = Clock::now();
  auto last_news = begin;
  long const saves = WholeSweep() ? 10000 : 100;
  MakeFirst();
  Arguments const files = {Path("MAIN.db"), Path("USER.UDB")};
  ChildProcess writer("SaveGenerations", {files[0], files[1],
                                          std::to_string(saves), Path("done")});
  ASSERT_EQ("open", writer.ReadLine());
  long last = 1;
  long reads = 0;
  long held = 0;
  std::set<long> generations;
  while (!FileExists("done")) {
    std::string seen;
    auto const generation = ReadGeneration(files, &seen);
    ASSERT_LE(0, generation) << "after generation " << last << ": " << seen;
    // Back to back and with pauses, so that the writer gets its turn.
    platform::os::Pause(static_cast<int>(++reads % 4));
    ASSERT_LT(Clock::now() - last_news, kStandstill)
        << "nothing new after generation " << last;
    if (generation == 0) {
      ++held;
      continue;
    }
    ASSERT_LE(last, generation);
    last = generation;
    if (generations.insert(generation).second) last_news = Clock::now();
  }
  auto const refusals = writer.ReadLine();
  EXPECT_EQ(0, writer.Wait());
  std::string seen;
  EXPECT_EQ(saves + 1, ReadGeneration(files, &seen)) << seen;
  // Not refused all the time.
  EXPECT_LT(1U, generations.size());
  std::chrono::duration<double> const time = Clock::now() - begin;
  ReportSweep("one writer, one reader",
              "saves " + std::to_string(saves) + ", refused " + refusals +
                  ", reads " + std::to_string(reads) + ", held " +
                  std::to_string(held) + ", generations seen " +
                  std::to_string(generations.size()) + ", seconds " +
                  std::to_string(static_cast<int>(time.count())));
}

}  // namespace
}  // namespace tabwerk::test
