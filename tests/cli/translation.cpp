#include "tests/cli/translation.h"

#include "DBbase.h"
#include "ztypes.h"

namespace tabwerk::test {

std::u16string Translated(std::u16string const& text, int language) {
  DBbase::SetSprache(static_cast<short>(language));
  zWString translated(text);
  DBbase::DBTranslate(translated);
  DBbase::SetSprache(0);
  return std::u16string(translated.view());
}

}  // namespace tabwerk::test
