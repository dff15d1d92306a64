// A test with a folder in which the tool runs.
#ifndef TABWERK_TESTS_CLI_TOOL_TEST_H
#define TABWERK_TESTS_CLI_TOOL_TEST_H

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/cli/run_tool.h"
#include "tests/support/plain_database.h"
#include "tests/support/temp_folder.h"

namespace tabwerk::test {

class ToolTest : public testing::Test {
 protected:
  ToolRun Run(std::vector<std::string> const& arguments) const;
  ToolRun RunWith(ToolCall const& call) const;

  // A text file in UTF-16LE.
  void MakeUnits(std::string const& name, std::string_view utf8,
                 bool with_mark = true) const;
  void MakeDatabase(std::string const& name,
                    PlainDatabase const& database) const;
  // "[1|Anna][2|Bert]" of a table in a file.
  std::string Rows(std::string const& name, std::string const& table) const;

  // stock.db with the table ARTICLE (ID, FOLGE, STATUS, NAME, PRICE), which has
  // two rows, and the table EMPTY; STOCK.UDB with the same tables and one row
  // of ARTICLE.
  void MakeStock() const;
  void MakeMainFile() const;
  void MakeUserFile() const;

  // geo.db and GEO.UDB, built of examples/reference.
  void MakeExample() const;

  // a.script, which builds a.db with so many rows in the table T.
  void MakeLongScript(std::size_t rows) const;

  // Names, bytes and times of all files in the folder and below.
  std::string Snapshot() const;
  // Runs it and expects that no file is another afterwards.
  ToolRun RunToLook(std::vector<std::string> const& arguments) const;

  TempFolder folder_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_CLI_TOOL_TEST_H
