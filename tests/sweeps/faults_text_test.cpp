// Reading text into tables and writing tables as text while calls to the system
// fail.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "DBInterpreter.h"
#include "tests/sweeps/fault_sweep.h"

namespace tabwerk::test {
namespace {

// A file of 16-bit units behind a byte-order mark.
std::vector<unsigned char> Marked(std::u16string_view text) {
  std::vector<unsigned char> bytes{0xFF, 0xFE};
  for (char16_t const unit : text) {
    bytes.push_back(static_cast<unsigned char>(unit & 0xFF));
    bytes.push_back(static_cast<unsigned char>(unit >> 8));
  }
  return bytes;
}

// The database stands open, and what is imported goes into its tables.
class ImportSweep : public FaultSweepTest {
 protected:
  // delimited: rows of the user's, else table data, which go to the main file.
  void SweepImport(bool delimited, std::u16string_view text,
                   std::vector<std::string> const& rows) {
    rows_ = rows;
    files_ = old_;
    files_["rows.txt"] = Marked(text);
    SweepCalls("", {[this] {
                      Restore(files_);
                      OpenStock();
                      before_ = Rows("ARTIKEL");
                    },
                    [this, delimited] { return Import(delimited); },
                    [this, delimited](Outcome const& outcome) {
                      Judge(delimited, outcome);
                    }});
  }

 private:
  int Import(bool delimited) {
    DBInterpreter interpreter;
    interpreter.SetTabelle(Table("ARTIKEL"));
    if (interpreter.OpenDatei(path_.c_str(), "rb") == 0) return 0;
    zWString version;
    return interpreter.ReadDatei(version, delimited, L",");
  }
  // The rows of the part that is filled: those of the main file stand before
  // those of the user file.
  static std::string Filled(bool delimited, std::string const& rows) {
    auto const user = rows.find("[20000|");
    return delimited ? rows.substr(user) : rows.substr(0, user);
  }
  static std::string Other(bool delimited, std::string const& rows) {
    return Filled(!delimited, rows);
  }
  // The filled part with so many of the imported rows.
  std::string With(bool delimited, std::size_t count) const {
    auto text = Filled(delimited, before_);
    for (std::size_t i = 0; i < count; ++i) text += "[" + rows_[i] + "]";
    return text;
  }
  void ExpectRows(bool delimited, Outcome const& outcome,
                  std::string const& rows) const {
    auto const read =
        static_cast<std::size_t>(Table("ARTIKEL")->GetAnzahlZeilen() - 4);
    ASSERT_LE(read, rows_.size());
    EXPECT_EQ(Other(delimited, before_), Other(delimited, rows));
    auto const filled = Filled(delimited, rows);
    // Kept: the host counts delimited rows.
    if (!outcome.fired || (outcome.result == 1 && !delimited)) {
      EXPECT_EQ(With(delimited, rows_.size()), filled);
    } else if (GetParam() == Failing::kCalls) {
      EXPECT_EQ(With(delimited, read), filled);
    } else {
      // A row may lack the values that there was no memory for.
      EXPECT_TRUE(filled.starts_with(Filled(delimited, before_))) << filled;
    }
  }
  void Judge(bool delimited, Outcome const& outcome) {
    auto const rows = Rows("ARTIKEL");
    ExpectRows(delimited, outcome, rows);
    for (auto const& [name, bytes] : files_) EXPECT_EQ(bytes, Bytes(name));
    EXPECT_EQ(0U, TempFiles().size());
    // What was read is usable and gets whole into a file.
    EXPECT_TRUE(Manager()->Write(stock_, delimited, zWString()));
    EXPECT_EQ(Filled(delimited, rows),
              InFile(delimited ? "USER.UDB" : "MAIN.db"));
    Restore(files_);
    OpenStock();
    EXPECT_EQ(1, Import(delimited)) << "second attempt";
    EXPECT_EQ(With(delimited, rows_.size()),
              Filled(delimited, Rows("ARTIKEL")));
  }

  std::string const path_ = Path("rows.txt");
  zWString const stock_ = W("STOCK");
  FileSet files_;
  std::vector<std::string> rows_;
  std::string before_;
};

INSTANTIATE_FAULT_SWEEP(ImportSweep);

TEST_P(ImportSweep, TableData) {
  SweepImport(false, u"5,5,0,\"Emil\",1.5\r\n6,6,0,\"Fritz\",2.5\r\n",
              {"5|5|0|Emil|1.5", "6|6|0|Fritz|2.5"});
}

// More than one reading of the file.
TEST_P(ImportSweep, LongTableData) {
  std::u16string const name(4000, u'n');
  std::u16string text;
  std::vector<std::string> rows;
  for (int i = 0; i < 30; ++i) {
    auto const id = std::to_string(100 + i);
    text += std::u16string(id.begin(), id.end()) + u",0,0,\"" + name +
            u"\",0.5\r\n";
    rows.push_back(id + "|0|0|" + std::string(name.size(), 'n') + "|0.5");
  }
  SweepImport(false, text, rows);
}

TEST_P(ImportSweep, DelimitedRows) {
  // Kept: the mark belongs to the first value, which the new ID replaces.
  SweepImport(true, u"1,0,0,Emil,1.5\n2,0,0,Fritz,2.5\n",
              {"20001|4|0|Emil|1.5", "20002|5|0|Fritz|2.5"});
}

class DumpSweep : public FaultSweepTest {
 protected:
  void OpenDump() {
    auto error = platform::Error::kNone;
    stream_ = platform::OpenFile(W(Path("dump.txt")), platform::Mode::kCreate,
                                 platform::Share::kDenyNone, &error);
    ASSERT_NE(nullptr, stream_);
  }
  int Dump() {
    wchar_t separator[] = L";";
    dumped_ = table_->Dump(stream_, separator, false);
    // The host sees in its stream what Dump does not tell.
    bool const failed = platform::Failed(stream_);
    return platform::Close(stream_) && !failed && dumped_ == 4 ? 1 : 0;
  }
  void Judge(Outcome const& outcome) {
    EXPECT_TRUE(outcome.fired || outcome.result == 1);
    if (GetParam() == Failing::kCalls) {
      EXPECT_EQ(4, dumped_);
    }
    EXPECT_EQ(kOldTables, BothTables());
    if (outcome.result == 0) {
      OpenDump();
      EXPECT_EQ(1, Dump()) << "second attempt";
    }
    auto const bytes = Bytes("dump.txt");
    EXPECT_EQ(kWhole, std::string(bytes.begin(), bytes.end()));
    EXPECT_EQ("MAIN.db STOCK.idx USER.UDB dump.txt", Files());
    EXPECT_EQ(0U, TempFiles().size());
  }

  static constexpr std::string_view kWhole =
      "1;3;0;\"Anna\";1.5\n2;0;1;\"Bert\";2.5\n3;2;0;\"Carl\";3.5\n";
  FILE* stream_ = nullptr;
  DBTabelle* table_ = nullptr;
  int dumped_ = 0;
};

INSTANTIATE_FAULT_SWEEP(DumpSweep);

TEST_P(DumpSweep, IsWholeOrTheHostCanTell) {
  SweepCalls("", {[this] {
                    Restore(old_);
                    OpenStock();
                    table_ = Table("ARTIKEL");
                    OpenDump();
                  },
                  [this] { return Dump(); },
                  [this](Outcome const& outcome) { Judge(outcome); }});
}

}  // namespace
}  // namespace tabwerk::test
