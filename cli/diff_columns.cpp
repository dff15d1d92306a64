#include "cli/diff_columns.h"

#include <algorithm>

#include "cli/table_list.h"

namespace tabwerk::tool {
namespace {

bool Holds(std::vector<std::string> const& names, std::string const& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

bool DiffOptions::WantsTable(std::string const& name) const {
  return tables.empty() || Holds(tables, name);
}

bool DiffOptions::WantsColumn(std::string const& name) const {
  return !Holds(ignored, name) && (columns.empty() || Holds(columns, name));
}

std::vector<DiffColumn> DiffColumns(SnapshotTable const& table,
                                    DiffOptions const& options) {
  std::vector<DiffColumn> columns;
  auto const fields = FieldsOf(table.definition);
  auto const names = ColumnNames(table.definition);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (options.WantsColumn(names[i])) {
      columns.push_back({names[i], fields[i]});
    }
  }
  return columns;
}

DBFeld const* DiffId(SnapshotTable const& table, DiffOptions const& options) {
  DBFeld* field = nullptr;
  if (Holds(options.ignored, "ID") ||
      table.definition.GetOffset("ID", field) == 0) {
    return nullptr;
  }
  return field->type == DBTypeInteger ? field : nullptr;
}

}  // namespace tabwerk::tool
