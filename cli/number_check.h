// Whether a text is a number, as the library reads numbers from text.
#ifndef TABWERK_CLI_NUMBER_CHECK_H
#define TABWERK_CLI_NUMBER_CHECK_H

#include <cstdint>
#include <string_view>

namespace tabwerk::tool {

enum class NumberText {
  kWhole,     // read as it stands
  kEmpty,     // read as 0
  kNone,      // no number: read as 0
  kPrefix,    // only what it begins with is read
  kTooLarge,  // the nearest number is read
};

// White space around a number is no part of it.  *value is what is read.
NumberText CheckInteger(std::u16string_view text, std::int32_t* value);
NumberText CheckReal(std::u16string_view text);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_NUMBER_CHECK_H
