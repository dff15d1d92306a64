// Rows as lines of table data, the text that a script fills a table with.
#ifndef TABWERK_CLI_TABLE_DATA_TEXT_H
#define TABWERK_CLI_TABLE_DATA_TEXT_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DBInterpreter.h"
#include "cli/codes.h"

namespace tabwerk::tool {

// A value of a row.
struct DataValue {
  bool is_text = false;
  std::u16string text;  // of a number, its digits
};

// Why a row cannot stand in table data.
struct DataObjection {
  Code code;
  std::size_t column = 0;  // from 0; that of a whole line is behind the last
  std::string what;
  std::string advice;
};

// Units of a line that the reader takes as one, without its line feed.
inline constexpr std::size_t kMaxDataLineUnits = 4095;

// Makes lines of table data.
class DataLineWriter {
 public:
  // The line of a row, without a line feed; nothing, and the reason, when the
  // reader would make another row of every line.
  std::optional<std::u16string> Line(std::vector<DataValue> const& values,
                                     DataObjection* objection);

 private:
  std::optional<std::u16string> Quoted(std::u16string_view text, bool is_last);
  bool ReadsBack(std::u16string_view token, bool is_last);

  DBInterpreter tokenizer_;
};

// The shortest number that reads back as the same one; nothing for a
// not-a-number that no text stands for.
std::optional<std::u16string> RealText(double value);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TABLE_DATA_TEXT_H
