#include "tests/support/memory_meter.h"

#include <malloc.h>

#include <algorithm>

namespace tabwerk::test {
namespace {

bool counting = false;
std::int64_t held = 0;
std::int64_t peak = 0;

std::int64_t SizeOf(void* block) noexcept {
#ifdef _WIN32
  return static_cast<std::int64_t>(_msize(block));
#else
  return static_cast<std::int64_t>(malloc_usable_size(block));
#endif
}

}  // namespace

MemoryMeter::MemoryMeter() {
  held = 0;
  peak = 0;
  counting = true;
}

MemoryMeter::~MemoryMeter() { counting = false; }

std::int64_t MemoryMeter::Peak() const { return peak; }

void NoteTaken(void* block) noexcept {
  if (!counting || block == nullptr) return;
  held += SizeOf(block);
  peak = std::max(peak, held);
}

void NoteReturned(void* block) noexcept {
  if (counting && block != nullptr) held -= SizeOf(block);
}

}  // namespace tabwerk::test
