// What the readers of statements and of definitions share.
#ifndef TABWERK_CLI_SCRIPT_CONTEXT_H
#define TABWERK_CLI_SCRIPT_CONTEXT_H

#include <string>
#include <string_view>

#include "cli/script_lines.h"
#include "cli/script_scan.h"

namespace tabwerk::tool {

// The lines of a script and what was found in them so far.
class ScriptContext {
 public:
  ScriptContext(std::string const& script, std::string const& content);

  // The next line, itself looked at.
  std::string_view Next();
  ScriptLines const& lines() const { return lines_; }
  ScriptScan& scan() { return scan_; }

  void Error(Code code, Place where, std::string what, std::string advice);
  void Warn(Code code, Place where, std::string what, std::string advice);
  void Note(Code code, Place where, std::string what, std::string advice);

  // A name or path of the current line: control characters and ";" in it.
  void CheckCharacters(std::string_view word);
  // A name, which the library takes for Latin-1, whatever was meant.
  void CheckEncoding(std::string_view word);
  // What stands behind the last word that is used, and is no comment.
  void CheckRest(std::string_view rest);

 private:
  void Add(Severity severity, Code code, Place where, std::string what,
           std::string advice);
  void CheckStart(std::string_view content);

  ScriptLines lines_;
  ScriptScan scan_;
  bool is_utf16_ = false;
};

bool IsKeyword(std::string_view word);
// The keyword that a word looks like without being it; empty for none.
std::string_view SimilarKeyword(std::string_view word);

// The word between double quotes, as text.
std::string Quoted(std::string_view word);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_SCRIPT_CONTEXT_H
