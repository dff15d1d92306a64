#include "cli/number_check.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <system_error>

namespace tabwerk::tool {
namespace {

constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();

bool IsSpace(char unit) {
  return unit == ' ' || (unit >= '\t' && unit <= '\r');
}

// In ASCII, with "?" for anything else, and without white space around.
std::string Trimmed(std::u16string_view text) {
  std::string ascii;
  for (char16_t const unit : text) {
    ascii += unit < 0x80 ? static_cast<char>(unit) : '?';
  }
  auto const begin = std::find_if_not(ascii.begin(), ascii.end(), IsSpace);
  auto const end = std::find_if_not(ascii.rbegin(),
                                    std::make_reverse_iterator(begin), IsSpace)
                       .base();
  return {begin, end};
}

bool IsDigit(char unit) { return unit >= '0' && unit <= '9'; }

bool TakeSign(std::string_view* text) {
  bool const negative = text->starts_with('-');
  if (negative || text->starts_with('+')) text->remove_prefix(1);
  return negative;
}

// "0x" and something that may be a digit; anything else is the number 0 with
// text behind it.
bool StartsAsHexadecimal(std::string_view text) {
  return text.size() > 2 && text[0] == '0' &&
         (text[1] == 'x' || text[1] == 'X') && text[2] != '-';
}

}  // namespace

NumberText CheckInteger(std::u16string_view text, std::int32_t* value) {
  *value = 0;
  std::string const trimmed = Trimmed(text);
  if (trimmed.empty()) return NumberText::kEmpty;
  std::string_view rest = trimmed;
  bool const negative = TakeSign(&rest);
  std::size_t const digits =
      std::min(rest.find_first_not_of("0123456789"), rest.size());
  if (digits == 0) return NumberText::kNone;
  std::int64_t number = 0;
  for (char const digit : rest.substr(0, digits)) {
    number = std::min(number * 10 + (digit - '0'), kLargest + 2);
  }
  if (negative) number = -number;
  auto const nearest = std::clamp(number, -kLargest - 1, kLargest);
  *value = static_cast<std::int32_t>(nearest);
  if (digits < rest.size()) return NumberText::kPrefix;
  return nearest == number ? NumberText::kWhole : NumberText::kTooLarge;
}

NumberText CheckReal(std::u16string_view text) {
  std::string const trimmed = Trimmed(text);
  if (trimmed.empty()) return NumberText::kEmpty;
  std::string_view rest = trimmed;
  TakeSign(&rest);
  if (rest.starts_with('-')) return NumberText::kNone;  // one sign is enough
  auto format = std::chars_format::general;
  if (StartsAsHexadecimal(rest)) {
    format = std::chars_format::hex;
    rest.remove_prefix(2);
  }
  double value = 0;
  char const* const end = rest.data() + rest.size();
  auto const [stop, error] = std::from_chars(rest.data(), end, value, format);
  if (error == std::errc::invalid_argument) {
    // "0x" alone is the 0 with something behind it.
    return format == std::chars_format::hex ? NumberText::kPrefix
                                            : NumberText::kNone;
  }
  // "nan(…)" goes on for the C++ library only.
  bool const whole =
      stop == end && (!std::isnan(value) || rest.find('(') == rest.npos);
  if (!whole) return NumberText::kPrefix;
  bool const has_digits = rest.front() == '.' || IsDigit(rest.front());
  bool const too_large = error == std::errc::result_out_of_range ||
                         (std::isinf(value) && has_digits);
  return too_large ? NumberText::kTooLarge : NumberText::kWhole;
}

}  // namespace tabwerk::tool
