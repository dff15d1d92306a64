#include "tests/cli/check_fixture.h"

#include <algorithm>
#include <cctype>
#include <sstream>

#include "DBbase.h"
#include "cli/check_database.h"
#include "cli/files.h"

namespace tabwerk::test {
namespace {

// A line of the findings, which are tab-separated.
std::string Describe(std::string const& line) {
  std::istringstream cells(line);
  std::string severity, code, byte, table, row, id, column;
  for (std::string* const cell :
       {&severity, &code, &byte, &table, &row, &id, &column}) {
    std::getline(cells, *cell, '\t');
  }
  std::string text(1, static_cast<char>(std::toupper(static_cast<unsigned char>(
                          severity.empty() ? '?' : severity.front()))));
  text += code.substr(std::min<std::size_t>(code.size(), 2));
  if (!byte.empty()) text += "@" + byte;
  if (!table.empty()) text += " " + table;
  if (!row.empty()) text += " row " + row;
  if (!id.empty()) text += " id " + id;
  if (!column.empty()) text += " " + column;
  return text;
}

}  // namespace

CheckTest::~CheckTest() { DBbase::Init({}, {}); }

std::string CheckTest::CheckFiles(bool quick) const {
  tool::DatabaseFiles files;
  files.main = folder_.PathUtf8("main.db");
  if (folder_.Exists("USER.UDB")) files.user = folder_.PathUtf8("USER.UDB");
  tool::OutputOptions options;
  options.format = "tsv";
  options.columns = {"severity", "code", "byte",  "table",
                     "row",      "id",   "column"};
  options.file = folder_.PathUtf8("findings.tsv");
  tool::DatabaseCheck check(files, quick);
  auto problem = check.Read();
  tool::CheckReport report(options, 0);
  if (!problem) problem = report.Begin();
  if (!problem) problem = check.Run(report);
  DBbase::Init({}, {});
  if (problem) return "problem " + problem->code.Text() + " " + problem->what;
  exit_code_ = static_cast<int>(report.End());
  std::istringstream lines(folder_.ReadBytes("findings.tsv"));
  std::string line;
  std::getline(lines, line);  // names
  std::string text;
  while (std::getline(lines, line)) {
    text += (text.empty() ? "" : "\n") + Describe(line);
  }
  return text;
}

std::string CheckTest::Check(std::string const& bytes) const {
  folder_.WriteBytes("main.db", bytes);
  return CheckFiles();
}

std::string CheckTest::Codes(std::string const& bytes) const {
  std::istringstream lines(Check(bytes));
  std::string codes;
  for (std::string line; std::getline(lines, line);) {
    codes += (codes.empty() ? "" : " ") +
             line.substr(0, std::min<std::size_t>(4, line.size()));
  }
  return codes;
}

std::string CheckTest::File(RecordBytes const& record,
                            std::string const& data) {
  return CurrentHeader(1000) + Record(record) + std::string(1, '\0') + data;
}

std::string CheckTest::File(std::vector<PlainTable> const& tables,
                            std::int64_t time_stamp) {
  return AsText(EncodeDatabase({PlainHeader::kCurrent, time_stamp, tables}));
}

void CheckTest::MakeUser(std::vector<PlainTable> const& tables) const {
  folder_.WriteBytes("USER.UDB", File(tables, 2000));
}

void CheckTest::MakeIndex(PlainIndex const& index) const {
  folder_.WriteBytes("MAIN.idx", AsText(EncodeIndex(index)));
}

}  // namespace tabwerk::test
