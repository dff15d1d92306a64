#include "tests/sweeps/fault_sweep.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <new>

#include "base/opened_tables.h"
#include "schema/directory_access.h"
#include "tests/support/new_guard.h"
#include "tests/support/sweep.h"
#include "tests/support/table_state.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace tabwerk::test {
namespace {

namespace fs = std::filesystem;

using platform::Error;

bool MayBeWaitingIndex(std::string const& name) {
  return name.starts_with("STOCK.idx.");
}

// What is wrong with a section of an index whose stamps are those of the files
// with these rows ("1|3|0|Anna"); empty when nothing is.
std::string FaultOf(PlainIndex::Table const& index,
                    std::vector<std::string> const& rows) {
  if (index.status.size() != rows.size()) return "number of rows";
  if (index.folge.size() != rows.size() + 1) return "number of places";
  for (auto const& [id, row] : index.ids) {
    if (row < 0 || static_cast<std::size_t>(row) >= rows.size()) return "row";
    if (!rows[static_cast<std::size_t>(row)].starts_with(std::to_string(id) +
                                                         "|")) {
      return "ID " + std::to_string(id);
    }
  }
  return index.ids.size() == rows.size() ? "" : "number of IDs";
}

PlainTable const* FindTable(PlainDatabase const& database,
                            std::string const& name) {
  for (auto const& table : database.tables) {
    if (table.name == name) return &table;
  }
  return nullptr;
}

}  // namespace

long OpenHandles() {
#ifdef _WIN32
  // Asked for the number itself, Wine says 0.  Handles are multiples of four,
  // and the lowest one that is free is given out first.
  constexpr std::uintptr_t kStep = 4;
  constexpr int kMostUnused = 200;
  long count = 0;
  int unused = 0;
  for (auto value = kStep; unused < kMostUnused; value += kStep) {
    DWORD flags = 0;
    bool const open =
        GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != 0;
    count += open ? 1 : 0;
    unused = open ? 0 : unused + 1;
  }
  return count;
#else
  return static_cast<long>(
      std::distance(fs::directory_iterator("/proc/self/fd"), {}));
#endif
}

FaultSweepTest::FaultSweepTest() {
  // Wine opens handles of its own for the first exception of a program.
  try {
    throw std::bad_alloc();
  } catch (std::bad_alloc const&) {
  }
  MakeFile("MAIN.db",
           {PlainHeader::kCurrent,
            1000,
            {{"ARTIKEL",
              kArtikel,
              {"1|1|0|Anna|1.5", "2|0|0|Bert|2.5", "3|3|0|Carl|3.5"}},
             {"FARBE", kArticles, {"1|1|0|red", "2|2|0|blue"}}}});
  MakeFile("USER.UDB", {PlainHeader::kCurrent,
                        2000,
                        {{"ARTIKEL", kArtikel, {"20000|1|0|Dora|4.5"}},
                         {"FARBE", kArticles, {}}}});
  // ID > row, place > row from place 1 on, status by row.
  PlainIndex::Table const artikel{
      {{1, 0}, {2, 1}, {3, 2}, {20000, 3}}, {-1, 3, 2, 0, -1}, {0, 1, 0, 0}};
  PlainIndex::Table const farbe{{{1, 0}, {2, 1}}, {-1, 1, 0}, {0, 0}};
  // Reading a first file reverses the order of its tables.
  WriteFileBytes(Path("STOCK.idx"),
                 EncodeIndex({{1000, 2000}, {farbe, artikel}}));
  old_ = Snapshot();
  EXPECT_EQ(kOldTables, Reopened());
  Restore(old_);
}

FaultSweepTest::~FaultSweepTest() { DBbase::Init({}, {}); }

FaultSweepTest::FileSet FaultSweepTest::Snapshot() const {
  DBbase::Init({}, {});  // closes the files
  FileSet files;
  for (auto const& file : fs::directory_iterator(Path("."))) {
    auto const name = file.path().filename().string();
    files[name] = Bytes(name);
  }
  return files;
}

void FaultSweepTest::Restore(FileSet const& files) const {
  DBbase::Init({}, {});  // closes the files
  for (auto const& file : fs::directory_iterator(Path("."))) {
    if (files.count(file.path().filename().string()) == 0) {
      fs::remove(file.path());
    }
  }
  for (auto const& [name, bytes] : files) WriteFileBytes(Path(name), bytes);
}

std::string FaultSweepTest::BothTables() {
  return "ARTIKEL " + Rows("ARTIKEL") + " FARBE " + Rows("FARBE");
}

