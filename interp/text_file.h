// Text of 16-bit units, read line by line.
#ifndef TABWERK_INTERP_TEXT_FILE_H
#define TABWERK_INTERP_TEXT_FILE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string_view>

#include "interp/stream.h"

namespace tabwerk {

// A file of little-endian 16-bit units, read by bytes: the same on every
// system.  Owns its stream.
class TextFile {
 public:
  // Most units of one piece.
  static constexpr std::size_t kMaxPieceUnits = 4095;

  // Opens a file in a mode of the C library's fopen, always without
  // conversion of line ends.  Null when the file does not open or the mode is
  // none.  Throws std::bad_alloc.
  static std::shared_ptr<TextFile> Open(char const* path, char const* mode);

  explicit TextFile(StreamHandle stream);

  // Continues at that byte.  When this fails nothing more is read.
  void SeekTo(std::int64_t offset_bytes);
  // Reads up to and including the next line feed, at most kMaxPieceUnits
  // units: a longer line is read in pieces.  *text is what stands before the
  // first NUL of the piece; it is valid until the next call.  False when
  // nothing is left or reading failed.  An odd last byte is left out.
  [[nodiscard]] bool ReadPiece(std::u16string_view* text);
  // Bytes of the last piece, with what stands behind a NUL.
  std::size_t PieceBytes() const { return 2 * piece_units_; }
  // True when seeking or reading has failed since the last SeekTo.
  bool Failed() const { return failed_; }

 private:
  static constexpr std::size_t kChunkUnits = 32768;

  bool Refill();

  StreamHandle stream_;
  bool at_end_ = false;
  bool failed_ = false;
  std::size_t piece_units_ = 0;
  std::size_t begin_ = 0;  // unread units: units_[begin_] to units_[end_ - 1]
  std::size_t end_ = 0;
  std::array<unsigned char, 2 * kChunkUnits> bytes_;
  std::array<char16_t, kMaxPieceUnits + kChunkUnits> units_;
};

}  // namespace tabwerk

#endif  // TABWERK_INTERP_TEXT_FILE_H
