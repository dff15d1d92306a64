// Index, order and status.
#include "cli/codes.h"

namespace tabwerk::tool {

std::span<CodeEntry const> IndexCodes() { return {}; }

}  // namespace tabwerk::tool
