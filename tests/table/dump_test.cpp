// The rows of a part as text.
#include <gtest/gtest.h>

#include <cwchar>
#include <string>

#include "DBbase.h"
#include "platform/platform.h"
#include "tests/support/table_builder.h"
#include "tests/support/table_state.h"
#include "tests/support/temp_folder.h"

namespace {

namespace platform = tabwerk::platform;
using tabwerk::test::Selection;
using tabwerk::test::TestTable;
using tabwerk::test::Value;

class Dump : public testing::Test {
 protected:
  ~Dump() override { DBbase::SetSprache(0); }

  // The result and what was written: "2: 7;\"Pump\"\n".
  std::string Of(DBTabelle& table, bool user, wchar_t const* separator = L";") {
    auto error = platform::Error::kNone;
    FILE* const stream =
        platform::OpenFile(folder_.Path("dump"), platform::Mode::kCreate,
                           platform::Share::kDenyNone, &error);
    if (stream == nullptr) return "no stream";
    std::wstring between(separator == nullptr ? L"" : separator);
    int const result = table.Dump(
        stream, separator == nullptr ? nullptr : between.data(), user);
    if (!platform::Close(stream)) return "not written";
    return std::to_string(result) + ": " + folder_.ReadBytes("dump");
  }

  tabwerk::test::TempFolder folder_;
};

TEST_F(Dump, WritesOneLineForEveryRow) {
  TestTable t("integer ID,string NAME,real PRICE\n");
  t.AddRows(0, {"7|Pump|1.5", "-8||0"});
  EXPECT_EQ("3: 7;\"Pump\";1.5\n-8;\"\";0\n", Of(t.table, false));
}

TEST_F(Dump, EmptyPartGivesOneAndWritesNothing) {
  TestTable t("integer ID\n", 2);
  t.AddRows(0, {"7"});
  EXPECT_EQ("1: ", Of(t.table, true));
}

// The number of rows plus 1, as for a part without rows.
TEST_F(Dump, MissingPartGivesOne) {
  TestTable t("integer ID\n");
  t.AddRows(0, {"7"});
  EXPECT_EQ("1: ", Of(t.table, true));
  DBTabelle unbound;
  EXPECT_EQ("1: ", Of(unbound, false));
}

TEST_F(Dump, MissingStreamGivesZero) {
  TestTable t("integer ID\n");
  t.AddRows(0, {"7"});
  std::wstring separator = L";";
  EXPECT_EQ(0, t.table.Dump(nullptr, separator.data(), false));
}

TEST_F(Dump, WritesTheRowsOfThatPartOnly) {
  TestTable t("integer ID\n", 2);
  t.AddRows(0, {"7"});
  t.AddRows(1, {"20000", "20001"});
  EXPECT_EQ("2: 7\n", Of(t.table, false));
  EXPECT_EQ("3: 20000\n20001\n", Of(t.table, true));
}

TEST_F(Dump, StringsAreWrittenAsStored) {
  TestTable t("string NAME\n");
  t.AddRows(0, {"#TS(Yes\xC2\xACJa)TS~", "a\"b;c", "\xC3\x84\xE6\x97\xA5"});
  DBbase::SetSprache(1);
  EXPECT_EQ(
      "4: \"#TS(Yes\xC2\xACJa)TS~\"\n\"a\"b;c\"\n\"\xC3\x84\xE6\x97\xA5\"\n",
      Of(t.table, false));
}

TEST_F(Dump, RealsAreTheShortestTextsThatReadBack) {
  TestTable t("real R\n");
  t.AddRows(0, {"0.1", "1e300", "-2", "0.30000000000000004"});
  EXPECT_EQ("5: 0.1\n1e+300\n-2\n0.30000000000000004\n", Of(t.table, false));
}

TEST_F(Dump, SeparatorMayBeLongEmptyOrMissing) {
  TestTable t("integer A,integer B\n");
  t.AddRows(0, {"1|2"});
  EXPECT_EQ("2: 1 | 2\n", Of(t.table, false, L" | "));
  EXPECT_EQ("2: 12\n", Of(t.table, false, L""));
  EXPECT_EQ("2: 12\n", Of(t.table, false, nullptr));
}

// So that the number of columns stays the same for whoever reads the lines.
TEST_F(Dump, SeparatorFollowsFieldsOfUnknownTypeToo) {
  TestTable t("unknown X,integer A,blob Y\n");
  t.AddRows(0, {"|1|"});
  EXPECT_EQ("2: ;1;\n", Of(t.table, false));
}

TEST_F(Dump, FieldWithoutANameIsLeftOutButItsSeparatorIsNot) {
  std::string const blank(64, 'N');  // too long: the field stays blank
  TestTable t(("integer A,integer " + blank + ",integer B\n").c_str());
  t.AddRows(0, {"1|2|3"});
  EXPECT_EQ("2: 1;;3\n", Of(t.table, false));
}

// It moves the part's row and field, not the table's: values are then read
// from the last row and field, and selecting a row mends only the row.
TEST_F(Dump, MovesThePartsSelectionAndNotTheTables) {
  TestTable t("integer ID,string NAME\n");
  t.AddRows(0, {"7|a", "8|b"});
  t.table.SelectColumn("ID");
  t.table.SelectZeile(0L);
  Of(t.table, false);
  EXPECT_EQ("ID follows ID, part 0 row 0, parts NAME@1", Selection(t.table));
  EXPECT_EQ("b", Value(t.table));
  t.table.SelectZeile(0L);
  EXPECT_EQ("a", Value(t.table));
}

// The index follows the table's row, the value goes to the part's.
TEST_F(Dump, ValueSetBehindItGoesIntoTheLastRow) {
  TestTable t("string NAME,integer ID\n");
  t.AddRows(0, {"a|7", "b|8"});
  t.table.MakeIndexID();
  t.table.SelectZeile(0L);
  Of(t.table, false);
  EXPECT_EQ(1, t.table.SetWert(9L));
  EXPECT_EQ("[a|7][b|9]", tabwerk::test::Rows(*t.entry));
  EXPECT_EQ("7>0 9>0", tabwerk::test::IdIndexOf(t.table));
}

TEST_F(Dump, TextSetBehindItIsFoundByTheNextSearch) {
  TestTable t("integer ID,string NAME\n");
  t.AddRows(0, {"7|a", "8|b"});
  t.table.SelectColumn("NAME");
  EXPECT_EQ(0, t.table.SelectZeile("NAME", L"c"));
  EXPECT_EQ(0, t.table.SelectZeile("NAME", L"c"));
  t.table.SelectZeile(0L);
  Of(t.table, false);
  EXPECT_EQ(1, t.table.SetWert(L"c"));
  EXPECT_EQ(1, t.table.SelectZeile("NAME", L"c"));
  EXPECT_EQ(0, t.table.SelectZeile("NAME", L"b"));
}

TEST_F(Dump, EmptyPartLeavesTheSelection) {
  TestTable t("integer ID,string NAME\n", 2);
  t.AddRows(0, {"7|a"});
  t.table.SelectColumn("ID");
  t.table.SelectZeile(0L);
  auto const before = Selection(t.table);
  Of(t.table, true);
  EXPECT_EQ(before, Selection(t.table));
}

// A host may have set the stream for wide text.
TEST_F(Dump, WideStreamGetsWideText) {
  TestTable t("string NAME\n");
  t.AddRows(0, {"abc"});
  auto error = platform::Error::kNone;
  FILE* const stream =
      platform::OpenFile(folder_.Path("wide"), platform::Mode::kCreate,
                         platform::Share::kDenyNone, &error);
  ASSERT_NE(nullptr, stream);
  (void)std::fwide(stream, 1);  // no effect where streams have no orientation
  std::wstring separator = L";";
  EXPECT_EQ(2, t.table.Dump(stream, separator.data(), false));
  EXPECT_TRUE(platform::Close(stream));
  EXPECT_EQ("\"abc\"\n", folder_.ReadBytes("wide"));
}

}  // namespace
