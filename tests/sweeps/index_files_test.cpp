// Index files of any content: they change order and status in memory as they
// should, and nothing else.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "DBbase.h"
#include "tests/support/container_bytes.h"
#include "tests/support/database_fixture.h"
#include "tests/support/fault_platform.h"
#include "tests/support/memory_meter.h"
#include "tests/support/plain_manager.h"
#include "tests/support/private_temp.h"
#include "tests/support/sweep.h"
#include "tests/support/temp_folder.h"
#include "tests/sweeps/case_watch.h"
#include "tests/sweeps/damages.h"

namespace tabwerk::test {
namespace {

using RowTexts = std::vector<std::string>;

constexpr char kColumns[] = "integer ID,integer FOLGE,integer STATUS";
constexpr std::int64_t kMainStamp = 1000;
constexpr std::int64_t kUserStamp = 2000;

// --- The database beside the index
// --------------------------------------------

PlainDatabase MainFile() {
  std::string const columns = kColumns;
  return {PlainHeader::kCurrent,
          kMainStamp,
          {{"ARTIKEL",
            columns + ",string NAME\n",
            {"1|1|0|Anna", "2|2|0|Bert", "3|0|1|Carl", "4|3|0|Dora"}},
           {"LEER", columns + "\n", {}},
           {"KUNDE", columns + ",real RABATT\n", {"7|1|0|1.5", "7|2|2|2"}}}};
}

PlainDatabase UserFile() {
  std::string const columns = kColumns;
  return {PlainHeader::kCurrent,
          kUserStamp,
          {{"ARTIKEL",
            columns + ",string NAME\n",
            {"20000|4|0|Eva", "20001|9|0|Fritz"}},
           {"KUNDE", columns + ",real RABATT\n", {"-5|1|7|0"}}}};
}

model::FileImage ImageOf(PlainDatabase const& database) {
  model::FileImage image{database.header, database.time_stamp, {}};
  for (auto const& table : database.tables) {
    auto const definition = model::ParseDefinition(table.definition);
    model::Part part;
    for (auto const& row : table.rows) {
      model::AppendRow(definition, std::u16string(row.begin(), row.end()),
                       &part);
    }
    image.tables.push_back({table.name, table.definition, part});
  }
  return image;
}

model::Manager OpenedModel(std::optional<PlainIndex> index) {
  model::Manager manager({"MAIN.db", "USER.UDB"});
  manager.disk["MAIN.db"] = ImageOf(MainFile());
  manager.disk["USER.UDB"] = ImageOf(UserFile());
  manager.index = std::move(index);
  manager.Open(false);
  return manager;
}

// An index whose rows are in another order than the files have them.
PlainIndex Good() {
  // The sections of a database read for the first time, in the opposite order
  // of its tables.
  return {{kMainStamp, kUserStamp},
          {{{{-5, 2}, {7, 1}}, {-1, 2, -1, 0}, {0, 1, 0}},
           {{}, {-1}, {}},
           {{{1, 0}, {2, 1}, {3, 2}, {4, 3}, {20000, 4}, {20001, 5}},
            {-1, 5, 2, 0, 1, 3, -1},
            {0, 0, 0, 0, 2, 0}}}};
}

// --- What both show
// -----------------------------------------------------------

// Each row as "1|1|0|Anna".
RowTexts RowsOf(model::Table& table) {
  RowTexts rows;
  for (std::int64_t row = 0; row < table.RowCount(); ++row) {
    std::string text;
    table.SelectRow(row);
    for (auto const& field : table.entry->definition.fields) {
      table.SelectColumn(field.name);
      std::int64_t integer = 0;
      double real = 0;
      std::u16string units;
      if (table.GetInteger(&integer) == 1) text += std::to_string(integer);
      if (table.GetReal(&real) == 1) text += zWString(real, 0).toUtf8();
      if (table.GetText(&units) == 1) text += zWString(units).toUtf8();
      text += '|';
    }
    rows.push_back(text);
  }
  return rows;
}

RowTexts RowsOf(DBTabelle& table) {
  RowTexts rows;
  auto* const definition = table.GetDirEntry(false)->GetDefinition();
  for (long row = 0; table.SelectZeile(row) == 1; ++row) {
    std::string text;
    for (auto* field = definition->GetDefinition(); field != nullptr;
         field = field->next) {
      table.SelectColumn(field->name);
      long integer = 0;
      double real = 0;
      zWString units;
      if (table.GetWert(integer) == 1) text += std::to_string(integer);
      if (table.GetWert(real) == 1) text += zWString(real, 0).toUtf8();
      if (table.GetWert(units) == 1) text += units.toUtf8();
      text += '|';
    }
    rows.push_back(text);
  }
  return rows;
}

std::vector<unsigned char> BytesOf(std::string const& text) {
  return {text.begin(), text.end()};
}

// Without the columns FOLGE and STATUS: "1|Anna|".
std::string Kept(std::string const& row) {
  auto const id = row.find('|');
  auto const rest = row.find('|', row.find('|', id + 1) + 1);
  return row.substr(0, id) + row.substr(rest);
}

RowTexts Kept(RowTexts rows) {
  for (auto& row : rows) row = Kept(row);
  return rows;
}

// --- The sweep ---------------------------------------------------------------

class SweepIndex : protected PrivateTemp, public DatabaseTest {
 protected:
  SweepIndex() {
    MakeFile("MAIN.db", MainFile());
    MakeFile("USER.UDB", UserFile());
    main_ = Bytes("MAIN.db");
    user_ = Bytes("USER.UDB");
    auto plain = OpenedModel(std::nullopt);
    for (auto const& name : plain.TableNames()) {
      stored_[name] = RowsOf(*plain.OpenTable(name));
    }
  }

