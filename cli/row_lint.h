// What is wrong with the rows of one file of table data.
#ifndef TABWERK_CLI_ROW_LINT_H
#define TABWERK_CLI_ROW_LINT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "DBInterpreter.h"
#include "cli/data_lines.h"
#include "cli/data_lint.h"

namespace tabwerk::tool {

// Walks through the lines.  Borrows all that it is given.
class RowLint {
 public:
  // rows is the number of the table's rows so far.
  RowLint(ScriptTable const& table, DataLines& lines, TakeFinding const& take,
          RowNumbers* numbers, std::size_t file, long long* rows);

  void Run();

 private:
  void Warn(Code code, Place where, std::string what, std::string advice) const;
  // False where the library leaves out the rest of the file.
  bool CheckPiece();
  bool CheckRow(std::vector<SplitValue> const& values);
  bool CheckFirst(SplitValue const& first);
  bool CheckValue(DBFeld const& field, SplitValue const& value);
  void CheckCount(std::vector<SplitValue> const& values) const;
  void CheckInteger(DBFeld const& field, SplitValue const& value);
  void CheckReal(SplitValue const& value) const;
  void ReportNumber(SplitValue const& value, bool is_integer, bool is_too_large,
                    std::string const& read) const;
  RowPlace RowPlaceOf(SplitValue const& value) const;
  void AddId(std::int32_t id, SplitValue const& value);
  void AddFolge(std::int32_t folge, SplitValue const& value);
  void ReportTwice(Code code, SplitValue const& value, RowPlace const& before,
                   std::string const& what) const;
  void CheckText(SplitValue const& value);
  void CheckQuotes(SplitValue const& value);
  void CheckSections(SplitValue const& value);
  bool LeaveOutRest(SplitValue const& value, std::string const& why) const;

  void CheckCharacters() const;
  void CheckHalfCharacters() const;
  void CheckLongLine();

  ScriptTable const& table_;
  DataLines& lines_;
  TakeFinding const& take_;
  RowNumbers* numbers_;
  std::size_t file_;
  long long* rows_;
  DBInterpreter tokenizer_;
  std::vector<DBFeld const*> fields_;
  DBFeld const* id_ = nullptr;  // integer columns of that name
  DBFeld const* folge_ = nullptr;
  bool is_open_ = false;  // a quote or section swallows the rest of the line
  bool goes_on_ = false;  // the line goes on with the row before it
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_ROW_LINT_H
