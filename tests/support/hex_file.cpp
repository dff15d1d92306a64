#include "tests/support/hex_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "tests/support/places.h"

namespace tabwerk::test {

std::string HexFile(std::string const& name) {
  std::string const path = ProjectPath("tests/data/" + name + ".hex");
  std::ifstream file(path, std::ios::binary);
  std::string const text{std::istreambuf_iterator<char>(file), {}};
  bool sound = false;
  std::string bytes = BytesOfHex(text, &sound);
  EXPECT_TRUE(sound && !bytes.empty()) << "no golden file: " << path;
  return bytes;
}

}  // namespace tabwerk::test
