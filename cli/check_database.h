// The check of a database as a whole.
#ifndef TABWERK_CLI_CHECK_DATABASE_H
#define TABWERK_CLI_CHECK_DATABASE_H

#include <optional>
#include <vector>

#include "cli/check_report.h"
#include "cli/errors.h"
#include "cli/file_image.h"
#include "cli/session.h"
#include "cli/table_image.h"

namespace tabwerk::tool {

// Reads the files of a database and applies all rules to them.  No file is
// changed.
class DatabaseCheck {
 public:
  // quick: no rows and texts.
  DatabaseCheck(DatabaseFiles files, bool quick);

  // A problem: a file does not open.  Damage is none.
  std::optional<Problem> Read();
  // A problem: the library cannot be asked for the order.
  std::optional<Problem> Run(CheckReport& report);

  // As far as they could be read.
  long long TableCount() const;
  long long RowCount() const;

 private:
  bool HasUserFile() const { return !files_.user.empty(); }
  bool HasIndex() const;
  void CheckStructure(CheckReport& report) const;
  void CheckContents(CheckReport& report);
  std::optional<Problem> CheckLoaded(CheckReport& report) const;

  DatabaseFiles files_;
  bool quick_;
  FileImage main_;
  FileImage user_;
  std::vector<TableImage> tables_;  // in the order of the main file
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_CHECK_DATABASE_H
