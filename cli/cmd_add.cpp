// tabwerk add: a row of the user's.
#include <optional>
#include <string>
#include <vector>

#include "cli/row_command.h"
#include "cli/text.h"

namespace tabwerk::tool {
namespace {

class AddCommand : public RowCommand {
 public:
  void Declare(Options& options) override {
    DeclareRow(options);
    options
        .Add("VALUES", words_,
             "COLUMN=VALUE …; a column that is not named gets 0 or an "
             "empty text")
        .Value("COLUMN=VALUE");
    options.Notes(
        "The row gets a new ID, from 20000, and the last place.  A text is\n"
        "taken as it stands, so \"#TS(Bolt¬Schraube)TS~\" holds two "
        "languages.\n"
        "A NAME that is taken or empty gets \"_NEW\".  A missing USERFILE is "
        "made.");
  }

 private:
  std::optional<Problem> Check() override {
    return ParseAssignments(words_, &assignments_);
  }
  std::optional<Problem> Change(RowEdit& edit) override {
    return edit.Add(assignments_, &id_);
  }
  std::string Done(RowEdit const& edit) const override {
    std::string text = "row " + std::to_string(id_) + " added";
    if (edit.Place() > 0) text += " at place " + std::to_string(edit.Place());
    for (CellChange const& change : edit.Changes()) {
      bool const renamed = change.after == change.before + "_NEW";
      if (!renamed) continue;
      text += ", " + change.column + " as \"" + Escape(change.after) +
              "\" because the other is taken";
    }
    return text;
  }

  std::vector<std::string> words_;
  std::vector<Assignment> assignments_;
};

}  // namespace

extern CommandEntry const kAddCommand;
CommandEntry const kAddCommand = {
    "add",
    Group::kChange,
    "Add one row to a user file",
    {{"add geo.db GEO.UDB -t CURRENCY CODE=XTS \"NAME=Test currency\"",
      "a row with a new ID at the end of the order"},
     {"add geo.db GEO.UDB -t CURRENCY CODE=XTS --dry-run",
      "which ID would it get?"}},
    &MakeCommand<AddCommand>};

}  // namespace tabwerk::tool
