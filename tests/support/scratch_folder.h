// A folder of its own for a test, removed with everything in it at the end.
#ifndef TABWERK_TESTS_SUPPORT_SCRATCH_FOLDER_H
#define TABWERK_TESTS_SUPPORT_SCRATCH_FOLDER_H

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "ztypes.h"

namespace tabwerk::test {

class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(ScratchFolder const&) = delete;
  ScratchFolder& operator=(ScratchFolder const&) = delete;

  // The path of a file in the folder; name is UTF-8.
  zWString Path(std::string_view name) const;
  // Writes a whole file; the path.
  zWString Make(std::string_view name, std::string_view content) const;
  // The file's bytes; "(none)" where none is.
  std::string Content(std::string_view name) const;
  void SetReadOnly(std::string_view name, bool read_only) const;
  bool IsReadOnly(std::string_view name) const;
  void MakeFolder(std::string_view name) const;
  // The names of all entries, sorted.
  std::vector<std::string> Names() const;

  std::filesystem::path const& folder() const { return folder_; }

 private:
  std::filesystem::path Entry(std::string_view name) const;

  std::filesystem::path folder_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_SCRATCH_FOLDER_H
