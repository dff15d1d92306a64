#include "bench/support/lmdb_rows.h"

#include <cstring>
#include <map>
#include <memory>

#include "bench/support/check.h"
#include "bench/support/folder.h"

namespace tabwerk::bench {
namespace {

constexpr std::size_t kLargestFile = std::size_t{8} << 30;

void Check(int result) { Require(result == 0, "LMDB: an operation failed"); }

template <typename T>
void Append(std::string* packed, T value) {
  packed->append(static_cast<char const*>(static_cast<void const*>(&value)),
                 sizeof value);
}

void AppendText(std::string* packed, std::u16string_view text) {
  packed->append(
      static_cast<char const*>(static_cast<void const*>(text.data())),
      2 * text.size());
}

std::u16string_view TextAt(char const* bytes, std::int32_t units) {
  // LMDB aligns values to 2 bytes.
  return {static_cast<char16_t const*>(static_cast<void const*>(bytes)),
          static_cast<std::size_t>(units)};
}

}  // namespace

std::string LmdbRecord::Packed(Row const& row) {
  std::string packed;
  Append(&packed, row.folge);
  Append(&packed, row.status);
  Append(&packed, row.price);
  Append(&packed, static_cast<std::int32_t>(row.name.size()));
  Append(&packed, static_cast<std::int32_t>(row.note.size()));
  AppendText(&packed, row.name);
  AppendText(&packed, row.note);
  return packed;
}

template <typename T>
T LmdbRecord::Number(std::size_t offset) const {
  T value;
  std::memcpy(&value, bytes_ + offset, sizeof value);
  return value;
}
template std::int32_t LmdbRecord::Number(std::size_t) const;
template double LmdbRecord::Number(std::size_t) const;

std::u16string_view LmdbRecord::Name() const {
  return TextAt(bytes_ + kTexts, Number<std::int32_t>(kNameUnits));
}

std::u16string_view LmdbRecord::Note() const {
  auto const before =
      static_cast<std::size_t>(Number<std::int32_t>(kNameUnits));
  return TextAt(bytes_ + kTexts + 2 * before, Number<std::int32_t>(kNoteUnits));
}

LmdbRows::LmdbRows(std::filesystem::path const& path, Mode mode) {
  bool const writes = mode == Mode::kWrite;
  Check(mdb_env_create(&environment_));
  Check(mdb_env_set_mapsize(environment_, kLargestFile));
  Check(mdb_env_open(environment_, path.c_str(),
                     MDB_NOSUBDIR | (writes ? 0U : MDB_RDONLY), 0600));
  Check(mdb_txn_begin(environment_, nullptr, writes ? 0U : MDB_RDONLY,
                      &transaction_));
  Check(mdb_dbi_open(transaction_, nullptr,
                     MDB_INTEGERKEY | (writes ? unsigned{MDB_CREATE} : 0U),
                     &rows_));
}

LmdbRows::~LmdbRows() {
  if (transaction_ != nullptr) mdb_txn_abort(transaction_);
  mdb_env_close(environment_);
}

bool LmdbRows::Find(std::int32_t id, MDB_val* value) {
  MDB_val key{sizeof id, &id};
  return mdb_get(transaction_, rows_, &key, value) == 0;
}

void LmdbRows::Put(std::int32_t id, std::string const& packed) {
  MDB_val key{sizeof id, &id};
  MDB_val value{packed.size(), const_cast<char*>(packed.data())};
  Check(mdb_put(transaction_, rows_, &key, &value, 0));
}

void LmdbRows::Commit() {
  Check(mdb_txn_commit(transaction_));
  transaction_ = nullptr;
}

std::filesystem::path const& LmdbFile(long rows) {
  static std::map<long, std::filesystem::path> made;
  auto& path = made[rows];
  if (!path.empty()) return path;
  path = Folder() / (std::to_string(rows) + ".lmdb");
  if (std::filesystem::exists(path)) return path;
  LmdbRows database(path, LmdbRows::Mode::kWrite);
  for (auto const& row : Rows(rows)) {
    database.Put(row.id, LmdbRecord::Packed(row));
  }
  database.Commit();
  return path;
}

LmdbRows& LmdbTable(long rows) {
  static std::unique_ptr<LmdbRows> table;
  static long rows_of_table = 0;
  if (table == nullptr || rows_of_table != rows) {
    table.reset();
    table = std::make_unique<LmdbRows>(LmdbFile(rows), LmdbRows::Mode::kRead);
    rows_of_table = rows;
  }
  return *table;
}

}  // namespace tabwerk::bench