std::string FaultSweepTest::Reopened() const {
  OpenStock();
  return BothTables();
}

std::string FaultSweepTest::MemoryState() {
  auto* const directory = Manager()->GetDirectory();
  if (directory == nullptr) return "-";
  auto* const current = directory->GetAktuelleTabelle();
  std::string text = directory->GetName().toUtf8() + " current " +
                     (current == nullptr ? "-" : current->GetName());
  for (auto const stamp : directory->GetTimeStamps()) {
    text += " " + std::to_string(stamp);
  }
  for (auto* entry = directory->GetEntries(); entry != nullptr;
       entry = entry->GetNext()) {
    // Not by OpenTabelle, which selects the first row.
    auto* const table = OpenedTables::Current(*entry);
    text += "\n" + std::string(entry->GetName()) + " " + test::Rows(*entry) +
            "\n" +
            (table == nullptr ? "-" : Indices(*table) + Selection(*table));
    for (auto const& part : DirectoryAccess::Parts(*entry)) {
      text += " " + std::to_string(part->row_block_size) + "@" +
              std::to_string(part->row_block_offset) + " " +
              std::to_string(part->string_block_size) + "@" +
              std::to_string(part->string_block_offset) +
              (part->loaded ? "" : " not loaded");
    }
  }
  return text;
}

std::string FaultSweepTest::InFile(char const* file, char const* table) const {
  return RowsOf(ReadDatabase(Path(file)), table);
}

void FaultSweepTest::ExpectSoundFiles() const {
  auto const main = ReadDatabase(Path("MAIN.db"));
  auto const user = ReadDatabase(Path("USER.UDB"));
  auto const index = DecodeIndex(Bytes("STOCK.idx"), 2);
  if (!FileExists("STOCK.idx")) return;
  ASSERT_TRUE(index.has_value()) << "STOCK.idx is not whole";
  if (index->time_stamps[0] != main.time_stamp ||
      index->time_stamps[1] != user.time_stamp) {
    return;  // it knows that it does not fit
  }
  ASSERT_EQ(main.tables.size(), index->tables.size());
  auto table = index->tables.rbegin();
  for (auto const& of_main : main.tables) {
    auto rows = of_main.rows;
    if (auto const* of_user = FindTable(user, of_main.name)) {
      rows.insert(rows.end(), of_user->rows.begin(), of_user->rows.end());
    }
    EXPECT_EQ("", FaultOf(*table++, rows)) << of_main.name;
  }
}

std::string FaultSweepTest::FilesButWaiting() const {
  std::string text;
  for (auto const& file : fs::directory_iterator(Path("."))) {
    if (MayBeWaitingIndex(file.path().filename().string())) {
      fs::remove(file.path());
    }
  }
  return Files();
}

void FaultSweepTest::ExpectNoForeignFiles(
    std::vector<std::string> const& expected) const {
  for (auto const& file : fs::directory_iterator(Path("."))) {
    auto const name = file.path().filename().string();
    bool const documented =
        MayBeWaitingIndex(name) || name.ends_with(".UDBT") ||
        name.ends_with(".UDBL") || name.ends_with(".dbT") ||
        name.ends_with(".dbL") || name == "STOCK.idxL" || name == "STOCK.idxT";
    bool const known =
        std::find(expected.begin(), expected.end(), name) != expected.end();
    EXPECT_TRUE(documented || known) << name;
  }
  // The data and the container of a save that failed.
  auto const temp = TempFiles();
  EXPECT_LE(temp.size(), 2U);
  for (auto const& name : temp) {
    EXPECT_TRUE(name.starts_with("dta") || name.starts_with("dir")) << name;
  }
}

std::vector<FaultSweepTest::Manner> const& FaultSweepTest::Manners() {
  static constexpr auto kOnce = Lasting::kOnce;
  static constexpr auto kForGood = Lasting::kForGood;
  static std::vector<Manner> const of_calls{
      {kFileCalls, kOnce, Error::kInputOutput, Portion::kHalf},
      {kFileCalls, kForGood, Error::kDiskFull, Portion::kNothing},
      {kFileCalls, kOnce, Error::kDiskFull, Portion::kAllButOne},
      {kFileCalls, kForGood, Error::kAccessDenied, Portion::kOneByte},
      {kFileCalls, kOnce, Error::kAccessDenied, Portion::kNothing},
      {kFileCalls, kForGood, Error::kHeld, Portion::kHalf},
      {kFileCalls, kOnce, Error::kHeld, Portion::kOneByte},
      {kFileCalls, kForGood, Error::kInputOutput, Portion::kAllButOne},
  };
  static std::vector<Manner> const of_memory{{kMemoryCalls, kOnce},
                                             {kMemoryCalls, kForGood},
                                             {0, kOnce},
                                             {0, kForGood}};
  return GetParam() == Failing::kCalls ? of_calls : of_memory;
}

