// What a user writes to find texts: the library's patterns, and its judgement
// of them in words.
#ifndef TABWERK_CLI_PATTERNS_H
#define TABWERK_CLI_PATTERNS_H

#include <optional>
#include <string>
#include <vector>

#include "DBTabelle.h"
#include "cli/errors.h"

namespace tabwerk::tool {

// The pattern that matches this text alone.
std::string LiteralPattern(std::string const& text);
// The pattern for texts in which this one matches somewhere.
std::string PatternWithin(std::string const& pattern);

// The problem of a pattern that the library does not take.
std::optional<Problem> CheckPattern(std::string const& pattern);

// Rows whose text in that column matches as a whole, in the manager's
// language.  A problem for a pattern that is malformed or would take too long.
std::optional<Problem> FindByPattern(DBTabelle& table, char const* column,
                                     std::string const& pattern,
                                     std::vector<long>* rows);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_PATTERNS_H
