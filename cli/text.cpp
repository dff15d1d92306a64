#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <set>

#include "cli/width_table.h"

namespace tabwerk::tool {

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

namespace {

constexpr char32_t kJoiner = 0x200D;
constexpr char32_t kPictureSelector = 0xFE0F;

bool IsIn(std::span<CharacterRange const> ranges, char32_t character) {
  auto const range = std::lower_bound(
      ranges.begin(), ranges.end(), character,
      [](CharacterRange const& it, char32_t value) { return it.last < value; });
  return range != ranges.end() && character >= range->first;
}

std::size_t WidthOf(char32_t character) {
  if (character < 0x80) return 1;
  if (IsIn(NoWidthRanges(), character)) return 0;
  return IsIn(WideRanges(), character) ? 2 : 1;
}

bool IsSkinTone(char32_t character) {
  return character >= 0x1F3FB && character <= 0x1F3FF;
}

char32_t FirstCharacter(std::string_view text) { return NextCharacter(&text); }

// Takes the first character off with all that stands on it or is joined to it;
// the columns that they take together.
std::size_t NextWidth(std::string_view* text) {
  std::size_t width = WidthOf(NextCharacter(text));
  bool joined = false;
  while (!text->empty()) {
    char32_t const next = FirstCharacter(*text);
    bool const belongs = joined || (width == 2 && IsSkinTone(next)) ||
                         (next >= 0x80 && WidthOf(next) == 0);
    if (!belongs) break;
    if (next == kPictureSelector && width == 1) width = 2;
    joined = next == kJoiner && width == 2;
    NextCharacter(text);
  }
  return width;
}

std::string EscapeControl(char character) {
  switch (character) {
    case '\t':
      return "\\t";
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    default:
      return fmt::format("\\x{:02X}", static_cast<unsigned char>(character));
  }
}

bool IsControl(char character) {
  auto const value = static_cast<unsigned char>(character);
  return value < 0x20 || value == 0x7F;
}

// The control characters from U+0080 on have two bytes.
bool StartsWithUpperControl(std::string_view text) {
  return text.size() > 1 && text[0] == '\xC2' &&
         static_cast<unsigned char>(text[1]) < 0xA0;
}

}  // namespace

std::string Escape(std::string_view utf8) {
  std::string text;
  text.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    if (utf8[i] == '\\') {
      text += "\\\\";
    } else if (StartsWithUpperControl(utf8.substr(i))) {
      text += EscapeControl(utf8[++i]);
    } else if (IsControl(utf8[i])) {
      text += EscapeControl(utf8[i]);
    } else {
      text += utf8[i];
    }
  }
  return text;
}

std::string OneBlankEach(std::string_view utf8) {
  std::string text;
  text.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    bool const upper = StartsWithUpperControl(utf8.substr(i));
    text += upper || IsControl(utf8[i]) ? ' ' : utf8[i];
    if (upper) ++i;
  }
  return text;
}

std::size_t CharacterCount(std::string_view utf8) {
  return static_cast<std::size_t>(
      std::count_if(utf8.begin(), utf8.end(), [](char const unit) {
        return (static_cast<unsigned char>(unit) & 0xC0) != 0x80;
      }));
}

std::string_view TakeCharacters(std::string_view* utf8, std::size_t count) {
  std::string_view const whole = *utf8;
  for (; count > 0 && !utf8->empty(); --count) NextCharacter(utf8);
  return whole.substr(0, whole.size() - utf8->size());
}

std::size_t DisplayWidth(std::string_view utf8) {
  std::size_t width = 0;
  while (!utf8.empty()) width += NextWidth(&utf8);
  return width;
}

std::string CutToWidth(std::string const& utf8, std::size_t width) {
  if (DisplayWidth(utf8) <= width) return utf8;
  std::string_view rest = utf8;
  std::size_t kept = 0;
  std::size_t used = 1;  // the ellipsis
  while (!rest.empty()) {
    used += NextWidth(&rest);
    if (used > width) break;
    kept = utf8.size() - rest.size();
  }
  return utf8.substr(0, kept) + "…";
}

std::vector<std::string> UniqueNames(std::vector<std::string> names) {
  std::set<std::string> taken(names.begin(), names.end());
  std::set<std::string> seen;
  for (std::string& name : names) {
    if (seen.insert(name).second) continue;
    std::string const first = name;
    for (int i = 2; !taken.insert(name).second; ++i) {
      name = fmt::format("{}_{}", first, i);
    }
  }
  return names;
}

std::string Count(long long number, char const* noun) {
  return fmt::format("{} {}{}", number, noun, number == 1 ? "" : "s");
}

std::string Grouped(long long number) {
  std::string text = fmt::format("{}", number);
  std::size_t const digits = text.find_first_of("0123456789");
  for (std::size_t i = text.size(); i > digits + 3;) {
    i -= 3;
    text.insert(i, " ");
  }
  return text;
}

}  // namespace tabwerk::tool