  // A database with this index is opened, looked at, and now and then saved.
  void Try(std::string const& name, std::string const& index) {
    watch_.Run(name, [&] {
      {
        MemoryMeter const meter;
        TryOnce(index, tries_ % 16 == 0);
        peak_ = std::max(peak_, meter.Peak());
        constexpr std::int64_t kBase = std::int64_t{1} << 20;
        auto const size = static_cast<std::int64_t>(index.size());
        EXPECT_LE(meter.Peak(), 4 * size + kBase);
      }
      DBbase::Init({}, {});
    });
    ++tries_;
    EXPECT_FALSE(HasFailure()) << name;
  }

  // With its time stamps and with others.
  void TryDamages(std::string const& name, PlainIndex index, int at_most) {
    for (bool const same : {true, false}) {
      index.time_stamps[0] = same ? kMainStamp : kMainStamp - 1;
      auto const encoded = EncodeIndex(index);
      Damages const damages({encoded.begin(), encoded.end()});
      Sweep const sweep(damages.count(), static_cast<std::size_t>(at_most));
      for (auto i = sweep.first(); i < damages.count(); i += sweep.step()) {
        auto const damage = damages.At(i);
        Try(name + (same ? ", " : ", stale, ") + damage.name, damage.bytes);
        if (HasFailure()) return;
      }
    }
  }

  void Report(std::string const& name) {
    ReportSweep("index, " + name,
                watch_.Figures() + ", peak " + std::to_string(peak_ / 1024) +
                    " KiB, applied " + std::to_string(applied_) + ", saved " +
                    std::to_string(saved_));
  }

  CaseWatch watch_;

 private:
  void TryOnce(std::string const& index, bool save) {
    WriteFileBytes(Path("STOCK.idx"), BytesOf(index));
    OpenStock(false);
    auto plain = OpenedModel(DecodeIndex(BytesOf(index), 2));
    bool applied = false;
    for (auto const& [name, stored] : stored_) {
      auto* const table = Table(name.c_str());
      ASSERT_NE(nullptr, table);
      auto const rows = RowsOf(*table);
      EXPECT_EQ(Kept(stored), Kept(rows));
      EXPECT_EQ(RowsOf(*plain.OpenTable(name)), rows) << name;
      applied = applied || rows != stored;
      LookUp(*table);
    }
    applied_ += applied ? 1 : 0;
    EXPECT_EQ("MAIN.db STOCK.idx USER.UDB", Files());
    // Valid, it stays as it is; else it is made anew.
    auto const left = Bytes("STOCK.idx");
    EXPECT_TRUE(left == BytesOf(index) || left == EncodeIndex(*plain.index));
    EXPECT_TRUE(main_ == Bytes("MAIN.db") && user_ == Bytes("USER.UDB"));
    if (save) Save();
  }

  // Every answer lies in the table.
  static void LookUp(DBTabelle& table) {
    auto const rows = table.GetAnzahlZeilen();
    auto const lies_inside = [&](long row) { return row >= -1 && row < rows; };
    for (long place = -1; place <= table.MaxFolge() + 1; ++place) {
      EXPECT_TRUE(lies_inside(table.GetRowByFolge(place)));
      (void)table.SelectZeile("FOLGE", place);
      table.SelectColumn("ID");
      long id = 0;
      EXPECT_EQ(rows > 0 ? 1 : 0, table.GetWert(id));
    }
    for (long const id : {-5L, 0L, 1L, 7L, 20001L, 2147483647L}) {
      (void)table.SelectZeile("ID", id);
      EXPECT_TRUE(lies_inside(table.GetRowByID(id)) || rows == 0);
    }
    EXPECT_LE(table.GetAnzahlAktiveZeilen(), rows);
    EXPECT_LE(20000, table.NewUserID());
  }

  void Save() {
    for (bool const user : {true, false}) {
      ASSERT_TRUE(Manager()->Write(W("STOCK"), user, W("")));
      ++saved_;
    }
    for (auto const& [name, stored] : stored_) {
      EXPECT_EQ(Kept(stored), Kept(RowsOf(*Table(name.c_str()))));
    }
    DBbase::Init({}, {});
    WriteFileBytes(Path("MAIN.db"), main_);
    WriteFileBytes(Path("USER.UDB"), user_);
  }

