// Database files with any bytes damaged: nothing crashes, hangs or takes
// memory, and what is not damaged stays readable.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "DBbase.h"
#include "tests/support/database_fixture.h"
#include "tests/support/fault_platform.h"
#include "tests/support/hex_file.h"
#include "tests/support/memory_meter.h"
#include "tests/support/plain_database.h"
#include "tests/support/private_temp.h"
#include "tests/support/sweep.h"
#include "tests/support/temp_folder.h"
#include "tests/sweeps/case_watch.h"
#include "tests/sweeps/damages.h"
#include "tests/sweeps/database_use.h"
#include "tests/sweeps/golden_files.h"

namespace tabwerk::test {
namespace {

using AllOf = std::map<std::string, std::string>;

// --- The files that are damaged ----------------------------------------------

struct Subject {
  std::string name;
  std::string bytes;
};

void PrintTo(Subject const& subject, std::ostream* stream) {
  *stream << subject.name;
}

constexpr char kSystemColumns[] = "integer ID,integer FOLGE,integer STATUS";

// Texts in several languages, a table without rows, and one of many.
PlainDatabase Generated(PlainHeader header) {
  std::string const columns = kSystemColumns;
  PlainTable articles{"ARTIKEL", columns + ",string NAME,real PREIS\n", {}};
  articles.rows = {"1|1|0|Anna|1.5", "2|2|0|#TS(Schraube¬screw¬vis)TS~|0.25",
                   "3|3|1|#TS(a¬b)TS~ #TS(#TS(c)TS~)TS~|-7", "4|4|0||1e300"};
  PlainTable many{"VIELE", columns + ",string TEXT\n", {}};
  for (int i = 1; i <= 24; ++i) {
    auto const number = std::to_string(i);
    many.rows.push_back(number + "|" + number + "|0|t" + number);
  }
  return {header, 1000, {articles, {"LEER", columns + "\n", {}}, many}};
}

std::vector<Subject> Subjects() {
  std::vector<Subject> subjects;
  for (auto const& name : GoldenFiles()) {
    subjects.push_back({name, HexFile(name)});
  }
  subjects.push_back(
      {"tables_2014", AsText(EncodeDatabase(Generated(PlainHeader::kNone)))});
  subjects.push_back(
      {"tables_2016", AsText(EncodeDatabase(Generated(PlainHeader::k2016)))});
  subjects.push_back(
      {"tables_2018", AsText(EncodeDatabase(Generated(PlainHeader::k2018)))});
  subjects.push_back({"tables_2025", AsText(EncodeDatabase(
                                         Generated(PlainHeader::kCurrent)))});
  return subjects;
}

// --- Which bytes are whose
// ----------------------------------------------------

struct Range {
  std::size_t begin, end;
};

std::size_t NumberAt(std::string const& bytes, std::size_t at) {
  std::uint32_t value = 0;
  std::memcpy(&value, bytes.data() + at, sizeof value);
  return value;
}

// The bytes that belong to one table alone: its numbers in the directory, its
// texts and its rows.
std::map<std::string, std::vector<Range>> OwnBytes(std::string const& bytes) {
  std::map<std::string, std::vector<Range>> own;
  auto at = bytes.find("anf");
  while (bytes.compare(at, 3, "anf") == 0) {
    std::string const name = bytes.c_str() + at + 3;
    auto const numbers = bytes.find('\0', at + 3 + name.size() + 1) + 1;
    own[name] = {{numbers, numbers + 24}};
    at = numbers + 24 + 3;
  }
  auto const data = at + 1;
  for (auto& [name, ranges] : own) {
    auto const numbers = ranges[0].begin;
    auto const rows = data + NumberAt(bytes, numbers + 12);
    ranges.push_back({data + NumberAt(bytes, numbers + 16), rows});
    ranges.push_back({rows, rows + NumberAt(bytes, numbers + 8)});
  }
  return own;
}

// The table that the damage lies in wholly; empty without.
std::string OwnerOf(Damages::Damage const& damage,
                    std::map<std::string, std::vector<Range>> const& own) {
  for (auto const& [name, ranges] : own) {
    for (auto const& range : ranges) {
      if (damage.begin >= range.begin && damage.end <= range.end) return name;
    }
  }
  return "";
}

// --- Reading
// ------------------------------------------------------------------

class DamagedFile : protected PrivateTemp,
                    public testing::TestWithParam<Subject> {
 protected:
  ~DamagedFile() override {
    DBbase::Init({}, {});
    EXPECT_EQ(0, OpenStreams());
    EXPECT_EQ(0, LiveBlocks());
  }

  // Runs work on the damages at points of the sweep.
  void ForEachDamage(std::size_t at_most,
                     std::function<void(Damages::Damage const&)> const& work) {
    Damages const damages(GetParam().bytes);
    Sweep const sweep(damages.count(), at_most);
    for (auto i = sweep.first(); i < damages.count(); i += sweep.step()) {
      auto const damage = damages.At(i);
      watch_.Run(GetParam().name + ": " + damage.name, [&] { work(damage); });
      if (HasFailure()) return;
    }
  }

  // The whole catalogue is the database STOCK of these files.
  bool Open(std::vector<std::string> const& files, bool for_write) {
    std::vector<zWString> paths;
    for (auto const& file : files) paths.push_back(folder_.Path(file));
    EXPECT_TRUE(DBbase::Init({W("STOCK")}, {paths}));
    return Manager()->Open(W("STOCK"), for_write, false) == 1;
  }
  static DBbase* Manager() { return DBbase::GetDBBaseInstance(); }

  // Memory beyond four times the file and some more for streams, tables and
  // the searches is memory that a number of the file asked for.
  void ExpectBounded(MemoryMeter const& meter, std::size_t file_size) {
    constexpr std::size_t kBase = std::size_t{1} << 20;
    auto const peak = static_cast<std::size_t>(meter.Peak());
    EXPECT_LE(peak, 4 * file_size + kBase);
    peak_ = std::max(peak_, peak);
  }

  std::string Figures() const {
    return watch_.Figures() + ", peak " + std::to_string(peak_ / 1024) + " KiB";
  }

  TempFolder folder_;
  SyncSkip sync_skip_;
  CaseWatch watch_;
  std::size_t peak_ = 0;
};

class ReadDamagedFile : public DamagedFile {
 protected:
  void ReadAndSearch(Damages::Damage const& damage) {
    folder_.WriteBytes("MAIN.db", damage.bytes);
    {
      MemoryMeter const meter;
      if (Open({"MAIN.db"}, false)) {
        ++opened_;
        found_ = AllValues();
        searches_ += SearchEverywhere();
      } else {
        found_.clear();
      }
      ExpectBounded(meter, damage.bytes.size());
    }
    DBbase::Init({}, {});
  }

