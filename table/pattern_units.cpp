#include "table/pattern_units.h"

namespace tabwerk {

std::wstring WidenUnits(std::u16string_view text) {
  std::wstring wide;
  wide.reserve(text.size());
  for (char16_t const unit : text) wide += static_cast<wchar_t>(unit);
  return wide;
}

UnitSet::UnitSet(std::u16string_view expression)
    : expression_(WidenUnits(expression)) {}

bool UnitSet::HasFirstInPage(char16_t unit) {
  auto& page = pages_[unit / kPageUnits];
  page = std::make_unique<Page>();
  return Ask(page.get(), unit);
}

bool UnitSet::Ask(Page* page, char16_t unit) {
  auto const wide = static_cast<wchar_t>(unit);
  bool const has = std::regex_match(&wide, &wide + 1, expression_);
  (*page)[unit % kPageUnits] = has ? kYes : kNo;
  return has;
}

}  // namespace tabwerk
