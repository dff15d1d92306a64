// Differences as JSON.
#include <nlohmann/json.hpp>
#include <string>

#include "cli/diff_out.h"

namespace tabwerk::tool {
namespace {

using nlohmann::ordered_json;

// A path need not be UTF-8.
std::string Dump(ordered_json const& json) {
  return json.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

char const* NameOf(Change change) {
  switch (change) {
    case Change::kRemoved:
      return "removed";
    case Change::kAdded:
      return "added";
    case Change::kChanged:
      break;
  }
  return "changed";
}

ordered_json JsonOf(Cell const& cell) {
  struct Visitor {
    ordered_json operator()(std::monostate) const { return nullptr; }
    ordered_json operator()(std::int64_t value) const { return value; }
    // Infinity and not-a-number become null.
    ordered_json operator()(double value) const { return value; }
    ordered_json operator()(std::string const& value) const { return value; }
  };
  return std::visit(Visitor(), cell);
}

ordered_json JsonOf(DatabaseFiles const& files) {
  ordered_json json = {{"main", files.main}, {"user", nullptr}};
  if (!files.user.empty()) json["user"] = files.user;
  return json;
}

ordered_json JsonOf(CellDifference const& cell) {
  ordered_json json = {{"column", cell.column}};
  if (cell.section) json["section"] = *cell.section;
  if (cell.language) json["language"] = *cell.language;
  json["before"] = JsonOf(cell.before);
  json["after"] = JsonOf(cell.after);
  return json;
}

ordered_json JsonOf(ColumnChange const& column) {
  ordered_json json = {{"change", NameOf(column.change)},
                       {"name", column.name}};
  json["before"] =
      column.before.empty() ? ordered_json() : ordered_json(column.before);
  json["after"] =
      column.after.empty() ? ordered_json() : ordered_json(column.after);
  return json;
}

ordered_json JsonOf(RowChange const& row) {
  ordered_json json = {{"change", NameOf(row.change)}, {"key", row.key}};
  if (row.occurrence > 1) json["occurrence"] = row.occurrence;
  if (row.change == Change::kChanged) {
    ordered_json cells = ordered_json::array();
    for (CellDifference const& cell : row.cells) cells.push_back(JsonOf(cell));
    json["cells"] = std::move(cells);
    return json;
  }
  ordered_json values = ordered_json::object();
  for (ColumnCell const& it : row.values) values[it.column] = JsonOf(it.value);
  json["values"] = std::move(values);
  return json;
}

// Rows go out one by one, each on a line.
class DiffJson : public DiffOut {
 public:
  explicit DiffJson(OutFile& file) : file_(file) {}

  void Begin(DatabaseFiles const& before, DatabaseFiles const& after) override {
    file_.Write("{\"before\": " + Dump(JsonOf(before)) +
                ", \"after\": " + Dump(JsonOf(after)) + ", \"tables\": [");
  }

  void BeginTable(TableChange const& table) override {
    ordered_json columns = ordered_json::array();
    for (ColumnChange const& it : table.columns) columns.push_back(JsonOf(it));
    ordered_json const head = {{"name", table.name},
                               {"change", NameOf(table.change)},
                               {"key", table.by_id ? "ID" : "row"},
                               {"rowsBefore", table.rows_before},
                               {"rowsAfter", table.rows_after},
                               {"reordered", table.reordered},
                               {"columns", std::move(columns)}};
    std::string text = Dump(head);
    text.pop_back();  // the brace
    file_.Write((is_first_table_ ? "\n" : ",\n") + text + ", \"rows\": [");
    is_first_table_ = false;
    is_first_row_ = true;
  }

  void Row(RowChange const& row) override {
    file_.Write((is_first_row_ ? "\n  " : ",\n  ") + Dump(JsonOf(row)));
    is_first_row_ = false;
  }

  bool WantsMore() const override { return !file_.Failed(); }

  void EndTable(ChangeCounts const& counts) override {
    ordered_json const json = {{"same", counts.same},
                               {"changed", counts.changed},
                               {"removed", counts.removed},
                               {"added", counts.added}};
    file_.Write("], \"counts\": " + Dump(json) + "}");
  }

  void End(std::size_t table_count, std::size_t different_count) override {
    ordered_json const json = {{"tableCount", table_count},
                               {"differentCount", different_count},
                               {"equal", different_count == 0}};
    file_.Write("], " + Dump(json).substr(1) + "\n");
  }

 private:
  OutFile& file_;
  bool is_first_table_ = true;
  bool is_first_row_ = true;
};

}  // namespace

std::unique_ptr<DiffOut> MakeDiffJson(OutFile& file) {
  return std::make_unique<DiffJson>(file);
}

}  // namespace tabwerk::tool
