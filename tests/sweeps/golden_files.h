// The golden files of tests/data, listed from the folder.
#ifndef TABWERK_TESTS_SWEEPS_GOLDEN_FILES_H
#define TABWERK_TESTS_SWEEPS_GOLDEN_FILES_H

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "tests/support/places.h"

namespace tabwerk::test {

// Their names without ".hex", sorted.
inline std::vector<std::string> GoldenFiles() {
  std::vector<std::string> names;
  std::error_code error;  // an empty list tells
  for (auto const& file :
       std::filesystem::directory_iterator(ProjectPath("tests/data"), error)) {
    if (file.path().extension() == ".hex") {
      names.push_back(file.path().stem().string());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SWEEPS_GOLDEN_FILES_H
