// What the commands have in common that change one row of a database.
#ifndef TABWERK_CLI_ROW_COMMAND_H
#define TABWERK_CLI_ROW_COMMAND_H

#include <cstdint>
#include <optional>
#include <string>

#include "cli/commands.h"
#include "cli/row_edit.h"
#include "cli/session.h"
#include "cli/writing.h"

namespace tabwerk::tool {

// Opens the database, has the row changed, and saves the user file.  A missing
// user file is made.
class RowCommand : public Command {
 public:
  ExitCode Run() override;

 protected:
  // Adds FILE, USERFILE, --table, --dry-run and --backup.
  void DeclareRow(Options& options);
  void DeclareId(Options& options);
  // What is wrong with the arguments, before anything is opened.
  virtual std::optional<Problem> Check() { return std::nullopt; }
  virtual std::optional<Problem> Change(RowEdit& edit) = 0;
  // What has been done: "row 20001 added at place 4".
  virtual std::string Done(RowEdit const& edit) const = 0;

  DatabaseFiles files_;
  std::string table_;
  std::int32_t id_ = 0;

 private:
  std::optional<Problem> ChangeAndSave(DatabaseFiles const& files);

  WriteOptions write_;
  std::string done_;
  bool saves_ = false;  // or has tried to
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_ROW_COMMAND_H
