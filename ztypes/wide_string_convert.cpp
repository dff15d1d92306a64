// zWString: between 16-bit units and other forms of text.
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string_view>
#include <utility>

#include "ztypes.h"

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kLargestCodePoint = 0x10FFFF;

bool IsHighSurrogate(char32_t value) { return (value & ~0x3FFu) == 0xD800; }
bool IsLowSurrogate(char32_t value) { return (value & ~0x3FFu) == 0xDC00; }
bool IsSurrogate(char32_t value) { return (value & ~0x7FFu) == 0xD800; }

void AppendUnits(char32_t value, std::u16string* text) {
  if (value > kLargestCodePoint) {
    value = kReplacement;
  }
  if (value <= 0xFFFF) {
    text->push_back(static_cast<char16_t>(value));
    return;
  }
  value -= 0x10000;
  text->push_back(static_cast<char16_t>(0xD800 + (value >> 10)));
  text->push_back(static_cast<char16_t>(0xDC00 + (value & 0x3FF)));
}

std::u16string FromWide(std::wstring_view wide) {
  if constexpr (sizeof(wchar_t) == sizeof(char16_t)) {
    return std::u16string(wide.begin(), wide.end());
  } else {
    std::u16string text;
    text.reserve(wide.size());
    for (wchar_t const value : wide) {
      AppendUnits(static_cast<char32_t>(value), &text);
    }
    return text;
  }
}

// The value at the start of text, which is not empty: a whole pair or one
// unit.  Takes it off the text.
char32_t TakeValue(std::u16string_view* text) {
  char32_t const first = text->front();
  text->remove_prefix(1);
  if (!IsHighSurrogate(first) || text->empty() ||
      !IsLowSurrogate(text->front())) {
    return first;
  }
  char32_t const second = text->front();
  text->remove_prefix(1);
  return 0x10000 + ((first & 0x3FF) << 10) + (second & 0x3FF);
}

void AppendUtf8(char32_t value, std::string* bytes) {
  auto const append = [bytes](char32_t byte) {
    bytes->push_back(static_cast<char>(static_cast<unsigned char>(byte)));
  };
  if (value < 0x80) {
    append(value);
    return;
  }
  if (value < 0x800) {
    append(0xC0 | (value >> 6));
  } else {
    if (value < 0x10000) {
      append(0xE0 | (value >> 12));
    } else {
      append(0xF0 | (value >> 18));
      append(0x80 | ((value >> 12) & 0x3F));
    }
    append(0x80 | ((value >> 6) & 0x3F));
  }
  append(0x80 | (value & 0x3F));
}

// What a first byte of UTF-8 demands of the bytes behind it.
struct Sequence {
  int more;                 // number of bytes to follow; -1: no first byte
  char32_t bits;            // of the value, from the first byte
  unsigned second_lowest;   // bounds of the second byte, which rule out long
  unsigned second_highest;  // forms, surrogates and values beyond the last
};

Sequence SequenceOf(unsigned first) {
  if (first < 0x80) {
    return {0, first, 0, 0};
  }
  if (first >= 0xC2 && first <= 0xDF) {
    return {1, first & 0x1F, 0x80, 0xBF};
  }
  if (first >= 0xE0 && first <= 0xEF) {
    return {2, first & 0x0F, first == 0xE0 ? 0xA0u : 0x80u,
            first == 0xED ? 0x9Fu : 0xBFu};
  }
  if (first >= 0xF0 && first <= 0xF4) {
    return {3, first & 0x07, first == 0xF0 ? 0x90u : 0x80u,
            first == 0xF4 ? 0x8Fu : 0xBFu};
  }
  return {-1, 0, 0, 0};
}

// The value at the start of bytes, which are not empty.  A sequence that
// breaks off counts as one replacement for all its bytes up to the break.
char32_t TakeUtf8(std::string_view* bytes) {
  Sequence const sequence =
      SequenceOf(static_cast<unsigned char>(bytes->front()));
  bytes->remove_prefix(1);
  if (sequence.more < 0) {
    return kReplacement;
  }
  char32_t value = sequence.bits;
  for (int index = 0; index < sequence.more; ++index) {
    unsigned const lowest = index == 0 ? sequence.second_lowest : 0x80;
    unsigned const highest = index == 0 ? sequence.second_highest : 0xBF;
    if (bytes->empty()) {
      return kReplacement;
    }
    unsigned const next = static_cast<unsigned char>(bytes->front());
    if (next < lowest || next > highest) {
      return kReplacement;
    }
    value = (value << 6) | (next & 0x3F);
    bytes->remove_prefix(1);
  }
  return value;
}

}  // namespace

zWString::zWString(wchar_t const* text) {
  if (text != nullptr) {
    text_ = FromWide(text);
  }
}

zWString::zWString(std::wstring const& text) : text_(FromWide(text)) {}

zWString::zWString(double value, int /*format*/) {
  if (std::isnan(value)) {
    text_ = u"nan";  // its sign means nothing
    return;
  }
  std::array<char, 64> digits;
  std::to_chars_result const result =
      std::to_chars(digits.data(), digits.data() + digits.size(), value);
  text_.assign(digits.data(), result.ptr);
}

zWString zWString::fromLatin1(char const* text) {
  return text == nullptr ? zWString() : fromLatin1(std::string_view(text));
}

zWString zWString::fromLatin1(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  for (char const byte : text) {
    units.push_back(static_cast<unsigned char>(byte));
  }
  return zWString(std::move(units));
}

zWString zWString::fromUtf8(char const* text) {
  return text == nullptr ? zWString() : fromUtf8(std::string_view(text));
}

zWString zWString::fromUtf8(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  while (!text.empty()) {
    AppendUnits(TakeUtf8(&text), &units);
  }
  return zWString(std::move(units));
}

std::wstring zWString::toStdWString() const {
  if constexpr (sizeof(wchar_t) == sizeof(char16_t)) {
    return std::wstring(text_.begin(), text_.end());
  } else {
    std::wstring wide;
    wide.reserve(text_.size());
    std::u16string_view rest = text_;
    while (!rest.empty()) {
      wide.push_back(static_cast<wchar_t>(TakeValue(&rest)));
    }
    return wide;
  }
}

std::string zWString::toUtf8() const {
  std::string bytes;
  bytes.reserve(text_.size());
  std::u16string_view rest = text_;
  while (!rest.empty()) {
    char32_t const value = TakeValue(&rest);
    AppendUtf8(IsSurrogate(value) ? kReplacement : value, &bytes);
  }
  return bytes;
}

std::string zWString::toLatin1() const {
  std::string bytes;
  bytes.reserve(text_.size());
  for (char16_t const unit : text_) {
    bytes.push_back(unit > 0xFF
                        ? '?'
                        : static_cast<char>(static_cast<unsigned char>(unit)));
  }
  return bytes;
}
