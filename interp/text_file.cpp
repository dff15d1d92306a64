#include "interp/text_file.h"

#include <algorithm>
#include <string>
#include <utility>

namespace tabwerk {
namespace {

// The mode without what would convert the text: "rt" becomes "rb".  Empty when
// it is none.
std::string BinaryMode(std::string_view mode) {
  if (mode.empty() || std::string_view("rwa").find(mode[0]) == mode.npos) {
    return "";
  }
  std::string binary(1, mode[0]);
  mode = mode.substr(0, mode.find(','));  // Windows: ",ccs=ENCODING"
  if (mode.find('+') != mode.npos) binary += '+';
  if (mode.find('x') != mode.npos) binary += 'x';
  return binary + 'b';
}

}  // namespace

std::shared_ptr<TextFile> TextFile::Open(char const* path, char const* mode) {
  if (path == nullptr || mode == nullptr) return nullptr;
  std::string const binary_mode = BinaryMode(mode);
  if (binary_mode.empty()) return nullptr;
  StreamHandle stream(platform::OpenPlain(path, binary_mode.c_str()));
  if (stream == nullptr) return nullptr;
  return std::make_shared<TextFile>(std::move(stream));
}

TextFile::TextFile(StreamHandle stream) : stream_(std::move(stream)) {}

void TextFile::SeekTo(std::int64_t offset_bytes) {
  begin_ = 0;
  end_ = 0;
  failed_ =
      !platform::Seek(stream_.get(), offset_bytes, platform::Origin::kStart);
  at_end_ = failed_;
}

bool TextFile::ReadPiece(std::u16string_view* text) {
  std::size_t searched = 0;
  for (;;) {
    std::size_t const length = std::min(end_ - begin_, kMaxPieceUnits);
    std::u16string_view piece(units_.data() + begin_, length);
    std::size_t const line_feed = piece.find(u'\n', searched);
    if (line_feed != piece.npos) piece = piece.substr(0, line_feed + 1);
    bool const complete =
        line_feed != piece.npos || length == kMaxPieceUnits || at_end_;
    if (complete) {
      // A line that ends in a read error has not been read.
      if (piece.empty() || (failed_ && line_feed == piece.npos)) return false;
      begin_ += piece.size();
      piece_units_ = piece.size();
      *text = piece.substr(0, piece.find(u'\0'));
      return true;
    }
    searched = length;
    at_end_ = !Refill();
  }
}

// Reads one more chunk behind the unread units, which are fewer than one piece.
// False at the end of the file and on an error.
bool TextFile::Refill() {
  std::copy(units_.data() + begin_, units_.data() + end_, units_.data());
  end_ -= begin_;
  begin_ = 0;
  std::size_t const size_bytes =
      platform::Read(stream_.get(), bytes_.data(), bytes_.size());
  for (std::size_t i = 0; i + 1 < size_bytes; i += 2) {
    units_[end_++] = static_cast<char16_t>(
        bytes_[i] | static_cast<unsigned>(bytes_[i + 1]) << 8);
  }
  if (size_bytes == bytes_.size()) return true;
  failed_ = platform::Failed(stream_.get());
  return false;
}

}  // namespace tabwerk
