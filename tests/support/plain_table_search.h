// Selection and search of tables, written plainly: row by row through the
// public operations.  They judge the library's own forms on random tables.
#ifndef TABWERK_TESTS_SUPPORT_PLAIN_TABLE_SEARCH_H
#define TABWERK_TESTS_SUPPORT_PLAIN_TABLE_SEARCH_H

#include <cstdint>
#include <string>
#include <vector>

#include "DBTabelle.h"
#include "platform/numbers.h"
#include "table/table_access.h"
#include "tests/support/standard_regex.h"

namespace tabwerk::test::plain {

// Name of the column to select again.
inline std::string Remembered(DBTabelle& table, char const* column) {
  DBFeld const* const field = table.GetAktuelleFeldDef();
  return field == nullptr ? column : field->name;
}

inline int Done(DBTabelle& table, std::string const& remembered, int result) {
  table.SelectColumn(remembered.c_str());
  return result;
}

inline int Select(DBTabelle& table, char const* column, long value) {
  if (std::string(column) == "ID") {
    for (auto const& [id, row] : TableAccess::Ids(table).Entries()) {
      if (id == value) return table.SelectZeile(static_cast<long>(row));
    }
    return 0;
  }
  if (std::string(column) == "FOLGE") {
    auto const& folge = TableAccess::Folge(table);
    if (static_cast<unsigned long>(value) >= folge.size()) return 0;
    return table.SelectZeile(
        static_cast<long>(folge[static_cast<std::size_t>(value)]));
  }
  std::string const remembered = Remembered(table, column);
  if (table.SelectColumn(column) == 0 || table.SelectZeile(0L) == 0) {
    return Done(table, remembered, 0);
  }
  for (long i = 0;;) {
    long stored = 0;
    if (table.GetWert(stored) == 0) break;
    if (stored == value) return Done(table, remembered, 1);
    ++i;
    if (i >= table.GetAnzahlZeilen() || table.SelectZeile(i) == 0) break;
  }
  return Done(table, remembered, 0);
}

inline int Select(DBTabelle& table, char const* column, double value) {
  std::string const remembered = Remembered(table, column);
  if (table.SelectColumn(column) == 0 || table.SelectZeile(0L) == 0) {
    return Done(table, remembered, 0);
  }
  for (long i = 0;;) {
    double stored = 0;
    if (table.GetWert(stored) == 0) break;
    if (stored == value) return Done(table, remembered, 1);
    ++i;
    auto const shift = static_cast<unsigned>(table.GetAnzahlZeilen()) % 32;
    if ((static_cast<std::uint64_t>(i) >> shift) != 0) break;
    if (table.SelectZeile(i) == 0) break;
  }
  return Done(table, remembered, 0);
}

inline int SelectText(DBTabelle& table, char const* column,
                      zWString const& text) {
  std::string const remembered = Remembered(table, column);
  if (table.SelectColumn(column) == 0) return Done(table, remembered, 0);
  for (long i = 0;; ++i) {
    DBType const type = table.GetType();
    if (type != DBTypeReal && type != DBTypeInteger && type != DBTypeString) {
      return Done(table, remembered, 0);
    }
    if (table.SelectZeile(i) == 0) return Done(table, remembered, 0);
    double real = 0;
    long integer = 0;
    zWString string;
    bool match = false;
    bool read = false;
    if (type == DBTypeReal) {
      read = table.GetWert(real) == 1;
      match = real == platform::ParseReal(text.view());
    } else if (type == DBTypeInteger) {
      read = table.GetWert(integer) == 1;
      match = integer == platform::ParseInt32(text.view());
    } else {
      read = table.GetWert(string) == 1;
      match = string == text;
    }
    if (!read) return Done(table, remembered, 0);
    if (match) return Done(table, remembered, 1);
    if (i + 1 >= table.GetAnzahlZeilen()) return Done(table, remembered, 0);
  }
}

inline std::vector<long> FindRows(DBTabelle& table, char const* column,
                                  zWString const& pattern, bool ids) {
  std::vector<long> found;
  std::string const remembered = Remembered(table, column);
  StandardRegex const expression(pattern.view());
  if (table.SelectColumn(column) == 1) {
    for (long i = 0; i < table.GetAnzahlZeilen(); ++i) {
      zWString value;
      if (table.SelectZeile(i) == 0 || table.GetWert(value) == 0) continue;
      if (!expression.Matches(value.view())) continue;
      if (!ids) {
        found.push_back(i);
        continue;
      }
      long id = 0;
      if (table.SelectColumn("ID") == 1 && table.GetWert(id) == 1) {
        found.push_back(id);
      }
      table.SelectColumn(column);
    }
  }
  table.SelectColumn(remembered.c_str());
  return found;
}

inline int CountActive(DBTabelle& table) {
  DBFeld const* const field = TableAccess::Field(table);
  std::string const remembered = field == nullptr ? "ID" : field->name;
  long const row = TableAccess::CurrentRow(table);
  if (table.SelectColumn("STATUS") == 0) {
    table.SelectColumn(remembered.c_str());
    table.SelectZeile(row);
    return 0;
  }
  int count = 0;
  for (long i = 0; i < table.GetAnzahlZeilen(); ++i) {
    long status = 0;
    if (table.SelectZeile(i) == 0 || table.GetWert(status) == 0) {
      return Done(table, remembered, 0);
    }
    if (status == 0) ++count;
  }
  table.SelectColumn(remembered.c_str());
  table.SelectZeile(row);
  return count;
}

}  // namespace tabwerk::test::plain

#endif  // TABWERK_TESTS_SUPPORT_PLAIN_TABLE_SEARCH_H
