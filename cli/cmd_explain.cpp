// tabwerk explain: what the number of a message means.
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <string>

#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/table_out.h"

namespace tabwerk::tool {
namespace {

// The number of "TW123", "tw123" or "123"; 0 for anything else.
Code CodeOf(std::string const& text) {
  std::size_t const begin =
      text.starts_with("TW") || text.starts_with("tw") ? 2 : 0;
  Code code;
  char const* const end = text.data() + text.size();
  auto const [stop, error] =
      std::from_chars(text.data() + begin, end, code.number);
  return error == std::errc() && stop == end ? code : Code{};
}

class ExplainCommand : public Command {
 public:
  void Declare(Options& options) override {
    options.Add("NUMBER", number_,
                "The number in a message; without, all are listed");
    AddOutputOptions(options, &output_);
  }

  ExitCode Run() override {
    if (number_.empty()) return Print(AllCodes());
    CodeEntry const* const entry = FindCode(CodeOf(number_));
    if (entry == nullptr) {
      return Report({TW(109), "", "there is no message " + number_,
                     "\"tabwerk explain\" lists them"});
    }
    return output_.format == "auto" ? Explain(*entry) : Print({*entry});
  }

 private:
  ExitCode Explain(CodeEntry const& entry) const {
    OutFile file(output_.file);
    if (auto const problem = file.Open()) return Report(*problem);
    std::string example = "  " + std::string(entry.example);
    for (std::size_t i = 0; (i = example.find('\n', i)) != example.npos; ++i) {
      example.insert(i + 1, "  ");
    }
    file.Write(fmt::format(
        "{} ({}): {}\n\n{}\n\nFor example:\n\n{}\n\nExit code {}.\n",
        Code{entry.number}.Text(), entry.name, entry.title, entry.explanation,
        example, static_cast<int>(entry.exit)));
    if (auto const problem = file.Close()) return Report(*problem);
    return ExitCode::kDone;
  }

  ExitCode Print(std::vector<CodeEntry> const& entries) const {
    TableOut out(output_);
    if (auto const problem = out.Begin({{"CODE"},
                                        {"NAME"},
                                        {"EXIT", CellType::kInteger},
                                        {"TITLE"},
                                        {"EXPLANATION"},
                                        {"EXAMPLE"}})) {
      return Report(*problem);
    }
    for (CodeEntry const& entry : entries) {
      if (!out.WantsMore()) break;
      out.Add({Code{entry.number}.Text(), entry.name,
               static_cast<std::int64_t>(entry.exit), entry.title,
               entry.explanation, entry.example});
    }
    if (auto const problem = out.End()) return Report(*problem);
    return ExitCode::kDone;
  }

  std::string number_;
  OutputOptions output_;
};

}  // namespace

extern CommandEntry const kExplainCommand;
CommandEntry const kExplainCommand = {
    "explain",
    Group::kHelp,
    "Say more about an error or a warning",
    {{"explain TW110", "one number"},
     {"explain --columns CODE,TITLE", "all numbers in short"}},
    &MakeCommand<ExplainCommand>};

}  // namespace tabwerk::tool
