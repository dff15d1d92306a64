// tabwerk schema: tables and columns of a database file.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "DBDirectory.h"
#include "DBbase.h"
#include "cli/commands.h"
#include "cli/near_names.h"
#include "cli/out_file.h"
#include "cli/session.h"
#include "cli/table_list.h"
#include "cli/table_out.h"
#include "cli/table_shape.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

class SchemaCommand : public Command {
 public:
  void Declare(Options& options) override {
    options.Add("FILE", path_, "A database file").Required();
    options.Add("-t,--table", table_, "This table only").Value("TABLE");
    options
        .Add("--as", as_,
             "rows: one for each column, in the format of --format; "
             "script, sql, json, md: the text; cpp: a header with the "
             "names")
        .OneOf({"rows", "script", "sql", "json", "md", "cpp"})
        .Value("FORM");
    options
        .Add("--ids", ids_,
             "For --as cpp: also the IDs of the rows of tables with this "
             "column, whose texts name them")
        .Value("COLUMN");
    AddOutputOptions(options, &output_);
    options.Notes("No file is changed.");
  }

  ExitCode Run() override {
    if (auto const problem = CheckOptions()) return Report(*problem);
    std::vector<TableShape> tables;
    auto problem = ReadShapes(path_, &tables);
    if (!problem) problem = KeepTable(&tables);
    if (!problem && !ids_.empty()) problem = ReadIds(&tables);
    if (!problem) {
      problem = as_ == "rows" ? PrintRows(tables) : PrintText(tables);
    }
    return problem ? Report(*problem) : ExitCode::kDone;
  }

 private:
  std::optional<Problem> CheckOptions() const {
    if (as_ != "rows" && output_.format != "auto") {
      return Problem{TW(101), "", "--format is for --as rows",
                     "leave out one of both"};
    }
    if (as_ != "cpp" && !ids_.empty()) {
      return Problem{TW(101), "", "--ids is for --as cpp",
                     "write --as cpp --ids " + ids_};
    }
    return std::nullopt;
  }

  std::optional<Problem> KeepTable(std::vector<TableShape>* tables) const {
    if (table_.empty()) return std::nullopt;
    std::vector<std::string> names;
    for (TableShape const& table : *tables) names.push_back(table.name);
    std::erase_if(*tables,
                  [&](TableShape const& it) { return it.name != table_; });
    if (!tables->empty()) return std::nullopt;
    return NoSuchTable(path_, table_, names);
  }

  std::optional<Problem> ReadIds(std::vector<TableShape>* tables) const {
    DatabaseFiles const files{path_, "", ""};
    if (auto problem = OpenToLook(files)) return problem;
    DBbase::SetSprache(0);
    bool found = false;
    for (TableShape& shape : *tables) {
      auto const has = [&shape](std::string const& name, DBType type) {
        return std::any_of(shape.columns.begin(), shape.columns.end(),
                           [&](ColumnShape const& it) {
                             return it.name == name && it.type == type;
                           });
      };
      if (!has("ID", DBTypeInteger) || !has(ids_, DBTypeString)) continue;
      found = true;
      DBTabelle* table = nullptr;
      if (auto problem = FindTable(files, shape.name, &table)) return problem;
      AddIds(*table, &shape);
    }
    if (found) return std::nullopt;
    return Problem{TW(107), path_,
                   "no table has a string column " + ids_ + " beside its ID",
                   "\"tabwerk schema\" lists the columns"};
  }

  void AddIds(DBTabelle& table, TableShape* shape) const {
    auto const column =
        std::find_if(shape->columns.begin(), shape->columns.end(),
                     [this](ColumnShape const& it) { return it.name == ids_; });
    for (long row = 0; row < table.GetAnzahlZeilen(); ++row) {
      long id = 0;
      zWString text;
      table.SelectZeile(row);
      bool const whole = table.SelectColumn("ID") == 1 &&
                         table.GetWert(id) == 1 &&
                         table.SelectColumn(column->bytes.c_str()) == 1 &&
                         table.GetWert(text) == 1;
      if (whole && !text.isEmpty()) shape->ids.emplace_back(text.toUtf8(), id);
    }
  }

  std::optional<Problem> PrintRows(
      std::vector<TableShape> const& tables) const {
    TableOut out(output_);
    auto problem = out.Begin({{"TABLE"},
                              {"COLUMN"},
                              {"TYPE"},
                              {"BYTE", CellType::kInteger},
                              {"BYTES", CellType::kInteger}});
    if (problem) return problem;
    for (TableShape const& table : tables) {
      for (ColumnShape const& column : table.columns) {
        out.Add({table.name, column.name, TypeName(column.type),
                 std::int64_t{column.offset}, std::int64_t{column.size_bytes}});
      }
    }
    return out.End();
  }

  std::optional<Problem> PrintText(
      std::vector<TableShape> const& tables) const {
    OutFile file(output_.file);
    if (auto problem = file.Open()) return problem;
    if (as_ == "script") file.Write(ShapesAsScript(tables, path_));
    if (as_ == "sql") file.Write(ShapesAsSql(tables));
    if (as_ == "json") file.Write(ShapesAsJson(tables, path_));
    if (as_ == "md") file.Write(ShapesAsMarkdown(tables, path_));
    if (as_ == "cpp") file.Write(ShapesAsHeader(tables, path_));
    return file.Close();
  }

  std::string path_;
  std::string table_;
  std::string as_ = "rows";
  std::string ids_;
  OutputOptions output_;
};

}  // namespace

extern CommandEntry const kSchemaCommand;
CommandEntry const kSchemaCommand = {
    "schema",
    Group::kLook,
    "Print tables and columns, with types and places",
    {{"schema geo.db", "a line for each column"},
     {"schema geo.db --as script -o empty.script",
      "a script for a database of the same tables"},
     {"schema geo.db --as cpp --ids CODE -o geo_names.h",
      "constants for a program"}},
    &MakeCommand<SchemaCommand>};

}  // namespace tabwerk::tool
