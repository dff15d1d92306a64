// tabwerk set: values of a row of the user's.
#include <optional>
#include <string>
#include <vector>

#include "cli/row_command.h"
#include "cli/text.h"

namespace tabwerk::tool {
namespace {

class SetCommand : public RowCommand {
 public:
  void Declare(Options& options) override {
    DeclareRow(options);
    DeclareId(options);
    options.Add("VALUES", words_, "COLUMN=VALUE …")
        .Required()
        .Value("COLUMN=VALUE");
    options.Notes(
        "Only rows of the user file have values that can be set; those of "
        "FILE\n"
        "are shipped with it.  A text takes the place of the old one in all\n"
        "languages; \"tabwerk dump --user\" shows it as it is stored.");
  }

 private:
  std::optional<Problem> Check() override {
    return ParseAssignments(words_, &assignments_);
  }
  std::optional<Problem> Change(RowEdit& edit) override {
    return edit.Set(id_, assignments_);
  }
  std::string Done(RowEdit const& edit) const override {
    std::string text = "row " + std::to_string(id_);
    char const* separator = " changed: ";
    for (CellChange const& change : edit.Changes()) {
      text += separator + change.column + " \"" + Escape(change.before) +
              "\" to \"" + Escape(change.after) + "\"";
      separator = ", ";
    }
    return text;
  }

  std::vector<std::string> words_;
  std::vector<Assignment> assignments_;
};

}  // namespace

extern CommandEntry const kSetCommand;
CommandEntry const kSetCommand = {
    "set",
    Group::kChange,
    "Change values of a row of a user file",
    {{"set geo.db GEO.UDB -t CURRENCY --id 20000 CODE=XTS DIGITS=2",
      "two columns of one row"}},
    &MakeCommand<SetCommand>};

}  // namespace tabwerk::tool
