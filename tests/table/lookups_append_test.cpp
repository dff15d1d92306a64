// Appending rows to large tables whose texts are unique by a search.
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>

#include "schema/bytes.h"
#include "table/table_access.h"
#include "tests/support/processor_time.h"
#include "tests/support/random_run.h"
#include "tests/support/table_builder.h"

namespace tabwerk::test {
namespace {

constexpr char kAppendedTo[] =
    "integer ID,integer FOLGE,integer STATUS,string NAME,string BEZ_DIN,"
    "string NOTE\n";
// Offsets of the string columns.
constexpr int kNameOffset = 12;
constexpr int kNoteOffset = 20;

class LookupsAppend : public testing::Test {
 protected:
  LookupsAppend() : t_(kAppendedTo, 2) {}

  void Fill(int rows) {
    for (int i = 1; i <= rows; ++i) {
      auto const number = std::to_string(i);
      t_.AddRow(0, number + "|" + number + "|0|N" + number + "|B" + number);
    }
    t_.table.MakeIndexID();
    t_.table.MakeIndexFolge();
    t_.table.MakeIndexStatus();
  }
  bool Append(int number) {
    auto const text = std::to_wstring(number);
    std::map<std::string, std::wstring> values{{"NAME", L"M" + text},
                                               {"BEZ_DIN", L"C" + text}};
    return t_.table.SetZeileWerte(values, DBTabelle::ActionAppend);
  }
  // Seconds that so many appended rows take; each has a NAME and a BEZ_DIN.
  double AppendAll(int rows) {
    ProcessorTime const time;
    int done = 0;
    for (int i = 0; i < rows; ++i) done += Append(i) ? 1 : 0;
    double const seconds = time.Seconds();
    EXPECT_EQ(rows, done);
    return seconds;
  }
  std::byte* Record(std::int32_t row) {
    return t_.Part(0).Row(row, static_cast<std::int32_t>(
                                   t_.entry->GetDefinition()->GetMemorySize()));
  }

  TestTable t_;
};

// A pass for every row would take minutes in each of these, and a sixteenth of
// that where there is a quarter of the rows.
int const kRows = Shortened(100'000);
double const kMostSeconds = Shortened(20);

TEST_F(LookupsAppend, TwoUniqueColumnsCostNoPassForEveryRow) {
  Fill(kRows);
  EXPECT_GT(kMostSeconds, AppendAll(kRows));
  auto const last = L"C" + std::to_wstring(kRows - 1);
  EXPECT_EQ(1, t_.table.SelectZeile("BEZ_DIN", last.c_str()));
  EXPECT_EQ(2 * kRows - 1, TableAccess::CurrentRow(t_.table));
}

TEST_F(LookupsAppend, RowsThatShareATextCostNoPassForEveryRow) {
  Fill(kRows);
  StoreValue(Record(1) + kNameOffset,
             LoadValue<std::int32_t>(Record(0) + kNameOffset));
  ++t_.Part(0).revision;
  EXPECT_GT(kMostSeconds, AppendAll(kRows));
}

TEST_F(LookupsAppend, TextsInTheMainFileThatShareCostNoPassEither) {
  Fill(kRows / 2);
  StoreValue(Record(1) + kNameOffset,
             LoadValue<std::int32_t>(Record(0) + kNameOffset));
  ++t_.Part(0).revision;
  // New rows go into part 0, too, and set an empty text to the empty text.
  ProcessorTime const time;
  for (int i = 0; i < kRows / 2; ++i) {
    ASSERT_TRUE(t_.table.NeueZeile(false));
    for (char const* const column : {"NAME", "BEZ_DIN"}) {
      auto const text = L"M" + std::to_wstring(i);
      ASSERT_EQ(0, t_.table.SelectZeile(column, text.c_str()));
      t_.table.SelectColumn(column);
      ASSERT_EQ(1, t_.table.SetWert(text.c_str()));
    }
    t_.table.SelectColumn("NOTE");
    ASSERT_EQ(1, t_.table.SetWert(L""));
  }
  EXPECT_GT(kMostSeconds, time.Seconds());
}

TEST_F(LookupsAppend, TextsAtTheEndOfTheStoreCostNoPassForEveryRow) {
  Fill(kRows / 2);
  auto const count = static_cast<std::int32_t>(t_.Part(0).strings->count());
  StoreValue(Record(0) + kNoteOffset, count);
  StoreValue(Record(1) + kNoteOffset, count + 1'000'000'000);
  ++t_.Part(0).revision;
  ProcessorTime const time;
  for (int i = 0; i < kRows / 2; ++i) {
    ASSERT_TRUE(t_.table.NeueZeile(false));
    auto const text = L"M" + std::to_wstring(i);
    ASSERT_EQ(0, t_.table.SelectZeile("NAME", text.c_str()));
    t_.table.SelectColumn("NAME");
    ASSERT_EQ(1, t_.table.SetWert(text.c_str()));
  }
  EXPECT_GT(kMostSeconds, time.Seconds());
}

}  // namespace
}  // namespace tabwerk::test
