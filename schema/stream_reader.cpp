#include "schema/stream_reader.h"

#include <algorithm>
#include <cstring>

#include "platform/platform.h"

namespace tabwerk {
namespace {

constexpr std::size_t kBufferSize = 32768;

}  // namespace

StreamReader::StreamReader(FILE* stream)
    : stream_(stream), buffer_(kBufferSize) {}

bool StreamReader::Fill() {
  if (next_ < end_) return true;
  next_ = 0;
  end_ = platform::Read(stream_, buffer_.data(), buffer_.size());
  return end_ != 0;
}

bool StreamReader::Peek(char* byte) {
  if (!Fill()) return false;
  *byte = buffer_[next_];
  return true;
}

bool StreamReader::ReadByte(char* byte) {
  if (!Peek(byte)) return false;
  ++next_;
  ++consumed_;
  return true;
}

std::size_t StreamReader::Read(void* bytes, std::size_t size) {
  auto* to = static_cast<char*>(bytes);
  std::size_t done = 0;
  while (done < size && Fill()) {
    std::size_t const piece = std::min(size - done, end_ - next_);
    std::memcpy(to + done, buffer_.data() + next_, piece);
    next_ += piece;
    done += piece;
  }
  consumed_ += static_cast<std::int64_t>(done);
  return done;
}

}  // namespace tabwerk
