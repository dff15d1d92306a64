// The rows in an LMDB file.
#ifndef TABWERK_BENCH_SUPPORT_LMDB_ROWS_H
#define TABWERK_BENCH_SUPPORT_LMDB_ROWS_H

#include <lmdb.h>

#include <filesystem>
#include <string_view>

#include "bench/support/rows.h"

namespace tabwerk::bench {

// A value as LMDB holds it: the numbers, then both texts.
class LmdbRecord {
 public:
  explicit LmdbRecord(MDB_val const& value)
      : bytes_(static_cast<char const*>(value.mv_data)) {}

  static std::string Packed(Row const& row);

  std::int32_t Folge() const { return Number<std::int32_t>(kFolge); }
  std::int32_t Status() const { return Number<std::int32_t>(kStatus); }
  double Price() const { return Number<double>(kPrice); }
  std::u16string_view Name() const;
  std::u16string_view Note() const;

 private:
  static constexpr std::size_t kFolge = 0;
  static constexpr std::size_t kStatus = 4;
  static constexpr std::size_t kPrice = 8;
  static constexpr std::size_t kNameUnits = 16;
  static constexpr std::size_t kNoteUnits = 20;
  static constexpr std::size_t kTexts = 24;

  template <typename T>
  T Number(std::size_t offset) const;

  char const* bytes_;
};

// An environment with one transaction and the rows by ID.
class LmdbRows {
 public:
  enum class Mode : bool { kRead, kWrite };

  LmdbRows(std::filesystem::path const& path, Mode mode);
  LmdbRows(LmdbRows const&) = delete;
  LmdbRows& operator=(LmdbRows const&) = delete;
  ~LmdbRows();

  // False when there is no such ID.
  bool Find(std::int32_t id, MDB_val* value);
  void Put(std::int32_t id, std::string const& packed);
  // Ends the transaction of a kWrite; what was put is on the disk.
  void Commit();
  // Calls use(id, record) for all rows in order of ID.
  template <typename Use>
  void ForEach(Use const& use) {
    MDB_cursor* cursor = nullptr;
    mdb_cursor_open(transaction_, rows_, &cursor);
    MDB_val key;
    MDB_val value;
    while (mdb_cursor_get(cursor, &key, &value, MDB_NEXT) == 0) {
      use(*static_cast<std::int32_t const*>(key.mv_data), LmdbRecord(value));
    }
    mdb_cursor_close(cursor);
  }

 private:
  MDB_env* environment_ = nullptr;
  MDB_txn* transaction_ = nullptr;
  MDB_dbi rows_ = 0;
};

// The file of so many rows, made at the first call.
std::filesystem::path const& LmdbFile(long rows);
// The same, opened once for all benchmarks that only read.
LmdbRows& LmdbTable(long rows);

}  // namespace tabwerk::bench

#endif  // TABWERK_BENCH_SUPPORT_LMDB_ROWS_H
