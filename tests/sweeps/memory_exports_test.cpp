// No exported operation is forgotten.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/places.h"
#include "tests/sweeps/memory_operations.h"

namespace tabwerk::test {
namespace {

// Operations on files, with what they leave on the disk: faults_*_test.cpp.
constexpr std::string_view kSweptOnFiles[] = {
    "DBInterpreter::ReadDatei(",
    "DBInterpreter::ReadScript(",
    "DBInterpreter::checkFeldConditions(",
    "DBTabelle::Dump(",
    "DBbase::IndexFileName(",
    "DBbase::MakeIndexFile(",
    "DBbase::Open(",
    "DBbase::OpenDatabaseFile(",
    "DBbase::Write(",
    "DBbase::WriteIndexToFile(",
};

bool IsOperation(std::string_view line) {
  constexpr std::string_view kData[] = {"#", "typeinfo ", "vtable ",
                                        "linux: ", "windows: "};
  return !line.empty() && std::none_of(std::begin(kData), std::end(kData),
                                       [line](auto const data) {
                                         return line.starts_with(data);
                                       });
}

std::vector<std::string> Exports() {
  std::vector<std::string> exports;
  std::ifstream file(ProjectPath("cmake/exports.txt"));
  for (std::string line; std::getline(file, line);) {
    if (line.ends_with('\r')) line.pop_back();
    if (IsOperation(line)) exports.push_back(line);
  }
  return exports;
}

std::vector<std::string_view> Swept(std::vector<Operation> const& all) {
  std::vector<std::string_view> swept(std::begin(kSweptOnFiles),
                                      std::end(kSweptOnFiles));
  for (auto const& operation : all) {
    swept.insert(swept.end(), operation.exports.begin(),
                 operation.exports.end());
  }
  return swept;
}

std::vector<Operation> AllOperations() {
  std::vector<Operation> all;
  for (auto const& some :
       {TextOperations(), DefinitionOperations(), DirectoryOperations(),
        TableOperations(), ManagerOperations(), InterpreterOperations()}) {
    all.insert(all.end(), some.begin(), some.end());
  }
  return all;
}

TEST(SweepMemoryExports, EveryExportedOperationIsSweptOnce) {
  auto exports = Exports();
  ASSERT_LT(200U, exports.size());
  auto const operations = AllOperations();
  for (auto const begin : Swept(operations)) {
    // The whole line, or the only one that begins so.
    auto found = std::find(exports.begin(), exports.end(), begin);
    if (found == exports.end()) {
      auto const begins = [begin](std::string const& line) {
        return line.starts_with(begin);
      };
      EXPECT_EQ(1, std::count_if(exports.begin(), exports.end(), begins))
          << begin;
      found = std::find_if(exports.begin(), exports.end(), begins);
    }
    ASSERT_NE(exports.end(), found) << begin;
    exports.erase(found);
  }
  for (auto const& left : exports) ADD_FAILURE() << "not swept: " << left;
}

}  // namespace
}  // namespace tabwerk::test
