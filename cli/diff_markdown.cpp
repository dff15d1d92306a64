// Differences as Markdown.
#include <fmt/format.h>

#include <string>

#include "cli/diff_out.h"
#include "cli/row_formats.h"
#include "cli/text.h"

namespace tabwerk::tool {
namespace {

class DiffMarkdown : public DiffOut {
 public:
  explicit DiffMarkdown(OutFile& file) : file_(file) {}

  void Begin(DatabaseFiles const& before, DatabaseFiles const& after) override {
    file_.Write("# Differences\n\nbefore: " + FilesText(before) +
                "  \nafter: " + FilesText(after) + "\n");
  }

  void BeginTable(TableChange const& table) override {
    table_ = table;
    has_rows_ = false;
    file_.Write("\n## " + Escape(table.name) + "\n\n");
    if (table.change != Change::kChanged) {
      bool const is_added = table.change == Change::kAdded;
      file_.Write(
          fmt::format("The table is {}, with {}.\n", is_added ? "new" : "gone",
                      Count(table.rows_before + table.rows_after, "row")));
      return;
    }
    if (table.reordered) file_.Write("Columns stand in another order.\n\n");
    if (table.columns.empty()) return;
    auto const columns = MakeMarkdown(file_);
    columns->Begin({{""}, {"column"}, {"before"}, {"after"}});
    for (ColumnChange const& it : table.columns) {
      columns->Add({ChangeMark(it.change), it.name, it.before, it.after});
    }
    columns->End();
    file_.Write("\n");
  }

  void Row(RowChange const& row) override {
    if (!has_rows_) {
      rows_ = MakeMarkdown(file_);
      rows_->Begin({{""}, {"row"}, {"column"}, {"before"}, {"after"}});
      has_rows_ = true;
    }
    std::string const label = RowLabel(table_, row);
    for (CellDifference const& cell : row.cells) {
      rows_->Add({ChangeMark(row.change), label, CellLabel(cell), cell.before,
                  cell.after});
    }
    bool const is_added = row.change == Change::kAdded;
    for (ColumnCell const& it : row.values) {
      rows_->Add({ChangeMark(row.change), label, it.column,
                  is_added ? Cell() : it.value, is_added ? it.value : Cell()});
    }
  }

  bool WantsMore() const override { return !file_.Failed(); }

  void EndTable(ChangeCounts const& counts) override {
    if (table_.change != Change::kChanged) return;
    file_.Write((has_rows_ ? "\n" : "") + CountsText(counts) + "\n");
  }

  void End(std::size_t table_count, std::size_t different_count) override {
    auto const tables = Count(static_cast<long long>(table_count), "table");
    file_.Write(different_count == 0
                    ? "\nNo differences in " + tables + ".\n"
                    : fmt::format("\n{} of {} {}.\n", different_count, tables,
                                  different_count == 1 ? "differs" : "differ"));
  }

 private:
  OutFile& file_;
  TableChange table_;
  std::unique_ptr<RowFormat> rows_;
  bool has_rows_ = false;
};

}  // namespace

std::unique_ptr<DiffOut> MakeDiffMarkdown(OutFile& file) {
  return std::make_unique<DiffMarkdown>(file);
}

}  // namespace tabwerk::tool
