// Rows to be imported.
#include "cli/codes.h"

namespace tabwerk::tool {
namespace {

constexpr CodeEntry kCodes[] = {
    {601, "row-too-long", "A row is too long", ExitCode::kRejected,
     "A line has up to 4,094 characters; a longer one would become two "
     "rows.",
     "Shorten the text, or split the row by hand."},
    {602, "row-with-nul", "A row holds a NUL character", ExitCode::kRejected,
     "A text ends at its first NUL.",
     "Save the text again as UTF-16, little-endian."},
    {603, "value-count", "A row has not as many values as there are columns",
     ExitCode::kRejected,
     "Values stand in the order of the columns, and every column has "
     "one. Between tabs and blanks an empty value counts as none.",
     "0;0;0;Rivet;0.1"},
    {604, "no-integer", "A value is no integer", ExitCode::kRejected,
     "The column takes whole numbers from -2147483648 to 2147483647.",
     "0;0;0;Rivet;12"},
    {605, "no-real", "A value is no number", ExitCode::kRejected,
     "The column takes numbers with a decimal point or comma, and no "
     "signs between thousands.",
     "0;0;0;Rivet;1234.5"},
};

}  // namespace

std::span<CodeEntry const> RowCodes() { return kCodes; }

}  // namespace tabwerk::tool
