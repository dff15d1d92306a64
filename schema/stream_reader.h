// Reading a stream byte by byte without asking the system for every byte.
#ifndef TABWERK_SCHEMA_STREAM_READER_H
#define TABWERK_SCHEMA_STREAM_READER_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace tabwerk {

// Reads a borrowed stream from its position on, in large pieces.  The stream
// itself stands somewhere behind what was handed out: seek before using it
// again.
class StreamReader {
 public:
  explicit StreamReader(FILE* stream);
  StreamReader(StreamReader const&) = delete;
  StreamReader& operator=(StreamReader const&) = delete;

  // True when there is a next byte; it stays where it is.
  bool Peek(char* byte);
  // Takes the next byte; false at the end of the file.
  bool ReadByte(char* byte);
  // Takes up to size bytes; their number.
  std::size_t Read(void* bytes, std::size_t size);
  // Number of bytes handed out.
  std::int64_t consumed_bytes() const noexcept { return consumed_; }

 private:
  bool Fill();

  FILE* stream_;
  std::vector<char> buffer_;
  std::size_t next_ = 0;
  std::size_t end_ = 0;
  std::int64_t consumed_ = 0;
};

}  // namespace tabwerk

#endif  // TABWERK_SCHEMA_STREAM_READER_H
