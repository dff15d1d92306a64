// Any text in any language: a translation never grows the text, and a text
// without a section stays as it is.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "DBbase.h"
#include "base/translation.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

// The first byte is the language, two bytes each make a unit.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  if (size == 0) return 0;
  DBbase::SetSprache(static_cast<short>(static_cast<signed char>(data[0])));
  std::u16string text((size - 1) / 2, u'\0');
  if (!text.empty()) std::memcpy(text.data(), data + 1, 2 * text.size());
  auto translated = text;
  tabwerk::TranslateText(translated);
  Require(translated.size() <= text.size());
  Require(tabwerk::HasTranslation(text) || translated == text);
  return 0;
}
