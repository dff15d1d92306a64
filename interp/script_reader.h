// Scripts as lines of bytes, and lines as words.
#ifndef TABWERK_INTERP_SCRIPT_READER_H
#define TABWERK_INTERP_SCRIPT_READER_H

#include <array>
#include <cstddef>
#include <memory>
#include <string_view>

#include "interp/stream.h"

namespace tabwerk {

// An 8-bit text file, read as text is on Windows: CR LF is a line feed, and
// Ctrl-Z ends the text.
class ScriptReader {
 public:
  // Most bytes of one line, line feed included; a longer one is read in pieces.
  static constexpr std::size_t kMaxLineBytes = 4095;

  // Null when the file does not open.  Throws std::bad_alloc.
  static std::unique_ptr<ScriptReader> Open(char const* path);

  explicit ScriptReader(StreamHandle stream);

  // The next line, up to its first NUL; valid until the next call.  Empty when
  // nothing is left or reading failed; AtEnd() is then true.
  std::string_view ReadLine();
  // True once a call has met the end of the text: also after the last line when
  // that does not end in a line feed.
  bool AtEnd() const { return at_end_; }
  // True when the text ended because reading failed.
  bool Failed() const { return failed_; }

 private:
  static constexpr int kNone = -1;

  int PeekByte();
  int NextCharacter();

  StreamHandle stream_;
  bool at_end_ = false;
  bool failed_ = false;
  bool last_chunk_ = false;
  std::size_t begin_ = 0;  // unread: bytes_[begin_] to bytes_[end_ - 1]
  std::size_t end_ = 0;
  std::array<char, 16384> bytes_;
  std::array<char, kMaxLineBytes> line_;
};

// Takes a line apart as strtok does; every word may have separators of its own.
// Borrows the line.
class Words {
 public:
  explicit Words(std::string_view line) : rest_(line) {}

  // The next word, without the separators before it; the one behind it is used
  // up.  Empty when there is none.
  std::string_view Next(std::string_view separators);

 private:
  std::string_view rest_;
};

}  // namespace tabwerk

#endif  // TABWERK_INTERP_SCRIPT_READER_H
