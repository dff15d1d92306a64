// The table for a terminal.
#include <algorithm>
#include <numeric>
#include <string>
#include <utility>

#include "cli/row_formats.h"
#include "cli/settings.h"
#include "cli/text.h"

namespace tabwerk::tool {
namespace {

constexpr std::size_t kGap = 2;  // between two columns
constexpr std::size_t kMeasuredRows = 1000;

// Takes columns of text away from the widest columns until all fit.
void Fit(std::vector<std::size_t>* widths, std::size_t terminal_width) {
  std::size_t const gaps = kGap * (widths->size() - 1);
  std::size_t const room = terminal_width - std::min(terminal_width, gaps);
  for (std::size_t excess =
           std::accumulate(widths->begin(), widths->end(), std::size_t{0});
       excess > room; --excess) {
    auto const widest = std::max_element(widths->begin(), widths->end());
    if (*widest <= kSmallestCut) return;
    --*widest;
  }
}

class FittedTable : public RowFormat {
 public:
  FittedTable(OutFile& file, std::optional<std::size_t> width, bool colors)
      : file_(file), terminal_width_(width), colors_(colors) {}

  void Begin(std::vector<ColumnHead> const& columns) override {
    for (ColumnHead const& column : columns) {
      labels_.push_back(Escape(column.name));
      widths_.push_back(DisplayWidth(labels_.back()));
      to_the_right_.push_back(column.type != CellType::kText);
    }
  }

  void Add(std::vector<Cell> const& cells) override {
    std::vector<std::string> row;
    row.reserve(cells.size());
    for (Cell const& cell : cells) row.push_back(Escape(CellText(cell)));
    if (measured_) return PrintRow(row);
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths_[i] = std::max(widths_[i], DisplayWidth(row[i]));
    }
    held_back_.push_back(std::move(row));
    if (held_back_.size() == kMeasuredRows) LetGo();
  }

  void End() override {
    if (!measured_) LetGo();
  }

 private:
  void LetGo() {
    measured_ = true;
    if (labels_.empty()) return;
    if (terminal_width_) Fit(&widths_, *terminal_width_);
    std::vector<std::string> rules;
    rules.reserve(widths_.size());
    for (std::size_t const width : widths_) rules.emplace_back(width, '-');
    file_.Write(Styled(Line(labels_), "1", colors_) + "\n");
    PrintRow(rules);
    for (auto const& row : held_back_) PrintRow(row);
    held_back_.clear();
  }

  void PrintRow(std::vector<std::string> const& cells) {
    file_.Write(Line(cells) + "\n");
  }

  std::string Line(std::vector<std::string> const& cells) const {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      std::string const cell =
          terminal_width_ ? CutToWidth(cells[i], widths_[i]) : cells[i];
      std::size_t const width = DisplayWidth(cell);
      std::string const blanks(widths_[i] - std::min(width, widths_[i]), ' ');
      line += to_the_right_[i] ? blanks + cell : cell + blanks;
      line.append(kGap, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
  }

  OutFile& file_;
  std::optional<std::size_t> terminal_width_;
  bool colors_;
  std::vector<std::string> labels_;
  std::vector<std::size_t> widths_;
  std::vector<bool> to_the_right_;
  std::vector<std::vector<std::string>> held_back_;
  bool measured_ = false;
};

}  // namespace

std::unique_ptr<RowFormat> MakeFittedTable(OutFile& file,
                                           std::optional<std::size_t> width,
                                           bool colors) {
  return std::make_unique<FittedTable>(file, width, colors);
}

}  // namespace tabwerk::tool
