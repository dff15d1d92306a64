// Random tables for judging one form of an operation by another.
#ifndef TABWERK_TESTS_SUPPORT_RANDOM_TABLE_H
#define TABWERK_TESTS_SUPPORT_RANDOM_TABLE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <span>
#include <string>

#include "table/table_access.h"
#include "tests/support/table_builder.h"

namespace tabwerk::test {

class Random {
 public:
  explicit Random(std::uint32_t seed) : engine_(seed) {}
  // Choices that bytes make, so that a fuzzer can steer them.  Once they are
  // used up the first choice is taken.  Borrows the bytes.
  explicit Random(std::span<std::uint8_t const> bytes)
      : from_bytes_(true), bytes_(bytes) {}
  // From first to last.
  int Between(int first, int last) {
    if (from_bytes_) return first + static_cast<int>(Take(first, last));
    return std::uniform_int_distribution<int>(first, last)(engine_);
  }
  bool OneIn(int n) { return Between(1, n) == 1; }
  std::string PickOf(std::initializer_list<char const*> texts) {
    auto const last = static_cast<int>(texts.size()) - 1;
    return texts.begin()[Between(0, last)];
  }

  bool UsedUp() const { return from_bytes_ && bytes_.empty(); }

 private:
  // As many bytes as the choices need.
  std::int64_t Take(std::int64_t first, std::int64_t last) {
    std::int64_t const choices = last - first + 1;
    std::int64_t number = 0;
    for (std::int64_t reach = 1; reach < choices && !UsedUp(); reach *= 256) {
      number = number * 256 + bytes_.front();
      bytes_ = bytes_.subspan(1);
    }
    return number % choices;
  }

  std::mt19937 engine_;
  bool from_bytes_ = false;
  std::span<std::uint8_t const> bytes_;
};

// Few different values, so that rows share them; now and then a wild one.
inline std::string RandomNumber(Random& random, int rows) {
  if (random.OneIn(12)) {
    return random.PickOf({"-1", "-7", "1000000", "2147483647", "-2147483648"});
  }
  return std::to_string(random.Between(0, rows + 1));
}

inline std::string RandomDefinition(Random& random) {
  std::string definition;
  auto const add = [&](char const* name) {
    if (random.OneIn(8)) return;
    char const* type = random.OneIn(8) ? "string " : "integer ";
    if (random.OneIn(10)) type = "real ";
    definition += std::string(definition.empty() ? "" : ",") + type + name;
  };
  add("ID");
  add("FOLGE");
  add("STATUS");
  if (random.OneIn(8)) add("ID");
  definition += definition.empty() ? "string NAME" : ",string NAME";
  definition += ",real PRICE,integer N\n";
  return definition;
}

inline std::string RandomRow(Random& random, DBDefinition& definition,
                             int rows) {
  std::string row;
  for (DBFeld* field = definition.GetDefinition(); field != nullptr;
       field = field->next) {
    if (field->type == DBTypeString) {
      row += random.PickOf({"a", "b", "", "abc", "1", "#TS(x)TS~", "#TS(ab",
                            "x#TS(b)TS~", "#TS()TS~"});
    } else if (std::string(field->name) == "STATUS") {
      row += random.PickOf({"0", "0", "0", "0", "1", "2", "7", "-1"});
    } else {
      row += RandomNumber(random, rows);
    }
    row += '|';
  }
  return row;
}

// Indices as an older file may have left them.
inline void MakeStaleIndices(Random& random, DBTabelle& table, int rows) {
  auto const number = [&] { return std::stoi(RandomNumber(random, rows)); };
  auto& folge = TableAccess::Folge(table);
  folge.clear();
  for (int i = random.Between(0, rows + 3); i > 0; --i) {
    folge.push_back(random.OneIn(4) ? -1 : number());
  }
  auto& status = TableAccess::Status(table);
  status.clear();
  for (int i = random.Between(0, rows + 3); i > 0; --i) {
    status.push_back(random.OneIn(2) ? 0 : number());
  }
  TableAccess::Ids(table).Clear();
  for (int i = random.Between(0, rows + 3); i > 0; --i) {
    TableAccess::Ids(table).Set(number(), number());
  }
}

inline void SelectSomething(Random& random, DBTabelle& table, int rows) {
  if (random.OneIn(5)) return;
  table.SelectColumn(
      random.PickOf({"ID", "FOLGE", "STATUS", "NAME", "PRICE"}).c_str());
  if (random.OneIn(5)) {
    table.SelectColumn(random.PickOf({"ID", "FOLGE", "STATUS", "X"}).c_str());
  }
  table.SelectZeile(static_cast<long>(random.Between(-1, rows + 2)));
}

// A table of at most that many rows in one to three parts.  The same numbers
// give the same table.
inline std::unique_ptr<TestTable> RandomTable(std::uint32_t seed,
                                              int most_rows) {
  Random random(seed);
  auto const parts = static_cast<std::size_t>(random.Between(1, 3));
  auto made =
      std::make_unique<TestTable>(RandomDefinition(random).c_str(), parts);
  if (random.OneIn(20)) made->table.SetDirEntry(made->entry);
  int const rows = random.OneIn(10) ? 0 : random.Between(0, most_rows);
  for (int i = 0; i < rows; ++i) {
    auto const part = static_cast<std::size_t>(
        random.Between(0, static_cast<int>(parts) - 1));
    made->AddRow(part, RandomRow(random, *made->entry->GetDefinition(), rows));
  }
  if (random.OneIn(3)) {
    MakeStaleIndices(random, made->table, rows);
  } else if (random.OneIn(2)) {
    made->table.MakeIndexID();
    made->table.MakeIndexFolge();
    made->table.MakeIndexStatus();
  }
  if (random.OneIn(12)) made->table.SetMemory(50, parts - 1);
  SelectSomething(random, made->table, rows);
  return made;
}

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_RANDOM_TABLE_H
