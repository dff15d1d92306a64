// Where the texts of a part lie in its string store.
#ifndef TABWERK_TABLE_TEXT_PLACES_H
#define TABWERK_TABLE_TEXT_PLACES_H

#include <cstddef>
#include <limits>

#include "DBDefinition.h"
#include "schema/part.h"

namespace tabwerk {

// How far setting one text of a part can change what other values read.
struct TextPlaces {
  // Overwriting a text in place may change several values: not every value has
  // a place of its own, right behind the end of another text.
  bool shared = false;
  // Appending changes no other value as long as the store has at most this
  // many units: the lowest place behind the store that a value names.
  std::size_t most_units = std::numeric_limits<std::size_t>::max();
};

// A pass over the part's rows.  Throws std::bad_alloc.
TextPlaces PlacesOf(TablePart& part, DBDefinition const& definition);

}  // namespace tabwerk

#endif  // TABWERK_TABLE_TEXT_PLACES_H
