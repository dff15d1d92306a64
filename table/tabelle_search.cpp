// Selecting the row that has a value.
#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>

#include "DBTabelle.h"
#include "base/translation.h"
#include "platform/guarded.h"
#include "platform/numbers.h"
#include "schema/bytes.h"
#include "schema/names.h"
#include "table/column_memory.h"
#include "table/id_index.h"
#include "table/row_lookups.h"
#include "table/row_walk.h"
#include "table/table_access.h"
#include "table/text_column.h"

namespace {

using tabwerk::ColumnMemory;
using tabwerk::ColumnOf;
using tabwerk::Guarded;
using tabwerk::IsName;
using tabwerk::RowWalk;
using tabwerk::TableAccess;
using tabwerk::TextColumn;
using tabwerk::platform::ParseInt32;
using tabwerk::platform::ParseReal;

// Goes through the rows below limit until matches(walk), which may move on over
// rows without one, gives a result, and selects the row where that was, or the
// last one.  0 without a result.  What matches throws passes; the row where it
// did is then selected.
template <typename Matches>
int Search(DBTabelle& table, std::int64_t limit, Matches const& matches) {
  RowWalk walk(table);
  std::optional<int> found;
  try {
    while (!found && walk.row() + 1 < limit && walk.Next()) {
      found = matches(walk);
    }
  } catch (...) {
    walk.Select();
    throw;
  }
  walk.Select();
  return found.value_or(0);
}

// Searches a column of numbers; a value that cannot be read ends the search.
template <typename Stored, typename Value>
int SearchNumber(DBTabelle& table, DBType type, Value value,
                 std::int64_t limit) {
  auto const column = ColumnOf(table, table.GetAktuelleFeldDef(), type);
  return Search(table, limit, [&](RowWalk const& walk) -> std::optional<int> {
    Stored stored{};
    if (!walk.Read(column, &stored)) return 0;
    if (stored == value) return 1;
    return std::nullopt;
  });
}

// As a search over all rows would, but by what the table remembers of them;
// nothing, and no other selection, when it remembers too little or memory is
// exhausted.
std::optional<int> SearchRemembered(DBTabelle& table,
                                    std::u16string_view text) {
  return Guarded(std::optional<int>(), [&]() -> std::optional<int> {
    auto const* const texts = TableAccess::NeedLookups(table).TextsOf(
        table, table.GetAktuelleFeldDef());
    if (texts == nullptr) return std::nullopt;
    auto const row = texts->Find(table, text);
    RowWalk walk(table);
    walk.MoveTo(row ? *row : tabwerk::CountRows(table) - 1);
    walk.Select();
    return row ? 1 : 0;
  });
}

int SearchText(DBTabelle& table, std::u16string_view text) {
  if (auto const found = SearchRemembered(table, text)) return *found;
  TextColumn column(table, table.GetAktuelleFeldDef());
  return Search(table, tabwerk::CountRows(table),
                [&](RowWalk& walk) -> std::optional<int> {
                  auto const units = column.StoredUnits(walk);
                  if (!units) return 0;
                  if (TextColumn::MayBe(*units, text) &&
                      *column.ReadFrom(units) == text) {
                    return 1;
                  }
                  column.SkipOthers(&walk, text);
                  return std::nullopt;
                });
}

// Searches a column other than ID and FOLGE row by row.  Not part of
// SelectZeile, which would have to save more registers for every ID then.
[[gnu::noinline]] int SearchColumn(DBTabelle& table, char const* column,
                                   long value) {
  ColumnMemory const memory(table, column);
  if (table.SelectColumn(column) == 0 || table.SelectZeile(0L) == 0) return 0;
  return SearchNumber<std::int32_t>(table, DBTypeInteger, value,
                                    tabwerk::CountRows(table));
}

bool IsSearchable(DBType type) {
  return type == DBTypeReal || type == DBTypeInteger || type == DBTypeString;
}

// The number of rows at which a search for a real in so many rows ends.
// Kept: row i + 1 is looked at only while (i + 1) >> (rows mod 32) is 0.
std::int64_t RealSearchLimit(std::int64_t rows) {
  return std::min(rows, std::int64_t{1} << (rows % 32));
}

}  // namespace

int DBTabelle::SelectZeile(char const* column, long value) {
  bool const fits = tabwerk::FitsInt32(value);
  if (IsName(column, "ID")) {
    std::int32_t row = 0;
    if (!fits || !id_index_->Find(static_cast<std::int32_t>(value), &row)) {
      return 0;
    }
    if (TableAccess::SelectInFirstPart(*this, row)) return 1;
    return SelectZeile(static_cast<long>(row));
  }
  if (IsName(column, "FOLGE")) {
    if (!fits || value < 0) return 0;
    auto const place = static_cast<std::size_t>(value);
    if (place >= folge_index_.size()) return 0;
    return SelectZeile(static_cast<long>(folge_index_[place]));
  }
  return SearchColumn(*this, column, value);
}

int DBTabelle::SelectZeile(char const* column, double value) {
  ColumnMemory const memory(*this, column);
  if (SelectColumn(column) == 0 || SelectZeile(0L) == 0) return 0;
  return SearchNumber<double>(*this, DBTypeReal, value,
                              RealSearchLimit(tabwerk::CountRows(*this)));
}

int DBTabelle::SelectZeile(char const* column, wchar_t const* text) {
  return Guarded(0, [&] {
    zWString const searched(text);
    return TableAccess::SelectText(*this, column, searched.view());
  });
}

int tabwerk::TableAccess::SelectText(DBTabelle& table, char const* column,
                                     std::u16string_view text) {
  ColumnMemory const memory(table, column);
  if (table.SelectColumn(column) == 0) return 0;
  DBType const type = table.GetType();
  if (!IsSearchable(type) || table.SelectZeile(0L) == 0) return 0;
  auto const rows = CountRows(table);
  switch (type) {
    case DBTypeReal:
      return SearchNumber<double>(table, type, ParseReal(text), rows);
    case DBTypeInteger:
      return SearchNumber<std::int32_t>(table, type, ParseInt32(text), rows);
    case DBTypeString:
      return SearchText(table, text);
    case DBTypeUnknown:
      break;
  }
  return 0;
}
