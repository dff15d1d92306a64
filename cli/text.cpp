#include "cli/text.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace tabwerk::tool {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// Characters that stand on the one before them, or that do not show.
constexpr Range kNoWidth[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x05BF, 0x05BF},
    {0x05C1, 0x05C2}, {0x05C4, 0x05C5}, {0x05C7, 0x05C7}, {0x0610, 0x061A},
    {0x064B, 0x065F}, {0x0670, 0x0670}, {0x06D6, 0x06DC}, {0x06DF, 0x06E4},
    {0x06E7, 0x06E8}, {0x06EA, 0x06ED}, {0x0711, 0x0711}, {0x0730, 0x074A},
    {0x0900, 0x0902}, {0x093A, 0x093A}, {0x093C, 0x093C}, {0x0941, 0x0948},
    {0x094D, 0x094D}, {0x0E31, 0x0E31}, {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E},
    {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200B, 0x200F}, {0x202A, 0x202E},
    {0x2060, 0x2064}, {0x2066, 0x206F}, {0x20D0, 0x20FF}, {0x3099, 0x309A},
    {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xFEFF, 0xFEFF}, {0xE0100, 0xE01EF},
};

// Characters that take two columns: East Asian ones and pictures.
constexpr Range kWide[] = {
    {0x1100, 0x115F},   {0x231A, 0x231B},   {0x2329, 0x232A},
    {0x23E9, 0x23EC},   {0x23F0, 0x23F0},   {0x23F3, 0x23F3},
    {0x25FD, 0x25FE},   {0x2614, 0x2615},   {0x2648, 0x2653},
    {0x267F, 0x267F},   {0x2693, 0x2693},   {0x26A1, 0x26A1},
    {0x26AA, 0x26AB},   {0x26BD, 0x26BE},   {0x26C4, 0x26C5},
    {0x26CE, 0x26CE},   {0x26D4, 0x26D4},   {0x26EA, 0x26EA},
    {0x26F2, 0x26F3},   {0x26F5, 0x26F5},   {0x26FA, 0x26FA},
    {0x26FD, 0x26FD},   {0x2705, 0x2705},   {0x270A, 0x270B},
    {0x2728, 0x2728},   {0x274C, 0x274C},   {0x274E, 0x274E},
    {0x2753, 0x2755},   {0x2757, 0x2757},   {0x2795, 0x2797},
    {0x27B0, 0x27B0},   {0x27BF, 0x27BF},   {0x2B1B, 0x2B1C},
    {0x2B50, 0x2B50},   {0x2B55, 0x2B55},   {0x2E80, 0x303E},
    {0x3041, 0xA4CF},   {0xA960, 0xA97F},   {0xAC00, 0xD7A3},
    {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
    {0xFFE0, 0xFFE6},   {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF},
    {0x1F900, 0x1F9FF}, {0x1FA70, 0x1FAFF}, {0x20000, 0x3FFFD},
};

template <std::size_t kSize>
bool IsIn(Range const (&ranges)[kSize], char32_t character) {
  auto const* const range = std::lower_bound(
      std::begin(ranges), std::end(ranges), character,
      [](Range const& it, char32_t value) { return it.last < value; });
  return range != std::end(ranges) && character >= range->first;
}

std::size_t WidthOf(char32_t character) {
  if (IsIn(kNoWidth, character)) return 0;
  return IsIn(kWide, character) ? 2 : 1;
}

// Takes the first character off a well-formed text.
char32_t NextCharacter(std::string_view* text) {
  auto const lead = static_cast<unsigned char>(text->front());
  std::size_t const length = lead < 0x80   ? 1
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                                           : 4;
  constexpr std::array<unsigned, 5> kLeadBits = {0, 0x7F, 0x1F, 0x0F, 0x07};
  char32_t character = lead & kLeadBits[length];
  for (std::size_t i = 1; i < length && i < text->size(); ++i) {
    character =
        character << 6 | (static_cast<unsigned char>((*text)[i]) & 0x3FU);
  }
  text->remove_prefix(std::min(length, text->size()));
  return character;
}

std::string EscapeControl(char character) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  switch (character) {
    case '\t':
      return "\\t";
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    default:
      break;
  }
  auto const value = static_cast<unsigned char>(character);
  return {'\\', 'x', kDigits[value >> 4], kDigits[value & 0xF]};
}

}  // namespace

std::string Escape(std::string_view utf8) {
  std::string text;
  text.reserve(utf8.size());
  for (char const character : utf8) {
    auto const value = static_cast<unsigned char>(character);
    if (character == '\\') {
      text += "\\\\";
    } else if (value < 0x20 || value == 0x7F) {
      text += EscapeControl(character);
    } else {
      text += character;
    }
  }
  return text;
}

std::size_t DisplayWidth(std::string_view utf8) {
  std::size_t width = 0;
  while (!utf8.empty()) width += WidthOf(NextCharacter(&utf8));
  return width;
}

std::string CutToWidth(std::string const& utf8, std::size_t width) {
  if (DisplayWidth(utf8) <= width) return utf8;
  std::string_view rest = utf8;
  std::size_t kept = 0;
  std::size_t used = 1;  // the ellipsis
  while (!rest.empty()) {
    used += WidthOf(NextCharacter(&rest));
    if (used > width) break;
    kept = utf8.size() - rest.size();
  }
  return utf8.substr(0, kept) + "…";
}

std::string Count(long long number, char const* noun) {
  return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

}  // namespace tabwerk::tool
