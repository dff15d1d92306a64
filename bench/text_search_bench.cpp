// Finding a row by its text; no contender has an index over the texts.
//
//   find_text        the first search of a table (the limit is one pass)
//   find_text_again  further searches of an unchanged table
#include <algorithm>

#include "bench/support/check.h"
#include "bench/support/host.h"
#include "bench/support/lmdb_rows.h"
#include "bench/support/plain_rows.h"
#include "bench/support/program.h"
#include "bench/support/rows.h"
#include "bench/support/sqlite_rows.h"

namespace tabwerk::bench {
namespace {

// A name that few rows or none before the last ones have, and its first row.
struct Wanted {
  std::u16string name;
  std::wstring wide_name;
  long row = 0;

  explicit Wanted(long rows) {
    auto const& all = Rows(rows);
    name = all.back().Name();
    wide_name.assign(name.begin(), name.end());
    auto const first = std::find_if(
        all.begin(), all.end(),
        [this](auto const& candidate) { return candidate.Name() == name; });
    row = first - all.begin();
  }
};

// The number of the selected row, by its ID.
long SelectedRow(DBTabelle& table) {
  long id = 0;
  Require(table.SelectColumn("ID") == 1 && table.GetWert(id) == 1,
          "no row is selected");
  return id - 1;
}

void FirstTabwerk(benchmark::State& state, long rows) {
  auto const* const shared = ReadTable(rows);
  Wanted const wanted(rows);
  for (auto _ : state) {
    state.PauseTiming();
    DBTabelle table(*shared);  // a copy remembers nothing
    state.ResumeTiming();
    bool const found = table.SelectZeile("NAME", wanted.wide_name.c_str()) == 1;
    state.PauseTiming();
    Require(found && SelectedRow(table) == wanted.row, "another row is found");
    state.ResumeTiming();
  }
}

void AgainTabwerk(benchmark::State& state, long rows) {
  DBTabelle table(*ReadTable(rows));
  Wanted const wanted(rows);
  for (int i = 0; i < 2; ++i) {
    table.SelectZeile("NAME", wanted.wide_name.c_str());
  }
  for (auto _ : state) {
    bool const found = table.SelectZeile("NAME", wanted.wide_name.c_str()) == 1;
    Require(found && SelectedRow(table) == wanted.row, "another row is found");
  }
}

void FirstLimit(benchmark::State& state, long rows) {
  auto const& table = ReadPlainTable(rows);
  Wanted const wanted(rows);
  for (auto _ : state) {
    Require(
        table.FindText(PlainTable::Column::kName, wanted.name) == wanted.row,
        "limit: another row is found");
  }
}

// Translated names are searched for by the caller, as the column holds both
// languages in one text.
void FirstSqlite(benchmark::State& state, long rows) {
  Wanted const wanted(rows);
  auto const like = u"#TS(" + wanted.name + u'\u00AC';
  SqliteQuery query(SqliteTable(rows).get(),
                    "SELECT id FROM artikel WHERE name=?1 OR "
                    "substr(name,1,length(?2))=?2 LIMIT 1");
  for (auto _ : state) {
    query.Bind(1, wanted.name);
    query.Bind(2, like);
    Require(query.Step() && query.Integer(0) - 1 == wanted.row,
            "SQLite: another row is found");
    query.Reset();
  }
}

void FirstLmdb(benchmark::State& state, long rows) {
  auto& table = LmdbTable(rows);
  Wanted const wanted(rows);
  for (auto _ : state) {
    std::int32_t found = 0;
    table.ForEach([&](std::int32_t id, LmdbRecord const& record) {
      if (found == 0 && PieceOf(record.Name()) == wanted.name) found = id;
    });
    Require(found - 1 == wanted.row, "LMDB: another row is found");
  }
}

}  // namespace

void Register(long rows) {
  auto const add = [rows](char const* work, char const* contender, auto body) {
    Add(work, contender, rows, 1, Clock::kProcessor,
        [=](benchmark::State& state) { body(state, rows); });
  };
  add("find_text", "tabwerk", FirstTabwerk);
  add("find_text", "limit", FirstLimit);
  add("find_text", "sqlite", FirstSqlite);
  add("find_text", "lmdb", FirstLmdb);
  add("find_text_again", "tabwerk", AgainTabwerk);
  add("find_text_again", "limit", FirstLimit);
}

}  // namespace tabwerk::bench
