// zWString: upper case.
//
// The simple mappings of Unicode for the Latin letters up to U+024F and from
// U+1E00 to U+1EFF, the Greek ones and the Cyrillic ones up to U+052F.  Letters
// whose upper case is no single unit stay as they are (U+00DF); U+00FF becomes
// U+0178.
#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

#include "ztypes.h"

namespace {

// Every step-th unit from first to last; its upper case lies delta higher.
struct Range {
  char16_t first;
  char16_t last;
  std::uint8_t step;
  std::int16_t delta;
};

// Sorted, without overlaps.
constexpr Range kRanges[] = {
    {0x0061, 0x007A, 1, -32},   {0x00B5, 0x00B5, 1, 743},
    {0x00E0, 0x00F6, 1, -32},   {0x00F8, 0x00FE, 1, -32},
    {0x00FF, 0x00FF, 1, 121},   {0x0101, 0x012F, 2, -1},
    {0x0131, 0x0131, 1, -232},  {0x0133, 0x0137, 2, -1},
    {0x013A, 0x0148, 2, -1},    {0x014B, 0x0177, 2, -1},
    {0x017A, 0x017E, 2, -1},    {0x017F, 0x017F, 1, -300},
    {0x0180, 0x0180, 1, 195},   {0x0183, 0x0185, 2, -1},
    {0x0188, 0x0188, 1, -1},    {0x018C, 0x018C, 1, -1},
    {0x0192, 0x0192, 1, -1},    {0x0195, 0x0195, 1, 97},
    {0x0199, 0x0199, 1, -1},    {0x019A, 0x019A, 1, 163},
    {0x019E, 0x019E, 1, 130},   {0x01A1, 0x01A5, 2, -1},
    {0x01A8, 0x01A8, 1, -1},    {0x01AD, 0x01AD, 1, -1},
    {0x01B0, 0x01B0, 1, -1},    {0x01B4, 0x01B6, 2, -1},
    {0x01B9, 0x01B9, 1, -1},    {0x01BD, 0x01BD, 1, -1},
    {0x01BF, 0x01BF, 1, 56},    {0x01C5, 0x01C5, 1, -1},
    {0x01C6, 0x01C6, 1, -2},    {0x01C8, 0x01C8, 1, -1},
    {0x01C9, 0x01C9, 1, -2},    {0x01CB, 0x01CB, 1, -1},
    {0x01CC, 0x01CC, 1, -2},    {0x01CE, 0x01DC, 2, -1},
    {0x01DD, 0x01DD, 1, -79},   {0x01DF, 0x01EF, 2, -1},
    {0x01F2, 0x01F2, 1, -1},    {0x01F3, 0x01F3, 1, -2},
    {0x01F5, 0x01F5, 1, -1},    {0x01F9, 0x021F, 2, -1},
    {0x0223, 0x0233, 2, -1},    {0x023C, 0x023C, 1, -1},
    {0x023F, 0x0240, 1, 10815}, {0x0242, 0x0242, 1, -1},
    {0x0247, 0x024F, 2, -1},    {0x0371, 0x0373, 2, -1},
    {0x0377, 0x0377, 1, -1},    {0x037B, 0x037D, 1, 130},
    {0x03AC, 0x03AC, 1, -38},   {0x03AD, 0x03AF, 1, -37},
    {0x03B1, 0x03C1, 1, -32},   {0x03C2, 0x03C2, 1, -31},
    {0x03C3, 0x03CB, 1, -32},   {0x03CC, 0x03CC, 1, -64},
    {0x03CD, 0x03CE, 1, -63},   {0x03D0, 0x03D0, 1, -62},
    {0x03D1, 0x03D1, 1, -57},   {0x03D5, 0x03D5, 1, -47},
    {0x03D6, 0x03D6, 1, -54},   {0x03D7, 0x03D7, 1, -8},
    {0x03D9, 0x03EF, 2, -1},    {0x03F0, 0x03F0, 1, -86},
    {0x03F1, 0x03F1, 1, -80},   {0x03F2, 0x03F2, 1, 7},
    {0x03F3, 0x03F3, 1, -116},  {0x03F5, 0x03F5, 1, -96},
    {0x03F8, 0x03F8, 1, -1},    {0x03FB, 0x03FB, 1, -1},
    {0x0430, 0x044F, 1, -32},   {0x0450, 0x045F, 1, -80},
    {0x0461, 0x0481, 2, -1},    {0x048B, 0x04BF, 2, -1},
    {0x04C2, 0x04CE, 2, -1},    {0x04CF, 0x04CF, 1, -15},
    {0x04D1, 0x052F, 2, -1},    {0x1E01, 0x1E95, 2, -1},
    {0x1E9B, 0x1E9B, 1, -59},   {0x1EA1, 0x1EFF, 2, -1},
    {0x1F00, 0x1F07, 1, 8},     {0x1F10, 0x1F15, 1, 8},
    {0x1F20, 0x1F27, 1, 8},     {0x1F30, 0x1F37, 1, 8},
    {0x1F40, 0x1F45, 1, 8},     {0x1F51, 0x1F57, 2, 8},
    {0x1F60, 0x1F67, 1, 8},     {0x1F70, 0x1F71, 1, 74},
    {0x1F72, 0x1F75, 1, 86},    {0x1F76, 0x1F77, 1, 100},
    {0x1F78, 0x1F79, 1, 128},   {0x1F7A, 0x1F7B, 1, 112},
    {0x1F7C, 0x1F7D, 1, 126},   {0x1F80, 0x1F87, 1, 8},
    {0x1F90, 0x1F97, 1, 8},     {0x1FA0, 0x1FA7, 1, 8},
    {0x1FB0, 0x1FB1, 1, 8},     {0x1FB3, 0x1FB3, 1, 9},
    {0x1FBE, 0x1FBE, 1, -7205}, {0x1FC3, 0x1FC3, 1, 9},
    {0x1FD0, 0x1FD1, 1, 8},     {0x1FE0, 0x1FE1, 1, 8},
    {0x1FE5, 0x1FE5, 1, 7},     {0x1FF3, 0x1FF3, 1, 9},
};

char16_t UpperUnit(char16_t unit) {
  Range const* const range = std::lower_bound(
      std::begin(kRanges), std::end(kRanges), unit,
      [](Range const& entry, char16_t value) { return entry.last < value; });
  if (range == std::end(kRanges) || unit < range->first ||
      (unit - range->first) % range->step != 0) {
    return unit;
  }
  return static_cast<char16_t>(unit + range->delta);
}

}  // namespace

zWString zWString::ToUpper() const {
  std::u16string upper = text_;
  std::transform(upper.begin(), upper.end(), upper.begin(), UpperUnit);
  return zWString(std::move(upper));
}
