// The tables of a directory in the order of their file.
#ifndef TABWERK_CLI_TABLE_LIST_H
#define TABWERK_CLI_TABLE_LIST_H

#include <vector>

#include "DBDirectory.h"

namespace tabwerk::tool {

// The entries are the directory's.
std::vector<DBDirEntry*> TablesInFileOrder(DBDirectory const& directory);

// The fields of a definition, which owns them.
std::vector<DBFeld const*> FieldsOf(DBDefinition const& definition);

// "integer", "real", "string" or "unknown".
char const* TypeName(DBType type);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TABLE_LIST_H
