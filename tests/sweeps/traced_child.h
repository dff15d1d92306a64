// A writing program under strace.
#ifndef TABWERK_TESTS_SWEEPS_TRACED_CHILD_H
#define TABWERK_TESTS_SWEEPS_TRACED_CHILD_H

#include <string>
#include <vector>

#include "tests/sweeps/write_story.h"

namespace tabwerk::test {

// Why strace is of no use here; empty when it is.
std::string WhyNoStrace();

// A call to the kernel: "rename" and the K-th call of that name in the life of
// the process; line is what strace says.
struct KernelCall {
  std::string name;
  int number;
  std::string line;
};

// True when the program was killed before that call was carried out; false when
// it came to its end without it.
bool IsKilledBefore(KernelCall const& call, std::string const& folder,
                    Writing writing);

// All calls that the program makes while it carries the writing out.  With more
// options for strace; when they choose calls, newfstatat must be among them.
std::vector<KernelCall> ListKernelCalls(std::string const& options,
                                        std::string const& folder,
                                        Writing writing);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SWEEPS_TRACED_CHILD_H
