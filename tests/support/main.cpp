// The entry of every test program.
#include <gtest/gtest.h>

#include "tests/support/child_process.h"

int main(int argc, char** argv) {
  if (std::optional<int> const exit_code =
          tabwerk::test::RunAsChild(argc, argv)) {
    return *exit_code;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
