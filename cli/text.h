// Texts of a database on a line of output.  All texts are well-formed UTF-8.
#ifndef TABWERK_CLI_TEXT_H
#define TABWERK_CLI_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tabwerk::tool {

// The text on one line: a tab becomes "\t", a line feed "\n", a carriage
// return "\r", "\" becomes "\\" and any other control character "\xHH".
std::string Escape(std::string_view utf8);

// The text with a blank in place of every control character.
std::string OneBlankEach(std::string_view utf8);

// Takes the first character off a text that has one.
char32_t NextCharacter(std::string_view* utf8);

std::size_t CharacterCount(std::string_view utf8);

// Takes so many characters off the text, or all there are; what was taken.
std::string_view TakeCharacters(std::string_view* utf8, std::size_t count);

// Columns of a terminal that the text takes: 2 for a wide character, none for
// a combining one, 2 for pictures that are joined to one.
std::size_t DisplayWidth(std::string_view utf8);

// The longest start of the text that fits; the whole text, or one that ends
// with "…".
std::string CutToWidth(std::string const& utf8, std::size_t width);

// The names, where one comes again as NAME_2, NAME_3 and so on: as none of the
// others.
std::vector<std::string> UniqueNames(std::vector<std::string> names);

// "1 row", "2 rows".
std::string Count(long long number, char const* noun);

// The number with a blank between thousands: "1 234 567".
std::string Grouped(long long number);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TEXT_H
