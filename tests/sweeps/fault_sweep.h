// Every call to the system and every request for memory fails, one after the
// other.
#ifndef TABWERK_TESTS_SWEEPS_FAULT_SWEEP_H
#define TABWERK_TESTS_SWEEPS_FAULT_SWEEP_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/support/database_fixture.h"
#include "tests/support/fault_platform.h"
#include "tests/support/private_temp.h"

namespace tabwerk::test {

// What fails.
enum class Failing {
  kCalls,   // to the system
  kMemory,  // blocks and operator new
};

// What became of one run of an operation.
struct Outcome {
  int result = 0;
  bool fired = false;        // something failed
  CallSet first_failed = 0;  // which call
  bool once = false;         // and nothing else

  // True when what is left behind cannot be blamed on a failed Delete, or on a
  // path that there was no memory for.
  bool CouldCleanUp() const {
    constexpr CallSet kOthers = kFileCalls & ~Only(Call::kDelete);
    return !fired || (once && (first_failed & kOthers) != 0);
  }
};

// Descriptors or handles of this process.
long OpenHandles();

// One operation and its judge.
struct Scenario {
  // Brings files and manager to where the operation begins.
  std::function<void()> prepare;
  // The operation, whose calls fail; its result.  It asks for no memory of its
  // own.
  std::function<int()> run;
  // Asserts what is allowed, with all calls working again.
  std::function<void(Outcome const&)> judge;
};

// The database STOCK of MAIN.db and USER.UDB with the tables ARTIKEL and FARBE,
// whose index holds an order and a status of the user's that stand nowhere
// else.
//
// A test of a sweep runs once for calls and once for memory:
//
//   TEST_P(SaveSweep, UserFile) { … }
//   INSTANTIATE_FAULT_SWEEP(SaveSweep);
class FaultSweepTest : protected PrivateTemp,
                       public DatabaseTest,
                       public testing::WithParamInterface<Failing> {
 protected:
  using FileSet = std::map<std::string, std::vector<unsigned char>>;

  FaultSweepTest();
  ~FaultSweepTest() override;

  // Runs the scenario with the k-th call failing, k = 1, 2, 3 … until a run is
  // untouched, once and for good, with every error and every portion of the
  // bytes; looks each time for what was left open.  Reports under the test's
  // name, followed by `what`.
  void SweepCalls(std::string const& what, Scenario const& scenario);

  // All files of the folder, and the folder made up of these files alone.
  FileSet Snapshot() const;
  void Restore(FileSet const& files) const;

  // The rows of both tables as the manager has them, or "-" where one is not
  // whole.
  static std::string BothTables();
  // Opens the files as they are on the disk; BothTables.
  std::string Reopened() const;
  // Everything in memory that a failed save has to leave alone.
  static std::string MemoryState();
  // The rows of a table in a file, without the library.
  std::string InFile(char const* file, char const* table = "ARTIKEL") const;
  // Fails the test when a database file is not whole, or when the index is not
  // whole or speaks of other rows than the files have.
  void ExpectSoundFiles() const;
  // Files of the folder but for waiting indices "STOCK.idx.<stamp>".
  std::string FilesButWaiting() const;
  // Fails the test when there are other files than these and the documented
  // temporary ones.
  void ExpectNoForeignFiles(std::vector<std::string> const& expected) const;

  static constexpr char kOldTables[] =
      "ARTIKEL [1|3|0|Anna|1.5][2|0|1|Bert|2.5][3|2|0|Carl|3.5]"
      "[20000|1|0|Dora|4.5] FARBE [1|2|0|red][2|1|0|blue]";
  // The same without the index.
  static constexpr char kTablesOfTheFiles[] =
      "ARTIKEL [1|1|0|Anna|1.5][2|0|0|Bert|2.5][3|3|0|Carl|3.5]"
      "[20000|1|0|Dora|4.5] FARBE [1|1|0|red][2|2|0|blue]";
  static constexpr char kArtikel[] =
      "integer ID,integer FOLGE,integer STATUS,string NAME,real PREIS\n";
  static constexpr char kClean[] = "MAIN.db STOCK.idx USER.UDB";

  FileSet old_;  // the three files

 private:
  struct Manner {
    CallSet calls;  // none: operator new
    Lasting lasting;
    platform::Error error = platform::Error::kInputOutput;
    Portion portion = Portion::kHalf;
  };
  struct Figures {
    std::size_t calls = 0;  // of an untouched run, at most
    int runs = 0;
    int refused = 0;
    int done = 0;
  };

  static std::vector<Manner> const& Manners();
  // Fails at the call of that number, from 1; 0: at none.
  static Outcome Run(Scenario const& scenario, std::size_t call,
                     Manner const& manner);
  void RunAndJudge(Scenario const& scenario, std::size_t call,
                   Manner const& manner, Outcome* outcome);
  // Calls of an untouched run.
  std::size_t CountCalls(Scenario const& scenario, Manner const& manner);
  void SweepManner(Scenario const& scenario, std::size_t manner,
                   Figures* figures);
  void ExpectNothingOpen() const;

  // What was there before a run.
  long handles_ = 0;
  int blocks_ = 0;
  std::int64_t news_ = 0;
};

#define INSTANTIATE_FAULT_SWEEP(suite)                               \
  INSTANTIATE_TEST_SUITE_P(SweepFaults, suite,                       \
                           testing::Values(Failing::kCalls),         \
                           [](auto const&) { return "EveryCall"; }); \
  INSTANTIATE_TEST_SUITE_P(SweepMemory, suite,                       \
                           testing::Values(Failing::kMemory),        \
                           [](auto const&) { return "EveryAllocation"; })

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SWEEPS_FAULT_SWEEP_H
