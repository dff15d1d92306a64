// Memory on Linux.
#ifndef _WIN32

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

#include "platform/platform.h"

namespace tabwerk::platform::os {
namespace {

// The C library maps blocks of this size for themselves, so their memory is not
// there yet.
constexpr std::size_t kAlwaysMapped = std::size_t{32} << 20U;

// Has the memory of a block made all at once, which takes the system half the
// time that it takes page by page as the bytes come in.  Not examined: what is
// missing then comes as it is touched.
void Populate(void* block, std::size_t size) {
#ifdef MADV_POPULATE_WRITE
  auto const page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  auto const start = reinterpret_cast<std::uintptr_t>(block);
  std::uintptr_t const skipped = (page - start % page) % page;
  static_cast<void>(madvise(static_cast<char*>(block) + skipped,
                            (size - skipped) / page * page,
                            MADV_POPULATE_WRITE));
#else
  static_cast<void>(block);
  static_cast<void>(size);
#endif
}

}  // namespace

void* Allocate(std::size_t size) {
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block != nullptr && size >= kAlwaysMapped) Populate(block, size);
  return block;
}

}  // namespace tabwerk::platform::os

#endif  // !_WIN32
