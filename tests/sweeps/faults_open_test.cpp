// Openings whose calls to the system fail: no file is touched, and the order
// and the status that the index holds are there in the end.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "tests/sweeps/fault_sweep.h"

namespace tabwerk::test {
namespace {

class OpenSweep : public FaultSweepTest {
 protected:
  OpenSweep() {
    // The vendor ships another file of the same rows, and one more.
    Restore(old_);
    MakeFile("MAIN.db", {PlainHeader::kCurrent,
                         3000,
                         {{"ARTIKEL",
                           kArtikel,
                           {"1|1|0|Anna|1.5", "2|0|0|Bert|2.5",
                            "3|3|0|Carl|3.5", "4|4|0|Gerd|5.5"}},
                          {"FARBE", kArticles, {"1|1|0|red", "2|2|0|blue"}}}});
    stale_ = Snapshot();
    stale_.at("STOCK.idx") = old_.at("STOCK.idx");
    waiting_ = old_;
    waiting_["STOCK.idx.2000"] = old_.at("STOCK.idx");
    waiting_["STOCK.idx"] = EncodeIndex({{1000, 1999}, {{}, {}}});
    none_ = old_;
    none_.erase("STOCK.idx");
  }

  int Open(bool for_write) const {
    return Manager()->Open(stock_, for_write, false);
  }

  // What was read is what the files have, in the user's order or in their own;
  // without memory the order of one table may be there and that of another not.
  static void ExpectReadRight(std::string const& expected,
                              std::string const& of_the_files) {
    auto const tables = BothTables();
    if (tables.find(" -") != std::string::npos) return;  // one is not whole
    if (GetParam() == Failing::kMemory) {
      EXPECT_EQ(WithoutOrder(expected), WithoutOrder(tables));
    } else {
      EXPECT_TRUE(tables == expected || tables == of_the_files) << tables;
    }
  }
  // Without the order and the status behind an ID: "|12|0".
  static std::string WithoutOrder(std::string const& tables) {
    constexpr char const* kDigits = "0123456789";
    std::string without;
    for (std::size_t i = 0; i < tables.size();) {
      auto const order_end = tables.find_first_not_of(kDigits, i + 1);
      bool const is_order =
          tables[i] == '|' && order_end != tables.npos && order_end > i + 1 &&
          tables[order_end] == '|' && order_end + 1 < tables.size() &&
          std::string_view("012").find(tables[order_end + 1]) !=
              std::string_view::npos;
      if (is_order) {
        i = order_end + 2;
      } else {
        without += tables[i++];
      }
    }
    return without;
  }
  void Judge(Outcome const& outcome, FileSet const& begin,
             std::string const& expected, std::string const& of_the_files) {
    EXPECT_TRUE(outcome.fired || outcome.result == 1);
    // A database that does not open leaves the catalogue.
    if (outcome.result == 1 || GetParam() == Failing::kCalls) {
      EXPECT_EQ(outcome.result, Manager()->FilesCount());
    }
    if (outcome.result == 1) ExpectReadRight(expected, of_the_files);
    for (auto const* name : {"MAIN.db", "USER.UDB"}) {
      EXPECT_EQ(begin.at(name), Bytes(name)) << name;
    }
    ExpectNoForeignFiles({"MAIN.db", "USER.UDB", "STOCK.idx"});
    EXPECT_EQ(0U, TempFiles().size());
    if (then_save_ && outcome.result == 1) {
      (void)Manager()->Write(stock_, true, W(""));  // judged by what is left
    }
    DBbase::Init({}, {});
    ExpectSoundFiles();
    EXPECT_EQ(expected, Reopened());
    EXPECT_EQ(expected, Reopened());
    ExpectSoundFiles();
    if (!outcome.fired) {
      EXPECT_EQ(kClean, Files());
    }
  }
  void SweepOpen(FileSet const& begin, std::string const& expected,
                 std::string const& of_the_files) {
    for (bool const for_write : {true, false}) {
      SweepCalls("", for_write, begin, expected, of_the_files);
    }
    if (begin.count("STOCK.idx") == 0) return;  // a save has nothing to lose
    then_save_ = true;
    SweepCalls(", then a save", true, begin, expected, of_the_files);
  }

  static constexpr char kStaleTables[] =
      "ARTIKEL [1|4|0|Anna|1.5][2|0|1|Bert|2.5][3|2|0|Carl|3.5][4|3|0|Gerd|5.5]"
      "[20000|1|0|Dora|4.5] FARBE [1|2|0|red][2|1|0|blue]";
  static constexpr char kStaleTablesOfTheFiles[] =
      "ARTIKEL [1|1|0|Anna|1.5][2|0|0|Bert|2.5][3|3|0|Carl|3.5][4|4|0|Gerd|5.5]"
      "[20000|1|0|Dora|4.5] FARBE [1|1|0|red][2|2|0|blue]";

