#include "cli/table_data_text.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "cli/text.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

constexpr char16_t kComma = u',';
constexpr char16_t kQuote = u'"';

std::u16string FromAscii(std::string_view text) {
  return {text.begin(), text.end()};
}

DataObjection LineFeedObjection(std::size_t column) {
  return {TW(610), column, "the text has a line feed",
          "a row of table data ends at a line feed; take it out of the text"};
}

DataObjection QuoteObjection(std::size_t column, std::u16string_view text) {
  if (text.starts_with(kQuote) || text.ends_with(kQuote)) {
    return {TW(611), column, "the text begins or ends with a double quote",
            "double quotes around a text are not stored; use others"};
  }
  return {TW(611), column,
          "double quotes or an open \"#TS(\" hide where the text ends",
          "close what is open in the text"};
}

}  // namespace

std::optional<std::u16string> DataLineWriter::Line(
    std::vector<DataValue> const& values, DataObjection* objection) {
  std::u16string line;
  for (std::size_t i = 0; i < values.size(); ++i) {
    DataValue const& value = values[i];
    if (i > 0) line += kComma;
    if (!value.is_text) {
      line += value.text;
      continue;
    }
    if (value.text.find(u'\n') != value.text.npos) {
      *objection = LineFeedObjection(i);
      return std::nullopt;
    }
    auto const token = Quoted(value.text, i + 1 == values.size());
    if (!token) {
      *objection = QuoteObjection(i, value.text);
      return std::nullopt;
    }
    line += *token;
  }
  if (line.size() <= kMaxDataLineUnits) return line;
  *objection = {TW(612), values.size(),
                "its line has " +
                    Count(static_cast<long long>(line.size()), "character") +
                    ", over " + std::to_string(kMaxDataLineUnits),
                "shorten its texts; a longer line is read as two rows"};
  return std::nullopt;
}

// Quotes at both ends keep blanks and separators; a quote inside turns their
// meaning round, which another one at an end makes good.
std::optional<std::u16string> DataLineWriter::Quoted(std::u16string_view text,
                                                     bool is_last) {
  std::u16string const once = kQuote + std::u16string(text) + kQuote;
  bool const is_plain =
      text.find(kQuote) == text.npos && text.find(u"#TS(") == text.npos;
  if (is_plain) return once;
  if (text.starts_with(kQuote) || text.ends_with(kQuote)) return std::nullopt;
  for (std::u16string const& token :
       {once, kQuote + once, once + kQuote, kQuote + once + kQuote}) {
    if (ReadsBack(token, is_last)) return token;
  }
  return std::nullopt;
}

// True when the reader takes the token as a whole, and it alone.
bool DataLineWriter::ReadsBack(std::u16string_view token, bool is_last) {
  // A line that is too long is found out by its length.
  if (token.size() > kMaxDataLineUnits) return true;
  std::wstring line(token.begin(), token.end());
  std::size_t const length = line.size();
  if (!is_last) line += L",0";
  wchar_t const* const first =
      tokenizer_.GetNextToken(line.data(), wchar_t{kComma});
  return first != nullptr && std::wcslen(first) == length;
}

std::optional<std::u16string> RealText(double value) {
  if (std::isnan(value)) {
    // Of the many there are, text stands for this one.
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    bool const same = std::bit_cast<std::uint64_t>(value) ==
                      std::bit_cast<std::uint64_t>(kNan);
    return same ? std::optional(std::u16string(u"nan")) : std::nullopt;
  }
  std::array<char, 32> buffer;
  auto const end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  return FromAscii(
      {buffer.data(), static_cast<std::size_t>(end - buffer.data())});
}

}  // namespace tabwerk::tool
