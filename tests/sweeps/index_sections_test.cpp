// The public readers of index sections with any bytes.
#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "tests/support/container_bytes.h"
#include "tests/support/memory_meter.h"
#include "tests/support/random_table.h"
#include "tests/support/sweep.h"
#include "tests/support/table_builder.h"
#include "tests/support/temp_folder.h"
#include "tests/sweeps/case_watch.h"
#include "tests/sweeps/damages.h"

namespace tabwerk::test {
namespace {

using Reader = void (DBTabelle::*)(FILE*);

struct Section {
  char const* tag;
  Reader read;
  char const* column;  // the only one that may change; empty for none
};

constexpr Section kSections[] = {
    {"ID", &DBTabelle::ReadIndexID, ""},
    {"FOLGE", &DBTabelle::ReadIndexFolge, "FOLGE"},
    {"FOLGE", &DBTabelle::ReadIndexFolgeNoUpdate, ""},
    {"STATUS", &DBTabelle::ReadIndexStatus, "STATUS"},
    {"STATUS", &DBTabelle::ReadIndexStatusNoUdate, ""}};

// The values of all columns but that one, by column and row.
std::string ValuesBut(DBTabelle& table, std::string const& column) {
  std::string values;
  auto* const definition = table.GetDirEntry(false)->GetDefinition();
  for (auto* field = definition->GetDefinition(); field != nullptr;
       field = field->next) {
    if (field->name == column || table.SelectColumn(field->name) == 0) continue;
    for (long row = 0; table.SelectZeile(row) == 1; ++row) {
      values += Value(table) + "|";
    }
  }
  return values;
}

// Everything that indices are used for.
void UseIndices(DBTabelle& table) {
  auto const rows = table.GetAnzahlZeilen();
  for (long const value : {-1L, 0L, 1L, 3L, 2147483647L}) {
    (void)table.SelectZeile("ID", value);
    (void)table.SelectZeile("FOLGE", value);
    (void)table.GetRowByFolge(value);
    (void)table.GetRowByID(value);
  }
  EXPECT_LE(table.GetAnzahlAktiveZeilen(), rows);
  (void)table.NewUserID();
  std::map<std::string, std::wstring> values{{"ID", L"3"}, {"FOLGE", L"2"}};
  (void)table.SetZeileWerte(values, DBTabelle::ActionInsert);
  (void)table.NeueZeile(false);
  table.ResortIndexID();
  table.MakeIndexID();
  table.MakeIndexFolge();
  table.MakeIndexStatus();
  EXPECT_LE(rows, table.GetAnzahlZeilen());
}

class SweepIndexSections : public testing::Test {
 protected:
  void Try(std::string const& name, Section const& section,
           std::string const& bytes) {
    watch_.Run(name, [&] {
      TestTable made("integer ID,integer FOLGE,integer STATUS,string NAME\n",
                     2);
      made.AddRows(0, {"5|2|0|Anna", "6|1|7|Bert", "5|3|0|Carl"});
      made.AddRows(1, {"-1|3|0|Dora", "20000|4|0|Eva"});
      TryOn(made.table, section, bytes);
    });
    EXPECT_FALSE(HasFailure()) << name;
  }

  void TryOn(DBTabelle& table, Section const& section,
             std::string const& bytes) {
    folder_.WriteBytes("i", bytes);
    auto const values = ValuesBut(table, section.column);
    auto const rows = table.GetAnzahlZeilen();
    auto error = platform::Error::kNone;
    FILE* const stream =
        platform::OpenFile(folder_.Path("i"), platform::Mode::kRead,
                           platform::Share::kDenyNone, &error);
    {
      MemoryMeter const meter;
      (table.*section.read)(stream);
      constexpr std::int64_t kBase = std::int64_t{1} << 20;
      peak_ = std::max(peak_, meter.Peak());
      EXPECT_LE(meter.Peak(),
                4 * static_cast<std::int64_t>(bytes.size()) + kBase);
    }
    EXPECT_TRUE(platform::Close(stream));
    EXPECT_EQ(rows, table.GetAnzahlZeilen());
    EXPECT_EQ(values, ValuesBut(table, section.column));
    UseIndices(table);
  }

  void Report(std::string const& name) const {
    ReportSweep("index, " + name, watch_.Figures() + ", peak " +
                                      std::to_string(peak_ / 1024) + " KiB");
  }

