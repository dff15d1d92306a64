// zWString: the value itself and what needs no knowledge of other encodings.
#include <algorithm>
#include <utility>

#include "ztypes.h"

zWString::zWString() = default;
zWString::zWString(zWString const& other) = default;
zWString::zWString(zWString&& other) noexcept = default;
zWString& zWString::operator=(zWString const& other) = default;
zWString& zWString::operator=(zWString&& other) noexcept = default;
zWString::~zWString() = default;

zWString::zWString(char16_t const* text) {
  if (text != nullptr) {
    text_ = text;
  }
}

zWString::zWString(std::u16string_view text) : text_(text) {}

zWString::zWString(std::u16string text) : text_(std::move(text)) {}

char16_t const* zWString::utf16() const noexcept { return text_.c_str(); }

std::u16string_view zWString::view() const noexcept { return text_; }

std::vector<zWString> zWString::ToStringList(char16_t separator,
                                             bool keepEmpty) const {
  std::vector<zWString> pieces;
  std::u16string_view rest = text_;
  for (;;) {
    std::size_t const end = std::min(rest.find(separator), rest.size());
    if (keepEmpty || end > 0) {
      pieces.emplace_back(rest.substr(0, end));
    }
    if (end == rest.size()) {
      return pieces;
    }
    rest.remove_prefix(end + 1);
  }
}

std::size_t zWString::length() const noexcept { return text_.size(); }

bool zWString::isEmpty() const noexcept { return text_.empty(); }

int zWString::compare(zWString const& other) const noexcept {
  return text_.compare(other.text_);
}

zWString& zWString::operator+=(zWString const& other) {
  text_ += other.text_;
  return *this;
}

zWString operator+(zWString const& left, zWString const& right) {
  zWString joined = left;
  joined += right;
  return joined;
}

bool operator==(zWString const& left, zWString const& right) noexcept {
  return left.view() == right.view();
}

bool operator!=(zWString const& left, zWString const& right) noexcept {
  return !(left == right);
}

bool operator<(zWString const& left, zWString const& right) noexcept {
  return left.compare(right) < 0;
}
