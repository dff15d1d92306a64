// How much memory is held at once.
#ifndef TABWERK_TESTS_SUPPORT_MEMORY_METER_H
#define TABWERK_TESTS_SUPPORT_MEMORY_METER_H

#include <cstdint>

namespace tabwerk::test {

// Counts, while it lives, the bytes of every block that operator new or the
// platform seam hands out, as large as the heap made it.  One at a time.
//
//   MemoryMeter meter;
//   manager->Open(…);
//   EXPECT_LE(meter.Peak(), limit);
class MemoryMeter {
 public:
  MemoryMeter();
  ~MemoryMeter();
  MemoryMeter(MemoryMeter const&) = delete;
  MemoryMeter& operator=(MemoryMeter const&) = delete;

  // The most that was held at once, beyond what was held at the beginning.
  std::int64_t Peak() const;
};

// For the allocators of test programs.  Null is no block.
void NoteTaken(void* block) noexcept;
void NoteReturned(void* block) noexcept;

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_MEMORY_METER_H
