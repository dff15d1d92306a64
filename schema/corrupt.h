// The one place through which every finding of damaged bytes goes.
#ifndef TABWERK_SCHEMA_CORRUPT_H
#define TABWERK_SCHEMA_CORRUPT_H

#include <cstdint>

namespace tabwerk {

// Notes that bytes of a file cannot be what they should be, and returns false,
// so that a reader can say "return Corrupt(...)".  where is a literal that
// names the place.
bool Corrupt(char const* where) noexcept;

// Number of findings since the program began.
std::uint64_t CorruptCount() noexcept;
// Place of the last finding; the empty text before the first.
char const* LastCorruptPlace() noexcept;

}  // namespace tabwerk

#endif  // TABWERK_SCHEMA_CORRUPT_H
