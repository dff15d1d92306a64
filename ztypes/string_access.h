// The library's own access to the buffer of a string.
#ifndef TABWERK_ZTYPES_STRING_ACCESS_H
#define TABWERK_ZTYPES_STRING_ACCESS_H

#include <string>

#include "ztypes.h"

namespace tabwerk {

struct StringAccess {
  // So that a text that is read again and again takes memory once.
  static std::u16string& Units(zWString& text) noexcept { return text.text_; }
};

}  // namespace tabwerk

#endif  // TABWERK_ZTYPES_STRING_ACCESS_H
