// Tables and row records without memory.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <map>
#include <optional>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "platform/platform.h"
#include "tabwerk.h"
#include "tests/support/private_temp.h"
#include "tests/support/table_builder.h"
#include "tests/support/table_state.h"
#include "tests/sweeps/memory_operations.h"

namespace tabwerk::test {
namespace {

constexpr char kLong[] = "a text that is longer than every one before it";
constexpr wchar_t kWideLong[] =
    L"a text that is longer than every one before it";
constexpr char16_t kUnitsLong[] =
    u"a text that is longer than every one before it";

// A table of two parts with indices, standing on the text of row 2.
struct Table {
  Table() {
    t.AddRows(0, {"1|1|0|Anna|1.5|x",
                  "2|2|0|#TS(Bert¬Bertil, whose name is a long one)TS~|2.5|y",
                  "3|3|1|Carl, whose name is a long one, too|3.5|z"});
    t.AddRow(1, "20000|4|0|Dora|4.5|w");
    t.table.MakeIndexID();
    t.table.MakeIndexFolge();
    t.table.MakeIndexStatus();
    Stand("NAME", 1);
  }
  void Stand(char const* column, long row) {
    EXPECT_EQ(1, t.table.SelectColumn(column));
    EXPECT_EQ(1, t.table.SelectZeile(row));
  }
  std::string State() {
    std::string state =
        test::State(t) + Store(t.Part(0)) + Store(t.Part(1)) + "|" +
        std::to_string(t.Part(0).row_block_size) + "|" + text.toUtf8() + "|" +
        (bound.GetDirEntry(false) != nullptr ? "bound" : "") + Indices(bound) +
        "|" + (made ? "made " + Indices(*made) : "");
    for (wchar_t const unit : wide) state += static_cast<char>(unit);
    return state;
  }

  TestTable t{
      "integer ID,integer FOLGE,integer STATUS,string NAME,real PREIS,"
      "string NOTE\n",
      2};
  DBTabelle bound;
  std::optional<DBTabelle> made;
  zWString text{u"before"};
  std::wstring wide;
  std::map<std::string, std::wstring> values{
      {"NAME", kWideLong}, {"PREIS", L"7.5"}, {"NOTE", kWideLong}};
  zWString const pattern{u".*a.*"};
};

// Whose rows are numbered anew; the selection moves in any case.
struct Resorted : Table {
  Resorted() {
    Stand("FOLGE", 0);
    EXPECT_EQ(1, t.table.SetWert(3L));
  }
  std::string State() { return Rows(*t.entry) + Indices(t.table); }
};

// Whose ID index has no room for another one.
struct OnId {
  OnId() {
    t.AddRow(0, "1");
    t.table.MakeIndexID();
    EXPECT_EQ(1, t.table.SelectColumn("ID"));
    EXPECT_EQ(1, t.table.SelectZeile(0L));
  }
  std::string State() { return test::State(t); }

  TestTable t{"integer ID\n"};
};
struct OnPrice : Table {
  OnPrice() { Stand("PREIS", 1); }
};

// With an empty file.
struct WithFile : Table {
  WithFile() {
    auto error = platform::Error::kNone;
    stream =
        platform::OpenFile(folder.Path("index"), platform::Mode::kCreateUpdate,
                           platform::Share::kDenyAll, &error);
    EXPECT_NE(nullptr, stream);
  }
  ~WithFile() { (void)platform::Close(stream); }
  void ReadFrom(std::int64_t offset) const {
    EXPECT_TRUE(platform::Seek(stream, offset, platform::Origin::kStart));
  }
  // Tags, counts and entries of the sections before.
  static constexpr std::int64_t kFolge = 2 + 4 + 4 * 8;
  static constexpr std::int64_t kStatus = kFolge + 5 + 4 + 5 * 4;

