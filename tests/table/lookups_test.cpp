// What a table remembers of its rows is exactly what a pass over them gives.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <iterator>
#include <map>
#include <random>
#include <span>
#include <string>

#include "DBbase.h"
#include "schema/bytes.h"
#include "table/section_source.h"
#include "table/table_access.h"
#include "tests/support/random_cases.h"
#include "tests/support/table_builder.h"

namespace tabwerk::test {
namespace {

constexpr char kDefinition[] =
    "integer ID,integer STATUS,string NAME,real PRICE,string NOTE\n";
// Offsets of the string columns.
constexpr int kName = 8;
constexpr int kNote = 20;

class Lookups : public testing::Test {
 protected:
  Lookups() : made_(kDefinition, 2), table_(made_.table) {
    made_.AddRows(0, {"1|0|Anna|1|x", "2|1|#TS(Bert¬Bertil)TS~|2|", "3|0||3|"});
    made_.AddRows(1, {"20000|0|Anna|4|y"});
  }
  ~Lookups() override { DBbase::SetSprache(0); }

  // The same question to a table that remembers nothing.
  std::string PlainSearch(char const* column, std::wstring const& text) {
    DBTabelle fresh(table_);
    auto const found = fresh.SelectZeile(column, text.c_str());
    return std::to_string(found) + " " + Selected(fresh);
  }
  std::string Search(char const* column, std::wstring const& text) {
    auto const found = table_.SelectZeile(column, text.c_str());
    return std::to_string(found) + " " + Selected(table_);
  }
  std::string PlainCount() {
    DBTabelle fresh(table_);
    auto const count = fresh.GetAnzahlAktiveZeilen();
    return std::to_string(count) + " " + Selected(fresh);
  }
  std::string Count() {
    auto const count = table_.GetAnzahlAktiveZeilen();
    return std::to_string(count) + " " + Selected(table_);
  }

  TestTable made_;
  DBTabelle& table_;
};

std::wstring AnyValue(std::mt19937* random) {
  static constexpr wchar_t const* kTexts[] = {L"",
                                              L"Anna",
                                              L"Bert",
                                              L"a much longer text",
                                              L"y",
                                              (L"#TS(Bert\u00AC"
                                               L"Bertil)TS~"),
                                              L"Bertil",
                                              L"x"};
  return kTexts[(*random)() % std::size(kTexts)];
}

// Writes a whole row, a new one or one of those that are there.
void WriteRow(DBTabelle* table, std::mt19937* random) {
  static constexpr DBTabelle::Action kActions[] = {DBTabelle::ActionInsert,
                                                   DBTabelle::ActionUpdate,
                                                   DBTabelle::ActionAppend};
  std::map<std::string, std::wstring> values{
      {"ID", std::to_wstring((*random)() % 6)},
      {"STATUS", std::to_wstring((*random)() % 3)},
      {"NAME", AnyValue(random)},
      {"NOTE", AnyValue(random)}};
  table->SetZeileWerte(values, kActions[(*random)() % std::size(kActions)]);
}

// Lets a value name the text of another one, as files may, or one that begins
// inside a text or at the end of the store.
void ShareText(TestTable* made, std::mt19937* random) {
  auto& part = made->Part(0);
  auto const record =
      static_cast<std::int32_t>(made->entry->GetDefinition()->GetMemorySize());
  auto const row = static_cast<std::int32_t>(
      (*random)() % static_cast<unsigned>(part.Rows()));
  int const column = (*random)() % 2 == 0 ? kName : kNote;
  auto const index = (*random)() % (part.strings->count() + 1);
  StoreValue(part.Row(row, record) + column, static_cast<std::int32_t>(index));
  ++part.revision;
}

// Leaves the parts' own rows and fields on the last one.
void DumpAway(DBTabelle* table, std::mt19937* random) {
  static FILE* const stream = std::tmpfile();
  std::wstring separator(L";");
  table->Dump(stream, separator.data(), (*random)() % 2 == 0);
}

// One random change of any kind.
void Change(TestTable* made, DBTabelle* other, std::mt19937* random) {
  auto& table = (*random)() % 16 == 0 ? *other : made->table;
  auto const rows = static_cast<unsigned>(table.GetAnzahlZeilen());
  static constexpr char const* kColumns[] = {"ID",    "STATUS", "NAME",
                                             "PRICE", "NOTE",   "NONE"};
  table.SelectColumn(kColumns[(*random)() % std::size(kColumns)]);
  table.SelectZeile(static_cast<long>((*random)() % (rows + 1)));
  switch ((*random)() % 12) {
    case 8:
      WriteRow(&table, random);
      break;
    case 9:
      if ((*random)() % 4 == 0) ShareText(made, random);
      break;
    case 10:
      DumpAway(&table, random);
      if (table.GetType() == DBTypeString) {
        table.SetWert(AnyValue(random).c_str());
      }
      break;
    case 0:
      table.NeueZeile((*random)() % 4 != 0);
      break;
    case 1:
      DBbase::SetSprache(static_cast<short>((*random)() % 2));
      break;
    case 2:
      table.SetWert(1.5);
      break;
    case 3:
    case 4:
      table.SetWert(static_cast<long>((*random)() % 3));
      break;
    default:
      // A text on a column of numbers may overwrite another row's text.
      if (table.GetType() == DBTypeString || (*random)() % 16 == 0) {
        table.SetWert(AnyValue(random).c_str());
      }
  }
}

TEST_F(Lookups, AgreeWithAPassOverTheRowsOnRandomChanges) {
  constexpr int kChanges = 60;
  JudgeRandomly(200 * kChanges, kChanges, [](std::uint32_t seed) {
    std::mt19937 random(seed);
    DBbase::SetSprache(0);
    TestTable made(kDefinition, 2);
    made.AddRows(0, {"1|0|Anna|1|x", "2|1|Bert|2|", "3|0||3|"});
    DBTabelle other(made.table);
    for (int i = 0; i < kChanges; ++i) {
      Change(&made, &other, &random);
      auto const* const column = random() % 4 == 0 ? "NOTE" : "NAME";
      auto const text = AnyValue(&random);
      DBTabelle fresh(made.table);
      auto const expected = fresh.SelectZeile(column, text.c_str());
      ASSERT_EQ(expected, made.table.SelectZeile(column, text.c_str()));
      ASSERT_EQ(Selected(fresh), Selected(made.table));
      fresh = made.table;
      auto const count = fresh.GetAnzahlAktiveZeilen();
      ASSERT_EQ(count, made.table.GetAnzahlAktiveZeilen());
      ASSERT_EQ(Selected(fresh), Selected(made.table));
    }
  });
}

TEST_F(Lookups, FindTheFirstOfSeveralRows) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(PlainSearch("NAME", L"Anna"), Search("NAME", L"Anna"));
  }
  table_.SelectColumn("NAME");
  table_.SelectZeile(0L);
  EXPECT_EQ(1, table_.SetWert(L"Annabel the first"));
  EXPECT_EQ(PlainSearch("NAME", L"Anna"), Search("NAME", L"Anna"));
}

