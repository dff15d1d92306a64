// Adding rows value by value to a table that has many.
//
//   append  a new row, then its six values
#include <algorithm>

#include "bench/support/check.h"
#include "bench/support/folder.h"
#include "bench/support/host.h"
#include "bench/support/lmdb_rows.h"
#include "bench/support/plain_rows.h"
#include "bench/support/program.h"
#include "bench/support/rows.h"
#include "bench/support/sqlite_rows.h"

namespace tabwerk::bench {
namespace {

namespace fs = std::filesystem;

// The rows that are added, with IDs behind those of the table.
std::vector<Row> const& Added(long rows) {
  static std::vector<Row> added;
  auto const count = static_cast<std::size_t>(std::min(rows, 100000L));
  if (added.size() != count) {
    auto const& all = Rows(rows);
    added.assign(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(count));
  }
  return added;
}

bool AppendTo(DBTabelle* table, Row const& row, std::int32_t id_shift) {
  auto const set = [table](char const* column, auto value) {
    return table->SelectColumn(column) == 1 && table->SetWert(value) == 1;
  };
  return table->NeueZeile(false) && set("ID", long{row.id + id_shift}) &&
         set("FOLGE", long{row.folge}) && set("STATUS", long{row.status}) &&
         set("NAME", row.name.c_str()) && set("PRICE", row.price) &&
         set("NOTE", row.note.c_str());
}

// Looks at every row that was added.
void CheckAdded(DBTabelle* table, long rows) {
  zWString text;
  double price = 0;
  for (auto const& row : Added(rows)) {
    bool const right = table->SelectZeile("ID", row.id + rows) == 1 &&
                       table->SelectColumn("PRICE") == 1 &&
                       table->GetWert(price) == 1 && price == row.price &&
                       table->SelectColumn("NAME") == 1 &&
                       table->GetWert(text) == 1 && text.view() == row.Name() &&
                       table->SelectColumn("NOTE") == 1 &&
                       table->GetWert(text) == 1 && text.view() == row.note;
    Require(right, "an added row has other values");
  }
}

void AppendTabwerk(benchmark::State& state, long rows) {
  auto const& added = Added(rows);
  auto const shift = static_cast<std::int32_t>(rows);
  for (auto _ : state) {
    state.PauseTiming();
    auto* const table = OpenTable(Database(rows), Access::kRead);
    state.ResumeTiming();
    for (auto const& row : added) {
      Require(AppendTo(table, row, shift), "a row is not added");
    }
    state.PauseTiming();
    CheckAdded(table, rows);
    CloseAll();
    state.ResumeTiming();
  }
}

void AppendLimit(benchmark::State& state, long rows) {
  auto const& added = Added(rows);
  auto const& full = ReadPlainTable(rows);
  auto const shift = static_cast<std::int32_t>(rows);
  for (auto _ : state) {
    state.PauseTiming();
    auto table = full;
    // Room at once: copying a whole table is not what is to be measured.
    table.Reserve(full.RowCount() + added.size(),
                  200 * (full.RowCount() + added.size()));
    state.ResumeTiming();
    for (auto const& row : added) AppendRow(&table, row, shift);
    state.PauseTiming();
    Require(table.RowCount() == full.RowCount() + added.size(),
            "limit: rows are missing");
    table = PlainTable();
    state.ResumeTiming();
  }
}

void AppendSqlite(benchmark::State& state, long rows) {
  auto const& added = Added(rows);
  fs::path copy = SqliteFile(rows);
  copy += "_appended";
  fs::copy_file(SqliteFile(rows), copy, fs::copy_options::overwrite_existing);
  {
    SqliteRows database(copy);
    for (auto _ : state) {
      database.Run("BEGIN");
      database.Insert(added, static_cast<std::int32_t>(rows));
      state.PauseTiming();
      database.Run("ROLLBACK");
      state.ResumeTiming();
    }
  }
  fs::remove(copy);
}

void AppendLmdb(benchmark::State& state, long rows) {
  auto const& added = Added(rows);
  (void)LmdbFile(rows);
  for (auto _ : state) {
    // Never committed: the file stays as it is.
    LmdbRows database(LmdbFile(rows), LmdbRows::Mode::kWrite);
    for (auto const& row : added) {
      database.Put(row.id + static_cast<std::int32_t>(rows),
                   LmdbRecord::Packed(row));
    }
  }
}

}  // namespace

void Register(long rows) {
  auto const add = [rows](char const* contender, auto body) {
    Add("append", contender, rows, std::min(rows, 100000L), Clock::kProcessor,
        [=](benchmark::State& state) { body(state, rows); });
  };
  add("tabwerk", AppendTabwerk);
  add("limit", AppendLimit);
  add("sqlite", AppendSqlite);
  add("lmdb", AppendLmdb);
}

}  // namespace tabwerk::bench
