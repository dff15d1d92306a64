#include "platform/numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <system_error>

namespace tabwerk::platform {
namespace {

// Exponents are held between these; no text is so long that its digits could
// bring a larger one back into the range of a double.
constexpr std::int64_t kExponentLimit = 100'000'000'000'000'000;

bool IsSpace(char16_t unit) {
  return unit == u' ' || (unit >= u'\t' && unit <= u'\r');
}

// The value of a digit; 16 for what is none in any base.
int DigitValue(char16_t unit) {
  if (unit >= u'0' && unit <= u'9') {
    return unit - u'0';
  }
  char16_t const lower = unit | 0x20;
  return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : 16;
}

// Reads a text from its front.
class Scanner {
 public:
  explicit Scanner(std::u16string_view text) : rest_(text) {}

  void SkipSpace() {
    while (!rest_.empty() && IsSpace(rest_.front())) {
      rest_.remove_prefix(1);
    }
  }

  // True for "-".
  bool TakeSign() {
    bool const negative = !rest_.empty() && rest_.front() == u'-';
    if (negative || (!rest_.empty() && rest_.front() == u'+')) {
      rest_.remove_prefix(1);
    }
    return negative;
  }

  // word is in lower case; the text may be in any.
  bool TakeWord(std::u16string_view word) {
    if (rest_.size() < word.size()) {
      return false;
    }
    for (std::size_t index = 0; index < word.size(); ++index) {
      char16_t unit = rest_[index];
      if (unit >= u'A' && unit <= u'Z') {
        unit |= 0x20;
      }
      if (unit != word[index]) {
        return false;
      }
    }
    rest_.remove_prefix(word.size());
    return true;
  }

  // The next digit of the base, or -1.
  int TakeDigit(int base) {
    int const value = rest_.empty() ? 16 : DigitValue(rest_.front());
    if (value >= base) {
      return -1;
    }
    rest_.remove_prefix(1);
    return value;
  }

  // An exponent behind the letter mark (lower case); 0 where none is.
  std::int64_t TakeExponent(char16_t mark) {
    Scanner ahead = *this;
    if (!ahead.TakeWord(std::u16string_view(&mark, 1))) {
      return 0;
    }
    bool const negative = ahead.TakeSign();
    std::int64_t value = 0;
    int digit = ahead.TakeDigit(10);
    if (digit < 0) {
      return 0;
    }
    for (; digit >= 0; digit = ahead.TakeDigit(10)) {
      value = std::min(value * 10 + digit, kExponentLimit);
    }
    *this = ahead;
    return negative ? -value : value;
  }

 private:
  std::u16string_view rest_;
};

// Digits with a point among them, the leading zeros left out.
struct Digits {
  // More digits than any number half way between two doubles has.
  static constexpr std::size_t kKept = 800;

  std::array<char, kKept> kept;
  std::size_t kept_count = 0;
  bool more_follow = false;  // digits other than 0 behind the kept ones
  bool any = false;          // zeros count here
  // The digits' place: the value is 0.KEPT times base to this power.
  std::int64_t point = 0;

