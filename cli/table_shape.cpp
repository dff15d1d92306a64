#include "cli/table_shape.h"

#include <fmt/format.h>

#include <cctype>
#include <nlohmann/json.hpp>
#include <set>
#include <string_view>
#include <utility>

#include "DBDirectory.h"
#include "cli/files.h"
#include "cli/session.h"
#include "cli/table_list.h"
#include "cli/text.h"
#include "schema/layout.h"

namespace tabwerk::tool {
namespace {

// "geo" of "data/geo.db".
std::string Stem(std::string const& path) {
  return ToUtf8(ToPath(path).stem());
}

std::string FileName(std::string const& path) {
  return ToUtf8(ToPath(path).filename());
}

TableShape ShapeOf(DBDirEntry const& entry) {
  TableShape table;
  table.name = NameToUtf8(entry.GetName());
  table.bytes = entry.GetName();
  table.record_bytes =
      static_cast<std::int32_t>(entry.GetDefinition()->GetMemorySize());
  for (DBFeld const* field : FieldsOf(*entry.GetDefinition())) {
    std::int32_t const size = ValueSize(field->type);
    table.columns.push_back({NameToUtf8(field->name), field->name, field->type,
                             field->offset, size});
  }
  return table;
}

char const* SqlType(DBType type) {
  switch (type) {
    case DBTypeReal:
      return "REAL";
    case DBTypeInteger:
      return "INTEGER";
    case DBTypeString:
      return "TEXT";
    case DBTypeUnknown:
      break;
  }
  return "BLOB";
}

std::string SqlName(std::string const& name) {
  std::string quoted = "\"";
  for (char const character : name) {
    if (character == '"') quoted += '"';
    quoted += character;
  }
  return quoted + "\"";
}

// The text between bars of Markdown.
std::string AsCode(std::string const& text) {
  std::string code;
  for (char const character : text) {
    if (character == '|') code += '\\';
    code += character;
  }
  return "`" + code + "`";
}

// A string literal of exactly these bytes.
std::string Literal(std::string const& bytes) {
  std::string literal = "\"";
  for (char const character : bytes) {
    auto const byte = static_cast<unsigned char>(character);
    if (byte < 0x20 || byte >= 0x7F || character == '"' || character == '\\' ||
        character == '?') {
      literal += fmt::format("\\{:03o}", byte);
    } else {
      literal += character;
    }
  }
  return literal + "\"";
}

// A name for C++ that is not taken yet; behind the prefix, any characters make
// one.
std::string Identifier(std::string const& prefix, std::string const& text,
                       std::set<std::string>* taken) {
  std::string name = prefix;
  for (char const character : text) {
    bool const fits = std::isalnum(static_cast<unsigned char>(character)) != 0;
    // Two underscores in a row are reserved.
    if (fits) {
      name += character;
    } else if (!name.ends_with('_')) {
      name += '_';
    }
  }
  std::string unique = name;
  for (int i = 2; !taken->insert(unique).second; ++i) {
    unique = fmt::format("{}{}{}", name, name.ends_with('_') ? "" : "_", i);
  }
  return unique;
}

std::string HeaderOf(TableShape const& table, std::string const& name) {
  std::string text = fmt::format("\nnamespace {} {{\n", name);
  text += fmt::format("inline constexpr char kTable[] = {};\n",
                      Literal(table.bytes));
  std::set<std::string> taken = {"kTable"};
  for (ColumnShape const& column : table.columns) {
    text += fmt::format("inline constexpr char {}[] = {};  // {}\n",
                        Identifier("k", column.name, &taken),
                        Literal(column.bytes), TypeName(column.type));
  }
  for (auto const& [row, id] : table.ids) {
    text += fmt::format("inline constexpr long {} = {};\n",
                        Identifier("kId_", row, &taken), id);
  }
  return text + fmt::format("}}  // namespace {}\n", name);
}

}  // namespace

std::optional<Problem> ReadShapes(std::string const& path,
                                  std::vector<TableShape>* tables) {
  DBDirectory directory;
  directory.Initialize(zWString(), {zWString::fromUtf8(path)});
  if (!directory.OpenDBdatei(0, false, false)) {
    return WhyNotOpened(path, Access::kRead);
  }
  for (DBDirEntry const* entry : TablesInFileOrder(directory)) {
    tables->push_back(ShapeOf(*entry));
  }
  return std::nullopt;
}

std::string ShapesAsScript(Shapes const& tables, std::string const& path) {
  std::string text =
      fmt::format("NEWDATABASE {} {}\n",
                  DatabaseFiles{path, "", ""}.DatabaseName(), FileName(path));
  // Scripts take names byte for byte.
  for (TableShape const& table : tables) {
    text += fmt::format("\nNEWTABLE {}\n", table.bytes);
    for (ColumnShape const& column : table.columns) {
      text += fmt::format("{} {}\n", column.bytes, TypeName(column.type));
    }
    text += "ENDDEF\n";
  }
  return text;
}

std::string ShapesAsSql(Shapes const& tables) {
  std::string text;
  for (TableShape const& table : tables) {
    text += fmt::format("{}CREATE TABLE {} (", text.empty() ? "" : "\n",
                        SqlName(table.name));
    std::vector<std::string> names;
    for (ColumnShape const& column : table.columns) {
      names.push_back(column.name);
    }
    names = UniqueNames(std::move(names));
    char const* between = "\n  ";
    for (std::size_t i = 0; i < names.size(); ++i) {
      text += fmt::format("{}{} {}", between, SqlName(names[i]),
                          SqlType(table.columns[i].type));
      between = ",\n  ";
    }
    text += "\n);\n";
  }
  return text;
}

std::string ShapesAsJson(Shapes const& tables, std::string const& path) {
  nlohmann::ordered_json document;
  document["file"] = path;
  document["tables"] = nlohmann::ordered_json::array();
  for (TableShape const& table : tables) {
    auto columns = nlohmann::ordered_json::array();
    for (ColumnShape const& column : table.columns) {
      columns.push_back({{"name", column.name},
                         {"type", TypeName(column.type)},
                         {"offset", column.offset},
                         {"bytes", column.size_bytes}});
    }
    document["tables"].push_back({{"name", table.name},
                                  {"record_bytes", table.record_bytes},
                                  {"columns", std::move(columns)}});
  }
  return document.dump(2, ' ', false,
                       nlohmann::json::error_handler_t::replace) +
         "\n";
}

std::string ShapesAsMarkdown(Shapes const& tables, std::string const& path) {
  std::string text = fmt::format("# {}\n", FileName(path));
  for (TableShape const& table : tables) {
    text += fmt::format(
        "\n## {}\n\nA row takes {} bytes.\n\n"
        "| Column | Type | Byte | Bytes |\n| --- | --- | ---: | ---: |\n",
        table.name, table.record_bytes);
    for (ColumnShape const& column : table.columns) {
      text +=
          fmt::format("| {} | {} | {} | {} |\n", AsCode(column.name),
                      TypeName(column.type), column.offset, column.size_bytes);
    }
  }
  return text;
}

std::string ShapesAsHeader(Shapes const& tables, std::string const& path) {
  std::set<std::string> taken;
  std::string const database = Identifier("db_", Stem(path), &taken);
  std::string guard;
  for (char const character : database + "_h") {
    guard +=
        static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
  }
  std::string text = fmt::format(
      "// Tables and columns of {}, for SelectColumn and OpenTabelle.\n"
      "#ifndef {}\n#define {}\n\nnamespace {} {{\n",
      FileName(path), guard, guard, database);
  for (TableShape const& table : tables) {
    text += HeaderOf(table, Identifier("table_", table.name, &taken));
  }
  return text + fmt::format("\n}}  // namespace {}\n\n#endif  // {}\n",
                            database, guard);
}

}  // namespace tabwerk::tool
