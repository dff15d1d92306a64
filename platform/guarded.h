// Exhausted memory as a failure result.
#ifndef TABWERK_PLATFORM_GUARDED_H
#define TABWERK_PLATFORM_GUARDED_H

#include <new>
#include <stdexcept>
#include <utility>

namespace tabwerk {

// Runs work and returns what it returns; failure when memory is exhausted.
// Other exceptions pass.  Every exported operation that allocates and has a
// failure result goes through here, so that no std::bad_alloc reaches the host.
// Constructors, copies and the string classes have none: what they let out
// stands in their headers.
template <typename Result, typename Work>
Result Guarded(Result failure, Work&& work) {
  try {
    return std::forward<Work>(work)();
  } catch (std::bad_alloc const&) {
    return failure;
  } catch (std::length_error const&) {
    return failure;
  }
}

}  // namespace tabwerk

#endif  // TABWERK_PLATFORM_GUARDED_H