  void Add(int digit, bool behind_point) {
    any = true;
    if (kept_count == 0 && digit == 0) {
      point -= behind_point ? 1 : 0;
      return;
    }
    point += behind_point ? 0 : 1;
    if (kept_count < kKept) {
      kept[kept_count++] = static_cast<char>(digit);
    } else {
      more_follow = more_follow || digit != 0;
    }
  }
};

Digits TakeDigits(Scanner* scanner, int base) {
  Digits digits;
  int digit = 0;
  while ((digit = scanner->TakeDigit(base)) >= 0) {
    digits.Add(digit, false);
  }
  Scanner ahead = *scanner;
  if (!ahead.TakeWord(u".")) {
    return digits;
  }
  while ((digit = ahead.TakeDigit(base)) >= 0) {
    digits.Add(digit, true);
  }
  *scanner = ahead;
  return digits;
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();

double DecimalValue(Digits const& digits, std::int64_t exponent) {
  std::int64_t const point = digits.point + exponent;
  if (digits.kept_count == 0 || point < -400) {
    return 0.0;
  }
  if (point > 400) {
    return kInfinity;
  }
  // KEPT, a last digit for what was cut off, and the exponent.
  std::array<char, Digits::kKept + 32> text;
  char* end = std::transform(
      digits.kept.begin(),
      digits.kept.begin() + static_cast<std::ptrdiff_t>(digits.kept_count),
      text.data(), [](char digit) { return static_cast<char>('0' + digit); });
  std::int64_t power = point - static_cast<std::int64_t>(digits.kept_count);
  if (digits.more_follow) {
    *end++ = '1';
    --power;
  }
  *end++ = 'e';
  end = std::to_chars(end, text.data() + text.size(), power).ptr;
  double value = 0.0;
  if (std::from_chars(text.data(), end, value).ec ==
      std::errc::result_out_of_range) {
    return point > 0 ? kInfinity : 0.0;
  }
  return value;
}

// Rounds bits * 2^power, where inexact tells that a little is missing, to the
// nearest double, ties to even.
double RoundedBinary(std::uint64_t bits, std::int64_t power, bool inexact) {
  while ((bits >> 63) == 0) {
    bits <<= 1;
    --power;
  }
  constexpr std::int64_t kSmallestPower = -1074;
  std::int64_t const dropped =
      std::max<std::int64_t>(11, kSmallestPower - power);
  if (power + 63 > 1023) {
    return kInfinity;
  }
  if (dropped > 64) {
    return 0.0;
  }
  std::uint64_t const kept = dropped == 64 ? 0 : bits >> dropped;
  std::uint64_t const half = std::uint64_t{1} << (dropped - 1);
  std::uint64_t const cut = bits & (half | (half - 1));
  bool const up = cut > half || (cut == half && (inexact || (kept & 1) != 0));
  return std::ldexp(static_cast<double>(kept + (up ? 1 : 0)),
                    static_cast<int>(power + dropped));
}

double HexadecimalValue(Digits const& digits, std::int64_t exponent) {
  if (digits.kept_count == 0) {
    return 0.0;
  }
  constexpr std::size_t kUsed = 16;
  std::uint64_t bits = 0;
  bool inexact = digits.more_follow;
  for (std::size_t index = 0; index < digits.kept_count; ++index) {
    if (index < kUsed) {
      bits = bits << 4 | static_cast<std::uint64_t>(digits.kept[index]);
    } else {
      inexact = inexact || digits.kept[index] != 0;
    }
  }
  auto const used =
      static_cast<std::int64_t>(std::min(digits.kept_count, kUsed));
  std::int64_t const power = (digits.point - used) * 4 + exponent;
  return RoundedBinary(bits, power, inexact);
}

// Nothing where no number is.
std::optional<double> UnsignedReal(Scanner scanner) {
  if (scanner.TakeWord(u"inf")) {
    return kInfinity;  // "infinity" begins in the same way
  }
  if (scanner.TakeWord(u"nan")) {
    return std::numeric_limits<double>::quiet_NaN();
  }
  Scanner hexadecimal = scanner;
  if (hexadecimal.TakeWord(u"0x")) {
    Digits const digits = TakeDigits(&hexadecimal, 16);
    if (digits.any) {
      return HexadecimalValue(digits, hexadecimal.TakeExponent(u'p'));
    }
  }
  Digits const digits = TakeDigits(&scanner, 10);
  if (!digits.any) {
    return std::nullopt;
  }
  return DecimalValue(digits, scanner.TakeExponent(u'e'));
}

}  // namespace

std::int32_t ParseInt32(std::u16string_view text) noexcept {
  Scanner scanner(text);
  scanner.SkipSpace();
  bool const negative = scanner.TakeSign();
  // One more than the largest positive value: the smallest negative one.
  constexpr std::int64_t kLimit = std::int64_t{1} << 31;
  std::int64_t value = 0;
  for (int digit = 0; (digit = scanner.TakeDigit(10)) >= 0;) {
    value = std::min(value * 10 + digit, kLimit);
  }
  return static_cast<std::int32_t>(negative ? -value
                                            : std::min(value, kLimit - 1));
}

double ParseReal(std::u16string_view text) noexcept {
  Scanner scanner(text);
  scanner.SkipSpace();
  bool const negative = scanner.TakeSign();
  std::optional<double> const value = UnsignedReal(scanner);
  if (!value) {
    return 0.0;
  }
  return negative ? -*value : *value;
}

}  // namespace tabwerk::platform
