// Where the texts of a part lie in its string store.
#ifndef TABWERK_TABLE_TEXT_PLACES_H
#define TABWERK_TABLE_TEXT_PLACES_H

#include <cstddef>

#include "DBDefinition.h"
#include "schema/part.h"

namespace tabwerk {

// How far setting one text of a part can change what other values read: two
// passes over the part's rows, the second one over its texts as well.

// Appending a text changes no other value as long as the store has at most this
// many units: the lowest place behind the store that a value names.
std::size_t MostUnitsUnnamed(TablePart& part,
                             DBDefinition const& definition) noexcept;

// True when overwriting a text in place may change several values: not every
// value has a place of its own, right behind the end of another text.  Says the
// same right after such a text was overwritten.  Throws std::bad_alloc.
bool SharesTexts(TablePart& part, DBDefinition const& definition);

}  // namespace tabwerk

#endif  // TABWERK_TABLE_TEXT_PLACES_H
