#include "tests/support/new_guard.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include "tests/support/memory_meter.h"

namespace {

bool armed = false;
bool once = false;
int calls_left = 0;  // until the first failing one; 0: it fails
// Some tests have threads.
std::atomic<std::int64_t> live{0};
std::atomic<std::int64_t> count{0};

void* Obtain(std::size_t size) noexcept {
  ++count;
  if (armed && (calls_left == 0 || --calls_left == 0)) {
    if (once) armed = false;
    return nullptr;
  }
  void* const block = std::malloc(size == 0 ? 1 : size);
  live += block != nullptr ? 1 : 0;
  tabwerk::test::NoteTaken(block);
  return block;
}

void Return(void* block) noexcept {
  live -= block != nullptr ? 1 : 0;
  tabwerk::test::NoteReturned(block);
  std::free(block);
}

}  // namespace

// Both forms, and both forms of delete, so that sanitizers see pairs.
void* operator new(std::size_t size) {
  void* const block = Obtain(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
  return Obtain(size);
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept {
  return Obtain(size);
}
void operator delete(void* block) noexcept { Return(block); }
void operator delete(void* block, std::size_t) noexcept { Return(block); }
void operator delete(void* block, std::nothrow_t const&) noexcept {
  Return(block);
}
void operator delete[](void* block) noexcept { Return(block); }
void operator delete[](void* block, std::size_t) noexcept { Return(block); }
void operator delete[](void* block, std::nothrow_t const&) noexcept {
  Return(block);
}

namespace tabwerk::test {

NewGuard::NewGuard(int n, Lasting lasting) {
  calls_left = n;
  once = lasting == Lasting::kOnce;
  armed = true;
}

NewGuard::~NewGuard() { armed = false; }

bool NewGuard::Fired() const { return calls_left == 0; }

bool NewGuard::Disarm() {
  armed = false;
  return Fired();
}

std::int64_t LiveNews() { return live; }

std::int64_t CountNews() { return count; }

}  // namespace tabwerk::test
