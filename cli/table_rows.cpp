#include "cli/table_rows.h"

#include <algorithm>
#include <utility>

#include "DBDirectory.h"
#include "DBbase.h"
#include "cli/progress.h"
#include "cli/sole_column.h"
#include "cli/table_list.h"
#include "cli/translated_text.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

CellType TypeOf(DBFeld const& field) {
  if (field.type == DBTypeInteger) return CellType::kInteger;
  return field.type == DBTypeReal ? CellType::kReal : CellType::kText;
}

}  // namespace

TableRows::TableRows(DBTabelle& table)
    : table_(table), row_count_(table.GetAnzahlZeilen()) {
  for (DBFeld const* field :
       FieldsOf(*table.GetDirEntry(false)->GetDefinition())) {
    columns_.push_back({field, std::nullopt});
  }
}

void TableRows::SplitLanguages() {
  std::vector<Column> split;
  for (Column const& column : columns_) {
    SoleColumn const sole(table_, *column.field);
    int const count = LanguageCount(table_, column.field->name);
    for (int i = 0; i < std::max(count, 1); ++i) {
      split.push_back({column.field, static_cast<short>(i)});
    }
  }
  columns_ = std::move(split);
}

std::vector<ColumnHead> TableRows::Heads() const {
  std::vector<ColumnHead> heads;
  auto const names = ColumnNames(*table_.GetDirEntry(false)->GetDefinition());
  std::size_t field = 0;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    Column const& column = columns_[i];
    if (i > 0 && columns_[i - 1].field != column.field) ++field;
    auto const is_same = [&](std::size_t other) {
      return other < columns_.size() && columns_[other].field == column.field;
    };
    std::string name = names[field];
    if (is_same(i + 1) || (i > 0 && is_same(i - 1))) {
      name += "." + std::to_string(*column.language);
    }
    heads.push_back({name, TypeOf(*column.field)});
  }
  return heads;
}

std::vector<Cell> TableRows::Row(long row, TableOut const& out) {
  table_.SelectZeile(row);
  std::vector<Cell> cells(columns_.size());
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (out.Wants(i)) cells[i] = Value(columns_[i]);
  }
  return cells;
}

Cell TableRows::Value(Column const& column) {
  DBFeld const& field = *column.field;
  if (column.language) DBbase::SetSprache(*column.language);
  if (!SelectField(table_, field)) return {};
  switch (field.type) {
    case DBTypeInteger: {
      long value = 0;
      if (table_.GetWert(value) != 1) return {};
      return std::int64_t{value};
    }
    case DBTypeReal: {
      double value = 0;
      if (table_.GetWert(value) != 1) return {};
      return value;
    }
    case DBTypeString: {
      zWString value;
      if (table_.GetWert(value) != 1) return {};
      return value.toUtf8();
    }
    case DBTypeUnknown:
      break;
  }
  return {};
}

std::optional<Problem> PrintRows(TableRows& rows,
                                 std::vector<long> const& chosen,
                                 std::string const& table,
                                 OutputOptions const& options) {
  TableOut out(options);
  if (auto problem = out.Begin(rows.Heads())) return problem;
  auto const count = static_cast<long long>(chosen.size());
  // A terminal that takes the rows needs no other sign of life.
  std::optional<Progress> progress;
  if (!out.IsTerminal()) progress.emplace("writing " + table, count, "rows");
  long long done = 0;
  for (long const row : chosen) {
    if (!out.WantsMore()) break;
    out.Add(rows.Row(row, out));
    if (progress) progress->Advance(++done);
  }
  return out.End(count);
}

}  // namespace tabwerk::tool
