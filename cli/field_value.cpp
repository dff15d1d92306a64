#include "cli/field_value.h"

#include <charconv>
#include <cstdint>

#include "cli/files.h"
#include "cli/text.h"
#include "schema/format.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

template <typename Number>
std::optional<Number> Read(std::u16string_view units) {
  std::string text;
  for (char16_t const unit : units) {
    text += unit < 0x80 ? static_cast<char>(unit) : '?';
  }
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') {
    text.erase(0, 1);
  }
  Number number{};
  char const* const end = text.data() + text.size();
  auto const [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

}  // namespace

bool IsAssigned(std::string_view column) {
  return column == "ID" || column == "FOLGE" || column == "STATUS";
}

std::optional<double> NumberOf(std::u16string_view text) {
  return Read<double>(text);
}

std::optional<ValueProblem> ValueObjection(DBFeld const& field,
                                           std::u16string_view text) {
  std::string const column = NameToUtf8(field.name);
  if (field.type == DBTypeString) {
    if (text.find(u'\0') != text.npos) {
      return ValueProblem{TW(602),
                          "there is a NUL character in the text for "
                          "column " +
                              column};
    }
    if (text.size() <= format::kMaxTextUnits) return std::nullopt;
    return ValueProblem{TW(624), "the text for column " + column + " has " +
                                     std::to_string(text.size()) +
                                     " characters, over " +
                                     std::to_string(format::kMaxTextUnits)};
  }
  if (text.empty()) return std::nullopt;
  std::string const value = "\"" + Escape(zWString(text).toUtf8()) + "\"";
  if (field.type == DBTypeInteger && !Read<std::int32_t>(text)) {
    return ValueProblem{TW(604), value + " is no integer for column " + column};
  }
  if (field.type == DBTypeReal && !NumberOf(text)) {
    return ValueProblem{TW(605), value + " is no number for column " + column};
  }
  return std::nullopt;
}

}  // namespace tabwerk::tool
