#include "tests/support/places.h"

namespace tabwerk::test {

std::string ProjectPath(std::string const& name) {
  return std::string(TABWERK_TEST_ROOT) + "/" + name;
}

std::string ToolPath() { return TABWERK_TEST_TOOL; }

}  // namespace tabwerk::test
