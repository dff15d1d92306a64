// Regular expressions over texts of the tool.  The standard library's are
// compiled in one file only, which takes long.
#ifndef TABWERK_TESTS_CLI_EXPRESSIONS_H
#define TABWERK_TESTS_CLI_EXPRESSIONS_H

#include <string>
#include <vector>

namespace tabwerk::test {

// What matches, and what each group of it does; a group without a part is "".
using Groups = std::vector<std::string>;

// Of the whole text; empty when it does not match.
Groups Matched(std::string const& text, std::string const& expression);
// Every match in the text, from left to right.
std::vector<Groups> AllMatches(std::string const& text,
                               std::string const& expression);
// The text with every match replaced; "$1" stands for the first group.
std::string Replaced(std::string const& text, std::string const& expression,
                     std::string const& by);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_CLI_EXPRESSIONS_H
