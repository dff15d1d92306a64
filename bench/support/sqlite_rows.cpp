#include "bench/support/sqlite_rows.h"

#include <map>
#include <memory>

#include "bench/support/check.h"
#include "bench/support/folder.h"

namespace tabwerk::bench {

SqliteQuery::SqliteQuery(sqlite3* database, char const* sql) {
  Require(sqlite3_prepare_v2(database, sql, -1, &query_, nullptr) == SQLITE_OK,
          "SQLite: a statement is wrong");
}

SqliteQuery::~SqliteQuery() { sqlite3_finalize(query_); }

void SqliteQuery::Bind(int place, std::int64_t value) {
  sqlite3_bind_int64(query_, place, value);
}

void SqliteQuery::Bind(int place, double value) {
  sqlite3_bind_double(query_, place, value);
}

void SqliteQuery::Bind(int place, std::u16string_view value) {
  sqlite3_bind_text16(query_, place, value.data(),
                      static_cast<int>(2 * value.size()), SQLITE_STATIC);
}

bool SqliteQuery::Step() {
  int const result = sqlite3_step(query_);
  Require(result == SQLITE_ROW || result == SQLITE_DONE, "SQLite: no result");
  return result == SQLITE_ROW;
}

std::u16string_view SqliteQuery::Text(int column) {
  auto const* const text =
      static_cast<char16_t const*>(sqlite3_column_text16(query_, column));
  auto const bytes = sqlite3_column_bytes16(query_, column);
  return {text, static_cast<std::size_t>(bytes) / 2};
}

SqliteRows::SqliteRows(std::filesystem::path const& path) {
  Require(sqlite3_open(path.c_str(), &database_) == SQLITE_OK,
          "SQLite: the file does not open");
}

void SqliteRows::Run(char const* sql) {
  Require(sqlite3_exec(database_, sql, nullptr, nullptr, nullptr) == SQLITE_OK,
          "SQLite: a statement failed");
}

void SqliteRows::CreateTable() {
  Run("PRAGMA encoding='UTF-16le'");
  Run("CREATE TABLE artikel(id INTEGER PRIMARY KEY, folge INTEGER,"
      " status INTEGER, name TEXT, price REAL, note TEXT)");
}

void SqliteRows::Insert(std::vector<Row> const& rows, std::int32_t id_shift) {
  SqliteQuery insert(database_, "INSERT INTO artikel VALUES(?,?,?,?,?,?)");
  for (auto const& row : rows) {
    insert.Bind(1, std::int64_t{row.id + id_shift});
    insert.Bind(2, std::int64_t{row.folge});
    insert.Bind(3, std::int64_t{row.status});
    insert.Bind(4, row.name);
    insert.Bind(5, row.price);
    insert.Bind(6, row.note);
    (void)insert.Step();
    insert.Reset();
  }
}

std::filesystem::path const& SqliteFile(long rows) {
  static std::map<long, std::filesystem::path> made;
  auto& path = made[rows];
  if (!path.empty()) return path;
  path = Folder() / (std::to_string(rows) + ".sqlite");
  if (std::filesystem::exists(path)) return path;
  SqliteRows database(path);
  database.CreateTable();
  database.Run("BEGIN");
  database.Insert(Rows(rows), 0);
  database.Run("COMMIT");
  return path;
}

SqliteRows& SqliteTable(long rows) {
  static std::unique_ptr<SqliteRows> table;
  static long rows_of_table = 0;
  if (table == nullptr || rows_of_table != rows) {
    table = std::make_unique<SqliteRows>(SqliteFile(rows));
    table->Run("BEGIN");
    rows_of_table = rows;
  }
  return *table;
}

}  // namespace tabwerk::bench
