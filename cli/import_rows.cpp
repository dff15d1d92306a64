#include "cli/import_rows.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "cli/field_value.h"
#include "cli/files.h"
#include "cli/text.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

constexpr char16_t kMark = 0xFEFF;
// The import reads no more than so many units at once, the line feed included;
// a longer line would become two rows.
constexpr std::size_t kMaxLineUnits = 4095;

// A value of a numeric column as the import reads it, in ASCII: commas are
// full stops, one pair of quotes is gone.  Other characters become "?".
std::string NumberInAscii(std::u16string_view token) {
  if (!token.empty() && token.front() == u'"' && token.back() == u'"') {
    token = token.substr(1, token.size() < 2 ? 0 : token.size() - 2);
  }
  std::string text;
  for (char16_t const character : token) {
    if (character == u',') {
      text += '.';
    } else {
      text += character > 0x7F ? '?' : static_cast<char>(character);
    }
  }
  constexpr char kBlanks[] = " \t";
  text.erase(text.find_last_not_of(kBlanks) + 1);
  text.erase(0, std::min(text.find_first_not_of(kBlanks), text.size()));
  if (text.starts_with('+')) text.erase(0, 1);
  return text;
}

template <typename Number>
bool Reads(std::string const& text) {
  Number number{};
  char const* const end = text.data() + text.size();
  auto const [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end;
}

}  // namespace

RowText::RowText(std::string const& bytes) : is_odd_(bytes.size() % 2 != 0) {
  units_.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    auto const low = static_cast<unsigned char>(bytes[i]);
    auto const high = static_cast<unsigned char>(bytes[i + 1]);
    units_ += static_cast<char16_t>(low | high << 8);
  }
  has_mark_ = units_.starts_with(kMark);
  if (has_mark_) units_.erase(0, 1);
}

bool RowText::IsPlausible(char16_t separator) const {
  return !is_odd_ &&
         (has_mark_ || units_.empty() || units_.find(u'\n') != units_.npos ||
          units_.find(separator) != units_.npos);
}

std::vector<RowLine> RowText::Lines() const {
  std::vector<RowLine> lines;
  std::u16string_view rest = units_;
  while (!rest.empty()) {
    std::size_t const line_feed = rest.find(u'\n');
    std::size_t const length =
        line_feed == rest.npos ? rest.size() : line_feed + 1;
    std::u16string_view const whole = rest.substr(0, length);
    std::u16string_view text = whole;
    if (text.ends_with(u'\n')) text.remove_suffix(1);
    if (text.ends_with(u'\r')) text.remove_suffix(1);
    lines.push_back({lines.size() + 1, text, whole});
    rest.remove_prefix(length);
  }
  return lines;
}

std::string EncodeUnits(std::u16string_view units, bool with_mark) {
  std::string bytes;
  bytes.reserve(2 * units.size() + 2);
  if (with_mark) bytes += "\xFF\xFE";
  for (char16_t const unit : units) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

RowJudge::RowJudge(DBDefinition const& definition, char16_t separator)
    : definition_(definition), separator_(separator) {
  for (DBFeld const* field = definition.GetDefinition(); field != nullptr;
       field = field->next) {
    ++column_count_;
  }
}

std::optional<RowObjection> RowJudge::Objection(std::u16string_view line) {
  if (line.size() >= kMaxLineUnits) {
    return RowObjection{TW(601), "the line is longer than 4094 characters"};
  }
  std::size_t const nul = line.find(u'\0');
  if (nul != line.npos) {
    return RowObjection{TW(602), "there is a NUL character in it", nul};
  }
  auto const values = SplitLine(tokenizer_, line, separator_);
  DBFeld const* field = definition_.GetDefinition();
  for (SplitValue const& value : values) {
    if (field == nullptr) break;
    if (auto objection = ValueObjection(*field, value)) return objection;
    field = field->next;
  }
  std::size_t count = values.size();
  // A separator at the end has an empty value behind it, which is no token.
  // Blanks and tabs are skipped before a value, so there it may be missing
  // anywhere.
  bool const may_end_empty = separator_ != u' ' && separator_ != u'\t';
  if (may_end_empty && line.ends_with(separator_)) ++count;
  if (count == column_count_) return std::nullopt;
  RowObjection objection{
      TW(603), Count(static_cast<long long>(count), "value") + " for " +
                   Count(static_cast<long long>(column_count_), "column")};
  if (values.size() > column_count_) {
    objection.offset = values[column_count_].offset;
    objection.length = values[column_count_].text.size();
  }
  return objection;
}

std::optional<RowObjection> RowJudge::ValueObjection(DBFeld const& field,
                                                     SplitValue const& given) {
  bool const is_number =
      field.type == DBTypeInteger || field.type == DBTypeReal;
  if (!is_number || IsAssigned(field.name)) return std::nullopt;
  std::string const text = NumberInAscii(given.text);
  if (text.empty()) return std::nullopt;
  std::string const value = "\"" + Escape(zWString(given.text).toUtf8()) + "\"";
  std::string const column = NameToUtf8(field.name);
  if (field.type == DBTypeInteger) {
    if (Reads<std::int32_t>(text)) return std::nullopt;
    return RowObjection{TW(604), value + " is no integer for column " + column,
                        given.offset, given.text.size()};
  }
  if (Reads<double>(text)) return std::nullopt;
  return RowObjection{TW(605), value + " is no number for column " + column,
                      given.offset, given.text.size()};
}

}  // namespace tabwerk::tool
