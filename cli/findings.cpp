#include "cli/findings.h"

#include <fmt/format.h>

#include <cstdint>

#include "cli/options.h"
#include "cli/row_formats.h"
#include "cli/settings.h"
#include "cli/text.h"

namespace tabwerk::tool {
namespace {

// A number from 1; missing where there is none.
Cell PlaceCell(std::size_t number) {
  if (number == 0) return {};
  return static_cast<std::int64_t>(number);
}

std::vector<ColumnHead> Columns() {
  return {{"severity"},
          {"code"},
          {"file"},
          {"line", CellType::kInteger},
          {"column", CellType::kInteger},
          {"byte", CellType::kInteger},
          {"message"},
          {"advice"},
          {"source"}};
}

std::vector<Cell> CellsOf(Problem const& problem, Severity severity) {
  Place const& where = problem.where;
  Cell byte;
  if (where.byte) byte = *where.byte;
  return {
      SeverityText(severity), problem.code.Text(),      TextCell(where.file),
      PlaceCell(where.line),  PlaceCell(where.column),  byte,
      problem.what,           TextCell(problem.advice), TextCell(where.source)};
}

}  // namespace

void AddFindingsOptions(Options& options, OutputOptions* output) {
  AddOutputOptions(options, output);
  options.Find("--format")
      .Describe(
          "table, csv, tsv, json, ndjson, md or list, a row for each finding; "
          "auto: messages");
}

std::string FindingRecord(Problem const& problem, Severity severity) {
  return JsonObject(Columns(), CellsOf(problem, severity));
}

FindingsOut::FindingsOut(OutputOptions const& options)
    : options_(options), messages_(options.file), rows_(options) {}

std::optional<Problem> FindingsOut::Begin() {
  if (AsMessages()) return messages_.Open();
  return rows_.Begin(Columns());
}

void FindingsOut::Add(Severity severity, Problem const& problem) {
  if (severity == Severity::kError) ++error_count_;
  if (severity == Severity::kWarning) ++warning_count_;
  if (CurrentSettings().quiet && severity != Severity::kError) return;
  if (!AsMessages()) {
    rows_.Add(CellsOf(problem, severity));
    return;
  }
  if (options_.limit && shown_count_ >= *options_.limit) return;
  ++shown_count_;
  messages_.Write(
      Describe(problem, severity, messages_.IsStandardOutput() && ColorsOut()));
}

ExitCode FindingsOut::End() {
  bool const found = error_count_ + warning_count_ > 0;
  std::optional<Problem> problem;
  if (AsMessages()) {
    if (found && !CurrentSettings().quiet) {
      messages_.Write(fmt::format("{}, {}\n", Count(error_count_, "error"),
                                  Count(warning_count_, "warning")));
    }
    problem = messages_.Close();
  } else {
    problem = rows_.End();
  }
  if (problem) return Report(*problem);
  return found ? ExitCode::kFindings : ExitCode::kDone;
}

}  // namespace tabwerk::tool
