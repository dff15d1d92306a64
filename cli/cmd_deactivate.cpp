// tabwerk deactivate: a row that is not shown any more.
#include <optional>
#include <string>

#include "cli/row_command.h"

namespace tabwerk::tool {
namespace {

class DeactivateCommand : public RowCommand {
 public:
  void Declare(Options& options) override {
    DeclareRow(options);
    DeclareId(options);
    options.Notes(
        "A shipped row or one of the user's gets STATUS 1 and gives up its\n"
        "place; the rows behind it move up.  What FILE ships stays as it is:\n"
        "the status of its rows is kept in the index of the user file.");
  }

 private:
  std::optional<Problem> Change(RowEdit& edit) override {
    return edit.SetActive(id_, false);
  }
  std::string Done(RowEdit const& edit) const override {
    static_cast<void>(edit);
    return "row " + std::to_string(id_) + " switched off";
  }
};

}  // namespace

extern CommandEntry const kDeactivateCommand;
CommandEntry const kDeactivateCommand = {
    "deactivate",
    Group::kChange,
    "Switch a row off",
    {{"deactivate geo.db GEO.UDB -t CURRENCY --id 8",
      "the row is not shown any more"}},
    &MakeCommand<DeactivateCommand>};

}  // namespace tabwerk::tool
