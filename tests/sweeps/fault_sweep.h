// Every call to the system fails, one after the other.
#ifndef TABWERK_TESTS_SWEEPS_FAULT_SWEEP_H
#define TABWERK_TESTS_SWEEPS_FAULT_SWEEP_H

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/support/database_fixture.h"
#include "tests/support/fault_platform.h"
#include "tests/support/private_temp.h"

namespace tabwerk::test {

// What became of one run of an operation.
struct Outcome {
  int result = 0;
  bool fired = false;        // a call failed
  CallSet first_failed = 0;  // which one
  bool once = false;         // and no other

  // True when what is left behind cannot be blamed on a failed Delete.
  bool CouldCleanUp() const {
    return !fired || (once && first_failed != Only(Call::kDelete));
  }
};

// One operation and its judge.
struct Scenario {
  // Brings files and manager to where the operation begins.
  std::function<void()> prepare;
  // The operation, whose calls fail; its result.
  std::function<int()> run;
  // Asserts what is allowed, with all calls working again.
  std::function<void(Outcome const&)> judge;
};

// The database STOCK of MAIN.db and USER.UDB with the tables ARTIKEL and FARBE,
// whose index holds an order and a status of the user's that stand nowhere
// else.
class FaultSweepTest : protected PrivateTemp, public DatabaseTest {
 protected:
  using FileSet = std::map<std::string, std::vector<unsigned char>>;

  FaultSweepTest();
  ~FaultSweepTest() override;

  // Runs the scenario with the k-th call failing, k = 1, 2, 3 … until a run is
  // untouched, once and for good, with every error and every portion of the
  // bytes; then looks for what was left open.  Reports under the test's name,
  // followed by `what`.
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
    Lasting lasting;
    platform::Error error;
    Portion portion;
  };
  struct Figures {
    int runs = 0;
    int refused = 0;
    int done = 0;
  };

  Outcome RunOnce(Scenario const& scenario, std::int64_t call,
                  Manner const& manner, Figures* figures);
  void ExpectNothingOpen() const;

  long handles_ = 0;
  int blocks_ = 0;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SWEEPS_FAULT_SWEEP_H
