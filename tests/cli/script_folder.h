// A test that looks at scripts and builds them, in this process and in a folder
// of its own.
#ifndef TABWERK_TESTS_CLI_SCRIPT_FOLDER_H
#define TABWERK_TESTS_CLI_SCRIPT_FOLDER_H

#include <filesystem>
#include <string>
#include <vector>

#include "cli/script_scan.h"
#include "tests/cli/tool_test.h"

namespace tabwerk::test {

class ScriptFolder : public ToolTest {
 protected:
  // Goes to the folder, and back at the end, with the manager empty.
  ScriptFolder();
  ~ScriptFolder() override;

  // What is found in the script and its data, in its order.
  static std::vector<tool::ScriptFinding> Findings(std::string const& script);
  // Their numbers: "TW224 TW258"; data that are wrong in many places once.
  static std::string Found(std::string const& script);
  static bool HasError(std::string const& script);
  // Whether the library builds it.
  bool Builds(std::string const& script) const;

 private:
  std::filesystem::path before_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_CLI_SCRIPT_FOLDER_H
