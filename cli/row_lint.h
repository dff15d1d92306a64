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

// A value of a line; offsets and lengths in units of its piece.
struct DataValue {
  std::size_t offset;
  std::u16string_view text;
};

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
  bool CheckRow(std::vector<DataValue> const& values);
  bool CheckFirst(DataValue const& first);
  bool CheckValue(DBFeld const& field, DataValue const& value);
  void CheckCount(std::vector<DataValue> const& values) const;
  void CheckInteger(DBFeld const& field, DataValue const& value);
  void CheckReal(DataValue const& value) const;
  void ReportNumber(DataValue const& value, bool is_integer, bool is_too_large,
                    std::string const& read) const;
  RowPlace RowPlaceOf(DataValue const& value) const;
  void AddId(std::int32_t id, DataValue const& value);
  void AddFolge(std::int32_t folge, DataValue const& value);
  void ReportTwice(Code code, DataValue const& value, RowPlace const& before,
                   std::string const& what) const;
  void CheckText(DataValue const& value);
  void CheckQuotes(DataValue const& value);
  void CheckSections(DataValue const& value);
  bool LeaveOutRest(DataValue const& value, std::string const& why) const;

  void CheckCharacters() const;
  void CheckHalfCharacters() const;
  void CheckLongLine();
  // The values of a line, as the library's tokenizer hands them out.
  std::vector<DataValue> Split(std::u16string_view line);

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
