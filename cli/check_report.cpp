#include "cli/check_report.h"

#include <fmt/format.h>

#include "cli/settings.h"
#include "cli/text.h"

namespace tabwerk::tool {
namespace {

template <typename T>
Cell NumberCell(std::optional<T> const& number) {
  if (!number) return {};
  return std::int64_t{*number};
}

}  // namespace

std::string CheckPlace::Text() const {
  std::string text;
  auto const add = [&text](std::string const& part) {
    text += (text.empty() ? "" : ", ") + part;
  };
  if (!table.empty()) add("table " + Escape(table));
  if (row) {
    add(fmt::format("row {}", *row));
    if (id) text += fmt::format(" (ID {})", *id);
  }
  if (!column.empty()) add("column " + Escape(column));
  return text;
}

CheckReport::CheckReport(OutputOptions const& options, long long most)
    : options_(options), most_(most), messages_(options), rows_(options) {}

std::optional<Problem> CheckReport::Begin() {
  if (AsMessages()) return messages_.Begin();
  return rows_.Begin({{"severity"},
                      {"code"},
                      {"file"},
                      {"byte", CellType::kInteger},
                      {"table"},
                      {"row", CellType::kInteger},
                      {"id", CellType::kInteger},
                      {"column"},
                      {"message"},
                      {"advice"}});
}

void CheckReport::HandOut(Severity severity, Code code, CheckPlace const& place,
                          std::string const& what, std::string const& advice) {
  if (AsMessages()) {
    Place where(place.file);
    where.byte = place.byte;
    std::string const text = place.Text();
    messages_.Add(severity, {code, where,
                             text.empty() ? what : text + ": " + what, advice});
    return;
  }
  if (CurrentSettings().quiet && severity != Severity::kError) return;
  rows_.Add({SeverityText(severity), code.Text(), TextCell(place.file),
             NumberCell(place.byte), TextCell(place.table),
             NumberCell(place.row), NumberCell(place.id),
             TextCell(place.column), what, TextCell(advice)});
}

void CheckReport::Add(Severity severity, Code code, CheckPlace const& place,
                      std::string const& what, std::string const& advice) {
  found_ = found_ || severity != Severity::kNote;
  Group& group = groups_[{code.number, place.file, place.table}];
  if (++group.count > most_ && most_ > 0) return;
  group.severity = severity;
  group.place.file = place.file;
  group.place.table = place.table;
  HandOut(severity, code, place, what, advice);
}

void CheckReport::AddDamage(Code code, CheckPlace const& place,
                            std::string const& what,
                            std::string const& advice) {
  damaged_ = true;
  Add(Severity::kError, code, place, what, advice);
}

void CheckReport::Flush() {
  for (auto const& [key, group] : groups_) {
    if (most_ == 0 || group.count <= most_) continue;
    HandOut(group.severity, {std::get<0>(key)}, group.place,
            fmt::format("{} more of this kind", group.count - most_),
            "--most 0 shows all");
  }
  groups_.clear();
}

ExitCode CheckReport::EndRows() {
  if (auto const problem = rows_.End()) return Report(*problem);
  return found_ ? ExitCode::kFindings : ExitCode::kDone;
}

ExitCode CheckReport::End() {
  ExitCode const code = AsMessages() ? messages_.End() : EndRows();
  return code == ExitCode::kFindings && damaged_ ? ExitCode::kDamaged : code;
}

}  // namespace tabwerk::tool