TEST_F(Lookups, FollowTheLanguage) {
  for (int const language : {0, 0, 1, 1, 0}) {
    DBbase::SetSprache(static_cast<short>(language));
    EXPECT_EQ(PlainSearch("NAME", L"Bert"), Search("NAME", L"Bert"));
    EXPECT_EQ(PlainSearch("NAME", L"Bertil"), Search("NAME", L"Bertil"));
  }
}

TEST_F(Lookups, NoticeChangesThroughAnotherTable) {
  DBTabelle other(table_);
  Search("NAME", L"Zoe");
  Search("NAME", L"Zoe");
  Count();
  other.SelectColumn("NAME");
  other.SelectZeile(1L);
  EXPECT_EQ(1, other.SetWert(L"Zoe"));
  other.SelectColumn("STATUS");
  EXPECT_EQ(1, other.SetWert(0L));
  EXPECT_EQ(PlainSearch("NAME", L"Zoe"), Search("NAME", L"Zoe"));
  EXPECT_EQ(PlainCount(), Count());
}

TEST_F(Lookups, NoticeChangesOfABlockThatTheHostHolds) {
  Search("NAME", L"");
  Search("NAME", L"");
  Count();
  auto const size = static_cast<std::size_t>(made_.Part(0).row_block_size);
  auto* const rows = static_cast<std::byte*>(table_.SetMemory(size, 0));
  EXPECT_EQ(PlainCount(), Count());
  StoreValue(rows + 4, std::int32_t{1});
  EXPECT_EQ(PlainCount(), Count());
}

// Two rows that share a text change together when it is overwritten in place.
TEST_F(Lookups, NoticeTextsThatRowsShare) {
  auto& part = made_.Part(0);
  auto const record =
      static_cast<std::int32_t>(made_.entry->GetDefinition()->GetMemorySize());
  auto const shared = LoadValue<std::int32_t>(part.Row(0, record) + 8);
  StoreValue(part.Row(1, record) + 8, shared);
  ++part.revision;
  Search("NAME", L"Eva");
  Search("NAME", L"Eva");
  table_.SelectColumn("NAME");
  table_.SelectZeile(1L);
  EXPECT_EQ(1, table_.SetWert(L"Eva"));
  EXPECT_EQ("1 NAME@0", Search("NAME", L"Eva"));
}

