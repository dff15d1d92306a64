#include "platform/block.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/platform.h"

namespace tabwerk::platform {
namespace {

// needed or, where that is more, an eighth above the present capacity.
std::size_t GenerousCapacity(std::size_t needed, std::size_t capacity) {
  // No block is so large that the sum overflows.
  return std::max(needed, capacity + capacity / 8);
}

}  // namespace

Block::Block(Block&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)),
      size_(std::exchange(other.size_, 0)),
      capacity_(std::exchange(other.capacity_, 0)) {}

Block& Block::operator=(Block&& other) noexcept {
  if (this != &other) {
    Clear();
    data_ = std::exchange(other.data_, nullptr);
    size_ = std::exchange(other.size_, 0);
    capacity_ = std::exchange(other.capacity_, 0);
  }
  return *this;
}

Block::~Block() { Clear(); }

bool Block::Reset(std::size_t size) {
  if (!ResetUnset(size)) {
    return false;
  }
  if (size > 0) {
    std::memset(data_, 0, size);
  }
  return true;
}

bool Block::ResetUnset(std::size_t size) {
  if (size == 0) {
    Clear();
    return true;
  }
  void* const fresh = Allocate(size);
  if (fresh == nullptr) {
    return false;
  }
  Clear();
  data_ = static_cast<std::byte*>(fresh);
  size_ = size;
  capacity_ = size;
  return true;
}

bool Block::Resize(std::size_t size) {
  std::size_t const old_size = size_;
  if (!ResizeUnset(size)) {
    return false;
  }
  if (size > old_size) {
    std::memset(data_ + old_size, 0, size - old_size);
  }
  return true;
}

bool Block::GrowTo(std::size_t size) {
  std::size_t capacity = GenerousCapacity(size, capacity_);
  void* grown = Reallocate(data_, capacity);
  if (grown == nullptr && capacity > size) {
    capacity = size;
    grown = Reallocate(data_, capacity);
  }
  if (grown == nullptr) {
    return false;
  }
  data_ = static_cast<std::byte*>(grown);
  capacity_ = capacity;
  return true;
}

void Block::Clear() noexcept {
  if (data_ != nullptr) {
    Free(data_);
  }
  data_ = nullptr;
  size_ = 0;
  capacity_ = 0;
}

}  // namespace tabwerk::platform
