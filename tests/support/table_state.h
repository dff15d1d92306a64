// Everything that an operation on a table may change, as one text.
#ifndef TABWERK_TESTS_SUPPORT_TABLE_STATE_H
#define TABWERK_TESTS_SUPPORT_TABLE_STATE_H

#include <string>

#include "table/table_access.h"
#include "tests/support/table_builder.h"

namespace tabwerk::test {

inline std::string NameOf(DBFeld const* field) {
  return field == nullptr ? "-" : field->name;
}

// "NAME follows ID, part 1 row 5, parts NAME@3 NAME@1".
inline std::string Selection(DBTabelle& table) {
  std::string text = NameOf(TableAccess::Field(table)) + " follows " +
                     TableAccess::FollowingIndex(table) + ", part " +
                     std::to_string(TableAccess::CurrentSubTable(table)) +
                     " row " + std::to_string(TableAccess::CurrentRow(table)) +
                     ", parts";
  for (DBSubTable const& part : TableAccess::SubTables(table)) {
    text += " " + NameOf(part.field) + "@" + std::to_string(part.row);
  }
  return text;
}

inline std::string State(TestTable& table) {
  return Rows(*table.entry) + "\n" + Indices(table.table) + "\n" +
         Selection(table.table);
}

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_TABLE_STATE_H
