// Texts and translations.
#include "cli/codes.h"

namespace tabwerk::tool {

std::span<CodeEntry const> TextCodes() { return {}; }

}  // namespace tabwerk::tool
