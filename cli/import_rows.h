// The lines of a text file that is to be imported, and which of them a table
// can take.
#ifndef TABWERK_CLI_IMPORT_ROWS_H
#define TABWERK_CLI_IMPORT_ROWS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DBDefinition.h"
#include "DBInterpreter.h"
#include "cli/codes.h"
#include "cli/data_lines.h"

namespace tabwerk::tool {

// One line; the text is borrowed from the RowText.
struct RowLine {
  std::size_t number;        // from 1
  std::u16string_view text;  // without its end
  std::u16string_view whole;
};

// A text of 16-bit units, little-endian, with or without a byte-order mark.
class RowText {
 public:
  // bytes are those of a file.
  explicit RowText(std::string const& bytes);

  // False when this can be no such text (an odd number of bytes, or neither
  // mark, line feed nor separator in it).
  bool IsPlausible(char16_t separator) const;
  bool HasMark() const { return has_mark_; }
  std::vector<RowLine> Lines() const;

 private:
  std::u16string units_;  // without the mark
  bool has_mark_ = false;
  bool is_odd_ = false;
};

// The bytes of a text, behind a byte-order mark where one is wanted.
std::string EncodeUnits(std::u16string_view units, bool with_mark);

struct RowObjection {
  Code code;
  std::string what;
  // What is meant in the line, in units; without it the line as a whole.
  std::optional<std::size_t> offset = std::nullopt;
  std::size_t length = 1;
};

// Judges lines by what the library's import makes of them: a line is taken
// only when every value of it gets into its column as it stands.
class RowJudge {
 public:
  // Borrows the definition.
  RowJudge(DBDefinition const& definition, char16_t separator);

  // Why the line is not taken; nothing when it is.
  std::optional<RowObjection> Objection(std::u16string_view line);

 private:
  static std::optional<RowObjection> ValueObjection(DBFeld const& field,
                                                    SplitValue const& given);

  DBDefinition const& definition_;
  char16_t separator_;
  std::size_t column_count_ = 0;
  DBInterpreter tokenizer_;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_IMPORT_ROWS_H
