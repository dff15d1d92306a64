// Any text in any language: it reads as the plain model translates it.
#include <cstddef>
#include <cstdint>
#include <string>

#include "DBbase.h"
#include "base/translation.h"
#include "fuzz/fuzz_support.h"
#include "tests/support/plain_model.h"
#include "ztypes.h"

using tabwerk::fuzz::Require;

// The first byte is the language, two bytes each make a unit.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  // The plain model takes the square of the length.
  constexpr std::size_t kMostBytes = 4096;
  if (size == 0 || size > kMostBytes) return 0;
  auto const language = static_cast<short>(static_cast<signed char>(data[0]));
  DBbase::SetSprache(language);
  tabwerk::test::model::SetLanguage(language);
  auto const text = tabwerk::fuzz::AsUnits({data + 1, size - 1});
  auto translated = text;
  tabwerk::TranslateText(translated);
  Require(translated == tabwerk::test::model::Translate(text),
          "a text reads as the plain model translates it");
  Require(translated.size() <= text.size(), "no translation grows a text");
  Require(tabwerk::HasTranslation(text) || translated == text,
          "a text without a section stays");
  zWString through_manager(text);
  DBbase::DBTranslate(through_manager);
  Require(through_manager.view() == translated,
          "the manager translates as tables do");
  DBbase::SetSprache(0);
  return 0;
}
