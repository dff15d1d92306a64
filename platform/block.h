// A memory block that grows by exact amounts at low cost.
#ifndef TABWERK_PLATFORM_BLOCK_H
#define TABWERK_PLATFORM_BLOCK_H

#include <cstddef>

namespace tabwerk::platform {

// An owned block of bytes.  size() is exactly what was asked for; behind it
// the block may hold a small reserve (an eighth), so that growing it record by
// record costs amortised constant time on every heap.
class Block {
 public:
  Block() = default;
  Block(Block&& other) noexcept;
  Block& operator=(Block&& other) noexcept;
  Block(Block const&) = delete;
  Block& operator=(Block const&) = delete;
  ~Block();

  // Replaces the content by size zero bytes, without reserve.  False, and the
  // block as it was, when there is no memory.
  [[nodiscard]] bool Reset(std::size_t size);
  // The same with bytes of any content, for one who fills them at once.
  [[nodiscard]] bool ResetUnset(std::size_t size);
  // Changes the size; new bytes are zero, the others stay.  False, and the
  // block as it was, when there is no memory.
  [[nodiscard]] bool Resize(std::size_t size);
  // The same with new bytes of any content, for one who fills them at once.
  [[nodiscard]] bool ResizeUnset(std::size_t size) {
    if (size > capacity_ && !GrowTo(size)) return false;
    size_ = size;
    return true;
  }
  // Frees the memory; size() is 0 afterwards.
  void Clear() noexcept;

  std::byte* data() noexcept { return data_; }
  std::byte const* data() const noexcept { return data_; }
  std::size_t size() const noexcept { return size_; }

 private:
  // Gives the block a capacity of size at least, which is more than it has.
  bool GrowTo(std::size_t size);

  std::byte* data_ = nullptr;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace tabwerk::platform

#endif  // TABWERK_PLATFORM_BLOCK_H
