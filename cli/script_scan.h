// A look at a script, to say where it is wrong.  The library carries it out;
// it knows whether a script worked, but not at which line it stopped.
#ifndef TABWERK_CLI_SCRIPT_SCAN_H
#define TABWERK_CLI_SCRIPT_SCAN_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cli/errors.h"

namespace tabwerk::tool {

struct ScriptDatabase {
  std::string name;
  std::string file;
  std::size_t file_end;  // offset in the text behind the file's name
};

struct ScriptScan {
  // File of the last database; empty: none.
  std::string DatabaseFile() const;
  // The script with an ending behind the name of every database file, so that
  // it does the same beside them.
  std::string WithEnding(std::string const& ending) const;

  std::vector<ScriptDatabase> databases;
  // The text as the library reads it.
  std::string text;
  // The first statement that cannot be carried out.
  std::optional<Problem> failure;
  // What is left out without a failure.
  std::vector<Problem> remarks;
};

// script is the path of the script; content its bytes.  Paths in it are
// relative to the current folder.
ScriptScan ScanScript(std::string const& script, std::string const& content);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_SCRIPT_SCAN_H
