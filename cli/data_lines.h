// A file of table data as the library reads it: 16-bit units, line by line.
#ifndef TABWERK_CLI_DATA_LINES_H
#define TABWERK_CLI_DATA_LINES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "DBInterpreter.h"
#include "cli/errors.h"

namespace tabwerk::tool {

// The byte order mark in front of the lines.
inline constexpr std::size_t kMarkBytes = 2;

// A value of a line; the offset is in units.
struct SplitValue {
  std::size_t offset;
  std::u16string_view text;
};

// The values of a line without a NUL, as the library's tokenizer hands them
// out.
std::vector<SplitValue> SplitLine(DBInterpreter& tokenizer,
                                  std::u16string_view line, char16_t separator);

// The place of so many units at that offset of a line.
Place PlaceInLine(std::string const& path, std::size_t number,
                  std::u16string_view line, std::size_t offset,
                  std::size_t length);

// A part of a line, to be found again; offsets and lengths in units.
struct LinePlace {
  std::size_t number;  // of the line, from 1
  std::size_t begin;   // of the line in the file
  std::size_t offset;  // in the line
  std::size_t length;
};

// The lines of a file behind its two-byte mark.
class DataLines {
 public:
  // Most units of a line, line feed included; a longer one comes in pieces.
  static constexpr std::size_t kMaxLineUnits = 4095;

  // path is for places; bytes are the whole file.
  DataLines(std::string path, std::string_view bytes);

  // Goes to the next line or piece of one; false behind the last.
  bool Next();
  // Without line end, up to its first NUL.
  std::u16string_view Piece() const { return piece_; }
  // The whole line that it is in, line feed left out.
  std::u16string_view Line() const { return line_; }
  bool IsLaterPiece() const { return piece_begin_ > line_begin_; }
  // The line does not fit into one piece.
  bool IsTooLong() const {
    return line_.size() + has_line_feed_ > kMaxLineUnits;
  }

  // The place of so many units at that offset of the piece.
  Place At(std::size_t offset, std::size_t length = 1) const {
    return At(Remember(offset, length));
  }
  // The same for later.
  LinePlace Remember(std::size_t offset, std::size_t length) const {
    return {number_, line_begin_, piece_begin_ - line_begin_ + offset, length};
  }
  Place At(LinePlace const& place) const;

 private:
  std::u16string_view LineAt(std::size_t begin) const;

  std::string path_;
  std::u16string units_;
  std::u16string_view line_;
  std::u16string_view piece_;
  std::size_t number_ = 0;
  std::size_t line_begin_ = 0;
  std::size_t piece_begin_ = 0;
  std::size_t at_ = 0;
  bool has_line_feed_ = true;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_DATA_LINES_H
