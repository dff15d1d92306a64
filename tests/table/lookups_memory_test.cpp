// Exhausted memory while rows are searched, counted, written and shown.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "DBbase.h"
#include "platform/platform.h"
#include "tests/support/fault_platform.h"
#include "tests/support/new_guard.h"
#include "tests/support/table_builder.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {
namespace {

constexpr char kSearchedTwice[] =
    "integer ID,integer FOLGE,integer STATUS,string NAME,string NOTE\n";
// Too long for a string object's own room.
constexpr wchar_t kLong[] = L"Bertil, whose name is a long one";

std::unique_ptr<TestTable> Make() {
  auto made = std::make_unique<TestTable>(kSearchedTwice, 2);
  made->AddRows(
      0, {"1|1|0|Anna|x", "2|2|0|#TS(Bert¬Bertil, whose name is a long one)TS~",
          "3|3|1|Carl|y"});
  made->AddRow(1, "20000|4|0|Dora|z");
  made->table.MakeIndexID();
  made->table.MakeIndexFolge();
  made->table.MakeIndexStatus();
  made->table.SelectColumn("NOTE");
  made->table.SelectZeile(2L);
  return made;
}

using Work = std::function<std::string(DBTabelle&)>;

enum class Failing { kNewOnce, kNewForGood, kBlocks };

// Runs work with the n-th request for memory failing, for every n: after every
// run the table must answer as a fresh one does.  Calls judge with the answer
// and whether a request failed.
void Sweep(
    Work const& prepare, Work const& work,
    std::function<void(std::string const&, bool, TestTable&)> const& judge) {
  for (auto const failing :
       {Failing::kNewOnce, Failing::kNewForGood, Failing::kBlocks}) {
    for (int n = 1;; ++n) {
      SCOPED_TRACE(std::to_string(static_cast<int>(failing)) + " " +
                   std::to_string(n));
      auto const made = Make();
      prepare(made->table);
      bool fired = false;
      std::string answer;
      answer.reserve(200);
      if (failing != Failing::kBlocks) {
        NewGuard guard(n, failing == Failing::kNewOnce
                              ? NewGuard::Lasting::kOnce
                              : NewGuard::Lasting::kForGood);
        answer = work(made->table);
        fired = guard.Disarm();
      } else {
        FaultGuard faults;
        faults.FailAt(n, Lasting::kForGood, kMemoryCalls);
        answer = work(made->table);
        fired = faults.Fired();
      }
      judge(answer, fired, *made);
      DBTabelle fresh(made->table);
      for (char const* const column : {"NAME", "NOTE"}) {
        ASSERT_EQ(fresh.SelectZeile(column, L"Dora"),
                  made->table.SelectZeile(column, L"Dora"));
        ASSERT_EQ(Selected(fresh), Selected(made->table));
      }
      ASSERT_EQ(fresh.GetAnzahlAktiveZeilen(),
                made->table.GetAnzahlAktiveZeilen());
      if (!fired) break;
    }
  }
}

std::string Nothing(DBTabelle& /*table*/) { return ""; }

// The answer, short enough to need no memory.
std::string Answer(int number) {
  return std::string(1, static_cast<char>('0' + number));
}

class LookupsMemory : public testing::Test {
 protected:
  ~LookupsMemory() override { DBbase::SetSprache(0); }
};

TEST_F(LookupsMemory, SearchWithoutRoomForLookupsIsAPass) {
  for (int const searches_before : {0, 1, 2}) {
    Sweep(
        [&](DBTabelle& table) {
          for (int i = 0; i < searches_before; ++i) {
            table.SelectZeile("NAME", L"Anna");
          }
          return "";
        },
        [](DBTabelle& table) {
          return Answer(table.SelectZeile("NAME", L"Carl"));
        },
        [](std::string const& answer, bool /*fired*/, TestTable& t) {
          // The searched texts need no memory of their own in language 0 but
          // where they are translated, in front of the one that is found.
          if (answer == "1") {
            EXPECT_EQ("NOTE@2", Selected(t.table));
          } else {
            EXPECT_EQ("NOTE", Selected(t.table).substr(0, 4));
          }
        });
  }
}

// Texts without a section: there only the lookups need memory.
TEST_F(LookupsMemory, SearchInPlainTextsNeverFails) {
  for (int const searches_before : {0, 1, 2}) {
    Sweep(
        [&](DBTabelle& table) {
          for (int i = 0; i < searches_before; ++i) {
            table.SelectZeile("NOTE", L"x");
          }
          return "";
        },
        [](DBTabelle& table) {
          return Answer(table.SelectZeile("NOTE", L"z"));
        },
        [](std::string const& answer, bool /*fired*/, TestTable& t) {
          EXPECT_EQ("1", answer);
          EXPECT_EQ("NOTE@3", Selected(t.table));
        });
  }
}

TEST_F(LookupsMemory, CountOfActiveRowsNeverFails) {
  Sweep(
      Nothing,
      [](DBTabelle& table) { return Answer(table.GetAnzahlAktiveZeilen()); },
      [](std::string const& answer, bool /*fired*/, TestTable& t) {
        EXPECT_EQ("3", answer);
        EXPECT_EQ("NOTE@2", Selected(t.table));
      });
}

TEST_F(LookupsMemory, TranslatedTextIsFoundOrTheSearchFails) {
  DBbase::SetSprache(1);
  Sweep(
      Nothing,
      [](DBTabelle& table) { return Answer(table.SelectZeile("NAME", kLong)); },
      [](std::string const& answer, bool fired, TestTable& /*t*/) {
        if (!fired) {
          EXPECT_EQ("1", answer);
        }
      });
}

// A row is found or none at all; a text that could not be read is not skipped.
TEST_F(LookupsMemory, FindRowsGivesAllRowsOrNone) {
  DBbase::SetSprache(1);
  zWString const all(u".*");
  Sweep(
      Nothing,
      [&](DBTabelle& table) {
        return Answer(
            static_cast<int>(table.FindRows("NAME", all, false).size()));
      },
      [](std::string const& answer, bool fired, TestTable& /*t*/) {
        EXPECT_TRUE(answer == "4" || (fired && answer == "0")) << answer;
      });
}

// The name is taken: a search that failed must not let it through.
TEST_F(LookupsMemory, WrittenNameStaysUnique) {
  DBbase::SetSprache(1);
  for (int const searches_before : {0, 2}) {
    std::map<std::string, std::wstring> values{
        {"ID", L"7"}, {"NAME", kLong}, {"NOTE", L"a note that needs room"}};
    Sweep(
        [&](DBTabelle& table) {
          for (int i = 0; i < searches_before; ++i) {
            table.SelectZeile("NAME", L"Anna");
          }
          return "";
        },
        [&](DBTabelle& table) {
          return Answer(
              table.SetZeileWerte(values, DBTabelle::ActionAppend) ? 1 : 0);
        },
        [](std::string const& answer, bool fired, TestTable& t) {
          if (!fired) {
            EXPECT_EQ("1", answer);
          }
          std::string const rows = Rows(*t.entry, 1);
          std::string const name = "Bertil, whose name is a long one";
          EXPECT_EQ(std::string::npos, rows.find(name + "|")) << rows;
          if (answer == "1") {
            EXPECT_EQ("[20000|4|0|Dora|z][20001|4|0|" + name +
                          "_NEW|a note that needs room]",
                      rows);
          }
        });
  }
}

TEST_F(LookupsMemory, MapValueWithoutMemoryIsEmpty) {
  std::map<std::string, std::wstring> values{{"NAME", kLong}};
  DBTabelle table;
  for (int n = 1;; ++n) {
    std::string key("NAME");
    NewGuard guard(n);
    std::wstring const value = table.mapGetString(values, std::move(key));
    bool const fired = guard.Disarm();
    EXPECT_EQ(fired ? L"" : kLong, value);
    if (!fired) break;
  }
}

TEST_F(LookupsMemory, DumpIsWholeOrFails) {
  TempFolder folder;
  auto error = platform::Error::kNone;
  FILE* const stream =
      platform::OpenFile(folder.Path("dump"), platform::Mode::kCreate,
                         platform::Share::kDenyNone, &error);
  ASSERT_NE(nullptr, stream);
  std::wstring separator(L", the separator, ");
  Sweep(
      Nothing,
      [&](DBTabelle& table) {
        return Answer(table.Dump(stream, separator.data(), false));
      },
      [](std::string const& answer, bool fired, TestTable& /*t*/) {
        EXPECT_TRUE(answer == "4" || (fired && answer == "0")) << answer;
      });
  EXPECT_TRUE(platform::Close(stream));
}

}  // namespace
}  // namespace tabwerk::test
