#include "tests/support/random_run.h"

#include <cstdlib>

namespace tabwerk::test {
namespace {

#if defined(_WIN32) || defined(TABWERK_SANITIZED)
constexpr bool kSlow = true;
#else
constexpr bool kSlow = false;
#endif

}  // namespace

std::uint32_t Setting(char const* variable, std::uint32_t fallback) {
  char const* const text = std::getenv(variable);
  if (text == nullptr || *text == '\0') return fallback;
  return static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10));
}

std::uint32_t FirstSeed() { return Setting("TABWERK_SEED", 1); }

int OperationCount(int fallback) {
  return static_cast<int>(Setting(
      "TABWERK_OPERATIONS", static_cast<std::uint32_t>(Shortened(fallback))));
}

int Shortened(int number) noexcept { return kSlow ? number / 4 : number; }

}  // namespace tabwerk::test
