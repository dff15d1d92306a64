// Numbers from text and text from numbers, whatever locale the program has set.
#ifndef TABWERK_PLATFORM_NUMBERS_H
#define TABWERK_PLATFORM_NUMBERS_H

#include <cstdint>
#include <string_view>

namespace tabwerk::platform {

// White space, an optional sign, decimal digits; reading stops at the first
// other unit.  No digit gives 0; a value beyond 32 bits gives the nearest one.
std::int32_t ParseInt32(std::u16string_view text) noexcept;

// As the C library's strtod in the "C" locale: white space, sign, decimal or
// hexadecimal number with exponent, "inf", "infinity" or "nan" in any case;
// reading stops at the first unit that does not belong to it.  No number gives
// 0; too large a one gives infinity, too small a one 0 or a subnormal number.
double ParseReal(std::u16string_view text) noexcept;

}  // namespace tabwerk::platform

#endif  // TABWERK_PLATFORM_NUMBERS_H
