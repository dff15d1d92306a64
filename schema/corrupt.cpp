#include "schema/corrupt.h"

namespace tabwerk {
namespace {

std::uint64_t corrupt_count = 0;
char const* last_place = "";

}  // namespace

bool Corrupt(char const* where) noexcept {
  ++corrupt_count;
  last_place = where;
  return false;
}

std::uint64_t CorruptCount() noexcept { return corrupt_count; }

char const* LastCorruptPlace() noexcept { return last_place; }

}  // namespace tabwerk
