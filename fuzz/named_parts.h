// One input as several named files.
#ifndef TABWERK_FUZZ_NAMED_PARTS_H
#define TABWERK_FUZZ_NAMED_PARTS_H

#include <map>
#include <string>

namespace tabwerk::fuzz {

// An input is a first text and, behind it, any number of files, each begun by a
// line "--- NAME".  Names are reduced to letters, digits, "_", "-" and ".", so
// that they are plain ones.
struct NamedParts {
  explicit NamedParts(std::string const& input);

  std::string first;
  std::map<std::string, std::string> files;
};

}  // namespace tabwerk::fuzz

#endif  // TABWERK_FUZZ_NAMED_PARTS_H
