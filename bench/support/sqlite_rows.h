// The rows in an SQLite file.
#ifndef TABWERK_BENCH_SUPPORT_SQLITE_ROWS_H
#define TABWERK_BENCH_SUPPORT_SQLITE_ROWS_H

#include <sqlite3.h>

#include <filesystem>
#include <string_view>

#include "bench/support/rows.h"

namespace tabwerk::bench {

// A prepared statement.
class SqliteQuery {
 public:
  SqliteQuery(sqlite3* database, char const* sql);
  SqliteQuery(SqliteQuery const&) = delete;
  SqliteQuery& operator=(SqliteQuery const&) = delete;
  ~SqliteQuery();

  void Bind(int place, std::int64_t value);
  void Bind(int place, double value);
  void Bind(int place, std::u16string_view value);
  // To the next result row; false behind the last one.
  bool Step();
  void Reset() { sqlite3_reset(query_); }
  std::int64_t Integer(int column) {
    return sqlite3_column_int64(query_, column);
  }
  double Real(int column) { return sqlite3_column_double(query_, column); }
  std::u16string_view Text(int column);

 private:
  sqlite3_stmt* query_ = nullptr;
};

// A database with the table artikel (id as the key, texts in UTF-16).
class SqliteRows {
 public:
  explicit SqliteRows(std::filesystem::path const& path);
  SqliteRows(SqliteRows const&) = delete;
  SqliteRows& operator=(SqliteRows const&) = delete;
  ~SqliteRows() { sqlite3_close(database_); }

  sqlite3* get() const { return database_; }
  void Run(char const* sql);
  void CreateTable();
  // Inserts those rows, in one transaction of the caller's.
  void Insert(std::vector<Row> const& rows, std::int32_t id_shift);

 private:
  sqlite3* database_ = nullptr;
};

// The file of so many rows, made at the first call.
std::filesystem::path const& SqliteFile(long rows);
// The same, opened once for all benchmarks that only read, inside a
// transaction.
SqliteRows& SqliteTable(long rows);

}  // namespace tabwerk::bench

#endif  // TABWERK_BENCH_SUPPORT_SQLITE_ROWS_H
