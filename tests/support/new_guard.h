// Exhausted memory for tests: makes operator new fail.
#ifndef TABWERK_TESTS_SUPPORT_NEW_GUARD_H
#define TABWERK_TESTS_SUPPORT_NEW_GUARD_H

#include <cstdint>

namespace tabwerk::test {

// While it lives, every call of operator new from the n-th (from 1) on, or the
// n-th alone, fails (std::bad_alloc, or null for the form that does not throw).
// One at a time; keep GoogleTest's own assertions out of its life.
//
// A sweep over all allocations ends with the first n at which Fired() stays
// false.
class NewGuard {
 public:
  enum class Lasting : bool { kOnce, kForGood };

  explicit NewGuard(int n, Lasting lasting = Lasting::kForGood);
  ~NewGuard();
  NewGuard(NewGuard const&) = delete;
  NewGuard& operator=(NewGuard const&) = delete;

  // True once a call was made to fail.
  bool Fired() const;
  // Lets all calls work again; as Fired.
  bool Disarm();
};

// Blocks that operator new has given in this process and operator delete has
// not yet taken back.
std::int64_t LiveNews();
// Calls of operator new in this process.
std::int64_t CountNews();

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_NEW_GUARD_H
