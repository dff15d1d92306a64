// Reading single values.
//
//   lookup_number  every row once in random order: found by its ID, an integer
//                  and a real of it read
//   lookup_text    the same, a translated text read
//   sum_column     a real of row after row
//
// The limit is the table written by hand, behind calls of the same shape.
#include "bench/support/check.h"
#include "bench/support/host.h"
#include "bench/support/lmdb_rows.h"
#include "bench/support/plain_rows.h"
#include "bench/support/program.h"
#include "bench/support/rows.h"
#include "bench/support/sqlite_rows.h"

namespace tabwerk::bench {
namespace {

using Column = PlainTable::Column;

// What a round over all rows has to give.
struct Expected {
  std::int64_t folge = 0;
  double price = 0;
  std::uint64_t names = 0;

  explicit Expected(long rows) {
    TextSum text_sum;
    for (auto const& row : Rows(rows)) {
      folge += row.folge;
      price += row.price;
      text_sum.Add(row.Name());
    }
    names = text_sum.value();
  }
};

Expected const& ExpectedOf(long rows) {
  static long expected_rows = 0;
  static Expected expected(0);
  if (expected_rows != rows) expected = Expected(rows);
  expected_rows = rows;
  return expected;
}

// --- Numbers by ID -----------------------------------------------------------

template <typename Read>
void LookUpNumbers(benchmark::State& state, long rows, Read const& read) {
  auto const& ids = ShuffledIds(rows);
  auto const& expected = ExpectedOf(rows);
  for (auto _ : state) {
    std::int64_t folge_sum = 0;
    double price_sum = 0;
    for (auto const id : ids) {
      long folge = 0;
      double price = 0;
      Require(read(id, &folge, &price), "an ID is not found");
      folge_sum += folge;
      price_sum += price;
    }
    Require(folge_sum == expected.folge && price_sum == expected.price,
            "wrong numbers");
  }
}

void NumbersTabwerk(benchmark::State& state, long rows) {
  auto* const table = ReadTable(rows);
  LookUpNumbers(state, rows, [table](long id, long* folge, double* price) {
    return table->SelectZeile("ID", id) == 1 &&
           table->SelectColumn("FOLGE") == 1 && table->GetWert(*folge) == 1 &&
           table->SelectColumn("PRICE") == 1 && table->GetWert(*price) == 1;
  });
}

void NumbersLimit(benchmark::State& state, long rows) {
  auto& table = ReadPlainTable(rows);
  LookUpNumbers(state, rows, [&table](long id, long* folge, double* price) {
    return table.SelectId(id) && table.SelectColumn(Column::kFolge) &&
           table.Get(folge) && table.SelectColumn(Column::kPrice) &&
           table.Get(price);
  });
}

void NumbersSqlite(benchmark::State& state, long rows) {
  SqliteQuery query(SqliteTable(rows).get(),
                    "SELECT folge, price FROM artikel WHERE id=?");
  LookUpNumbers(state, rows, [&query](long id, long* folge, double* price) {
    query.Bind(1, std::int64_t{id});
    bool const found = query.Step();
    *folge = query.Integer(0);
    *price = query.Real(1);
    query.Reset();
    return found;
  });
}

void NumbersLmdb(benchmark::State& state, long rows) {
  auto& table = LmdbTable(rows);
  LookUpNumbers(state, rows, [&table](long id, long* folge, double* price) {
    MDB_val value;
    if (!table.Find(static_cast<std::int32_t>(id), &value)) return false;
    LmdbRecord const record(value);
    *folge = record.Folge();
    *price = record.Price();
    return true;
  });
}

// --- Translated texts by ID --------------------------------------------------

template <typename Read>
void LookUpTexts(benchmark::State& state, long rows, Read const& read) {
  auto const& ids = ShuffledIds(rows);
  auto const expected = ExpectedOf(rows).names;
  for (auto _ : state) {
    TextSum sum;
    for (auto const id : ids) sum.Add(read(id));
    Require(sum.value() == expected, "wrong texts");
  }
}

void TextsTabwerk(benchmark::State& state, long rows) {
  auto* const table = ReadTable(rows);
  zWString name;
  LookUpTexts(state, rows, [table, &name](long id) {
    bool const found = table->SelectZeile("ID", id) == 1 &&
                       table->SelectColumn("NAME") == 1 &&
                       table->GetWert(name) == 1;
    Require(found, "an ID is not found");
    return name.view();
  });
}

void TextsLimit(benchmark::State& state, long rows) {
  auto& table = ReadPlainTable(rows);
  std::u16string name;
  LookUpTexts(state, rows, [&table, &name](long id) {
    bool const found = table.SelectId(id) &&
                       table.SelectColumn(Column::kName) && table.Get(&name);
    Require(found, "an ID is not found");
    return std::u16string_view(name);
  });
}

void TextsSqlite(benchmark::State& state, long rows) {
  SqliteQuery query(SqliteTable(rows).get(),
                    "SELECT name FROM artikel WHERE id=?");
  std::u16string name;
  LookUpTexts(state, rows, [&query, &name](long id) {
    query.Bind(1, std::int64_t{id});
    Require(query.Step(), "SQLite: an ID is not found");
    name = PieceOf(query.Text(0));
    query.Reset();
    return std::u16string_view(name);
  });
}

void TextsLmdb(benchmark::State& state, long rows) {
  auto& table = LmdbTable(rows);
  std::u16string name;
  LookUpTexts(state, rows, [&table, &name](long id) {
    MDB_val value;
    Require(table.Find(static_cast<std::int32_t>(id), &value),
            "LMDB: an ID is not found");
    name = PieceOf(LmdbRecord(value).Name());
    return std::u16string_view(name);
  });
}

// --- One column, row by row --------------------------------------------------

void SumTabwerk(benchmark::State& state, long rows) {
  auto* const table = ReadTable(rows);
  auto const expected = ExpectedOf(rows).price;
  for (auto _ : state) {
    table->SelectColumn("PRICE");
    double sum = 0;
    for (long row = 0; row < rows; ++row) {
      double price = 0;
      if (table->SelectZeile(row) == 1) table->GetWert(price);
      sum += price;
    }
    Require(sum == expected, "a wrong sum");
  }
}

void SumLimit(benchmark::State& state, long rows) {
  auto& table = ReadPlainTable(rows);
  auto const expected = ExpectedOf(rows).price;
  for (auto _ : state) {
    table.SelectColumn(Column::kPrice);
    double sum = 0;
    for (long row = 0; row < rows; ++row) {
      double price = 0;
      if (table.SelectRow(row)) table.Get(&price);
      sum += price;
    }
    Require(sum == expected, "a wrong sum");
  }
}

void SumSqlite(benchmark::State& state, long rows) {
  SqliteQuery query(SqliteTable(rows).get(), "SELECT price FROM artikel");
  auto const expected = ExpectedOf(rows).price;
  for (auto _ : state) {
    double sum = 0;
    while (query.Step()) sum += query.Real(0);
    query.Reset();
    Require(sum == expected, "SQLite: a wrong sum");
  }
}

void SumLmdb(benchmark::State& state, long rows) {
  auto& table = LmdbTable(rows);
  auto const expected = ExpectedOf(rows).price;
  for (auto _ : state) {
    double sum = 0;
    table.ForEach(
        [&sum](auto, LmdbRecord const& record) { sum += record.Price(); });
    Require(sum == expected, "LMDB: a wrong sum");
  }
}

}  // namespace

void Register(long rows) {
  auto const add = [rows](char const* work, char const* contender, auto body) {
    Add(work, contender, rows, rows, Clock::kProcessor,
        [=](benchmark::State& state) { body(state, rows); });
  };
  add("lookup_number", "tabwerk", NumbersTabwerk);
  add("lookup_number", "limit", NumbersLimit);
  add("lookup_number", "sqlite", NumbersSqlite);
  add("lookup_number", "lmdb", NumbersLmdb);
  add("lookup_text", "tabwerk", TextsTabwerk);
  add("lookup_text", "limit", TextsLimit);
  add("lookup_text", "sqlite", TextsSqlite);
  add("lookup_text", "lmdb", TextsLmdb);
  add("sum_column", "tabwerk", SumTabwerk);
  add("sum_column", "limit", SumLimit);
  add("sum_column", "sqlite", SumSqlite);
  add("sum_column", "lmdb", SumLmdb);
}

}  // namespace tabwerk::bench
