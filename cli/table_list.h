// The tables of a directory in the order of their file.
#ifndef TABWERK_CLI_TABLE_LIST_H
#define TABWERK_CLI_TABLE_LIST_H

#include <string>
#include <vector>

#include "DBDirectory.h"

namespace tabwerk::tool {

// The entries are the directory's.
std::vector<DBDirEntry*> TablesInFileOrder(DBDirectory const& directory);

// The fields of a definition, which owns them.
std::vector<DBFeld const*> FieldsOf(DBDefinition const& definition);

// Their names in UTF-8, each one once: a second NAME is NAME_2.
std::vector<std::string> ColumnNames(DBDefinition const& definition);

// "integer", "real", "string" or "unknown".
char const* TypeName(DBType type);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TABLE_LIST_H
