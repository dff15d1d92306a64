#include "cli/diff_columns.h"

#include <algorithm>
#include <set>

#include "cli/files.h"

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
  std::set<std::string> names;
  for (DBFeld const* field = table.definition.GetDefinition(); field != nullptr;
       field = field->next) {
    std::string const name = NameToUtf8(field->name);
    if (options.WantsColumn(name) && names.insert(name).second) {
      columns.push_back({name, field});
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