  TempFolder folder;
  FILE* stream = nullptr;
};

// What is written to it counts.
struct ToFile : WithFile {
  std::string State() {
    std::array<char, 100> bytes{};
    ReadFrom(0);
    auto const size = std::fread(bytes.data(), 1, bytes.size(), stream);
    return Table::State() + std::string(bytes.data(), size);
  }
};

// With the table's index sections in it, rewound.
struct WithIndex : WithFile {
  WithIndex() {
    t.table.WriteIndexID(stream);
    t.table.WriteIndexFolge(stream);
    t.table.WriteIndexStatus(stream);
    ReadFrom(0);
  }
};

struct AtFolge : WithIndex {
  AtFolge() { ReadFrom(kFolge); }
};
struct AtStatus : WithIndex {
  AtStatus() { ReadFrom(kStatus); }
};

using T = Table;

std::vector<Operation> Making() {
  return {
      In<T>(Promise::kThrows, {"DBTabelle::DBTabelle()"},
            [](T& t) {
              t.made.emplace();
              return true;
            }),
      In<T>(Promise::kThrows, {"DBTabelle::DBTabelle(DBDirEntry*)"},
            [](T& t) {
              t.made.emplace(t.t.entry);
              return true;
            }),
      In<T>(Promise::kThrows, {"DBTabelle::DBTabelle(DBTabelle const&)"},
            [](T& t) {
              t.made.emplace(t.t.table);
              return true;
            }),
      In<T>(Promise::kThrows, {"DBTabelle::operator=(DBTabelle const&)"},
            [](T& t) {
              t.bound = t.t.table;
              return true;
            }),
      In<T>(Promise::kSilent, {"DBTabelle::SetDirEntry(DBDirEntry*)"},
            [](T& t) {
              t.bound.SetDirEntry(t.t.entry);
              return true;
            }),
      In<T>(Promise::kFails,
            {"DBTabelle::SetMemory(unsigned long, unsigned long)"},
            [](T& t) { return t.t.table.SetMemory(500, 0) != nullptr; }),
      In<T>(Promise::kFails, {"DBTabelle::NeueZeile(bool)"},
            [](T& t) { return t.t.table.NeueZeile(true); }),
  };
}

std::vector<Operation> TableWithoutNeed() {
  return {
      In<T>(Promise::kNeedsNone,
            {"DBTabelle::~DBTabelle()", "DBTabelle::GetDirEntry(bool)",
             "DBTabelle::is_open()", "DBTabelle::SetOpen(bool, unsigned long)",
             "DBTabelle::GetAnzahlZeilen()", "DBTabelle::GetType()",
             "DBTabelle::GetAktuelleFeldDef()", "DBTabelle::MaxFolge() const",
             "DBTabelle::GetRowByFolge(long) const",
             "DBTabelle::SelectColumn(char const*)",
             "DBTabelle::SelectZeile(long)",
             "DBTabelle::SelectZeile(char const*, long)",
             "DBTabelle::SelectZeile(char const*, double)"},
            [](T& t) {
              auto& table = t.t.table;
              table.SetOpen(true, 1);
              return table.GetDirEntry(true) != nullptr &&
                     table.is_open() == 1 && table.GetAnzahlZeilen() == 4 &&
                     table.GetType() == DBTypeString &&
                     table.GetAktuelleFeldDef() != nullptr &&
                     table.MaxFolge() == 4 && table.GetRowByFolge(1) == 0 &&
                     table.SelectZeile("ID", 3L) == 1 &&
                     table.SelectZeile("PREIS", 2.5) == 1 &&
                     table.SelectZeile("STATUS", 1L) == 1 &&
                     table.SelectColumn("NOTE") == 1 &&
                     table.SelectZeile(3L) == 1;
            }),
      In<OnPrice>(Promise::kNeedsNone,
                  {"DBTabelle::GetWert(long&)", "DBTabelle::GetWert(double&)",
                   "DBTabelle::SetWert(double)"},
                  [](OnPrice& t) {
                    double price = 0;
                    long number = 0;
                    return t.t.table.SetWert(9.5) == 1 &&
                           t.t.table.GetWert(price) == 1 && price == 9.5 &&
                           t.t.table.GetWert(number) == 0;
                  }),
      In<WithIndex>(Promise::kNeedsNone, {"DBTabelle::WriteTabelle("},
                    [](WithIndex& t) {
                      long end = 0;
                      return t.t.table.WriteTabelle(t.stream, 0, end, false,
                                                    t.t.Part(0).file_name);
                    }),
  };
}

bool AppendRow(T& t) {
  return t.t.table.SetZeileWerte(t.values, DBTabelle::ActionAppend);
}

// A new row that has no texts, or the first one of them.
void AppendWithoutTexts(T& t) {
  auto& table = t.t.table;
  t.Stand("NAME", 2);
  EXPECT_TRUE(table.NeueZeile(true));
  EXPECT_EQ(1, table.SelectColumn("ID"));
  EXPECT_EQ(1, table.SetWert(20001L));
  EXPECT_EQ(1, table.SelectColumn("FOLGE"));
  EXPECT_EQ(1, table.SetWert(4L));
  EXPECT_EQ(1, table.SelectColumn("NAME"));
}
void AppendWithoutNote(T& t) {
  auto const all = t.values;
  t.values.erase("NOTE");
  EXPECT_TRUE(AppendRow(t));
  t.values = all;
}

std::vector<Operation> Values() {
  return {
      In<T>(Promise::kFails, {"DBTabelle::GetWert(zWString&)"},
            [](T& t) { return t.t.table.GetWert(t.text) == 1; }),
      In<OnId>(Promise::kFails, {"DBTabelle::SetWert(long)"},
               [](OnId& t) { return t.t.table.SetWert(77L) == 1; }),
      In<T>(Promise::kFails, {"DBTabelle::SetWert(wchar_t const*)"},
            [](T& t) { return t.t.table.SetWert(kWideLong) == 1; }),
      In<T>(Promise::kFails, {"DBTabelle::SetWert(char16_t const*)"},
            [](T& t) { return t.t.table.SetWert(kUnitsLong) == 1; }),
      In<T>(Promise::kFails, {"DBTabelle::SetWert(char const*)"},
            [](T& t) { return t.t.table.SetWert(kLong) == 1; }),
      In<T>(Promise::kSilent, {"DBTabelle::GetAnzahlAktiveZeilen()"},
            [](T& t) { return t.t.table.GetAnzahlAktiveZeilen() == 3; }),
      In<T>(Promise::kPart,
            {"DBTabelle::SelectZeile(char const*, wchar_t const*)"},
            [](T& t) {
              return t.t.table.SelectZeile(
                         "NAME", L"Carl, whose name is a long one, too") == 1;
            }),
      In<T>(
          Promise::kPart, {"DBTabelle::FindRows("},
          [](T& t) {
            return t.t.table.FindRows("NAME", t.pattern, false).size() == 3;
          },
          // Stopped at a row.
          {[](T& t) { t.Stand("NAME", 0); }, [](T& t) { t.Stand("NAME", 2); }}),
      In<T>(Promise::kPart, {"DBTabelle::SetZeileWerte("}, AppendRow,
            // A new row has the values up to the one that found no memory.
            {AppendWithoutTexts, AppendWithoutNote},
            {[](T& t) {
               AppendWithoutTexts(t);
               EXPECT_TRUE(AppendRow(t));
             },
             [](T& t) {
               AppendWithoutNote(t);
               EXPECT_TRUE(AppendRow(t));
             }}),
      In<T>(Promise::kSilent, {"DBTabelle::mapGetString("},
            [](T& t) {
              t.wide = t.t.table.mapGetString(t.values, "NAME");
              return true;
            }),
      In<WithIndex>(Promise::kFails, {"DBTabelle::WriteStrings("},
                    [](WithIndex& t) {
                      long end = 0;
                      return t.t.table.WriteStrings(t.stream, 0, end, false,
                                                    t.t.Part(0).file_name);
                    }),
  };
}

// Every row was selected in turn.
void StandAtTheEnd(T& t, char const* column) {
  t.Stand(column, 2);
  t.Stand(column, 3);
}

// Without memory an index is empty.
std::vector<Operation> IndicesOfTables() {
  return {
      In<OnId>(Promise::kFails, {"DBTabelle::GetRowByID(long)"},
               [](OnId& t) { return t.t.table.GetRowByID(77) == 0; }),
      In<T>(Promise::kSilent, {"DBTabelle::NewUserID()"},
            [](T& t) { return t.t.table.NewUserID() == 20001; }),
      In<T>(Promise::kPart, {"DBTabelle::MakeIndexID()"},
            [](T& t) {
              t.t.table.MakeIndexID();
              return t.t.table.GetRowByID(3) == 2;
            },
            {[](T& t) {
              StandAtTheEnd(t, "ID");
              TableAccess::Ids(t.t.table).Clear();
            }}),
      In<T>(Promise::kPart, {"DBTabelle::MakeIndexFolge()"},
            [](T& t) {
              t.t.table.MakeIndexFolge();
              return t.t.table.GetRowByFolge(3) == 2;
            },
            {[](T& t) {
              StandAtTheEnd(t, "FOLGE");
              TableAccess::Folge(t.t.table).clear();
            }}),
      In<T>(Promise::kPart, {"DBTabelle::MakeIndexStatus()"},
            [](T& t) {
              t.t.table.MakeIndexStatus();
              return !StatusIndexOf(t.t.table).empty();
            },
            {[](T& t) {
              StandAtTheEnd(t, "STATUS");
              TableAccess::Status(t.t.table).clear();
            }}),
      In<Resorted>(Promise::kSilent, {"DBTabelle::ResortIndexID()"},
                   [](Resorted& t) {
                     t.t.table.ResortIndexID();
                     return true;
                   }),
      In<ToFile>(Promise::kPart, {"DBTabelle::WriteIndexID(FILE*)"},
                 [](ToFile& t) {
                   t.ReadFrom(0);
                   t.t.table.WriteIndexID(t.stream);
                   return platform::Tell(t.stream) == t.kFolge;
                 }),
      In<WithIndex>(Promise::kNeedsNone,
                    {"DBTabelle::WriteIndexFolge(FILE*)",
                     "DBTabelle::WriteIndexStatus(FILE*)"},
                    [](WithIndex& t) {
                      t.t.table.WriteIndexFolge(t.stream);
                      t.t.table.WriteIndexStatus(t.stream);
                      return true;
                    }),
  };
}

std::vector<Operation> ReadingIndices() {
  return {
      In<WithIndex>(
          Promise::kPart, {"DBTabelle::ReadIndexID(FILE*)"},
          [](WithIndex& t) {
            t.ReadFrom(0);
            t.t.table.ReadIndexID(t.stream);
            return t.t.table.GetRowByID(3) == 2;
          },
          {[](WithIndex& t) { TableAccess::Ids(t.t.table).Clear(); }}),
      In<AtFolge>(Promise::kPart, {"DBTabelle::ReadIndexFolge(FILE*)"},
                  [](AtFolge& t) {
                    t.ReadFrom(t.kFolge);
                    t.t.table.ReadIndexFolge(t.stream);
                    return t.t.table.GetRowByFolge(3) == 2;
                  },
                  {[](AtFolge& t) {
                    t.Stand("FOLGE", 1);
                    TableAccess::Folge(t.t.table).clear();
                  }}),
      In<AtFolge>(Promise::kPart, {"DBTabelle::ReadIndexFolgeNoUpdate(FILE*)"},
                  [](AtFolge& t) {
                    t.ReadFrom(t.kFolge);
                    t.t.table.ReadIndexFolgeNoUpdate(t.stream);
                    return t.t.table.GetRowByFolge(3) == 2;
                  },
                  {[](AtFolge& t) {
                    t.Stand("FOLGE", 1);
                    TableAccess::Folge(t.t.table).clear();
                  }}),
      In<AtStatus>(Promise::kPart, {"DBTabelle::ReadIndexStatus(FILE*)"},
                   [](AtStatus& t) {
                     t.ReadFrom(t.kStatus);
                     t.t.table.ReadIndexStatus(t.stream);
                     return TableAccess::Status(t.t.table).size() == 4;
                   },
                   {[](AtStatus& t) {
                     t.Stand("STATUS", 1);
                     TableAccess::Status(t.t.table).clear();
                   }}),
      In<AtStatus>(Promise::kPart, {"DBTabelle::ReadIndexStatusNoUdate(FILE*)"},
                   [](AtStatus& t) {
                     t.ReadFrom(t.kStatus);
                     t.t.table.ReadIndexStatusNoUdate(t.stream);
                     return TableAccess::Status(t.t.table).size() == 4;
                   },
                   {[](AtStatus& t) {
                     t.Stand("STATUS", 1);
                     TableAccess::Status(t.t.table).clear();
                   }}),
  };
}

std::vector<Operation> Records() {
  return {
      In<T>(Promise::kNeedsNone,
            {"DBZeile::DBZeile()", "DBZeile::DBZeile(DBZeile const&)",
             "DBZeile::operator=(DBZeile const&)", "DBZeile::~DBZeile()",
             "DBZeile::GetField()", "DBZeile::GetMemory(unsigned long)",
             "DBZeile::GetType()", "DBZeile::GetWert(double&)",
             "DBZeile::GetWert(long&)", "DBZeile::SelectField(DBFeld*, long)",
             "DBZeile::SetMemory(void*)", "DBZeile::SetWert(double)",
             "DBZeile::SetWert(long)"},
            [](T& t) {
              std::array<char, 8> record{};
              DBZeile row;
              row.SelectField(t.t.entry->GetDefinition()->GetDefinition(), 0);
              row.SetMemory(record.data());
              DBZeile copy(row);
              copy = row;
              long value = 0;
              double real = 0;
              return copy.SetWert(5L) == 1 && copy.SetWert(5.0) == 0 &&
                     copy.GetWert(value) == 1 && copy.GetWert(real) == 0 &&
                     copy.GetField() == row.GetField() &&
                     copy.GetType() == DBTypeInteger &&
                     copy.GetMemory(0) == record.data() && value == 5;
            }),
      In<T>(Promise::kNeedsNone,
            {"CTabwerk::CTabwerk()", "CTabwerk::CTabwerk(CTabwerk const&)",
             "CTabwerk::operator=(CTabwerk const&)", "fnTabwerk()", "nTabwerk"},
            [](T&) {
              CTabwerk const first;
              CTabwerk second(first);
              second = first;
              return fnTabwerk() == 42 && nTabwerk == 0;
            }),
  };
}

}  // namespace

std::vector<Operation> TableOperations() {
  auto all = Making();
  for (auto const& more : {TableWithoutNeed(), Values(), IndicesOfTables(),
                           ReadingIndices(), Records()}) {
    all.insert(all.end(), more.begin(), more.end());
  }
  return all;
}

class SweepMemoryTables : protected PrivateTemp, public testing::Test {};

TEST_F(SweepMemoryTables, EveryAllocation) {
  SweepOperations(TableOperations());
}

}  // namespace tabwerk::test
