#include "interp/token_buffer.h"

#include <algorithm>
#include <cwchar>
#include <string>

namespace tabwerk {
namespace {

constexpr wchar_t kQuote = L'"';

// True when the NUL-terminated text begins with the marker.
bool Begins(wchar_t const* text, std::wstring_view marker) {
  return *text == marker.front() &&
         std::wcsncmp(text, marker.data(), marker.size()) == 0;
}

}  // namespace

void TokenBuffer::SetLine(std::wstring_view line) {
  std::size_t const length = std::min(line.size(), kMaxLineLength);
  std::char_traits<wchar_t>::move(text_.data(), line.data(), length);
  SetLength(length);
}

void TokenBuffer::SetLine(std::u16string_view line) {
  std::size_t const length = std::min(line.size(), kMaxLineLength);
  std::transform(line.data(), line.data() + length, text_.data(),
                 [](char16_t unit) { return static_cast<wchar_t>(unit); });
  SetLength(length);
}

void TokenBuffer::SetLength(std::size_t length) {
  if (length < length_) {
    std::fill(text_.data() + length, text_.data() + length_, L'\0');
  }
  length_ = length;
}

wchar_t* TokenBuffer::Behind(wchar_t* cursor) {
  return cursor == &text_.back() ? cursor : cursor + 1;
}

wchar_t* TokenBuffer::NextToken(wchar_t** cursor, wchar_t separator) {
  wchar_t* place = *cursor;
  while (*place == L' ' || *place == L'\t') ++place;
  *cursor = place;
  if (*place == L'\0') return nullptr;
  wchar_t* const token = place;
  bool quoted = false;
  bool marked = false;
  for (; *place != L'\0'; ++place) {
    if (*place == separator && !quoted && !marked) break;
    // Quotes count inside a marker, and markers inside quotes.
    if (*place == kQuote) quoted = !quoted;
    marked = marked ? !Begins(place, L")TS~") : Begins(place, L"#TS(");
  }
  *place = L'\0';
  *cursor = place;
  return token;
}

}  // namespace tabwerk
