// Files of the plain reader and writer.  Apart, because the rest needs nothing
// of the test framework.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/support/plain_database.h"

namespace tabwerk::test {

std::vector<unsigned char> ReadFileBytes(std::string const& path) {
  std::ifstream stream(std::filesystem::path(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(stream),
          std::istreambuf_iterator<char>()};
}

void WriteFileBytes(std::string const& path,
                    std::vector<unsigned char> const& bytes) {
  std::ofstream stream(std::filesystem::path(path), std::ios::binary);
  stream.write(reinterpret_cast<char const*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  stream.close();
  EXPECT_TRUE(stream.good()) << path << " could not be written";
}

PlainDatabase ReadDatabase(std::string const& path) {
  auto const database = DecodeDatabase(ReadFileBytes(path));
  EXPECT_TRUE(database.has_value()) << path << " is no database file";
  return database.value_or(PlainDatabase{});
}

}  // namespace tabwerk::test
