#include "interp/script_reader.h"

#include <algorithm>
#include <utility>

namespace tabwerk {
namespace {

constexpr char kEndOfText = '\x1A';  // Ctrl-Z

}  // namespace

std::unique_ptr<ScriptReader> ScriptReader::Open(char const* path) {
  StreamHandle stream(platform::OpenPlain(path, "rb"));
  if (stream == nullptr) return nullptr;
  return std::make_unique<ScriptReader>(std::move(stream));
}

ScriptReader::ScriptReader(StreamHandle stream) : stream_(std::move(stream)) {}

std::string_view ScriptReader::ReadLine() {
  std::size_t length = 0;
  while (length < line_.size()) {
    int const character = NextCharacter();
    if (character == kNone) break;
    line_[length++] = static_cast<char>(character);
    if (character == '\n') break;
  }
  // A line that ends in a read error has not been read.
  if (failed_) {
    at_end_ = true;
    length = 0;
  }
  std::string_view const line(line_.data(), length);
  return line.substr(0, line.find('\0'));
}

// The next byte without using it up; kNone at the end.
int ScriptReader::PeekByte() {
  if (begin_ == end_ && !last_chunk_) {
    begin_ = 0;
    end_ = platform::Read(stream_.get(), bytes_.data(), bytes_.size());
    last_chunk_ = end_ < bytes_.size();
  }
  if (begin_ < end_) return static_cast<unsigned char>(bytes_[begin_]);
  failed_ = platform::Failed(stream_.get());
  return kNone;
}

// The next character of the text, with CR LF as one; kNone at the end.
int ScriptReader::NextCharacter() {
  if (at_end_) return kNone;
  int const character = PeekByte();
  if (character == kNone || character == kEndOfText) {
    at_end_ = true;
    return kNone;
  }
  ++begin_;
  if (character == '\r' && PeekByte() == '\n') {
    ++begin_;
    return '\n';
  }
  return character;
}

std::string_view Words::Next(std::string_view separators) {
  rest_.remove_prefix(
      std::min(rest_.find_first_not_of(separators), rest_.size()));
  std::size_t const length =
      std::min(rest_.find_first_of(separators), rest_.size());
  std::string_view const word = rest_.substr(0, length);
  rest_.remove_prefix(std::min(length + 1, rest_.size()));
  return word;
}

}  // namespace tabwerk