  std::int64_t opened_ = 0;
  std::int64_t searches_ = 0;
  AllOf found_;
};

TEST_P(ReadDamagedFile, ReadsWhatIsNotDamaged) {
  auto const own = OwnBytes(GetParam().bytes);
  ReadAndSearch({GetParam().bytes, "", 0, 0});
  AllOf const sound = found_;
  EXPECT_EQ(own.size(), sound.size());
  opened_ = 0;
  std::int64_t in_one_table = 0;
  ForEachDamage(250, [&](Damages::Damage const& damage) {
    ReadAndSearch(damage);
    auto const owner = OwnerOf(damage, own);
    if (owner.empty()) return;
    ++in_one_table;
    for (auto const& [name, values] : sound) {
      if (name == owner) continue;
      EXPECT_TRUE(found_.count(name) == 1 && found_[name] == values)
          << name << " is lost by damage of " << owner << ": " << damage.name;
    }
  });
  EXPECT_GT(in_one_table, 0);
  EXPECT_GT(searches_, 0);
  ReportSweep("damage, read " + GetParam().name,
              Figures() + ", opened " + std::to_string(opened_) + ", refused " +
                  std::to_string(watch_.cases() - opened_) + ", in one table " +
                  std::to_string(in_one_table));
}

// --- Changing and writing
// -----------------------------------------------------

class WriteDamagedFile : public DamagedFile {
 protected:
  void ChangeAndWrite(std::vector<std::string> const& files) {
    if (!Open(files, true)) return;
    ++opened_;
    (void)AllValues();
    ChangeEverything();
    SearchEverywhere();
    if (Manager()->Write(W("STOCK"), false, folder_.Path("OTHER.db"))) {
      ++written_;
      ExpectAllTables({"OTHER.db"});
      ASSERT_TRUE(Open(files, true));
      ChangeEverything();
    }
    if (Manager()->Write(W("STOCK"), true, zWString())) {
      ++written_;
      ExpectAllTables(files);
    }
    SearchEverywhere();
  }

  // What was written is sound, whatever was read.
  void ExpectAllTables(std::vector<std::string> const& files) {
    ASSERT_TRUE(Open(files, false));
    auto const* entry = Manager()->GetDirectory()->GetEntries();
    for (; entry != nullptr; entry = entry->GetNext()) {
      DBTabelle* table = nullptr;
      EXPECT_EQ(1, Manager()->OpenTabelle(entry->GetName(), table));
    }
    (void)AllValues();
  }

  // The damaged file in that place, a sound one of the same tables in the
  // other.
  void RunAs(bool user) {
    ForEachDamage(14, [&](Damages::Damage const& damage) {
      folder_.WriteBytes(user ? "MAIN.db" : "USER.UDB", GetParam().bytes);
      folder_.WriteBytes(user ? "USER.UDB" : "MAIN.db", damage.bytes);
      {
        MemoryMeter const meter;
        ChangeAndWrite({"MAIN.db", "USER.UDB"});
        ExpectBounded(meter, GetParam().bytes.size() + damage.bytes.size());
      }
      DBbase::Init({}, {});
      RemoveTempFiles();  // those of refused saves
    });
    EXPECT_GT(written_, 0);
    ReportSweep("damage, write " + GetParam().name +
                    (user ? " as user file" : " as main file"),
                Figures() + ", opened " + std::to_string(opened_) +
                    ", written " + std::to_string(written_));
  }

  std::int64_t opened_ = 0;
  std::int64_t written_ = 0;
};

TEST_P(WriteDamagedFile, MainFileIsChangedAndWritten) { RunAs(false); }

TEST_P(WriteDamagedFile, UserFileIsChangedAndWritten) { RunAs(true); }

std::string NameOf(testing::TestParamInfo<Subject> const& info) {
  return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(SweepDamage, ReadDamagedFile,
                         testing::ValuesIn(Subjects()), NameOf);
INSTANTIATE_TEST_SUITE_P(SweepDamage, WriteDamagedFile,
                         testing::ValuesIn(Subjects()), NameOf);

TEST(SweepDamageFiles, GoldenFilesOfAllHeaderFormsAreThere) {
  EXPECT_LE(4U, GoldenFiles().size());
}

}  // namespace
}  // namespace tabwerk::test
