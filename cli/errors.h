// Reporting what is wrong: on standard error as
//
//   stock.script:7:19: error[TW213]: there is no data file "a.txt"; paths are …
//       7 | TABLEDATA ARTICLE a.txt
//         |                   ^~~~~
//
// or, where the output is JSON, as a line of JSON.
#ifndef TABWERK_CLI_ERRORS_H
#define TABWERK_CLI_ERRORS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "cli/codes.h"

namespace tabwerk::tool {

// Where something is wrong.  Texts are UTF-8.
struct Place {
  // A file as a whole; without a name, the tool as a whole.
  Place() = default;
  Place(std::string path) : file(std::move(path)) {}  // NOLINT
  Place(char const* path) : file(path) {}             // NOLINT
  // A line of a text file, and a character in it; both from 1, 0 for none.
  Place(std::string path, std::size_t line_number,
        std::size_t column_number = 0)
      : file(std::move(path)), line(line_number), column(column_number) {}

  // "file:line:column", "file:@byte" or as much of it as there is.
  std::string Text() const;

  std::string file;
  std::size_t line = 0;
  std::size_t column = 0;
  std::string source;                // the line itself, to be shown; empty: not
  std::size_t length = 1;            // characters from column on that are meant
  std::optional<std::int64_t> byte;  // in a binary file, from 0
};

enum class Severity { kError, kWarning, kNote };

char const* SeverityText(Severity severity);

// Something that is wrong, or stands in the way.  Texts are UTF-8.
struct Problem {
  Code code;
  Place where;
  std::string what;    // what is wrong
  std::string advice;  // what to do about it; may be empty

  // Of a tool that ends with it.
  ExitCode Exit() const;
};

// The lines that say it, each with its line feed.
std::string Describe(Problem const& problem, Severity severity, bool colors);

// Writes it on standard error, with U+FFFD for what is not UTF-8; the
// problem's exit code.
ExitCode Report(Problem const& problem);

// The same as a warning or a note; nothing with -q.
void Warn(Problem const& problem, Severity severity = Severity::kWarning);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_ERRORS_H
