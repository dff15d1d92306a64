#include "cli/lint.h"

#include <optional>
#include <system_error>

#include "cli/files.h"
#include "cli/script_files.h"
#include "cli/script_lines.h"

namespace tabwerk::tool {
namespace {

class Linter {
 public:
  Linter(ScriptScan const& scan, TakeFinding const& take)
      : scan_(scan), take_(take) {}

  void Run() {
    for (ScriptData const& data : scan_.data) {
      if (table_ != data.table) EndTable();
      TakeFindings(data.findings_before);
      Read(data);
    }
    EndTable();
    TakeFindings(scan_.findings.size());
  }

 private:
  void TakeFindings(std::size_t end) {
    for (; taken_ < end; ++taken_) {
      take_(scan_.findings[taken_].severity, scan_.findings[taken_].problem);
    }
  }

  void EndTable() {
    if (lint_) lint_->End();
    lint_.reset();
    table_.reset();
  }

  void Read(ScriptData const& data) {
    ScriptTable const& table = scan_.tables[data.table];
    std::error_code error;
    // What stands in it means nothing without sound columns.
    if (!table.is_sound ||
        !std::filesystem::is_regular_file(DataPath(data.path), error)) {
      return;
    }
    if (!table_) {
      table_ = data.table;
      lint_.emplace(table, take_);
    }
    std::string const path = ScriptToUtf8(data.path);
    std::string content;
    if (!ReadWhole(DataPath(data.path), &content)) {
      take_(Severity::kError, {TW(116), path, "the data file cannot be read",
                               "check its permissions and the disk"});
      return;
    }
    lint_->Read(path, content);
  }

  ScriptScan const& scan_;
  TakeFinding const& take_;
  std::size_t taken_ = 0;
  std::optional<std::size_t> table_;
  std::optional<DataLint> lint_;  // of that table
};

}  // namespace

void Lint(ScriptScan const& scan, TakeFinding const& take) {
  Linter(scan, take).Run();
}

}  // namespace tabwerk::tool
