// Texts of a database on a line of output.
#ifndef TABWERK_CLI_TEXT_H
#define TABWERK_CLI_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace tabwerk::tool {

// The text on one line: a tab becomes "\t", a line feed "\n", a carriage
// return "\r", "\" becomes "\\" and any other control character "\xHH".
std::string Escape(std::string_view utf8);

// Columns of a terminal that the text takes: 2 for a wide character, none for
// a combining one.
std::size_t DisplayWidth(std::string_view utf8);

// The longest start of the text that fits; the whole text, or one that ends
// with "…".
std::string CutToWidth(std::string const& utf8, std::size_t width);

// "1 row", "2 rows".
std::string Count(long long number, char const* noun);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TEXT_H
