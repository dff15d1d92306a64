#include "table/pattern_units.h"

namespace tabwerk {

std::wstring WidenUnits(std::u16string_view text) {
  std::wstring wide;
  wide.reserve(text.size());
  for (char16_t const unit : text) wide += static_cast<wchar_t>(unit);
  return wide;
}

namespace {

// Steps of one question, and for every unit of the expression: the standard
// library may look at each of them.
constexpr std::uint64_t kStepsOfAsking = 200;
constexpr std::uint64_t kStepsOfUnit = 4;

}  // namespace

UnitSet::UnitSet(std::u16string_view expression)
    : expression_(WidenUnits(expression)),
      ask_steps_(kStepsOfAsking + kStepsOfUnit * expression.size()) {}

bool UnitSet::Ask(char16_t unit) {
  auto& page = pages_[unit / kPageUnits];
  if (page == nullptr) page = std::make_unique<Page>();
  auto const wide = static_cast<wchar_t>(unit);
  bool const has = std::regex_match(&wide, &wide + 1, expression_);
  (*page)[unit % kPageUnits] = has ? Answer::kYes : Answer::kNo;
  return has;
}

}  // namespace tabwerk
