// The standard streams of the process as files.
#ifndef TABWERK_FUZZ_STANDARD_STREAMS_H
#define TABWERK_FUZZ_STANDARD_STREAMS_H

#include <array>
#include <filesystem>

namespace tabwerk::fuzz {

// While it lives, standard input comes from the first file and what is written
// to standard output and standard error goes into the others.  Reports of a
// sanitizer go where standard error went before.
class StandardStreams {
 public:
  StandardStreams(std::filesystem::path const& input,
                  std::filesystem::path const& output,
                  std::filesystem::path const& errors);
  ~StandardStreams();
  StandardStreams(StandardStreams const&) = delete;
  StandardStreams& operator=(StandardStreams const&) = delete;

 private:
  std::array<int, 3> before_;
};

}  // namespace tabwerk::fuzz

#endif  // TABWERK_FUZZ_STANDARD_STREAMS_H