  FileSet stale_;
  FileSet waiting_;
  FileSet none_;

 private:
  void SweepCalls(std::string const& what, bool for_write, FileSet const& begin,
                  std::string const& expected,
                  std::string const& of_the_files) {
    FaultSweepTest::SweepCalls(
        (for_write ? "for writing" : "for reading") + what,
        {[&] {
           Restore(begin);
           Configure("STOCK", {"MAIN.db", "USER.UDB"});
         },
         [&] { return Open(for_write); },
         [&](Outcome const& outcome) {
           Judge(outcome, begin, expected, of_the_files);
         }});
  }

  bool then_save_ = false;
  zWString const stock_ = W("STOCK");
};

INSTANTIATE_FAULT_SWEEP(OpenSweep);

// Files that are made anew: those that were reached are empty, the others are
// as before.  There is nothing else that could be kept.
class CreateSweep : public FaultSweepTest {
 protected:
  static constexpr auto kNames = {"MAIN.db", "USER.UDB"};

  int Create() const { return Manager()->Open(stock_, true, true); }

  std::string Content(FileSet const& begin, std::string const& name) const {
    if (!FileExists(name)) return begin.count(name) == 0 ? "as before" : "gone";
    // One that is held cannot be read everywhere.
    if (std::filesystem::file_size(Path(name)) == 0) return "empty";
    auto const before = begin.find(name);
    return before != begin.end() && before->second == Bytes(name) ? "as before"
                                                                  : "other";
  }
  void ExpectMade() const {
    EXPECT_EQ(1, Manager()->FilesCount());
    auto* const directory = Manager()->GetDirectory();
    ASSERT_NE(nullptr, directory);
    EXPECT_EQ(nullptr, directory->GetEntries());
    for (std::size_t i = 0; i < 2; ++i) {
      EXPECT_NE(nullptr, directory->GetFile(i)) << i;
    }
    for (auto const* name : kNames) EXPECT_EQ("empty", Content({}, name));
  }
  void Judge(Outcome const& outcome, FileSet const& begin) const {
    EXPECT_TRUE(outcome.fired || outcome.result == 1);
    if (outcome.result == 1) {
      ExpectMade();
    } else {
      // A database that does not open leaves the catalogue.
      if (GetParam() == Failing::kCalls) {
        EXPECT_EQ(0, Manager()->FilesCount());
      }
      for (auto const* name : kNames) {
        auto const content = Content(begin, name);
        EXPECT_TRUE(content == "as before" || content == "empty") << content;
      }
    }
    ExpectNoForeignFiles({"MAIN.db", "USER.UDB", "STOCK.idx"});
    EXPECT_EQ(0U, TempFiles().size());
    Configure("STOCK", {"MAIN.db", "USER.UDB"});
    EXPECT_EQ(1, Create());
    ExpectMade();
  }
  void SweepCreate(FileSet const& begin) {
    SweepCalls("", {[&] {
                      Restore(begin);
                      Configure("STOCK", {"MAIN.db", "USER.UDB"});
                    },
                    [&] { return Create(); },
                    [&](Outcome const& outcome) { Judge(outcome, begin); }});
  }

 private:
  zWString const stock_ = W("STOCK");
};

INSTANTIATE_FAULT_SWEEP(CreateSweep);

TEST_P(CreateSweep, FilesThatAreMissing) { SweepCreate({}); }

TEST_P(CreateSweep, FilesThatAreThere) { SweepCreate(old_); }

TEST(SweepFaultsHandles, AFileThatStaysOpenIsCounted) {
  TempFolder const folder;
  auto const before = OpenHandles();
  auto error = platform::Error::kNone;
  FILE* const stream =
      platform::OpenFile(folder.Path("open"), platform::Mode::kCreate,
                         platform::Share::kDenyNone, &error);
  ASSERT_NE(nullptr, stream);
  EXPECT_EQ(before + 1, OpenHandles());
  EXPECT_TRUE(platform::Close(stream));
  EXPECT_EQ(before, OpenHandles());
}

TEST_P(OpenSweep, WithAValidIndex) {
  SweepOpen(old_, kOldTables, kTablesOfTheFiles);
}

TEST_P(OpenSweep, WithAStaleIndex) {
  SweepOpen(stale_, kStaleTables, kStaleTablesOfTheFiles);
}

TEST_P(OpenSweep, WithoutAnIndex) {
  SweepOpen(none_, kTablesOfTheFiles, kTablesOfTheFiles);
}

TEST_P(OpenSweep, WithAWaitingIndex) {
  SweepOpen(waiting_, kOldTables, kTablesOfTheFiles);
}

}  // namespace
}  // namespace tabwerk::test
