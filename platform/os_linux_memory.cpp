// Memory on Linux.
#ifndef _WIN32

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "platform/platform.h"

namespace tabwerk::platform::os {
namespace {

// A block that is allocated with this size has a mapping of its own, in large
// pages where the system gives them to who asks.  Such memory is made in less
// than half the time, is found faster when it is read here and there, and moves
// to a larger place without being copied.
constexpr std::size_t kMappedSize = std::size_t{16} << 20U;
constexpr std::size_t kLargePage = std::size_t{2} << 20U;

// In front of such a block stands the size of its mapping.  So the block begins
// where no block of the heap does that is aligned for every type.
constexpr std::size_t kHeader = sizeof(std::size_t);
constexpr std::size_t kAligned = alignof(std::max_align_t);
static_assert(kHeader % kAligned != 0);

bool IsMapped(void const* block) noexcept {
  return reinterpret_cast<std::uintptr_t>(block) % kAligned == kHeader;
}

void* MappingOf(void* block) noexcept {
  return static_cast<std::byte*>(block) - kHeader;
}

std::size_t MappingSize(void* block) noexcept {
  std::size_t size = 0;
  std::memcpy(&size, MappingOf(block), sizeof size);
  return size;
}

void* BlockIn(void* mapping, std::size_t mapping_size) noexcept {
  std::memcpy(mapping, &mapping_size, sizeof mapping_size);
  return static_cast<std::byte*>(mapping) + kHeader;
}

// Whole pages for a block and its header; 0 for more than there can be.
std::size_t MappingFor(std::size_t size) noexcept {
  if (size > SIZE_MAX / 2) return 0;
  auto const page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  return (size + kHeader + page - 1) / page * page;
}

void* OrNull(void* mapping) noexcept {
  return mapping == MAP_FAILED ? nullptr : mapping;
}

// Address space of whole pages that begins where a large page does; null
// without so much of it.
void* Map(std::size_t size) noexcept {
  if (size == 0) return nullptr;
  void* const space =
      OrNull(mmap(nullptr, size + kLargePage, PROT_READ | PROT_WRITE,
                  MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  if (space == nullptr) return nullptr;
  auto const start = reinterpret_cast<std::uintptr_t>(space);
  std::size_t const skipped = (kLargePage - start % kLargePage) % kLargePage;
  auto* const mapping = static_cast<std::byte*>(space) + skipped;
  // What is too much on both sides goes back.  Not examined: in front there may
  // be nothing.
  static_cast<void>(munmap(space, skipped));
  static_cast<void>(munmap(mapping + size, kLargePage - skipped));
  // Not examined: small pages do as well.
  static_cast<void>(madvise(mapping, size, MADV_HUGEPAGE));
  return mapping;
}

// Has the memory of a mapping made all at once, which takes the system half the
// time that it takes page by page as the bytes come in.  Not examined: what is
// missing then comes as it is touched.
void Populate(void* mapping, std::size_t size) noexcept {
#ifdef MADV_POPULATE_WRITE
  static_cast<void>(madvise(mapping, size, MADV_POPULATE_WRITE));
#else
  static_cast<void>(mapping);
  static_cast<void>(size);
#endif
}

// Enlarges a mapping where it is or moves it, large pages as they are, to a
// place that begins where a large page does.
void* Remap(void* mapping, std::size_t size_before, std::size_t size) noexcept {
  void* const resized = OrNull(mremap(mapping, size_before, size, 0));
  if (resized != nullptr) return resized;
  void* const place = Map(size);
  if (place == nullptr) return nullptr;
  void* const moved = OrNull(
      mremap(mapping, size_before, size, MREMAP_MAYMOVE | MREMAP_FIXED, place));
  if (moved == nullptr) munmap(place, size);
  return moved;
}

}  // namespace

void* Allocate(std::size_t size) {
  if (size < kMappedSize) return std::malloc(std::max(size, kAligned));
  std::size_t const mapping_size = MappingFor(size);
  void* const mapping = Map(mapping_size);
  if (mapping == nullptr) return nullptr;
  Populate(mapping, mapping_size);
  return BlockIn(mapping, mapping_size);
}

void* Reallocate(void* block, std::size_t size) {
  if (block == nullptr || !IsMapped(block)) {
    return std::realloc(block, std::max(size, kAligned));
  }
  std::size_t const mapping_size = MappingFor(size);
  if (mapping_size == 0) return nullptr;
  void* const mapping =
      Remap(MappingOf(block), MappingSize(block), mapping_size);
  return mapping == nullptr ? nullptr : BlockIn(mapping, mapping_size);
}

void Free(void* block) {
  if (IsMapped(block)) {
    munmap(MappingOf(block), MappingSize(block));
  } else {
    std::free(block);
  }
}

}  // namespace tabwerk::platform::os

#endif  // !_WIN32
