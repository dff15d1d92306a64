#include "cli/table_rows.h"

#include <string>

#include "DBDirectory.h"
#include "cli/files.h"
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
  DBDefinition const& definition = *table.GetDirEntry(false)->GetDefinition();
  for (DBFeld const* field = definition.GetDefinition(); field != nullptr;
       field = field->next) {
    fields_.push_back(field);
  }
}

std::vector<ColumnHead> TableRows::Heads() const {
  std::vector<ColumnHead> heads;
  for (DBFeld const* field : fields_) {
    heads.push_back({NameToUtf8(field->name), TypeOf(*field)});
  }
  return heads;
}

std::vector<Cell> TableRows::Row(long row, TableOut const& out) {
  table_.SelectZeile(row);
  std::vector<Cell> cells(fields_.size());
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    if (out.Wants(i)) cells[i] = Value(*fields_[i]);
  }
  return cells;
}

Cell TableRows::Value(DBFeld const& field) {
  if (table_.SelectColumn(field.name) == 0) return {};
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

}  // namespace tabwerk::tool
