// A folder of its own for a test.
#ifndef TABWERK_TESTS_SUPPORT_TEMP_FOLDER_H
#define TABWERK_TESTS_SUPPORT_TEMP_FOLDER_H

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "ztypes.h"

namespace tabwerk::test {

// An empty folder of a new name, removed with everything in it at the end.  A
// file that cannot be removed then, for example because it is still open on
// Windows, fails the test.  File names are UTF-8; bytes are std::string.
class TempFolder {
 public:
  TempFolder();
  TempFolder(TempFolder const&) = delete;
  TempFolder& operator=(TempFolder const&) = delete;
  ~TempFolder();

  zWString Path(std::string const& name) const;
  // The same as UTF-8, for example for a child process.
  std::string PathUtf8(std::string const& name) const;
  std::filesystem::path const& folder() const { return folder_; }

  void WriteBytes(std::string const& name, std::string_view bytes) const;
  // WriteBytes; the path.
  zWString Make(std::string const& name, std::string_view bytes) const;
  void MakeFolder(std::string const& name) const;
  // Empty for a file that is not there.
  std::string ReadBytes(std::string const& name) const;
  // ReadBytes, but "(none)" for a file that is not there.
  std::string Content(std::string const& name) const;
  bool Exists(std::string const& name) const;
  void SetReadOnly(std::string const& name, bool read_only) const;
  bool IsReadOnly(std::string const& name) const;
  // The names of all files and folders in the folder, sorted.
  std::vector<std::string> Names() const;

 private:
  std::filesystem::path At(std::string const& name) const;

  std::filesystem::path folder_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_TEMP_FOLDER_H
