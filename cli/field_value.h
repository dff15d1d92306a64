// Values that are given as text, judged by the column that they are for.
#ifndef TABWERK_CLI_FIELD_VALUE_H
#define TABWERK_CLI_FIELD_VALUE_H

#include <optional>
#include <string>
#include <string_view>

#include "DBDefinition.h"
#include "cli/codes.h"

namespace tabwerk::tool {

struct ValueProblem {
  Code code;
  std::string what;
};

// The library gives these columns values of its own.
bool IsAssigned(std::string_view column);

// A number with a decimal point, an exponent or "inf", and nothing around it.
std::optional<double> NumberOf(std::u16string_view text);

// Why the column does not take the text; an empty one is 0 for a number.
std::optional<ValueProblem> ValueObjection(DBFeld const& field,
                                           std::u16string_view text);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_FIELD_VALUE_H
