#include "fuzz/standard_streams.h"

#include <fcntl.h>

#include <cstdio>

#include "fuzz/fuzz_support.h"
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif
#ifdef TABWERK_SANITIZED
#include <sanitizer/common_interface_defs.h>
#endif

namespace tabwerk::fuzz {
namespace {

#ifdef _WIN32
int Open(std::filesystem::path const& path, bool writes) {
  int const how = writes ? _O_WRONLY | _O_CREAT | _O_TRUNC : _O_RDONLY;
  return _wopen(path.c_str(), how | _O_BINARY, 0600);
}
int Duplicate(int descriptor) { return _dup(descriptor); }
bool Put(int from, int to) { return _dup2(from, to) == 0; }
void Close(int descriptor) { (void)_close(descriptor); }
#else
int Open(std::filesystem::path const& path, bool writes) {
  int const how = writes ? O_WRONLY | O_CREAT | O_TRUNC : O_RDONLY;
  return open(path.c_str(), how | O_CLOEXEC, 0600);
}
int Duplicate(int descriptor) { return dup(descriptor); }
bool Put(int from, int to) { return dup2(from, to) == to; }
void Close(int descriptor) { (void)close(descriptor); }
#endif

void ForgetBuffers() {
  (void)std::fflush(stdout);
  (void)std::fflush(stderr);
  // Nothing that was read ahead from another file.
  (void)std::fflush(stdin);
  std::rewind(stdin);
  std::clearerr(stdin);
  std::clearerr(stdout);
  std::clearerr(stderr);
}

}  // namespace

StandardStreams::StandardStreams(std::filesystem::path const& input,
                                 std::filesystem::path const& output,
                                 std::filesystem::path const& errors) {
  ForgetBuffers();
  std::filesystem::path const* const files[] = {&input, &output, &errors};
  for (int i = 0; i < 3; ++i) {
    auto const index = static_cast<std::size_t>(i);
    before_[index] = Duplicate(i);
    int const file = Open(*files[index], i > 0);
    Require(before_[index] >= 0 && file >= 0 && Put(file, i),
            "the standard streams can be turned into files");
    Close(file);
  }
  std::rewind(stdin);
#ifdef TABWERK_SANITIZED
  __sanitizer_set_report_fd(
      reinterpret_cast<void*>(static_cast<std::intptr_t>(before_[2])));
#endif
}

StandardStreams::~StandardStreams() {
  ForgetBuffers();
#ifdef TABWERK_SANITIZED
  __sanitizer_set_report_fd(reinterpret_cast<void*>(std::intptr_t{2}));
#endif
  for (int i = 0; i < 3; ++i) {
    int const before = before_[static_cast<std::size_t>(i)];
    (void)Put(before, i);
    Close(before);
  }
}

}  // namespace tabwerk::fuzz
