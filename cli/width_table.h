// Characters by the columns of a terminal that they take.
#ifndef TABWERK_CLI_WIDTH_TABLE_H
#define TABWERK_CLI_WIDTH_TABLE_H

#include <span>

namespace tabwerk::tool {

struct CharacterRange {
  char32_t first;
  char32_t last;
};

// In rising order.  Characters that stand on another one or do not show.
std::span<CharacterRange const> NoWidthRanges();
// Characters of two columns; all others take one.
std::span<CharacterRange const> WideRanges();

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_WIDTH_TABLE_H
