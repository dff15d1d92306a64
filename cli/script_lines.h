// A script as the library reads it: bytes, lines, words.
#ifndef TABWERK_CLI_SCRIPT_LINES_H
#define TABWERK_CLI_SCRIPT_LINES_H

#include <cstddef>
#include <string>
#include <string_view>

#include "cli/errors.h"

namespace tabwerk::tool {

inline constexpr std::string_view kEndOfDefinition = "ENDDEF";
// The table that keeps the version of the data.
inline constexpr std::string_view kVersionTable = "VERSION";

// The lines with their numbers.  Views into them live as long as this object.
class ScriptLines {
 public:
  // Most bytes of a line, line feed included; a longer one comes in pieces.
  static constexpr std::size_t kMaxLineBytes = 4095;

  // script is the path of the script, for places; content its bytes.
  ScriptLines(std::string script, std::string_view content);
  ScriptLines(ScriptLines const&) = delete;
  ScriptLines& operator=(ScriptLines const&) = delete;

  // The next line or piece of one, up to its first NUL, with its line feed.
  std::string_view Next();
  std::string_view Current() const { return current_; }
  // True behind the end of the text: also when the last line does not end in a
  // line feed.
  bool AtEnd() const { return at_end_; }
  // The current line is a further piece of a line that is too long.
  bool IsLaterPiece() const { return is_later_piece_; }
  // Something stands behind a NUL in the current line.
  bool IsCut() const { return is_cut_; }

  // The text without what the library leaves out: carriage returns before line
  // feeds, and all behind a Ctrl-Z.
  std::string const& Text() const { return text_; }
  // Offset in it behind a part of it.
  std::size_t EndOf(std::string_view part) const;
  // Something but white space stands behind a Ctrl-Z.
  bool HasHiddenRest() const { return has_hidden_rest_; }

  // The place of a word of the current line; of the end of the line without
  // one.
  Place At(std::string_view word = {}) const;
  // The place of the end of the text.
  Place AtTextEnd() const;

 private:
  Place PlaceOf(std::size_t number, std::size_t begin, std::size_t end,
                std::size_t line_begin) const;

  std::string script_;
  std::string text_;
  std::string_view current_;
  std::size_t at_ = 0;
  std::size_t number_ = 0;
  std::size_t line_begin_ = 0;  // of the whole line, offset in text_
  bool begins_line_ = true;
  bool is_later_piece_ = false;
  bool is_cut_ = false;
  bool at_end_ = false;
  bool has_hidden_rest_ = false;
};

// Takes the next word off a line, as strtok does; empty when there is none.
std::string_view NextWord(std::string_view* line, std::string_view separators);

// Bytes of a script as UTF-8: most scripts are that to those who write them;
// else they are taken for Latin-1, as the library does.
std::string ScriptToUtf8(std::string_view bytes);

bool IsUtf8(std::string_view bytes);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_SCRIPT_LINES_H
