// A table of a main file and a user file for tests of whole rows.
#ifndef TABWERK_TESTS_TABLE_UPDATE_TABLE_H
#define TABWERK_TESTS_TABLE_UPDATE_TABLE_H

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "DBbase.h"
#include "tests/support/table_builder.h"

namespace tabwerk::test {

class UpdateTest : public testing::Test {
 protected:
  using Texts = std::map<std::string, std::string>;

  ~UpdateTest() override { DBbase::SetSprache(0); }

  static constexpr char kUsual[] =
      "integer ID,integer FOLGE,integer STATUS,string NAME\n";

  // A table whose main file has these rows, with built indices and row 0
  // selected.
  static std::unique_ptr<TestTable> Make(
      char const* definition, std::initializer_list<std::string_view> rows,
      std::size_t parts = 2) {
    auto made = std::make_unique<TestTable>(definition, parts);
    made->AddRows(0, rows);
    made->table.MakeIndexID();
    made->table.MakeIndexFolge();
    made->table.MakeIndexStatus();
    made->table.SelectZeile(0L);
    return made;
  }
  // The usual table with the IDs and places 1 to count.
  static std::unique_ptr<TestTable> MakeOrdered(int count) {
    auto made = Make(kUsual, {});
    for (int i = 1; i <= count; ++i) {
      auto const number = std::to_string(i);
      made->AddRow(0, number + "|" + number + "|0|N" + number);
    }
    made->table.MakeIndexID();
    made->table.MakeIndexFolge();
    made->table.MakeIndexStatus();
    return made;
  }

  // Values are UTF-8.
  static bool Write(TestTable& t, DBTabelle::Action action,
                    Texts const& values) {
    std::map<std::string, std::wstring> wide;
    for (auto const& [key, value] : values) {
      wide[key] = zWString::fromUtf8(value).toStdWString();
    }
    return t.table.SetZeileWerte(wide, action);
  }
  static bool Insert(TestTable& t, Texts const& values) {
    return Write(t, DBTabelle::ActionInsert, values);
  }
  static bool Update(TestTable& t, Texts const& values) {
    return Write(t, DBTabelle::ActionUpdate, values);
  }
  static bool Append(TestTable& t, Texts const& values) {
    return Write(t, DBTabelle::ActionAppend, values);
  }
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_TABLE_UPDATE_TABLE_H
