// Tables in memory for tests, and observers that answer with short strings.
#ifndef TABWERK_TESTS_SUPPORT_TABLE_BUILDER_H
#define TABWERK_TESTS_SUPPORT_TABLE_BUILDER_H

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

#include "DBDirectory.h"
#include "DBTabelle.h"
#include "schema/part.h"

namespace tabwerk::test {

// A directory with one table and a DBTabelle bound to it.  The directory names
// one file for every part; none is opened.
//
//   TestTable t("integer ID,string NAME\n", 2);
//   t.AddRows(0, {"1|Anna", "2|Bert"});
//   t.AddRows(1, {"20000|Carl"});
//   t.table.SelectColumn("NAME");
//   EXPECT_EQ("[1|Anna][2|Bert][20000|Carl]", Rows(*t.entry));
class TestTable {
 public:
  // part_count parts without rows, whose files are called "part0", "part1" …
  explicit TestTable(char const* definition, std::size_t part_count = 1);
  TestTable(TestTable const&) = delete;
  TestTable& operator=(TestTable const&) = delete;

  // Appends rows straight to the part's blocks, as if they had been loaded:
  // indices and selection stay.  Values are UTF-8 texts separated by "|", one
  // for every field (a field of unknown type takes one, too, and drops it);
  // missing ones are 0 or "".
  void AddRows(std::size_t part, std::initializer_list<std::string_view> rows);
  void AddRow(std::size_t part, std::string_view row);
  TablePart& Part(std::size_t part);

  DBDirectory directory;
  DBDirEntry* entry;
  DBTabelle table;
};

// What is stored, read from the blocks themselves: "[1|Anna][2|Bert]" over all
// parts or in one.  Reals as the shortest decimal, strings as UTF-8 and not
// translated; "?" for a value outside its block, nothing for an unknown type.
std::string Rows(DBDirEntry& entry);
std::string Rows(DBDirEntry& entry, std::size_t part);

// The units of a string store: ASCII as it is, NUL as "^", others as "<FFE4>".
std::string Store(TablePart const& part);
// The same for any text.
std::string Units(std::u16string_view text);

// "ID 5>0 7>1 FOLGE -1 0 1 STATUS 0 0".
std::string Indices(DBTabelle& table);
std::string IdIndexOf(DBTabelle& table);      // "5>0 7>1"
std::string FolgeIndexOf(DBTabelle& table);   // "-1 0 1"
std::string StatusIndexOf(DBTabelle& table);  // "0 0"

// The selection: "NAME@3", with "-" for no column and the row number over all
// parts.
std::string Selected(DBTabelle& table);
// The value at the current row and column as GetWert reads it, by the type of
// the column; "-" when there is none.
std::string Value(DBTabelle& table);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_TABLE_BUILDER_H
