// Replays inputs through a fuzz target.
//
//   NAME_fuzz FOLDER [GOLDEN_FOLDER]
//
// FOLDER is the target's corpus; of the second folder the bytes of every *.hex
// file are taken.  Exit code 0 when every file was replayed, 1 when a folder
// has none or one cannot be read, 2 for a wrong command line.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/hex_file.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size);

namespace {

namespace fs = std::filesystem;

std::optional<std::string> ReadInput(fs::path const& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(stream), {}};
  if (!stream.is_open() || stream.bad() || !fs::is_regular_file(file)) {
    return std::nullopt;
  }
  return bytes;
}

std::optional<std::string> ReadGolden(fs::path const& file) {
  auto const text = ReadInput(file);
  bool sound = false;
  auto bytes = tabwerk::test::BytesOfHex(text.value_or("?"), &sound);
  if (!sound || bytes.empty()) return std::nullopt;
  return bytes;
}

void Replay(fs::path const& file, std::string const& input) {
  // Told first: a find ends the process.
  std::printf("%s\n", file.filename().string().c_str());
  std::fflush(stdout);
  // A copy of exactly its size, so that reading behind its end is seen.
  std::vector<std::uint8_t> const bytes(input.begin(), input.end());
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

// False when there is no input, or one that cannot be read.
bool ReplayFolder(fs::path const& folder, bool golden) {
  std::size_t count = 0;
  for (auto const& entry : fs::directory_iterator(folder)) {
    if (golden && entry.path().extension() != ".hex") continue;
    auto const input =
        golden ? ReadGolden(entry.path()) : ReadInput(entry.path());
    if (!input) {
      std::fprintf(stderr, "cannot read %s\n", entry.path().string().c_str());
      return false;
    }
    Replay(entry.path(), *input);
    ++count;
  }
  if (count == 0) {
    std::fprintf(stderr, "nothing to replay in %s\n", folder.string().c_str());
  }
  std::printf("%zu inputs of %s replayed\n", count, folder.string().c_str());
  return count > 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2 || argc > 3) {
    std::fprintf(stderr, "usage: %s FOLDER [GOLDEN_FOLDER]\n", argv[0]);
    return 2;
  }
  try {
    bool const replayed = ReplayFolder(argv[1], false) &&
                          (argc < 3 || ReplayFolder(argv[2], true));
    return replayed ? 0 : 1;
  } catch (std::exception const& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
