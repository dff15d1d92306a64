// Names that are not there, and those that may have been meant.
#ifndef TABWERK_CLI_NEAR_NAMES_H
#define TABWERK_CLI_NEAR_NAMES_H

#include <string>
#include <vector>

#include "cli/errors.h"

namespace tabwerk::tool {

// The one of the names that is most like the word, whatever the case of its
// letters; empty where none is.
std::string NearestName(std::string const& word,
                        std::vector<std::string> const& names);

// There is no table, or no column, of that name in what is at the place; there
// are the others.
Problem NoSuchTable(Place where, std::string const& name,
                    std::vector<std::string> const& others);
Problem NoSuchColumn(Place where, std::string const& name,
                     std::vector<std::string> const& others);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_NEAR_NAMES_H
