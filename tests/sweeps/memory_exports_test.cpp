// No exported operation is forgotten.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/places.h"
#include "tests/sweeps/memory_operations.h"

namespace tabwerk::test {
namespace {

// An operation on files, swept with what it leaves on the disk, and where.
struct SweptCall {
  std::string_view export_line;
  char const* source;
  std::string_view call;
};

constexpr SweptCall kSweptOnFiles[] = {
    // What a sweep runs.
    {"DBInterpreter::ReadDatei(", "tests/sweeps/faults_text_test.cpp",
     "return interpreter.ReadDatei("},
    {"DBInterpreter::ReadScript(", "tests/sweeps/faults_script_test.cpp",
     "return interpreter.ReadScript("},
    {"DBTabelle::Dump(", "tests/sweeps/faults_text_test.cpp",
     "dumped_ = table_->Dump("},
    {"DBbase::Open(", "tests/sweeps/faults_open_test.cpp",
     "return Manager()->Open("},
    {"DBbase::Write(", "tests/sweeps/faults_save_test.cpp",
     "return Manager()->Write("},
    {"DBbase::WriteIndexToFile(", "tests/sweeps/faults_index_test.cpp",
     "return Manager()->WriteIndexToFile("},
    // What one of these runs.
    {"DBInterpreter::checkFeldConditions(", "interp/interpreter.cpp",
     "return checkFeldConditions("},
    {"DBbase::IndexFileName(", "base/dbbase_index.cpp", "= IndexFileName("},
    {"DBbase::MakeIndexFile(", "base/dbbase_open.cpp", "return MakeIndexFile("},
    {"DBbase::OpenDatabaseFile(", "base/dbbase_open.cpp",
     "if (OpenDatabaseFile("},
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
  std::vector<std::string_view> swept;
  for (auto const& on_files : kSweptOnFiles) {
    swept.push_back(on_files.export_line);
  }
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

TEST(SweepMemoryExports, OperationsOnFilesAreCalledWhereTheyAreSaidToBe) {
  for (auto const& swept : kSweptOnFiles) {
    std::ifstream file(ProjectPath(swept.source));
    std::string const text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NE(text.npos, text.find(swept.call)) << swept.export_line;
  }
}

}  // namespace
}  // namespace tabwerk::test
