// Building a database from a script and its table data.
//
//   script       the limit reads the text and splits it into values
//   script_save  the save at a script's end, alone
#include <charconv>
#include <fstream>

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

void CheckMade(fs::path const& file, long rows) {
  DBbase::Init({u"STOCK"}, {{zWString::fromUtf8(file.string())}});
  auto* const manager = DBbase::GetDBBaseInstance();
  DBTabelle* table = nullptr;
  double price = -1;
  bool const right =
      manager->Open(u"STOCK", false, false) == 1 &&
      manager->OpenTabelle("ARTIKEL", table) == 1 &&
      table->GetAnzahlZeilen() == rows && table->SelectZeile(rows - 1) == 1 &&
      table->SelectColumn("PRICE") == 1 && table->GetWert(price) == 1 &&
      price == Rows(rows).back().price;
  Require(right, "the script made other rows");
  CloseAll();
}

void ScriptTabwerk(benchmark::State& state, long rows) {
  (void)Database(rows);
  auto const target = Folder() / "script.db";
  auto const script = Folder() / "bench.script";
  WriteBytes(script, MainScript(target, TableDataPath(rows)));
  CloseAll();
  for (auto _ : state) {
    auto const result = DBInterpreter().ReadScript(script.c_str(), zWString());
    state.PauseTiming();
    Require(result == 1, "the script fails");
    CheckMade(target, rows);
    fs::remove(target);
    state.ResumeTiming();
  }
}

void SaveTabwerk(benchmark::State& state, long rows) {
  auto const target = Folder() / "script_save.db";
  fs::copy_file(Database(rows) / "MAIN.db", target,
                fs::copy_options::overwrite_existing);
  DBbase::Init({u"STOCK"}, {{zWString::fromUtf8(target.string())}});
  Require(DBbase::GetDBBaseInstance()->Open(u"STOCK", true, false) == 1,
          "the database does not open");
  for (auto _ : state) {
    Require(DBbase::GetDBBaseInstance()->Write(u"STOCK", false, zWString()),
            "the database is not written");
  }
  CheckMade(target, rows);
  fs::remove(target);
}

// Calls use(values) for every line of table data; the values keep their
// quotes.
using Values = std::array<std::u16string_view, 6>;

template <typename Use>
void Split(std::u16string_view text, Use const& use) {
  Values values;
  std::size_t count = 0;
  bool quoted = false;
  std::size_t begin = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char16_t const unit = text[i];
    if (unit == u'"') quoted = !quoted;
    if (quoted || (unit != u',' && unit != u'\n')) continue;
    values[count++] = text.substr(begin, i - begin);
    begin = i + 1;
    if (unit == u',') continue;
    Require(count == values.size(), "a line has another number of values");
    use(values);
    count = 0;
  }
}

std::u16string ReadUnits(fs::path const& path) {
  std::u16string text(fs::file_size(path) / 2, u'\0');
  FILE* const stream = std::fopen(path.c_str(), "rb");
  Require(stream != nullptr &&
              std::fread(text.data(), 2, text.size(), stream) == text.size(),
          "the table data cannot be read");
  std::fclose(stream);
  return text.erase(0, 1);
}

void ScriptLimit(benchmark::State& state, long rows) {
  (void)Database(rows);
  auto const path = TableDataPath(rows);
  for (auto _ : state) {
    auto const text = ReadUnits(path);
    long lines = 0;
    std::size_t units = 0;
    Split(text, [&](Values const& values) {
      ++lines;
      for (auto const value : values) units += value.size() + 1;
    });
    Require(lines == rows && units == text.size(), "limit: a wrong split");
  }
}

template <typename T>
T Number(std::u16string_view text) {
  std::array<char, 32> digits{};
  std::copy(text.begin(), text.end(), digits.begin());
  T number{};
  std::from_chars(digits.data(), digits.data() + text.size(), number);
  return number;
}

Row RowOf(Values const& values) {
  auto const unquoted = [](std::u16string_view text) {
    return std::u16string(text.substr(1, text.size() - 2));
  };
  return {Number<std::int32_t>(values[0]),
          Number<std::int32_t>(values[1]),
          Number<std::int32_t>(values[2]),
          Number<double>(values[4]),
          unquoted(values[3]),
          unquoted(values[5])};
}

void ScriptSqlite(benchmark::State& state, long rows) {
  (void)Database(rows);
  auto const data = TableDataPath(rows);
  auto const target = Folder() / "script.sqlite";
  for (auto _ : state) {
    SqliteRows database(target);
    database.CreateTable();
    database.Run("BEGIN");
    auto const text = ReadUnits(data);
    SqliteQuery insert(database.get(),
                       "INSERT INTO artikel VALUES(?,?,?,?,?,?)");
    Split(text, [&](Values const& values) {
      auto const row = RowOf(values);
      insert.Bind(1, std::int64_t{row.id});
      insert.Bind(2, std::int64_t{row.folge});
      insert.Bind(3, std::int64_t{row.status});
      insert.Bind(4, row.name);
      insert.Bind(5, row.price);
      insert.Bind(6, row.note);
      (void)insert.Step();
      insert.Reset();
    });
    database.Run("COMMIT");
    state.PauseTiming();
    Require(sqlite3_total_changes(database.get()) == rows,
            "SQLite: rows are missing");
    fs::remove(target);
    state.ResumeTiming();
  }
}

void ScriptLmdb(benchmark::State& state, long rows) {
  (void)Database(rows);
  auto const data = TableDataPath(rows);
  auto const target = Folder() / "script.lmdb";
  for (auto _ : state) {
    LmdbRows database(target, LmdbRows::Mode::kWrite);
    auto const text = ReadUnits(data);
    Split(text, [&](Values const& values) {
      auto const row = RowOf(values);
      database.Put(row.id, LmdbRecord::Packed(row));
    });
    database.Commit();
    state.PauseTiming();
    fs::remove(target);
    state.ResumeTiming();
  }
}

}  // namespace

void Register(long rows) {
  auto const add = [rows](char const* work, char const* contender, auto body) {
    Add(work, contender, rows, rows, Clock::kWall,
        [=](benchmark::State& state) { body(state, rows); });
  };
  add("script", "tabwerk", ScriptTabwerk);
  add("script", "limit", ScriptLimit);
  add("script", "sqlite", ScriptSqlite);
  add("script", "lmdb", ScriptLmdb);
  add("script_save", "tabwerk", SaveTabwerk);
}

}  // namespace tabwerk::bench
