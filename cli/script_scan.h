// A look at a script: what it names and what is wrong with it.  The library
// carries scripts out; it knows whether one worked, but not at which line it
// stopped, and takes much in silence.
#ifndef TABWERK_CLI_SCRIPT_SCAN_H
#define TABWERK_CLI_SCRIPT_SCAN_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "DBDefinition.h"
#include "cli/errors.h"

namespace tabwerk::tool {

struct ScriptDatabase {
  std::string name;
  std::string file;
  std::size_t file_end;  // offset in the text behind the file's name
  Place where;           // of the file's name
};

// Names and paths are the script's bytes.
struct ScriptTable {
  std::string name;
  DBDefinition definition;  // as the library reads it
  bool is_sound = true;     // the definition can be carried out
};

// A statement whose data file can be read.
struct ScriptData {
  std::size_t table;  // in ScriptScan::tables
  std::string path;
  std::size_t findings_before;  // so many come before those of the data
};

// An error is what the library stops at, or what keeps it from writing; a
// warning what it takes in silence, although it can hardly be meant.
struct ScriptFinding {
  Severity severity;
  Problem problem;
};

struct ScriptScan {
  // File of the last database; empty: none.
  std::string DatabaseFile() const;
  // The script with an ending behind the name of every database file, so that
  // it does the same beside them.
  std::string WithEnding(std::string const& ending) const;
  // The first error; null without one.
  Problem const* Failure() const;

  std::vector<ScriptDatabase> databases;
  std::vector<ScriptTable> tables;
  std::vector<ScriptData> data;
  // The text as the library reads it.
  std::string text;
  // In the order of their lines; behind an error the rest is looked at as if
  // it were mended.
  std::vector<ScriptFinding> findings;
};

// script is the path of the script; content its bytes.  Paths in it are
// relative to the current folder.  The files that it names are looked at, but
// not what is in them.
ScriptScan ScanScript(std::string const& script, std::string const& content);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_SCRIPT_SCAN_H
