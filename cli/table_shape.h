// What the tables of a database file look like, and the texts that say it.
#ifndef TABWERK_CLI_TABLE_SHAPE_H
#define TABWERK_CLI_TABLE_SHAPE_H

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "DBDefinition.h"
#include "cli/errors.h"

namespace tabwerk::tool {

struct ColumnShape {
  std::string name;   // UTF-8
  std::string bytes;  // the name as the library takes it
  DBType type = DBTypeUnknown;
  std::int32_t offset = 0;      // bytes from the start of the row record
  std::int32_t size_bytes = 0;  // of a value there
};

struct TableShape {
  std::string name;   // UTF-8
  std::string bytes;  // the name as the library takes it
  std::int32_t record_bytes = 0;
  std::vector<ColumnShape> columns;
  // IDs of rows with a text that names each; only a C++ header shows them.
  std::vector<std::pair<std::string, long>> ids;
};

// The tables of a file in its order, from its directory alone.
std::optional<Problem> ReadShapes(std::string const& path,
                                  std::vector<TableShape>* tables);

// The texts; path is that of the database file.
using Shapes = std::vector<TableShape>;
// A script that "tabwerk build" makes an empty database of.
std::string ShapesAsScript(Shapes const& tables, std::string const& path);
std::string ShapesAsSql(Shapes const& tables);
std::string ShapesAsJson(Shapes const& tables, std::string const& path);
std::string ShapesAsMarkdown(Shapes const& tables, std::string const& path);
// A header with the names of tables and columns as constants.
std::string ShapesAsHeader(Shapes const& tables, std::string const& path);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TABLE_SHAPE_H
