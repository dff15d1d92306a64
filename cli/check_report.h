// What a check has found, for a file, a table, a row.
#ifndef TABWERK_CLI_CHECK_REPORT_H
#define TABWERK_CLI_CHECK_REPORT_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "cli/errors.h"
#include "cli/findings.h"
#include "cli/table_out.h"

namespace tabwerk::tool {

// What to do, where several rules advise the same.
inline constexpr char kRestore[] = "restore the file from a backup";
inline constexpr char kSaveAnew[] =
    "save it anew with the program that uses it";

// Where a finding is.  What is not known is left out.
struct CheckPlace {
  std::string file;
  std::optional<std::int64_t> byte;  // from 0
  std::string table;
  std::optional<std::int64_t> row;  // over all files of the database, from 0
  std::optional<std::int32_t> id;
  std::string column;

  // "table ARTICLE, row 3 (ID 17), column NAME"; empty for a file as a whole.
  std::string Text() const;
};

// Hands findings out as they come: as messages, or as rows in a format of
// table_out.h with the columns severity, code, file, byte, table, row, id,
// column, message and advice.  Of those of one number in one table of one file
// only the first ones are handed out; the others are counted in one more.
class CheckReport {
 public:
  // The options must outlive it.  most: of one number in one table; 0: all.
  CheckReport(OutputOptions const& options, long long most);

  std::optional<Problem> Begin();
  void Add(Severity severity, Code code, CheckPlace const& place,
           std::string const& what, std::string const& advice = "");
  // The same for an error that keeps a table from being loaded.
  void AddDamage(Code code, CheckPlace const& place, std::string const& what,
                 std::string const& advice = "");
  // Hands out what was only counted so far; ends the findings of a table.
  void Flush();
  // Ends the output; kDamaged behind AddDamage, kFindings behind other errors
  // and warnings, else kDone.  A failure of the output is reported.
  ExitCode End();

 private:
  struct Group {
    Severity severity = Severity::kNote;
    CheckPlace place;
    long long count = 0;
  };

  bool AsMessages() const { return options_.format == "auto"; }
  void HandOut(Severity severity, Code code, CheckPlace const& place,
               std::string const& what, std::string const& advice);
  ExitCode EndRows();

  OutputOptions const& options_;
  long long most_;
  FindingsOut messages_;
  TableOut rows_;
  bool found_ = false;  // an error or a warning
  bool damaged_ = false;
  // By number, file and table.
  std::map<std::tuple<int, std::string, std::string>, Group> groups_;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_CHECK_REPORT_H
