// Where the sections of an index file are read from.
#ifndef TABWERK_TABLE_SECTION_SOURCE_H
#define TABWERK_TABLE_SECTION_SOURCE_H

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <span>

#include "platform/platform.h"

namespace tabwerk {

class SectionSource {
 public:
  virtual ~SectionSource() = default;

  // Copies the next bytes; fewer than size where the source ends.
  virtual std::size_t Read(void* bytes, std::size_t size) = 0;
};

// A stream, from its present position on; a null stream is empty.
class StreamSource : public SectionSource {
 public:
  explicit StreamSource(FILE* stream) : stream_(stream) {}
  std::size_t Read(void* bytes, std::size_t size) override {
    return stream_ == nullptr ? 0 : platform::Read(stream_, bytes, size);
  }

 private:
  FILE* stream_;
};

// Borrowed bytes.
class MemorySource : public SectionSource {
 public:
  explicit MemorySource(std::span<std::byte const> bytes) : bytes_(bytes) {}
  std::size_t Read(void* bytes, std::size_t size) override {
    auto const taken = std::min(size, bytes_.size());
    if (taken > 0) std::memcpy(bytes, bytes_.data(), taken);
    bytes_ = bytes_.subspan(taken);
    return taken;
  }
  std::span<std::byte const> Remaining() const { return bytes_; }
  // There must be so many.
  void Skip(std::size_t size) { bytes_ = bytes_.subspan(size); }

 private:
  std::span<std::byte const> bytes_;
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_SECTION_SOURCE_H
