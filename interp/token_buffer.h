// The line that an interpreter splits, and the splitting itself.
#ifndef TABWERK_INTERP_TOKEN_BUFFER_H
#define TABWERK_INTERP_TOKEN_BUFFER_H

#include <array>
#include <cstddef>
#include <string_view>

namespace tabwerk {

// A copy of one line, split in place: every token is ended by a NUL that takes
// the place of its separator.  Behind the line there are only NULs, so a cursor
// into the buffer may be used whatever line is in it.
class TokenBuffer {
 public:
  static constexpr std::size_t kMaxLineLength = 16384;

  // Replaces the line, which may itself lie in this buffer.  Longer lines are
  // cut at kMaxLineLength.
  void SetLine(std::wstring_view line);
  // The same for 16-bit units; each becomes one character.
  void SetLine(std::u16string_view line);
  void Clear() { SetLine(std::wstring_view()); }

  // Where the first token is looked for.
  wchar_t* Start() { return text_.data(); }
  // The next position behind a cursor into this buffer; the last one stays.
  wchar_t* Behind(wchar_t* cursor);
  // The token that begins at *cursor behind blanks and tabs, or null when there
  // is none.  It ends before the first separator that is neither quoted nor
  // inside "#TS(" ... ")TS~", at the latest at the end of the line.  Moves
  // *cursor to the NUL that ends the token.
  static wchar_t* NextToken(wchar_t** cursor, wchar_t separator);

 private:
  void SetLength(std::size_t length);

  // One NUL behind the longest line, and one more for a cursor behind that.
  std::array<wchar_t, kMaxLineLength + 2> text_{};
  std::size_t length_ = 0;
};

}  // namespace tabwerk

#endif  // TABWERK_INTERP_TOKEN_BUFFER_H
