// Saving a changed database so that a power failure cannot lose it.
//
//   save    the limit writes the same bytes to a new file and waits for the
//   disk reopen  what a save does afterwards: the catalogue is opened anew,
//   with an
//           index that was written for the files of before
#include <fcntl.h>
#include <unistd.h>

#include <fstream>
#include <memory>

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

// A copy of what all benchmarks read, to be changed by one of them.
fs::path CopyOf(fs::path const& original, char const* suffix) {
  fs::path copy = original;
  copy += suffix;
  fs::remove_all(copy);
  fs::copy(original, copy, fs::copy_options::recursive);
  return copy;
}

DBTabelle* CurrentTable() {
  DBTabelle* table = nullptr;
  Require(DBbase::GetDBBaseInstance()->OpenTabelle("ARTIKEL", table) == 1,
          "the table is gone");
  return table;
}

double PriceOf(DBTabelle* table, long id) {
  double price = -1;
  Require(table->SelectZeile("ID", id) == 1 &&
              table->SelectColumn("PRICE") == 1 && table->GetWert(price) == 1,
          "no price");
  return price;
}

void SaveTabwerk(benchmark::State& state, long rows) {
  auto const folder = CopyOf(Database(rows), "_saved");
  (void)OpenTable(folder, Access::kWrite);
  double price = 1;
  for (auto _ : state) {
    state.PauseTiming();
    auto* const table = CurrentTable();
    price += 1;
    (void)PriceOf(table, rows);
    Require(table->SetWert(price) == 1, "the price is not set");
    state.ResumeTiming();
    bool const saved =
        DBbase::GetDBBaseInstance()->Write(u"STOCK", false, zWString());
    state.PauseTiming();
    Require(saved && PriceOf(CurrentTable(), rows) == price,
            "the change is not saved");
    state.ResumeTiming();
  }
  CloseAll();
  fs::remove_all(folder);
}

void ReopenTabwerk(benchmark::State& state, long rows) {
  auto const folder = CopyOf(Database(rows), "_reopened");
  (void)OpenTable(folder, Access::kWrite);
  auto const expected = Rows(rows).back().price;
  for (auto _ : state) {
    state.PauseTiming();
    {
      std::fstream index(folder / "STOCK.idx",
                         std::ios::in | std::ios::out | std::ios::binary);
      index.put('\1');
      Require(index.flush().good(), "the index cannot be made stale");
    }
    state.ResumeTiming();
    Require(DBbase::ReOpen(true) != nullptr, "the catalogue does not reopen");
    state.PauseTiming();
    Require(PriceOf(CurrentTable(), rows) == expected, "another price");
    state.ResumeTiming();
  }
  CloseAll();
  fs::remove_all(folder);
}

std::string BytesOf(fs::path const& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void SaveLimit(benchmark::State& state, long rows) {
  auto const bytes = BytesOf(Database(rows) / "MAIN.db");
  auto const path = Folder() / "limit";
  for (auto _ : state) {
    int const file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    std::size_t done = 0;
    while (done < bytes.size()) {
      auto const taken = write(file, bytes.data() + done, bytes.size() - done);
      Require(taken > 0, "limit: cannot write");
      done += static_cast<std::size_t>(taken);
    }
    Require(fsync(file) == 0 && close(file) == 0, "limit: cannot write");
    state.PauseTiming();
    Require(fs::file_size(path) == bytes.size(), "limit: another size");
    fs::remove(path);
    state.ResumeTiming();
  }
}

void SaveSqlite(benchmark::State& state, long rows) {
  auto const file = CopyOf(SqliteFile(rows), "_saved");
  {
    SqliteRows database(file);
    SqliteQuery update(database.get(),
                       "UPDATE artikel SET price=price+0.25 WHERE id=?");
    for (auto _ : state) {
      database.Run("BEGIN");
      for (auto const& row : Rows(rows)) {
        update.Bind(1, std::int64_t{row.id});
        (void)update.Step();
        update.Reset();
      }
      database.Run("COMMIT");
      Require(sqlite3_total_changes(database.get()) % rows == 0,
              "SQLite: rows are missing");
    }
  }
  fs::remove(file);
}

void SaveLmdb(benchmark::State& state, long rows) {
  auto const file = CopyOf(LmdbFile(rows), "_saved");
  for (auto _ : state) {
    LmdbRows database(file, LmdbRows::Mode::kWrite);
    for (auto const& row : Rows(rows)) {
      database.Put(row.id, LmdbRecord::Packed(row));
    }
    database.Commit();
  }
  fs::remove(file);
  fs::remove(file.string() + "-lock");
}

}  // namespace

void Register(long rows) {
  auto const add = [rows](char const* work, char const* contender, auto body) {
    Add(work, contender, rows, 1, Clock::kWall,
        [=](benchmark::State& state) { body(state, rows); });
  };
  add("save", "tabwerk", SaveTabwerk);
  add("save", "limit", SaveLimit);
  add("save", "sqlite", SaveSqlite);
  add("save", "lmdb", SaveLmdb);
  add("reopen", "tabwerk", ReopenTabwerk);
}

}  // namespace tabwerk::bench
