// Where the sections of an index file are read from.
#ifndef TABWERK_TABLE_SECTION_SOURCE_H
#define TABWERK_TABLE_SECTION_SOURCE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>
#include <vector>

#include "platform/platform.h"
#include "schema/bytes.h"

namespace tabwerk {

class SectionSource {
 public:
  virtual ~SectionSource() = default;

  // Copies the next bytes; fewer than size where the source ends.
  virtual std::size_t Read(void* bytes, std::size_t size) = 0;
  // The next bytes where they lie, at most so many; none from a source whose
  // bytes lie nowhere.
  virtual std::span<std::byte const> Take(std::size_t /*size*/) { return {}; }
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
  std::span<std::byte const> Take(std::size_t size) override {
    auto const taken = bytes_.first(std::min(size, bytes_.size()));
    bytes_ = bytes_.subspan(taken.size());
    return taken;
  }
  std::span<std::byte const> Remaining() const { return bytes_; }
  // There must be so many.
  void Skip(std::size_t size) { bytes_ = bytes_.subspan(size); }

 private:
  std::span<std::byte const> bytes_;
};

// The values of a section, where they lie or in a copy.
class SectionValues {
 public:
  static constexpr std::size_t kValueSize = sizeof(std::int32_t);
  // Values are copied in pieces of this many, so that a count that is not true
  // of the source takes no memory.
  static constexpr std::size_t kPieceValues = std::size_t{1} << 16;

  SectionValues() = default;
  // The next count values, or as many of them as the source has.  Throws
  // std::bad_alloc.
  SectionValues(SectionSource& source, std::size_t count)
      : bytes_(source.Take(count * kValueSize)) {
    if (!bytes_.empty()) return;
    Copy(source, count);
    bytes_ = std::as_bytes(std::span(copy_));
  }
  // Moving a copy leaves its values where they are.
  SectionValues(SectionValues&&) = default;
  SectionValues& operator=(SectionValues&&) = default;

  std::size_t size() const { return bytes_.size() / kValueSize; }
  std::int32_t operator[](std::size_t i) const {
    return LoadValue<std::int32_t>(bytes_.data() + i * kValueSize);
  }
  // There must be room for all of them.
  void CopyTo(std::vector<std::int32_t>* values) const {
    if (size() == 0) return;
    std::memcpy(values->data(), bytes_.data(), size() * kValueSize);
  }

 private:
  void Copy(SectionSource& source, std::size_t count) {
    while (copy_.size() < count) {
      std::size_t const have = copy_.size();
      std::size_t const piece = std::min(count - have, kPieceValues);
      copy_.resize(have + piece);
      std::size_t const read =
          source.Read(copy_.data() + have, piece * kValueSize);
      if (read == piece * kValueSize) continue;
      copy_.resize(have + read / kValueSize);
      break;
    }
  }

  std::vector<std::int32_t> copy_;
  std::span<std::byte const> bytes_;
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_SECTION_SOURCE_H