Outcome FaultSweepTest::Run(Scenario const& scenario, std::size_t call,
                            Manner const& manner) {
  Outcome outcome;
  outcome.once = manner.lasting == Lasting::kOnce;
  auto const n = static_cast<int>(call);
  if (manner.calls == 0) {
    NewGuard guard(n, outcome.once ? NewGuard::Lasting::kOnce
                                   : NewGuard::Lasting::kForGood);
    outcome.result = scenario.run();
    outcome.fired = guard.Disarm();
    return outcome;
  }
  FaultGuard faults;
  faults.FailAt(n, manner.lasting, manner.calls, manner.error, manner.portion);
  outcome.result = scenario.run();
  outcome.fired = faults.Fired();
  outcome.first_failed = faults.FirstFailed();
  return outcome;
}

std::size_t FaultSweepTest::CountCalls(Scenario const& scenario,
                                       Manner const& manner) {
  scenario.prepare();
  Outcome outcome;
  std::int64_t calls = 0;
  if (manner.calls == 0) {
    auto const before = CountNews();
    outcome.result = scenario.run();
    calls = CountNews() - before;
  } else {
    FaultGuard const faults;
    outcome.result = scenario.run();
    calls = faults.Count(manner.calls);
  }
  scenario.judge(outcome);
  DBbase::Init({}, {});
  return static_cast<std::size_t>(calls);
}

void FaultSweepTest::RunAndJudge(Scenario const& scenario, std::size_t call,
                                 Manner const& manner, Outcome* outcome) {
  RemoveTempFiles();
  handles_ = OpenHandles();
  blocks_ = LiveBlocks();
  news_ = LiveNews();
  scenario.prepare();
  *outcome = Run(scenario, call, manner);
  scenario.judge(*outcome);
  ExpectNothingOpen();
}

void FaultSweepTest::ExpectNothingOpen() const {
  DBbase::Init({}, {});
  EXPECT_EQ(0, OpenStreams());
  EXPECT_EQ(news_, LiveNews());
  EXPECT_EQ(blocks_, LiveBlocks());
  EXPECT_EQ(handles_, OpenHandles());
  for (auto const& name : {"MAIN.db", "USER.UDB", "STOCK.idx"}) {
    if (!FileExists(name)) continue;
    auto error = Error::kNone;
    auto* const stream =
        platform::OpenFile(W(Path(name)), platform::Mode::kUpdate,
                           platform::Share::kDenyAll, &error);
    ASSERT_NE(nullptr, stream) << name << " is held";
    EXPECT_TRUE(platform::Close(stream));
  }
}

void FaultSweepTest::SweepManner(Scenario const& scenario, std::size_t manner,
                                 Figures* figures) {
  constexpr std::size_t kPointsOfAShortRun = 6;
  auto const& manners = Manners();
  auto const calls = CountCalls(scenario, manners[manner]);
  figures->calls = std::max(figures->calls, calls);
  Sweep const sweep(calls, kPointsOfAShortRun);
  // Every manner takes other points of a short run.
  auto const shift = manner * sweep.step() / manners.size();
  auto call = 1 + (sweep.first() + shift) % sweep.step();
  for (;; call += sweep.step()) {
    SCOPED_TRACE("manner " + std::to_string(manner) + ", call " +
                 std::to_string(call));
    Outcome outcome;
    RunAndJudge(scenario, call, manners[manner], &outcome);
    if (HasFailure() || !outcome.fired) return;
    ++figures->runs;
    ++(outcome.result == 0 ? figures->refused : figures->done);
  }
}

void FaultSweepTest::SweepCalls(std::string const& what,
                                Scenario const& scenario) {
  if (HasFailure()) return;
  Figures figures;
  for (std::size_t i = 0; i < Manners().size() && !HasFailure(); ++i) {
    SweepManner(scenario, i, &figures);
  }
  EXPECT_LT(0, figures.runs);
  auto const* const test =
      testing::UnitTest::GetInstance()->current_test_info();
  ReportSweep(std::string(test->test_suite_name()) + "." + test->name() +
                  (what.empty() ? "" : " " + what),
              "at most " + std::to_string(figures.calls) + " calls, faults " +
                  std::to_string(figures.runs) + ", refused " +
                  std::to_string(figures.refused) + ", done " +
                  std::to_string(figures.done));
}

}  // namespace tabwerk::test
