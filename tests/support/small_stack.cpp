#include "tests/support/small_stack.h"

#include <pthread.h>

#include <cstdlib>

namespace tabwerk::test {
namespace {

constexpr std::size_t kStackBytes = std::size_t{1} << 20;

void* Run(void* work) {
  (*static_cast<std::function<void()>*>(work))();
  return nullptr;
}

}  // namespace

void OnSmallStack(std::function<void()> const& work) {
  std::function<void()> copy = work;
  pthread_attr_t attributes;
  pthread_t thread{};
  bool const started =
      pthread_attr_init(&attributes) == 0 &&
      pthread_attr_setstacksize(&attributes, kStackBytes) == 0 &&
      pthread_create(&thread, &attributes, Run, &copy) == 0 &&
      pthread_join(thread, nullptr) == 0;
  pthread_attr_destroy(&attributes);
  // A test cannot go on without its thread.
  if (!started) std::abort();
}

}  // namespace tabwerk::test
