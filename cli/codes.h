// What can go wrong, by number.
//
// A number is written TW(123) where the problem is found and TW123 in what the
// user reads.  Each has one entry, in the file of its range:
//
//   TW1xx  codes_files.cpp      the command line, files, the machine
//   TW2xx  codes_script.cpp     scripts and table data
//   TW3xx  codes_structure.cpp  what is inside a database file
//   TW4xx  codes_index.cpp      index, order and status
//   TW5xx  codes_text.cpp       texts and translations
//   TW6xx  codes_rows.cpp       rows to be imported
//
// A test compares the entries with the uses.  Numbers are never given anew.
#ifndef TABWERK_CLI_CODES_H
#define TABWERK_CLI_CODES_H

#include <span>
#include <string>
#include <vector>

namespace tabwerk::tool {

// Scripts rely on the numbers.
enum class ExitCode : int {
  kDone = 0,
  kFindings = 1,  // it was done, or looked at, and something is wrong
  kUsage = 2,     // the command line makes no sense
  kFile = 3,      // a file cannot be opened, read or written
  kDamaged = 4,   // a database file is damaged
  kHeld = 5,      // another process holds a file
  kRejected = 6,  // some of the input rows were not taken
};

// The number of a problem.
struct Code {
  int number = 0;

  std::string Text() const;  // "TW123"
};

constexpr Code TW(int number) { return {number}; }

// What "tabwerk explain" says of it.
struct CodeEntry {
  int number;
  char const* name;   // "no-such-file"
  char const* title;  // one line
  ExitCode exit;      // where it is an error
  char const* explanation;
  char const* example;  // of a mend; lines
};

std::span<CodeEntry const> FileCodes();
std::span<CodeEntry const> ScriptCodes();
std::span<CodeEntry const> StructureCodes();
std::span<CodeEntry const> IndexCodes();
std::span<CodeEntry const> TextCodes();
std::span<CodeEntry const> RowCodes();

// All of them, in the order of their numbers.
std::vector<CodeEntry> AllCodes();
// Null for a number that there is not.
CodeEntry const* FindCode(Code code);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_CODES_H
