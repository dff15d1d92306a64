#include "cli/table_list.h"

#include <algorithm>
#include <utility>

#include "cli/files.h"
#include "cli/text.h"

namespace tabwerk::tool {

std::vector<DBDirEntry*> TablesInFileOrder(DBDirectory const& directory) {
  // The directory has the last one of the file first.
  std::vector<DBDirEntry*> tables;
  for (DBDirEntry* entry = directory.GetEntries(); entry != nullptr;
       entry = entry->GetNext()) {
    tables.push_back(entry);
  }
  std::reverse(tables.begin(), tables.end());
  return tables;
}

std::vector<DBFeld const*> FieldsOf(DBDefinition const& definition) {
  std::vector<DBFeld const*> fields;
  for (DBFeld const* field = definition.GetDefinition(); field != nullptr;
       field = field->next) {
    fields.push_back(field);
  }
  return fields;
}

std::vector<std::string> ColumnNames(DBDefinition const& definition) {
  std::vector<std::string> names;
  for (DBFeld const* field : FieldsOf(definition)) {
    names.push_back(NameToUtf8(field->name));
  }
  return UniqueNames(std::move(names));
}

char const* TypeName(DBType type) {
  switch (type) {
    case DBTypeReal:
      return "real";
    case DBTypeInteger:
      return "integer";
    case DBTypeString:
      return "string";
    case DBTypeUnknown:
      break;
  }
  return "unknown";
}

}  // namespace tabwerk::tool
