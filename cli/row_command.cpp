#include "cli/row_command.h"

#include "DBbase.h"
#include "cli/options.h"
#include "cli/settings.h"
#include "cli/text.h"
#include "cli/user_file.h"
#include "cli/user_rows.h"

namespace tabwerk::tool {

void RowCommand::DeclareRow(Options& options) {
  AddDatabaseOptions(options, &files_, true);
  options.Add("-t,--table", table_, "The table").Required().Value("TABLE");
  AddWriteOptions(options, &write_);
}

void RowCommand::DeclareId(Options& options) {
  options.Add("--id", id_, "ID of the row").Required().Value("ID");
}

ExitCode RowCommand::Run() {
  if (auto const problem = CheckUserFileName(files_)) return Report(*problem);
  if (auto const problem = Check()) return Report(*problem);
  WriteTarget target(files_, write_);
  if (auto const problem = target.Prepare()) return Report(*problem);
  auto const problem = ChangeAndSave(target.files());
  // The manager lets go of copies before they are removed.
  static_cast<void>(DBbase::Init({}, {}));
  if (!saves_) target.DropBackup();
  if (problem) return Report(target.InUsersNames(*problem));
  Conclude(files_.user + ": " + table_ + " " + done_ + target.Ending());
  return ExitCode::kDone;
}

std::optional<Problem> RowCommand::ChangeAndSave(DatabaseFiles const& files) {
  NewUserFile user_file(files);
  if (auto problem = user_file.MakeWhenMissing()) return problem;
  if (auto problem = OpenToWrite(files)) return problem;
  DBTabelle* table = nullptr;
  if (auto problem = FindTable(files, table_, &table)) return problem;
  if (auto problem = CheckUserPart(files, table_, *table)) return problem;
  RowEdit edit(files, table_, *table);
  if (auto problem = Change(edit)) return problem;
  done_ = Done(edit);
  if (edit.Changes().empty()) {
    done_ += ", as it was: nothing to save";
    return std::nullopt;
  }
  saves_ = true;
  user_file.KeepIndex();
  if (auto problem = SaveUserFile(files)) return problem;
  user_file.Keep();
  return std::nullopt;
}

}  // namespace tabwerk::tool
