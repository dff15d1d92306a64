#include "cli/table_out.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "cli/console.h"
#include "cli/near_names.h"
#include "cli/options.h"
#include "cli/row_formats.h"
#include "cli/settings.h"
#include "cli/text.h"

namespace tabwerk::tool {
namespace {

constexpr char kOutputGroup[] = "Output";

}  // namespace

void AddFormatOptions(Options& options, OutputOptions* output) {
  options
      .Add("--format", output->format,
           "table, csv, tsv, json, ndjson, md or list; auto: table on a "
           "terminal, else tsv")
      .OneOf({"auto", "table", "csv", "tsv", "json", "ndjson", "md", "list"})
      .Value("FORMAT")
      .Group(kOutputGroup);
  options
      .Add("-o,--output", output->file,
           "Write to this file, which appears when it is complete; - is "
           "standard output")
      .Value("FILE")
      .Group(kOutputGroup);
}

void AddOutputOptions(Options& options, OutputOptions* output) {
  AddFormatOptions(options, output);
  options.Add("--limit", output->limit, "No more than so many rows")
      .NotNegative()
      .Value("N")
      .Group(kOutputGroup);
  options
      .Add("--columns", output->columns,
           "These columns only, in this order: ID,NAME")
      .List()
      .Value("NAMES")
      .Group(kOutputGroup);
}

Cell TextCell(std::string const& text) {
  if (text.empty()) return {};
  return text;
}

std::string CellText(Cell const& cell) {
  struct Visitor {
    std::string operator()(std::monostate) const { return ""; }
    std::string operator()(std::int64_t value) const {
      return fmt::format("{}", value);
    }
    std::string operator()(double value) const {
      return fmt::format("{}", value);
    }
    std::string operator()(std::string const& value) const { return value; }
  };
  return std::visit(Visitor(), cell);
}

TableOut::TableOut(OutputOptions const& options)
    : options_(options), file_(options.file) {}

TableOut::~TableOut() = default;

std::unique_ptr<RowFormat> TableOut::MakeFormat() {
  std::string format = options_.format;
  if (format == "auto") format = file_.IsTerminal() ? "table" : "tsv";
  if (format == "csv") return MakeCsv(file_);
  if (format == "tsv") return MakeTsv(file_);
  if (format == "json") return MakeJson(file_, true);
  if (format == "ndjson") return MakeJson(file_, false);
  if (format == "md") return MakeMarkdown(file_);
  std::optional<std::size_t> width;
  if (file_.IsTerminal()) {
    width = static_cast<std::size_t>(std::max(console::OutWidth(), 1));
  }
  if (format == "list") return MakeList(file_, width);
  return MakeFittedTable(file_, width, file_.IsStandardOutput() && ColorsOut());
}

std::optional<Problem> TableOut::Begin(std::vector<ColumnHead> columns) {
  shown_.assign(columns.size(), options_.columns.empty());
  order_.clear();
  std::vector<ColumnHead> heads;
  for (std::string const& name : options_.columns) {
    auto const column =
        std::find_if(columns.begin(), columns.end(),
                     [&](ColumnHead const& it) { return it.name == name; });
    if (column == columns.end()) {
      std::vector<std::string> names;
      names.reserve(columns.size());
      for (ColumnHead const& it : columns) names.push_back(it.name);
      return NoSuchColumn({}, name, names);
    }
    order_.push_back(static_cast<std::size_t>(column - columns.begin()));
    shown_[order_.back()] = true;
    heads.push_back(*column);
  }
  if (auto problem = file_.Open()) return problem;
  format_ = MakeFormat();
  format_->Begin(options_.columns.empty() ? columns : heads);
  return std::nullopt;
}

bool TableOut::WantsMore() const {
  return !file_.Failed() && (!options_.limit || row_count_ < *options_.limit);
}

bool TableOut::Wants(std::size_t column) const { return shown_[column]; }

void TableOut::Add(std::vector<Cell> cells) {
  if (!WantsMore()) return;
  ++row_count_;
  if (options_.columns.empty()) return format_->Add(cells);
  std::vector<Cell> shown;
  shown.reserve(order_.size());
  for (std::size_t const column : order_) shown.push_back(cells[column]);
  format_->Add(shown);
}

std::optional<Problem> TableOut::End(std::optional<long long> total) {
  format_->End();
  if (total && row_count_ < *total && file_.IsTerminal() &&
      !CurrentSettings().quiet && !file_.Failed()) {
    console::Out(fmt::format("({} of {})\n", row_count_, Count(*total, "row")));
  }
  return file_.Close();
}

}  // namespace tabwerk::tool
