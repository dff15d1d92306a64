// What a command finds that looks for mistakes.
//
//   FindingsOut out(options);                  // AddFindingsOptions
//   if (auto problem = out.Begin()) return Report(*problem);
//   out.Add(Severity::kWarning, {TW(124), place, "…", "…"});
//   return out.End();
#ifndef TABWERK_CLI_FINDINGS_H
#define TABWERK_CLI_FINDINGS_H

#include <optional>
#include <string>

#include "cli/errors.h"
#include "cli/table_out.h"

namespace tabwerk::tool {

// Adds --format, --limit, --columns and -o for findings.
void AddFindingsOptions(Options& options, OutputOptions* output);

// A finding as an object of JSON with the members severity, code, file, line,
// column, byte, message, advice and source, null for what it lacks.
std::string FindingRecord(Problem const& problem, Severity severity);

// Hands findings out as they come: as messages with their places, or as rows
// in a format of table_out.h with the columns of FindingRecord.
class FindingsOut {
 public:
  // The options must outlive it.
  explicit FindingsOut(OutputOptions const& options);

  std::optional<Problem> Begin();
  // With -q only errors are handed out; all are counted.
  void Add(Severity severity, Problem const& problem);
  // Ends the output; for messages a line that counts them.  kFindings when
  // there were errors or warnings, else kDone; a failure of the output is
  // reported.
  ExitCode End();

 private:
  bool AsMessages() const { return options_.format == "auto"; }

  OutputOptions const& options_;
  OutFile messages_;
  TableOut rows_;
  long long shown_count_ = 0;
  long long error_count_ = 0;
  long long warning_count_ = 0;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_FINDINGS_H
