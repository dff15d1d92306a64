// zString.
#include "ztypes.h"

zString::zString() = default;
zString::zString(zString const& other) = default;
zString::zString(zString&& other) noexcept = default;
zString& zString::operator=(zString const& other) = default;
zString& zString::operator=(zString&& other) noexcept = default;
zString::~zString() = default;

zString::zString(char const* text) {
  if (text != nullptr) {
    text_ = text;
  }
}

zString::zString(std::string_view text) : text_(text) {}

char const* zString::c_str() const noexcept { return text_.c_str(); }

std::string_view zString::view() const noexcept { return text_; }

std::size_t zString::length() const noexcept { return text_.size(); }

bool zString::isEmpty() const noexcept { return text_.empty(); }

int zString::compare(zString const& other) const noexcept {
  return text_.compare(other.text_);
}

bool operator==(zString const& left, zString const& right) noexcept {
  return left.view() == right.view();
}

bool operator!=(zString const& left, zString const& right) noexcept {
  return !(left == right);
}
