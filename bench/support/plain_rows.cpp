#include "bench/support/plain_rows.h"

#include <map>

namespace tabwerk::bench {

void AppendRow(PlainTable* table, Row const& row, std::int32_t id_shift) {
  using Column = PlainTable::Column;
  table->AppendRow();
  table->SelectColumn(Column::kId);
  table->Set(long{row.id + id_shift});
  table->SelectColumn(Column::kFolge);
  table->Set(long{row.folge});
  table->SelectColumn(Column::kStatus);
  table->Set(long{row.status});
  table->SelectColumn(Column::kName);
  table->Set(row.name);
  table->SelectColumn(Column::kPrice);
  table->Set(row.price);
  table->SelectColumn(Column::kNote);
  table->Set(row.note);
}

PlainTable& ReadPlainTable(long rows) {
  static std::map<long, PlainTable> tables;
  auto const [found, fresh] = tables.try_emplace(rows);
  if (fresh) {
    for (auto const& row : Rows(rows)) AppendRow(&found->second, row, 0);
  }
  return found->second;
}

}  // namespace tabwerk::bench
