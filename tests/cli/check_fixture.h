// A test of the rules of "tabwerk check", applied in this process.
#ifndef TABWERK_TESTS_CLI_CHECK_FIXTURE_H
#define TABWERK_TESTS_CLI_CHECK_FIXTURE_H

#include <string>

#include "tests/cli/tool_test.h"
#include "tests/support/container_bytes.h"

namespace tabwerk::test {

class CheckTest : public ToolTest {
 protected:
  ~CheckTest() override;

  // Writes the bytes as main.db, beside USER.UDB and MAIN.idx where they were
  // made, and checks them: "E360@120 T row 1 id 2 NAME" for each finding, with
  // as much of it as there is, and line feeds between; E, W and N are errors,
  // warnings and notes.
  std::string Check(std::string const& bytes) const;
  // The same for the files that are there.
  std::string CheckFiles(bool quick = false) const;
  // The numbers alone: "E360 N365".
  std::string Codes(std::string const& bytes) const;
  // The exit code of the last check.
  int ExitCode() const { return exit_code_; }

  // A current file with one table T, its blocks and the rest of the file.
  static std::string File(RecordBytes const& record, std::string const& data);
  // The same of PlainTables.
  static std::string File(std::vector<PlainTable> const& tables,
                          std::int64_t time_stamp = 1000);

  void MakeUser(std::vector<PlainTable> const& tables) const;
  void MakeIndex(PlainIndex const& index) const;

 private:
  mutable int exit_code_ = -1;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_CLI_CHECK_FIXTURE_H
