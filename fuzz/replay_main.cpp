// Replays the inputs of a corpus folder through a fuzz target.
//
//   NAME_fuzz FOLDER
//
// Exit code 0 when every file was replayed, 1 when there is none or one cannot
// be read, 2 without a folder.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size);

namespace {

bool Replay(std::filesystem::path const& file) {
  std::ifstream stream(file, std::ios::binary);
  std::vector<char> const bytes{std::istreambuf_iterator<char>(stream), {}};
  if (!stream.is_open() || stream.bad()) return false;
  std::vector<std::uint8_t> const input(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(input.data(), input.size());
  return true;
}

int ReplayFolder(std::filesystem::path const& folder) {
  std::size_t count = 0;
  for (auto const& entry : std::filesystem::directory_iterator(folder)) {
    if (!Replay(entry.path())) {
      std::fprintf(stderr, "cannot read %s\n", entry.path().string().c_str());
      return 1;
    }
    ++count;
  }
  std::printf("%zu inputs replayed\n", count);
  return count > 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
    return 2;
  }
  try {
    return ReplayFolder(argv[1]);
  } catch (std::exception const& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
