// A thread with the stack of a host's main thread on Windows.
#ifndef TABWERK_TESTS_SUPPORT_SMALL_STACK_H
#define TABWERK_TESTS_SUPPORT_SMALL_STACK_H

#include <functional>

namespace tabwerk::test {

// Runs work to its end on a thread of its own with 1 MiB of stack.  An overflow
// ends the test program.  work must not throw.
void OnSmallStack(std::function<void()> const& work);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_SMALL_STACK_H
