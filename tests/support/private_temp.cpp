#include "tests/support/private_temp.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <system_error>

namespace tabwerk::test {
namespace {

namespace fs = std::filesystem;

#ifdef _WIN32
constexpr char kVariable[] = "TMP";
// Wine shows the host's files as drive Z.
constexpr char kMemoryFolder[] = "Z:\\dev\\shm";

// An empty value removes the variable.
void SetVariable(char const* value) { _putenv_s(kVariable, value); }
#else
constexpr char kVariable[] = "TMPDIR";
constexpr char kMemoryFolder[] = "/dev/shm";

void SetVariable(char const* value) {
  if (*value == '\0') {
    unsetenv(kVariable);
  } else {
    setenv(kVariable, value, 1);
  }
}
#endif

bool TakesFiles(char const* folder) {
  std::error_code error;
  auto const probe =
      fs::path(folder) /
      ("tabwerk-probe-" + std::to_string(std::random_device()()));
  bool const made = fs::create_directory(probe, error);
  return made && fs::remove(probe, error);
}

}  // namespace

PrivateTemp::Setting::Setting(std::string const& folder) {
  if (char const* before = std::getenv(kVariable)) before_ = before;
  SetVariable(folder.c_str());
}

PrivateTemp::Setting::~Setting() { SetVariable(before_.value_or("").c_str()); }

PrivateTemp::PrivateTemp()
    : memory_(TakesFiles(kMemoryFolder)
                  ? std::optional<Setting>(std::in_place, kMemoryFolder)
                  : std::nullopt),
      setting_(folder_.folder().string()) {}

PrivateTemp::~PrivateTemp() = default;

std::vector<std::string> PrivateTemp::TempFiles() const {
  std::vector<std::string> names;
  for (auto const& entry : fs::directory_iterator(folder_.folder())) {
    if (!entry.is_directory()) {
      names.push_back(entry.path().filename().string());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

void PrivateTemp::RemoveTempFiles() const {
  for (auto const& name : TempFiles()) fs::remove(folder_.folder() / name);
}

}  // namespace tabwerk::test
