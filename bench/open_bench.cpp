// Opening a database and having all of it in memory.
//
//   open         with a valid index file; the limit reads the same bytes
//   first_value  a process of its own, from its start to the first value
//   stale_index  the index file was written for other files: every row is
//                numbered anew, and the index file is written
//   memory       what the loaded table takes, in MiB (a process of its own)
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <thread>

#include "bench/support/check.h"
#include "bench/support/folder.h"
#include "bench/support/host.h"
#include "bench/support/lmdb_rows.h"
#include "bench/support/program.h"
#include "bench/support/rows.h"
#include "bench/support/sqlite_rows.h"

namespace tabwerk::bench {
namespace {

namespace fs = std::filesystem;

// The bytes of a file in memory that was taken for them.
class FileBytes {
 public:
  explicit FileBytes(fs::path const& path) : size_(fs::file_size(path)) {
    bytes_.reset(static_cast<char*>(std::malloc(size_ + 1)));
    FILE* const stream = std::fopen(path.c_str(), "rb");
    Require(stream != nullptr && bytes_ != nullptr &&
                std::fread(bytes_.get(), 1, size_, stream) == size_,
            "a file cannot be read");
    std::fclose(stream);
  }
  std::size_t size() const { return size_; }

 private:
  struct Release {
    void operator()(char* bytes) const { std::free(bytes); }
  };
  std::size_t size_;
  std::unique_ptr<char, Release> bytes_;
};

std::vector<FileBytes> ReadFiles(long rows) {
  auto const& folder = Database(rows);
  std::vector<FileBytes> files;
  for (auto const* name : {"MAIN.db", "USER.UDB", "STOCK.idx"}) {
    files.emplace_back(folder / name);
  }
  return files;
}

// The value that shows that everything is there: that of the last row.
void CheckLastRow(DBTabelle* table, Row const& row) {
  zWString name;
  double price = 0;
  bool const right = table->SelectZeile("ID", long{row.id}) == 1 &&
                     table->SelectColumn("PRICE") == 1 &&
                     table->GetWert(price) == 1 && price == row.price &&
                     table->SelectColumn("NAME") == 1 &&
                     table->GetWert(name) == 1 && name.view() == row.Name() &&
                     table->GetRowByFolge(row.folge) == row.id - 1;
  Require(right, "the opened table has other values");
}

void OpenTabwerk(benchmark::State& state, long rows) {
  auto const& folder = Database(rows);
  auto const& last = Rows(rows).back();
  CloseAll();
  for (auto _ : state) {
    auto* const table = OpenTable(folder, Access::kRead);
    state.PauseTiming();
    CheckLastRow(table, last);
    CloseAll();
    state.ResumeTiming();
  }
}

void OpenLimit(benchmark::State& state, long rows) {
  auto const expected = fs::file_size(Database(rows) / "MAIN.db");
  CloseAll();
  for (auto _ : state) {
    auto files = ReadFiles(rows);
    state.PauseTiming();
    Require(files[0].size() == expected, "the file has another size");
    files.clear();
    state.ResumeTiming();
  }
}

void OpenSqlite(benchmark::State& state, long rows) {
  auto const& file = SqliteFile(rows);
  for (auto _ : state) {
    SqliteRows database(file);
    SqliteQuery all(database.get(), "SELECT * FROM artikel");
    std::vector<Row> loaded;
    while (all.Step()) {
      loaded.push_back({static_cast<std::int32_t>(all.Integer(0)),
                        static_cast<std::int32_t>(all.Integer(1)),
                        static_cast<std::int32_t>(all.Integer(2)), all.Real(4),
                        std::u16string(all.Text(3)),
                        std::u16string(all.Text(5))});
    }
    state.PauseTiming();
    Require(loaded.back().name == Rows(rows).back().name, "SQLite: other rows");
    loaded = {};
    state.ResumeTiming();
  }
}

void OpenLmdb(benchmark::State& state, long rows) {
  auto const& file = LmdbFile(rows);
  for (auto _ : state) {
    LmdbRows database(file, LmdbRows::Mode::kRead);
    std::vector<Row> loaded;
    database.ForEach([&](std::int32_t id, LmdbRecord const& record) {
      loaded.push_back({id, record.Folge(), record.Status(), record.Price(),
                        std::u16string(record.Name()),
                        std::u16string(record.Note())});
    });
    state.PauseTiming();
    Require(loaded.back().name == Rows(rows).back().name, "LMDB: other rows");
    loaded = {};
    state.ResumeTiming();
  }
}

// --- From the start of a process to the first value -------------------------

double FirstValue(long rows) {
  auto* const table = OpenTable(Database(rows), Access::kRead);
  double price = -1;
  table->SelectZeile("ID", rows);
  table->SelectColumn("PRICE");
  table->GetWert(price);
  return price;
}

double FirstValueLimit(long rows) {
  auto const files = ReadFiles(rows);
  return static_cast<double>(files[0].size());
}

double FirstValueSqlite(long rows) {
  SqliteRows database(SqliteFile(rows));
  SqliteQuery query(database.get(), "SELECT price FROM artikel WHERE id=?");
  query.Bind(1, std::int64_t{rows});
  return query.Step() ? query.Real(0) : -1;
}

double FirstValueLmdb(long rows) {
  LmdbRows database(LmdbFile(rows), LmdbRows::Mode::kRead);
  MDB_val value;
  bool const found = database.Find(static_cast<std::int32_t>(rows), &value);
  return found ? LmdbRecord(value).Price() : -1;
}

void AddFirstValue(char const* contender, long rows, ChildWork const& work) {
  auto const name = std::string("first_value_") + contender;
  AddChild(name, [work](long count) {
    std::printf("%.9g\n", work(count));
    std::fflush(stdout);
    std::_Exit(0);  // nobody waits for the memory to be freed
    return 0.0;
  });
  bool const is_limit = std::string(contender) == "limit";
  Add("first_value", contender, rows, 1, Clock::kWall,
      [=](benchmark::State& state) {
        (void)Database(rows);
        (void)SqliteFile(rows);
        (void)LmdbFile(rows);
        auto const expected =
            is_limit
                ? static_cast<double>(fs::file_size(Database(rows) / "MAIN.db"))
                : Rows(rows).back().price;
        for (auto _ : state) {
          Require(RunChild(name, rows) == expected, "another first value");
        }
      });
}

// --- An index that was written for other files ------------------------------

void StaleIndex(benchmark::State& state, long rows) {
  auto const& folder = Database(rows);
  auto const index = folder / "STOCK.idx";
  auto const& last = Rows(rows).back();
  CloseAll();
  for (auto _ : state) {
    state.PauseTiming();
    {
      // The time stamp of the first file.
      std::fstream stream(index,
                          std::ios::in | std::ios::out | std::ios::binary);
      stream.put('\1');
      Require(stream.flush().good(), "the index cannot be made stale");
    }
    state.ResumeTiming();
    auto* const table = OpenTable(folder, Access::kRead);
    state.PauseTiming();
    CheckLastRow(table, last);
    CloseAll();
    state.ResumeTiming();
  }
}

// --- Memory ------------------------------------------------------------------

double ResidentMebibytes() {
  std::ifstream stream("/proc/self/statm");
  double total = 0;
  double resident = 0;
  stream >> total >> resident;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1048576;
}

double MemoryTabwerk(long rows) {
  auto const before = ResidentMebibytes();
  auto* const table = OpenTable(Database(rows), Access::kRead);
  Require(table->GetAnzahlZeilen() == rows, "rows are missing");
  return ResidentMebibytes() - before;
}

double MemorySqlite(long rows) {
  auto const before = ResidentMebibytes();
  SqliteRows memory(":memory:");
  memory.Run("PRAGMA encoding='UTF-16le'");
  memory.Run(("ATTACH '" + SqliteFile(rows).string() + "' AS stored").c_str());
  memory.Run("CREATE TABLE artikel AS SELECT * FROM stored.artikel");
  return ResidentMebibytes() - before;
}

double MemoryLmdb(long rows) {
  auto const before = ResidentMebibytes();
  LmdbRows database(LmdbFile(rows), LmdbRows::Mode::kRead);
  TextSum sum;
  database.ForEach(
      [&sum](auto, LmdbRecord const& record) { sum.Add(record.Note()); });
  Require(sum.value() != 0, "LMDB: no rows");
  return ResidentMebibytes() - before;
}

// Bytes of rows and texts, two ends of texts among them, and 8 more for each
// row.
double MemoryLimit(long rows) {
  double bytes = 0;
  for (auto const& row : Rows(rows)) {
    auto const units = row.name.size() + row.note.size();
    bytes += 28 + 2 * (static_cast<double>(units) + 2) + 8;
  }
  return bytes / 1048576;
}

// Shown as a counter: the time means nothing.
void AddMemory(char const* contender, long rows, bool in_child,
               ChildWork const& work) {
  auto const name = std::string("memory_") + contender;
  AddChild(name, work);
  Add("memory", contender, rows, 1, Clock::kWall, [=](benchmark::State& state) {
    (void)Database(rows);
    (void)SqliteFile(rows);
    (void)LmdbFile(rows);
    for (auto _ : state) {
      state.counters["MiB"] = in_child ? RunChild(name, rows) : work(rows);
    }
  });
}

}  // namespace

void Register(long rows) {
  auto const add = [rows](char const* work, char const* contender, Clock clock,
                          auto body) {
    Add(work, contender, rows, 1, clock,
        [=](benchmark::State& state) { body(state, rows); });
  };
  // The files are in the system's memory: nothing waits for a disk.
  add("open", "tabwerk", Clock::kProcessor, OpenTabwerk);
  add("open", "limit", Clock::kProcessor, OpenLimit);
  add("open", "sqlite", Clock::kProcessor, OpenSqlite);
  add("open", "lmdb", Clock::kProcessor, OpenLmdb);
  AddFirstValue("tabwerk", rows, FirstValue);
  AddFirstValue("limit", rows, FirstValueLimit);
  AddFirstValue("sqlite", rows, FirstValueSqlite);
  AddFirstValue("lmdb", rows, FirstValueLmdb);
  add("stale_index", "tabwerk", Clock::kWall, StaleIndex);
  AddMemory("tabwerk", rows, true, MemoryTabwerk);
  AddMemory("limit", rows, false, MemoryLimit);
  AddMemory("sqlite", rows, true, MemorySqlite);
  AddMemory("lmdb", rows, true, MemoryLmdb);
}

}  // namespace tabwerk::bench
