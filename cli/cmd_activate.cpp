// tabwerk activate: a row that was switched off comes back.
#include <optional>
#include <string>

#include "cli/row_command.h"

namespace tabwerk::tool {
namespace {

class ActivateCommand : public RowCommand {
 public:
  void Declare(Options& options) override {
    DeclareRow(options);
    DeclareId(options);
    options.Notes(
        "The row gets STATUS 0 and the last place.  A row that FILE ships\n"
        "switched off cannot be switched on.");
  }

 private:
  std::optional<Problem> Check() override {
    return CheckShippedStatus(files_, table_, id_);
  }
  std::optional<Problem> Change(RowEdit& edit) override {
    return edit.SetActive(id_, true);
  }
  std::string Done(RowEdit const& edit) const override {
    std::string text = "row " + std::to_string(id_) + " switched on";
    if (edit.Place() > 0) text += " at place " + std::to_string(edit.Place());
    return text;
  }
};

}  // namespace

extern CommandEntry const kActivateCommand;
CommandEntry const kActivateCommand = {
    "activate",
    Group::kChange,
    "Switch a row on again",
    {{"activate geo.db GEO.UDB -t CURRENCY --id 8",
      "the row is shown again, in the last place"}},
    &MakeCommand<ActivateCommand>};

}  // namespace tabwerk::tool
