// Finding the rows whose text matches a pattern.
#include <cstdint>
#include <optional>
#include <vector>

#include "DBTabelle.h"
#include "platform/guarded.h"
#include "table/column_memory.h"
#include "table/pattern.h"
#include "table/row_walk.h"
#include "table/text_column.h"

namespace {

using tabwerk::Column;
using tabwerk::Pattern;
using tabwerk::RowWalk;

Column IdColumn(DBTabelle& table) {
  DBFeld* field = nullptr;
  tabwerk::TableAccess::Definition(table)->GetOffset("ID", field);
  return tabwerk::ColumnOf(table, field, DBTypeInteger);
}

// Appends the row number or, with ids, its ID if it has one.
void AppendRow(RowWalk const& walk, Column id_column, bool ids,
               std::vector<long>* found) {
  if (!ids) {
    found->push_back(static_cast<long>(walk.row()));
    return;
  }
  std::int32_t id = 0;
  if (walk.Read(id_column, &id)) found->push_back(id);
}

// Searches the selected column; the last row is selected afterwards.
std::vector<long> FindMatches(DBTabelle& table, Pattern& pattern, bool ids) {
  std::vector<long> found;
  tabwerk::TextColumn texts(table, table.GetAktuelleFeldDef());
  Column const id_column = IdColumn(table);
  RowWalk walk(table);
  try {
    while (walk.Next()) {
      auto const units = texts.StoredUnits(walk);
      if (!units) continue;
      auto matches = pattern.MatchesStored(*units);
      if (!matches) matches = pattern.Matches(*texts.ReadFrom(units));
      if (*matches) AppendRow(walk, id_column, ids, &found);
    }
  } catch (...) {
    walk.Select();
    throw;
  }
  walk.Select();
  return found;
}

}  // namespace

std::vector<long> DBTabelle::FindRows(char const* column,
                                      zWString const& pattern, bool ids) {
  return tabwerk::Guarded(std::vector<long>(), [&]() -> std::vector<long> {
    // Compiled first: a malformed pattern changes nothing.
    Pattern compiled(pattern.view());
    tabwerk::ColumnMemory const memory(*this, column);
    if (SelectColumn(column) == 0) return {};
    return FindMatches(*this, compiled, ids);
  });
}