  TempFolder folder_;
  CaseWatch watch_;
  std::int64_t peak_ = 0;
};

TEST_F(SweepIndexSections, OfAnyDamageChangeTheirOwnColumnOnly) {
  for (Section const& section : kSections) {
    std::string bytes = section.tag + Le32(5);
    int const values = section.tag == std::string("ID") ? 10 : 5;
    for (int i = 0; i < values; ++i) bytes += Le32(i % 5);
    Damages const damages(bytes);
    Sweep const sweep(damages.count(), 120);
    for (auto i = sweep.first(); i < damages.count(); i += sweep.step()) {
      auto const damage = damages.At(i);
      Try(section.tag + (": " + damage.name), section, damage.bytes);
    }
  }
  Report("sections damaged");
}

// As an index file has them, one behind the other.
TEST_F(SweepIndexSections, InARowOfAnyDamageKeepTheRows) {
  Damages const damages("ID" + Le32(2) + Le32(5) + Le32(0) + Le32(6) + Le32(1) +
                        "FOLGE" + Le32(3) + Le32(-1) + Le32(1) + Le32(0) +
                        "STATUS" + Le32(2) + Le32(0) + Le32(1));
  Sweep const sweep(damages.count(), 150);
  for (auto i = sweep.first(); i < damages.count(); i += sweep.step()) {
    auto const damage = damages.At(i);
    watch_.Run("in a row: " + damage.name, [&] {
      TestTable made("integer ID,integer FOLGE,integer STATUS\n");
      made.AddRows(0, {"5|2|0", "6|1|7"});
      folder_.WriteBytes("i", damage.bytes);
      auto error = platform::Error::kNone;
      FILE* const stream =
          platform::OpenFile(folder_.Path("i"), platform::Mode::kRead,
                             platform::Share::kDenyNone, &error);
      made.table.ReadIndexID(stream);
      made.table.ReadIndexFolge(stream);
      made.table.ReadIndexStatus(stream);
      EXPECT_TRUE(platform::Close(stream));
      EXPECT_EQ("5|6|", ValuesBut(made.table, "FOLGE").substr(0, 4));
      made.table.ResortIndexID();
      EXPECT_EQ(2, made.table.MaxFolge()) << damage.name;
      UseIndices(made.table);
    });
  }
  Report("sections in a row");
}

TEST_F(SweepIndexSections, OfAnyNumbersChangeTheirOwnColumnOnly) {
  int const count = WholeSweep() ? 20'000 : 300;
  for (int seed = 1; seed <= count; ++seed) {
    std::mt19937 random(static_cast<unsigned>(seed));
    Section const& section = kSections[random() % std::size(kSections)];
    auto const entries = random() % 12;
    std::string bytes = section.tag + Le32(static_cast<std::int32_t>(entries));
    for (auto i = 2 * entries; i > 0; --i) {
      auto const wild = static_cast<std::int32_t>(random());
      auto const near = static_cast<std::int32_t>(random() % 8) - 2;
      bytes += Le32(random() % 4 == 0 ? wild : near);
    }
    Try("seed " + std::to_string(seed), section, bytes);
  }
  Report("sections of any numbers");
}

TEST_F(SweepIndexSections, OfRandomTablesChangeTheirOwnColumnOnly) {
  int const count = WholeSweep() ? 5'000 : 100;
  for (int seed = 1; seed <= count; ++seed) {
    watch_.Run("table of seed " + std::to_string(seed), [&] {
      std::mt19937 random(static_cast<unsigned>(seed));
      auto const made = RandomTable(static_cast<std::uint32_t>(seed), 20);
      Section const& section = kSections[random() % std::size(kSections)];
      std::string bytes = section.tag + Le32(30);
      for (int i = 0; i < 60; ++i) {
        bytes += Le32(static_cast<std::int32_t>(random() % 30) - 2);
      }
      auto const rows = made->table.GetAnzahlZeilen();
      auto const values = ValuesBut(made->table, section.column);
      folder_.WriteBytes("i", bytes);
      auto error = platform::Error::kNone;
      FILE* const stream =
          platform::OpenFile(folder_.Path("i"), platform::Mode::kRead,
                             platform::Share::kDenyNone, &error);
      (made->table.*section.read)(stream);
      EXPECT_TRUE(platform::Close(stream));
      EXPECT_EQ(rows, made->table.GetAnzahlZeilen());
      EXPECT_EQ(values, ValuesBut(made->table, section.column));
      UseIndices(made->table);
    });
  }
  Report("sections of random tables");
}

TEST_F(SweepIndexSections, OfEnormousCountsTakeNoMemory) {
  for (Section const& section : kSections) {
    for (std::int32_t const count :
         {1 << 20, 0x7FFFFFFF, -1, -0x7FFFFFFF - 1}) {
      for (std::size_t const size : {0U, 3U, 100U, 400'000U}) {
        Try("count " + std::to_string(count), section,
            section.tag + Le32(count) + std::string(size, '\1'));
      }
    }
  }
  Report("sections of enormous counts");
}

}  // namespace
}  // namespace tabwerk::test
