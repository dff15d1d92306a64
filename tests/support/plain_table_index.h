// The row indices of tables, written plainly: row by row through the public
// operations.  They judge the library's own forms on random tables.
#ifndef TABWERK_TESTS_SUPPORT_PLAIN_TABLE_INDEX_H
#define TABWERK_TESTS_SUPPORT_PLAIN_TABLE_INDEX_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "DBTabelle.h"
#include "table/table_access.h"

namespace tabwerk::test::plain {

using Numbers = std::vector<std::int32_t>;

// Selects the column and reads it at the current row; value stays when there
// is no such integer column.
inline void ReadColumn(DBTabelle& table, char const* column, long* value) {
  if (table.SelectColumn(column) == 1) table.GetWert(*value);
}

// Nothing is written when there is no such column.
inline void WriteColumn(DBTabelle& table, char const* column, long value) {
  if (table.SelectColumn(column) == 1) table.SetWert(value);
}

inline void MakeIndexId(DBTabelle& table) {
  TableAccess::Ids(table).Clear();
  bool const found = table.SelectColumn("ID") == 1;
  long id = 0;
  for (long row = 0; row < table.GetAnzahlZeilen(); ++row) {
    table.SelectZeile(row);
    if (found) table.GetWert(id);
    TableAccess::Ids(table).Set(static_cast<std::int32_t>(id),
                                static_cast<std::int32_t>(row));
  }
}

inline void MakeIndexFolge(DBTabelle& table) {
  auto const rows = static_cast<std::size_t>(table.GetAnzahlZeilen());
  Numbers& index = TableAccess::Folge(table);
  index.assign(rows + 1, -1);
  bool const found = table.SelectColumn("FOLGE") == 1;
  long folge = 0;
  for (std::size_t row = 0; row < rows; ++row) {
    table.SelectZeile(static_cast<long>(row));
    if (found) table.GetWert(folge);
    if (folge >= 0 && static_cast<std::size_t>(folge) <= rows) {
      index[static_cast<std::size_t>(folge)] = static_cast<std::int32_t>(row);
    }
  }
}

inline void MakeIndexStatus(DBTabelle& table) {
  auto const rows = static_cast<std::size_t>(table.GetAnzahlZeilen());
  Numbers& index = TableAccess::Status(table);
  index.assign(rows, 0);
  bool const found = table.SelectColumn("STATUS") == 1;
  long status = 0;
  for (std::size_t row = 0; row < rows; ++row) {
    table.SelectZeile(static_cast<long>(row));
    if (found) table.GetWert(status);
    index[row] = static_cast<std::int32_t>(status);
  }
}

// The order that the indices record, entry 0 included.
inline Numbers RecordedOrder(DBTabelle& table) {
  Numbers const& folge = TableAccess::Folge(table);
  std::map<std::size_t, std::int32_t> id_at;
  std::size_t largest = 0;
  for (auto const& [id, row] : TableAccess::Ids(table).Entries()) {
    for (std::size_t p = 1; p < folge.size(); ++p) {
      if (folge[p] != row) continue;
      id_at[p] = id;
      largest = std::max(largest, p);
      break;
    }
  }
  Numbers order(largest + 1, 0);
  for (auto const& [position, id] : id_at) order[position] = id;
  return order;
}

// The order of the rows' own FOLGE values.
inline Numbers FieldOrder(DBTabelle& table) {
  auto const rows = static_cast<std::size_t>(table.GetAnzahlZeilen());
  Numbers order(rows + 1, 0);
  long id = 0;
  long folge = 0;
  for (std::size_t row = 0; row < rows; ++row) {
    table.SelectZeile(static_cast<long>(row));
    ReadColumn(table, "ID", &id);
    ReadColumn(table, "FOLGE", &folge);
    if (folge >= 0 && static_cast<std::size_t>(folge) <= rows) {
      order[static_cast<std::size_t>(folge)] = static_cast<std::int32_t>(id);
    }
  }
  return order;
}

inline void RepairStatus(DBTabelle& table) {
  Numbers const recorded = TableAccess::Status(table);
  long id = 0;
  long status = 0;
  for (long row = 0; row < table.GetAnzahlZeilen(); ++row) {
    table.SelectZeile(row);
    ReadColumn(table, "ID", &id);
    auto const known =
        TableAccess::Ids(table).Find(static_cast<std::int32_t>(id));
    if (!known || *known < 0) continue;
    auto const position = static_cast<std::size_t>(*known);
    if (position >= recorded.size()) continue;
    ReadColumn(table, "STATUS", &status);
    if (status == 0) {
      WriteColumn(table, "STATUS", recorded[position]);
    } else if (status != 1 && status != 2) {
      WriteColumn(table, "STATUS", 1);
    }
  }
}

inline void Merge(Numbers const& field_order, Numbers* order) {
  std::size_t last = 0;
  for (std::size_t i = 1; i < field_order.size(); ++i) {
    auto const found = std::find(order->begin(), order->end(), field_order[i]);
    if (found != order->end()) {
      last = static_cast<std::size_t>(found - order->begin());
    } else {
      order->insert(order->begin() + static_cast<std::ptrdiff_t>(last) + 1,
                    field_order[i]);
      ++last;
    }
  }
}

inline void Renumber(DBTabelle& table, Numbers const& order) {
  for (long row = 0; row < table.GetAnzahlZeilen(); ++row) {
    table.SelectZeile(row);
    WriteColumn(table, "FOLGE", 0);
  }
  long status = 0;
  long next = 1;
  for (std::size_t j = 1; j < order.size(); ++j) {
    auto const row = TableAccess::Ids(table).Find(order[j]);
    if (row) table.SelectZeile(static_cast<long>(*row));
    ReadColumn(table, "STATUS", &status);
    table.SelectColumn("FOLGE");
    if (status != 0) continue;
    WriteColumn(table, "FOLGE", next);
    ++next;
  }
}

inline void ResortIndexId(DBTabelle& table) {
  Numbers order = RecordedOrder(table);
  Numbers const field_order = FieldOrder(table);
  RepairStatus(table);
  Merge(field_order, &order);
  MakeIndexId(table);
  MakeIndexStatus(table);
  Renumber(table, order);
  MakeIndexFolge(table);
}

}  // namespace tabwerk::test::plain

#endif  // TABWERK_TESTS_SUPPORT_PLAIN_TABLE_INDEX_H
