// tabwerk move: a row to another place of the order.
#include <optional>
#include <string>

#include "cli/row_command.h"

namespace tabwerk::tool {
namespace {

class MoveCommand : public RowCommand {
 public:
  void Declare(Options& options) override {
    DeclareRow(options);
    DeclareId(options);
    constexpr char kPlace[] = "Place";
    options.Add("--before", before_, "In front of the row with this ID")
        .Value("ID")
        .Group(kPlace);
    options.Add("--after", after_, "Behind the row with this ID")
        .Value("ID")
        .Group(kPlace);
    options.AddFlag("--first", first_, "To the first place").Group(kPlace);
    options.AddFlag("--last", last_, "To the last place").Group(kPlace);
    options.Notes(
        "Shipped rows and those of the user move alike: the order is kept in\n"
        "the index of the user file.  The active rows are numbered 1, 2, 3 …\n"
        "anew.");
  }

 private:
  std::optional<Problem> Check() override {
    int const count = static_cast<int>(before_.has_value()) +
                      static_cast<int>(after_.has_value()) +
                      static_cast<int>(first_) + static_cast<int>(last_);
    if (count == 1) return std::nullopt;
    return Problem{TW(101), "", "a row moves to one place",
                   "name one of --before, --after, --first and --last"};
  }
  std::optional<Problem> Change(RowEdit& edit) override {
    using Kind = MoveTarget::Kind;
    MoveTarget target;
    if (first_) target.kind = Kind::kFirst;
    if (before_) target = {Kind::kBefore, *before_};
    if (after_) target = {Kind::kAfter, *after_};
    return edit.Move(id_, target);
  }
  std::string Done(RowEdit const& edit) const override {
    return "row " + std::to_string(id_) + " moved to place " +
           std::to_string(edit.Place());
  }

  std::optional<std::int32_t> before_;
  std::optional<std::int32_t> after_;
  bool first_ = false;
  bool last_ = false;
};

}  // namespace

extern CommandEntry const kMoveCommand;
CommandEntry const kMoveCommand = {
    "move",
    Group::kChange,
    "Move a row to another place of the order",
    {{"move geo.db GEO.UDB -t CURRENCY --id 978 --first", "the euro leads"},
     {"move geo.db GEO.UDB -t CURRENCY --id 978 --after 840",
      "or follows the dollar"}},
    &MakeCommand<MoveCommand>};

}  // namespace tabwerk::tool
