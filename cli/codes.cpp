#include "cli/codes.h"

#include <fmt/format.h>

namespace tabwerk::tool {
namespace {

constexpr auto kRanges = {&FileCodes,  &ScriptCodes, &StructureCodes,
                          &IndexCodes, &TextCodes,   &RowCodes};

}  // namespace

std::string Code::Text() const { return fmt::format("TW{}", number); }

std::vector<CodeEntry> AllCodes() {
  std::vector<CodeEntry> all;
  for (auto const range : kRanges) {
    auto const entries = range();
    all.insert(all.end(), entries.begin(), entries.end());
  }
  return all;
}

CodeEntry const* FindCode(Code code) {
  for (auto const range : kRanges) {
    for (CodeEntry const& entry : range()) {
      if (entry.number == code.number) return &entry;
    }
  }
  return nullptr;
}

}  // namespace tabwerk::tool
