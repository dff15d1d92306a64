// A large file whose directory is damaged: no number of it asks for memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "DBbase.h"
#include "tests/support/database_fixture.h"
#include "tests/support/fault_platform.h"
#include "tests/support/memory_meter.h"
#include "tests/support/plain_database.h"
#include "tests/support/sweep.h"
#include "tests/support/temp_folder.h"
#include "tests/sweeps/case_watch.h"
#include "tests/sweeps/damages.h"

namespace tabwerk::test {
namespace {

constexpr int kRows = 20'000;

PlainTable ManyRows(std::string const& name) {
  PlainTable table{
      name, "integer ID,integer FOLGE,integer STATUS,string NAME\n", {}};
  for (int i = 1; i <= kRows; ++i) {
    auto const number = std::to_string(i);
    table.rows.push_back(number + "|" + number + "|0|Name " + number);
  }
  return table;
}

class SweepDamageLarge : public testing::Test {
 protected:
  SweepDamageLarge() {
    auto const bytes = EncodeDatabase(
        {PlainHeader::kCurrent, 1000, {ManyRows("A"), ManyRows("B")}});
    whole_.assign(bytes.begin(), bytes.end());
    auto const last_record = whole_.find(std::string("anfB") + '\0');
    directory_size_ = whole_.find("end", last_record) + 3 + 1;
  }
  ~SweepDamageLarge() override {
    DBbase::Init({}, {});
    EXPECT_EQ(0, OpenStreams());
  }

  static DBbase* Manager() { return DBbase::GetDBBaseInstance(); }

  // The last row's text; "-" when the table cannot be loaded.
  static std::string LastName(char const* name) {
    DBTabelle* table = nullptr;
    if (Manager()->OpenTabelle(name, table) == 0) return "-";
    zWString text;
    table->SelectColumn("NAME");
    table->SelectZeile(table->GetAnzahlZeilen() - 1L);
    return table->GetWert(text) == 1 ? text.toUtf8() : "?";
  }

  // Opens the file, which may be damaged, and writes it under another name.
  void Try(std::string const& bytes, bool write) {
    folder_.WriteBytes("MAIN.db", bytes);
    {
      MemoryMeter const meter;
      EXPECT_TRUE(DBbase::Init({W("STOCK")}, {{folder_.Path("MAIN.db")}}));
      bool const opened = Manager()->Open(W("STOCK"), false, false) == 1;
      opened_ += opened ? 1 : 0;
      last_of_a_ = opened ? LastName("A") : "-";
      last_of_b_ = opened ? LastName("B") : "-";
      if (opened && write &&
          Manager()->Write(W("STOCK"), false, folder_.Path("OTHER.db"))) {
        ++written_;
      }
      constexpr std::int64_t kBase = std::int64_t{1} << 20;
      peak_ = std::max(peak_, meter.Peak());
      EXPECT_LE(meter.Peak(),
                4 * static_cast<std::int64_t>(bytes.size()) + kBase);
    }
    DBbase::Init({}, {});
  }

  std::string whole_;
  std::size_t directory_size_ = 0;
  TempFolder folder_;
  SyncSkip sync_skip_;
  CaseWatch watch_;
  std::string last_of_a_;
  std::string last_of_b_;
  std::int64_t opened_ = 0;
  std::int64_t written_ = 0;
  std::int64_t peak_ = 0;
};

TEST_F(SweepDamageLarge, DirectoryTakesNoMemoryForWhatIsNotThere) {
  std::string const last = "Name " + std::to_string(kRows);
  Try(whole_, true);
  ASSERT_EQ(last, last_of_b_);
  ASSERT_EQ(1, written_);
  auto const numbers_of_b = directory_size_ - 1 - 3 - 24;
  Damages const damages(whole_.substr(0, directory_size_), whole_.size());
  Sweep const sweep(damages.count(), 100);
  for (auto i = sweep.first(); i < damages.count(); i += sweep.step()) {
    auto damage = damages.At(i);
    bool const cut = damage.bytes.size() < directory_size_;
    if (!cut) damage.bytes += whole_.substr(directory_size_);
    watch_.Run(damage.name,
               [&] { Try(damage.bytes, watch_.cases() % 8 == 0); });
    bool const in_numbers_of_b =
        !cut && damage.begin >= numbers_of_b && damage.end <= numbers_of_b + 24;
    if (in_numbers_of_b) {
      EXPECT_EQ(last, last_of_a_) << damage.name;
    }
    if (HasFailure()) return;
  }
  ReportSweep(
      "damage, directory of a large file",
      watch_.Figures() + ", file " + std::to_string(whole_.size() / 1024) +
          " KiB, peak " + std::to_string(peak_ / 1024) + " KiB, opened " +
          std::to_string(opened_) + ", written " + std::to_string(written_));
}

}  // namespace
}  // namespace tabwerk::test
