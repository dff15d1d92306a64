// Whole user rows, added to a table that has many.
//
//   user_append, user_update  SetZeileWerte, row after row
//   user_insert               new rows in front of all others
//   user_import               delimited text
#include <algorithm>
#include <map>

#include "bench/support/check.h"
#include "bench/support/folder.h"
#include "bench/support/host.h"
#include "bench/support/program.h"
#include "bench/support/rows.h"

namespace tabwerk::bench {
namespace {

constexpr long kMostAdded = 100000;
constexpr long kInserted = 20;

std::map<std::string, std::wstring> Values(long id, long folge, long number) {
  return {{"ID", std::to_wstring(id)},
          {"FOLGE", std::to_wstring(folge)},
          {"STATUS", L"0"},
          {"NAME", L"New article " + std::to_wstring(number)},
          {"PRICE", L"2.5"},
          {"NOTE", L"a note"}};
}

std::u16string Name(long number) {
  auto const digits = std::to_string(number);
  return u"New article " + std::u16string(digits.begin(), digits.end());
}

// Looks at count rows, the first of them at that row number.
void CheckRows(DBTabelle* table, long first_row, long count) {
  zWString name;
  double price = 0;
  for (long i = 0; i < count; ++i) {
    bool const right = table->SelectZeile(first_row + i) == 1 &&
                       table->SelectColumn("NAME") == 1 &&
                       table->GetWert(name) == 1 && name.view() == Name(i) &&
                       table->SelectColumn("PRICE") == 1 &&
                       table->GetWert(price) == 1 && price == 2.5;
    Require(right, "a user row has other values");
  }
}

// Row after row with SetZeileWerte; the rows changed begin at first_row.
void WriteRows(benchmark::State& state, long rows, long count,
               DBTabelle::Action action, long first_row) {
  for (auto _ : state) {
    state.PauseTiming();
    auto* const table = OpenTable(Database(rows), Access::kWrite);
    state.ResumeTiming();
    for (long i = 0; i < count; ++i) {
      auto values =
          Values(action == DBTabelle::ActionUpdate ? i + 1 : -1, 1, i);
      Require(table->SetZeileWerte(values, action), "a row is not written");
    }
    state.PauseTiming();
    CheckRows(table, first_row, count);
    CloseAll();
    state.ResumeTiming();
  }
}

void Import(benchmark::State& state, long rows, long count) {
  std::string text;
  for (long i = 0; i < count; ++i) {
    text += "0;0;0;New article " + std::to_string(i) + ";2,5;\"a note\"\n";
  }
  auto const path = (Folder() / "import.txt").string();
  WriteUnits(path, std::u16string(text.begin(), text.end()), false);
  for (auto _ : state) {
    state.PauseTiming();
    auto* const table = OpenTable(Database(rows), Access::kWrite);
    state.ResumeTiming();
    DBInterpreter interpreter;
    interpreter.SetTabelle(table);
    zWString version;
    Require(interpreter.OpenDatei(path.c_str(), "rb") == 1 &&
                interpreter.ReadDatei(version, true, L";") == 1,
            "the rows are not imported");
    interpreter.CloseDatei();
    state.PauseTiming();
    CheckRows(table, rows, count);
    CloseAll();
    state.ResumeTiming();
  }
}

}  // namespace

void Register(long rows) {
  long const added = std::min(rows, kMostAdded);
  auto const add = [rows](char const* work, long count, auto body) {
    Add(work, "tabwerk", rows, count, Clock::kProcessor,
        [=](benchmark::State& state) { body(state, rows, count); });
  };
  add("user_append", added, [](auto& state, long in_table, long count) {
    WriteRows(state, in_table, count, DBTabelle::ActionAppend, in_table);
  });
  add("user_update", added, [](auto& state, long in_table, long count) {
    WriteRows(state, in_table, count, DBTabelle::ActionUpdate, 0);
  });
  add("user_insert", kInserted, [](auto& state, long in_table, long count) {
    WriteRows(state, in_table, count, DBTabelle::ActionInsert, in_table);
  });
  add("user_import", added, Import);
}

}  // namespace tabwerk::bench
