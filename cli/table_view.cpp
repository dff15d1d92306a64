#include "cli/table_view.h"

#include <algorithm>
#include <numeric>

#include "DBDirectory.h"
#include "cli/console.h"
#include "cli/files.h"
#include "cli/text.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

constexpr std::size_t kGap = 2;          // between two columns
constexpr std::size_t kSmallestCut = 8;  // no column is cut below that

// Takes columns of text away from the widest columns until all fit.
void Fit(std::vector<std::size_t>* widths, std::size_t terminal_width) {
  std::size_t const gaps = kGap * (widths->size() - 1);
  std::size_t const room = terminal_width - std::min(terminal_width, gaps);
  auto const total = [widths] {
    return std::accumulate(widths->begin(), widths->end(), std::size_t{0});
  };
  for (std::size_t excess = total(); excess > room; --excess) {
    auto const widest = std::max_element(widths->begin(), widths->end());
    if (*widest <= kSmallestCut) return;
    --*widest;
  }
}

}  // namespace

bool TableView::Column::IsNumber() const {
  return field->type == DBTypeInteger || field->type == DBTypeReal;
}

TableView::TableView(DBTabelle& table)
    : table_(table), row_count_(table.GetAnzahlZeilen()) {
  DBDefinition const& definition = *table.GetDirEntry(false)->GetDefinition();
  for (DBFeld const* field = definition.GetDefinition(); field != nullptr;
       field = field->next) {
    columns_.push_back({Escape(NameToUtf8(field->name)), field});
  }
}

std::string TableView::Value(Column const& column) {
  if (table_.SelectColumn(column.field->name) == 0) return "";
  switch (column.field->type) {
    case DBTypeInteger: {
      long value = 0;
      return table_.GetWert(value) == 1 ? std::to_string(value) : "";
    }
    case DBTypeReal: {
      double value = 0;
      return table_.GetWert(value) == 1 ? zWString(value, 0).toUtf8() : "";
    }
    case DBTypeString: {
      zWString value;
      return table_.GetWert(value) == 1 ? Escape(value.toUtf8()) : "";
    }
    case DBTypeUnknown:
      break;
  }
  return "";
}

void TableView::PrintTabSeparated(long row_limit) {
  auto const print = [this](auto const& cell) {
    std::string line;
    for (Column const& column : columns_) {
      if (&column != &columns_.front()) line += '\t';
      line += cell(column);
    }
    console::Out(line + "\n");
  };
  print([](Column const& column) { return column.label; });
  for (long row = 0; row < row_limit && !console::OutFailed(); ++row) {
    table_.SelectZeile(row);
    print([this](Column const& column) { return Value(column); });
  }
}

std::vector<std::size_t> TableView::Widths(long row_limit) {
  std::vector<std::size_t> widths;
  for (Column const& column : columns_) {
    widths.push_back(DisplayWidth(column.label));
  }
  for (long row = 0; row < row_limit; ++row) {
    table_.SelectZeile(row);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      widths[i] = std::max(widths[i], DisplayWidth(Value(columns_[i])));
    }
  }
  return widths;
}

void TableView::PrintLine(std::vector<std::string> const& cells,
                          std::vector<std::size_t> const& widths) {
  std::string line;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    std::string const cell = CutToWidth(cells[i], widths[i]);
    std::string const blanks(widths[i] - DisplayWidth(cell), ' ');
    line += columns_[i].IsNumber() ? blanks + cell : cell + blanks;
    line.append(kGap, ' ');
  }
  line.erase(line.find_last_not_of(' ') + 1);
  console::Out(line + "\n");
}

void TableView::PrintAligned(long row_limit, int terminal_width) {
  if (columns_.empty()) return;
  std::vector<std::size_t> widths = Widths(row_limit);
  Fit(&widths, static_cast<std::size_t>(std::max(terminal_width, 1)));
  std::vector<std::string> cells;
  std::vector<std::string> rules;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    cells.push_back(columns_[i].label);
    rules.emplace_back(widths[i], '-');
  }
  PrintLine(cells, widths);
  PrintLine(rules, widths);
  for (long row = 0; row < row_limit && !console::OutFailed(); ++row) {
    table_.SelectZeile(row);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      cells[i] = Value(columns_[i]);
    }
    PrintLine(cells, widths);
  }
  if (row_limit < row_count_) {
    console::Out("(" + std::to_string(row_limit) + " of " +
                 Count(row_count_, "row") + ")\n");
  }
}

}  // namespace tabwerk::tool