TEST_F(Lookups, NoticeTextsThatBeginInsideAnother) {
  auto& part = made_.Part(0);
  auto const record =
      static_cast<std::int32_t>(made_.entry->GetDefinition()->GetMemorySize());
  auto const first = LoadValue<std::int32_t>(part.Row(0, record) + kName);
  StoreValue(part.Row(1, record) + kName, first + 1);
  ++part.revision;
  Search("NAME", L"nna");
  EXPECT_EQ("1 NAME@1", Search("NAME", L"nna"));
  table_.SelectColumn("NAME");
  table_.SelectZeile(0L);
  EXPECT_EQ(1, table_.SetWert(L"Eva"));
  EXPECT_EQ("1 NAME@1", Search("NAME", L"va"));
}

// Both rows name the place where the next text will go.
TEST_F(Lookups, NoticeTextsThatComeToLieBehindTheEnd) {
  auto& part = made_.Part(0);
  auto const record =
      static_cast<std::int32_t>(made_.entry->GetDefinition()->GetMemorySize());
  auto const end = static_cast<std::int32_t>(part.strings->count());
  StoreValue(part.Row(1, record) + kName, end);
  ++part.revision;
  Search("NAME", L"Caroline");
  EXPECT_EQ("0 NAME@3", Search("NAME", L"Caroline"));
  table_.SelectColumn("NAME");
  table_.SelectZeile(2L);
  EXPECT_EQ(1, table_.SetWert(L"Caroline"));
  EXPECT_EQ("1 NAME@1", Search("NAME", L"Caroline"));
}

TEST_F(Lookups, NoticeStatusFromAnIndexFile) {
  std::string bytes = "STATUS";
  for (int const number : {4, 1, 0, 1, 0}) {
    bytes += std::string({static_cast<char>(number), 0, 0, 0});
  }
  table_.MakeIndexStatus();
  EXPECT_EQ(PlainCount(), Count());
  MemorySource source(std::as_bytes(std::span(bytes)));
  ASSERT_TRUE(TableAccess::ReadStatus(table_, source, RowUpdate::kRowsToo));
  EXPECT_EQ(2, table_.GetAnzahlAktiveZeilen());
  EXPECT_EQ(PlainCount(), Count());
}

TEST_F(Lookups, OfMoreColumnsThanAreRememberedAgreeAsWell) {
  TestTable wide("string A,string B,string C,string D,string E,string F\n");
  wide.AddRows(0, {"1|2|3|4|5|6", "a|b|c|d|e|f"});
  for (int round = 0; round < 3; ++round) {
    for (char const column : {'A', 'B', 'C', 'D', 'E', 'F'}) {
      std::string const name(1, column);
      std::wstring const text(1, static_cast<wchar_t>(column - 'A' + L'a'));
      EXPECT_EQ(1, wide.table.SelectZeile(name.c_str(), text.c_str()));
      EXPECT_EQ('1', Selected(wide.table).back()) << name;
    }
  }
}

// More rows than the lookup had buckets for, and one that moves far.
TEST_F(Lookups, FollowManyNewRowsOfOneText) {
  Search("NAME", L"same");
  Search("NAME", L"same");
  for (int i = 0; i < 300; ++i) {
    ASSERT_TRUE(table_.NeueZeile(true));
    table_.SelectColumn("NAME");
    ASSERT_EQ(1, table_.SetWert(i == 150 ? L"other" : L"same"));
    ASSERT_EQ(PlainSearch("NAME", L"same"), Search("NAME", L"same"));
  }
  Search("NAME", L"other");
  ASSERT_EQ(1, table_.SetWert(L"same"));
  EXPECT_EQ(PlainSearch("NAME", L"other"), Search("NAME", L"other"));
  EXPECT_EQ(PlainSearch("NAME", L"same"), Search("NAME", L"same"));
}

// The one text that the store ends without a NUL, and a place that is none.
TEST_F(Lookups, NoticeTextsOfOtherColumnsThatAreNone) {
  auto& part = made_.Part(0);
  auto const record =
      static_cast<std::int32_t>(made_.entry->GetDefinition()->GetMemorySize());
  StoreValue(part.Row(0, record) + kNote, std::int32_t{-1});
  ASSERT_TRUE(part.strings->Append(u"end"));
  part.strings->Truncate(part.strings->count() - 1);
  ++part.revision;
  for (auto const* text : {L"Eva", L"Ida", L"a longer text than all others"}) {
    Search("NAME", L"Eva");
    Search("NAME", L"Eva");
    table_.SelectColumn("NAME");
    table_.SelectZeile(0L);
    ASSERT_EQ(1, table_.SetWert(text));
    EXPECT_EQ(PlainSearch("NAME", text), Search("NAME", text));
    EXPECT_EQ(PlainSearch("NOTE", L"y"), Search("NOTE", L"y"));
  }
}

}  // namespace
}  // namespace tabwerk::test