  SyncSkip sync_skip_;
  std::vector<unsigned char> main_;
  std::vector<unsigned char> user_;
  std::map<std::string, RowTexts> stored_;
  std::int64_t tries_ = 0;
  std::int64_t applied_ = 0;
  std::int64_t saved_ = 0;
  std::int64_t peak_ = 0;
};

TEST_F(SweepIndex, OfAnyDamageChangesOrderAndStatusOnly) {
  TryDamages("good", Good(), 250);
  Report("damages");
}

TEST_F(SweepIndex, OfOtherSectionsChangesOrderAndStatusOnly) {
  std::vector<std::size_t> order{0, 1, 2};
  do {
    for (int kept = 0; kept < 4; ++kept) {
      PlainIndex index = Good();
      for (std::size_t i = 0; i < order.size(); ++i) {
        index.tables[i] = Good().tables[order[i]];
      }
      if (kept < 3) index.tables.push_back(index.tables[order[0]]);
      if (kept < 2) index.tables.erase(index.tables.begin());
      index.time_stamps[1] = kept % 2 == 0 ? kUserStamp : 5;
      auto const bytes = EncodeIndex(index);
      Try("sections", {bytes.begin(), bytes.end()});
    }
  } while (std::next_permutation(order.begin(), order.end()));
  Report("sections of other tables");
}

// Well formed as a whole, with any rows, IDs and values.
PlainIndex AnyRows(std::mt19937* random) {
  auto const between = [&](int first, int last) {
    return std::uniform_int_distribution<int>(first, last)(*random);
  };
  PlainIndex index = Good();
  if (between(0, 1) == 0) index.time_stamps[between(0, 1) == 0] = 1;
  for (auto& table : index.tables) {
    bool const same_size = index.time_stamps == Good().time_stamps;
    auto const rows =
        same_size ? static_cast<int>(table.status.size()) : between(0, 12);
    table = {};
    table.folge.push_back(rows == 0 ? -1 : between(-1, rows - 1));
    for (int i = 0; i < rows; ++i) {
      table.folge.push_back(between(-1, rows - 1));
      table.status.push_back(between(0, 3) == 0 ? between(-2, 9) : 0);
      if (between(0, 5) == 0) table.status.back() = -2147483647 - 1;
      int const id = between(0, 3) == 0 ? between(-9, 30000) : between(1, 8);
      if (between(0, 4) != 0) table.ids.emplace_back(id, between(0, rows - 1));
    }
  }
  return index;
}

TEST_F(SweepIndex, OfAnyRowsChangesOrderAndStatusOnly) {
  int const count = WholeSweep() ? 10'000 : 300;
  for (int seed = 1; seed <= count && !HasFailure(); ++seed) {
    std::mt19937 random(static_cast<unsigned>(seed));
    auto const bytes = EncodeIndex(AnyRows(&random));
    Try("any rows, seed " + std::to_string(seed), {bytes.begin(), bytes.end()});
  }
  Report("any rows");
}

// Random bytes, alone or behind a good beginning, and good bytes in any order.
std::string AnyBytes(std::mt19937* random) {
  auto const encoded = EncodeIndex(Good());
  std::string bytes(encoded.begin(), encoded.end());
  switch ((*random)() % 3) {
    case 0:
      bytes.resize((*random)() % 300);
      for (char& byte : bytes) byte = static_cast<char>((*random)());
      break;
    case 1:
      for (auto i = (*random)() % bytes.size(); i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>((*random)());
      }
      break;
    default:
      std::shuffle(bytes.begin() + 16, bytes.end(), *random);
  }
  return bytes;
}

TEST_F(SweepIndex, OfAnyBytesChangesOrderAndStatusOnly) {
  int const count = WholeSweep() ? 3'000 : 100;
  for (int seed = 1; seed <= count && !HasFailure(); ++seed) {
    std::mt19937 random(static_cast<unsigned>(seed));
    Try("any bytes, seed " + std::to_string(seed), AnyBytes(&random));
  }
  Report("any bytes");
}

TEST_F(SweepIndex, OfEnormousCountsTakesNoMemory) {
  for (std::int32_t const count : {1 << 20, 0x7FFFFFFF, -1, -0x7FFFFFFF - 1}) {
    for (std::size_t const size : {0U, 100U, 100'000U}) {
      std::string const stamps = Le64(kMainStamp) + Le64(kUserStamp);
      std::string const zeros(size, '\0');
      for (auto const& head :
           {"ID" + Le32(count), "ID" + Le32(0) + "FOLGE" + Le32(count),
            "ID" + Le32(0) + "FOLGE" + Le32(1) + Le32(-1) + "STATUS" +
                Le32(count)}) {
        Try("count " + std::to_string(count), stamps + head + zeros);
      }
    }
  }
  Report("enormous counts");
}

}  // namespace
}  // namespace tabwerk::test
