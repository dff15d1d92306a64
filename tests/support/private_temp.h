// A folder for temporary files that a test has for itself.
#ifndef TABWERK_TESTS_SUPPORT_PRIVATE_TEMP_H
#define TABWERK_TESTS_SUPPORT_PRIVATE_TEMP_H

#include <optional>
#include <string>
#include <vector>

#include "tests/support/temp_folder.h"

namespace tabwerk::test {

// While it lives, every temporary file and every TempFolder of this process
// lies in a new folder of its own.  Where the system has a file system in
// memory, that folder is there: a sweep that saves thousands of times need not
// wait for the disk.  One at a time; it outlives the TempFolders in it, so a
// fixture names it as its first base.
class PrivateTemp {
 public:
  PrivateTemp();
  PrivateTemp(PrivateTemp const&) = delete;
  PrivateTemp& operator=(PrivateTemp const&) = delete;
  ~PrivateTemp();

  // Names of the files in the folder, without folders; sorted.
  std::vector<std::string> TempFiles() const;
  // Removes these files.
  void RemoveTempFiles() const;

 private:
  class Setting {
   public:
    explicit Setting(std::string const& folder);
    ~Setting();

   private:
    std::optional<std::string> before_;
  };

  // The first setting says where the folder is made, the second one names it.
  std::optional<Setting> memory_;
  TempFolder folder_;
  Setting setting_;
};

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_PRIVATE_TEMP_H
