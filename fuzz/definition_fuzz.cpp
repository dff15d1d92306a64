// Any text as a definition: every field lies inside the record, and so it does
// in what is written and in a copy.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "DBDefinition.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

// Every value lies inside the record.
void RequireSoundOffsets(DBDefinition const& definition) {
  for (auto const* field = definition.GetDefinition(); field != nullptr;
       field = field->next) {
    Require(field->offset >= 0);
    Require(field->offset <= definition.GetMemorySize());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  std::string const text(reinterpret_cast<char const*>(data), size);
  DBDefinition const definition(text.c_str());
  RequireSoundOffsets(definition);
  std::vector<char> buffer(32768);
  if (definition.GenerateString(buffer.data(), 32767) == 1) {
    RequireSoundOffsets(DBDefinition(buffer.data()));
  }
  DBDefinition const copy(definition);
  RequireSoundOffsets(copy);
  Require(copy.GetMemorySize() == definition.GetMemorySize());
  return 0;
}
