// Differences as lines of text.
#include <fmt/format.h>

#include "cli/diff_out.h"
#include "cli/settings.h"
#include "cli/text.h"

namespace tabwerk::tool {
namespace {

char const* StyleOf(Change change) {
  switch (change) {
    case Change::kRemoved:
      return "31";
    case Change::kAdded:
      return "32";
    case Change::kChanged:
      break;
  }
  return "33";
}

// Texts stand in quotes, so that empty ones can be seen.
std::string Shown(Cell const& cell) {
  if (std::holds_alternative<std::monostate>(cell)) return "none";
  std::string const text = Escape(CellText(cell));
  return std::holds_alternative<std::string>(cell) ? '"' + text + '"' : text;
}

class DiffText : public DiffOut {
 public:
  DiffText(OutFile& file, bool colors) : file_(file), colors_(colors) {}

  void Begin(DatabaseFiles const& before, DatabaseFiles const& after) override {
    names_ = FilesText(before) + " and " + FilesText(after);
    head_ = Styled("--- " + FilesText(before), "1", colors_) + "\n" +
            Styled("+++ " + FilesText(after), "1", colors_) + "\n";
  }

  void BeginTable(TableChange const& table) override {
    file_.Write(head_);
    head_.clear();
    table_ = table;
    file_.Write("\n" + Styled("table " + Escape(table.name), "1", colors_) +
                "\n");
    if (table.change != Change::kChanged) {
      return Line(
          table.change,
          fmt::format("table {} with {}", Escape(table.name),
                      Count(table.rows_before + table.rows_after, "row")));
    }
    for (ColumnChange const& column : table.columns) {
      bool const both = column.change == Change::kChanged;
      Line(column.change,
           fmt::format("column {} {}{}{}", Escape(column.name), column.before,
                       both ? " -> " : "", column.after));
    }
    if (table.reordered) Line(Change::kChanged, "columns in another order");
  }

  void Row(RowChange const& row) override {
    std::string const label = RowLabel(table_, row);
    for (CellDifference const& cell : row.cells) {
      Line(row.change,
           fmt::format("{}: {}: {} -> {}", label, Escape(CellLabel(cell)),
                       Shown(cell.before), Shown(cell.after)));
    }
    if (row.change == Change::kChanged) return;
    std::string values;
    for (ColumnCell const& it : row.values) {
      if (!values.empty()) values += ", ";
      values += Escape(it.column) + " " + Shown(it.value);
    }
    Line(row.change, label + ": " + values);
  }

  bool WantsMore() const override { return !file_.Failed(); }

  void EndTable(ChangeCounts const& counts) override {
    if (table_.change == Change::kChanged) {
      file_.Write("  " + CountsText(counts) + "\n");
    }
  }

  void End(std::size_t table_count, std::size_t different_count) override {
    if (CurrentSettings().quiet) return;
    auto const tables = static_cast<long long>(table_count);
    if (different_count == 0) {
      return file_.Write(fmt::format("{}: no differences in {}\n", names_,
                                     Count(tables, "table")));
    }
    file_.Write(fmt::format("\n{} of {} {}\n", different_count,
                            Count(tables, "table"),
                            different_count == 1 ? "differs" : "differ"));
  }

 private:
  void Line(Change change, std::string const& text) {
    file_.Write(Styled(std::string(ChangeMark(change)) + " " + text,
                       StyleOf(change), colors_) +
                "\n");
  }

  OutFile& file_;
  bool colors_;
  std::string names_;
  std::string head_;  // until there is a difference
  TableChange table_;
};

}  // namespace

std::unique_ptr<DiffOut> MakeDiffText(OutFile& file, bool colors) {
  return std::make_unique<DiffText>(file, colors);
}

char const* ChangeMark(Change change) {
  switch (change) {
    case Change::kRemoved:
      return "-";
    case Change::kAdded:
      return "+";
    case Change::kChanged:
      break;
  }
  return "~";
}

std::string FilesText(DatabaseFiles const& files) {
  std::string const user = files.user.empty() ? "" : ", " + files.user;
  return OneBlankEach(files.main + user);
}

std::string RowLabel(TableChange const& table, RowChange const& row) {
  std::string label = fmt::format("{} {}", table.by_id ? "ID" : "row", row.key);
  if (row.occurrence > 1) label += fmt::format(" (number {})", row.occurrence);
  return label;
}

std::string CellLabel(CellDifference const& cell) {
  std::string label = cell.column;
  if (cell.section) label += fmt::format(", section {}", *cell.section);
  if (cell.language) label += fmt::format(", language {}", *cell.language);
  return label;
}

std::string CountsText(ChangeCounts const& counts) {
  std::string text;
  auto const add = [&text](std::int64_t count, char const* what) {
    if (count == 0) return;
    if (!text.empty()) text += ", ";
    text += Count(count, "row") + " " + what;
  };
  add(counts.changed, "changed");
  add(counts.removed, "removed");
  add(counts.added, "added");
  add(counts.same, "the same");
  return text.empty() ? "no rows" : text;
}

}  // namespace tabwerk::tool
