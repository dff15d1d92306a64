#include "cli/sole_column.h"

#include <string_view>

#include "DBDirectory.h"

namespace tabwerk::tool {

SoleColumn::SoleColumn(DBTabelle& table, DBFeld const& field)
    : initial_(field.name[0]) {
  std::string_view const name = field.name;
  for (DBFeld* it = table.GetDirEntry(false)->GetDefinition()->GetDefinition();
       it != nullptr && it != &field; it = it->next) {
    if (it->name != name) continue;
    it->name[0] = '\0';
    hidden_.push_back(it);
  }
}

SoleColumn::~SoleColumn() {
  for (DBFeld* const field : hidden_) field->name[0] = initial_;
}

bool SelectField(DBTabelle& table, DBFeld const& field) {
  if (table.SelectColumn(field.name) == 0) return false;
  // Nearly always it is the only one of its name.
  if (table.GetAktuelleFeldDef() == &field) return true;
  SoleColumn const sole(table, field);
  return table.SelectColumn(field.name) == 1;
}

}  // namespace tabwerk::tool
