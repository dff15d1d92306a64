// What is inside a database file.
#include "cli/codes.h"

namespace tabwerk::tool {

std::span<CodeEntry const> StructureCodes() { return {}; }

}  // namespace tabwerk::tool
