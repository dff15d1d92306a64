// Where a command's output goes.
#ifndef TABWERK_CLI_OUT_FILE_H
#define TABWERK_CLI_OUT_FILE_H

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

#include "cli/errors.h"

namespace tabwerk::tool {

// Standard output, or a file that appears under its name when it is complete:
// it is written beside and moved there, and has the permissions of the one that
// it replaces.  Without that, the destructor removes what was written.  What is
// no regular file, such as a pipe or a device, is written into.
class OutFile {
 public:
  // path as behind -o; empty or "-" is standard output.
  explicit OutFile(std::string path);
  ~OutFile();
  OutFile(OutFile const&) = delete;
  OutFile& operator=(OutFile const&) = delete;

  // A problem for a folder, for a place that cannot be written and for a
  // database or index file, which output never replaces.
  std::optional<Problem> Open();
  void Write(std::string_view text);
  // True when what is written from now on is lost.
  bool Failed() const;
  // Hands all to the system; a problem when some of it was lost.
  std::optional<Problem> Flush();
  std::optional<Problem> Close();

  // For one of several files that are to appear together or not at all.  Before
  // Close: keeps the file that will be replaced, beside it, while this object
  // lives.
  std::optional<Problem> KeepReplaced();
  // After it: brings that file back, or takes the new one away; a problem when
  // that fails, and then the old file stays where it was kept.
  std::optional<Problem> Undo();

  bool IsTerminal() const;
  bool IsStandardOutput() const { return path_.empty(); }

 private:
  // The target's name with something behind it that no file has.
  std::filesystem::path FreeName(char const* suffix) const;
  // status is that of the file to be replaced.
  void OpenDraft(std::filesystem::file_status const& status);
  Problem NotWritten() const;

  std::string path_;
  std::filesystem::path target_;  // what the path leads to
  std::filesystem::path draft_;   // empty where the target is written into
  std::filesystem::path kept_;    // what was replaced; empty for nothing
  std::filesystem::perms kept_permissions_ = std::filesystem::perms::none;
  bool is_placed_ = false;  // the draft has its name
  bool to_error_ = false;   // standard error, by its path
  std::ofstream stream_;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_OUT_FILE_H
