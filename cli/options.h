// What a command takes from its part of the command line.
//
// The argument library is known to options.cpp alone: it takes a compiler
// longer than the whole command that declares some options.
#ifndef TABWERK_CLI_OPTIONS_H
#define TABWERK_CLI_OPTIONS_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tabwerk::tool {

// One option that has been added; a handle that the parser outlives.
class Option {
 public:
  explicit Option(CLI::Option* option) : option_(option) {}

  // What its value is called in help: "FILE".
  Option& Value(std::string const& name);
  // Its heading in help.
  Option& Group(std::string const& name);
  Option& Required(bool required = true);
  // Says something else of it than was said when it was added.
  Option& Describe(std::string const& help);
  // It takes one word each time that it is given, not all that follow.
  Option& OneWord();
  // As OneWord; in the word are values with commas.
  Option& List();

  // What the value is checked for.
  Option& OneOf(std::vector<std::string> const& choices);
  Option& NotNegative();
  Option& Between(double least, double most);
  // wrong says what is wrong with a text; nothing: it will do.
  Option& Check(std::string (*wrong)(std::string const& text));

 private:
  CLI::Option* option_;
};

// One option as it is listed in help, manual page and completions.
struct OptionText {
  std::vector<std::string> short_names;  // "-t"
  std::vector<std::string> long_names;   // "--table"
  std::string value;                     // "TABLE"; empty: takes none
  std::vector<std::string> choices;      // where only these are taken
  std::string description;
  std::string group;
  bool is_required = false;
  bool is_repeated = false;
  bool takes_file = false;

  bool IsPositional() const {
    return short_names.empty() && long_names.empty();
  }
};

// What became of a command line.
struct Parsed {
  enum class Outcome { kRun, kHelp, kVersion, kWrong };
  Outcome outcome = Outcome::kRun;
  std::string text;  // the version, or what is wrong
};

// The options of a program or of one of its commands; a handle, copies of
// which mean the same.
class Options {
 public:
  // Those of a program that takes one command.
  Options(std::string const& description, std::string const& program);

  // Those of a command of the program.
  Options AddCommand(std::string const& name, std::string const& summary);

  // Each is bound to a variable, which has to live as long as this and is left
  // alone where the option is not given.  names is "-t,--table", or "FILE" for
  // an operand.
  Option Add(char const* names, std::string& value, std::string const& help);
  Option Add(char const* names, std::int32_t& value, std::string const& help);
  Option Add(char const* names, long long& value, std::string const& help);
  Option Add(char const* names, std::optional<std::string>& value,
             std::string const& help);
  Option Add(char const* names, std::optional<std::int32_t>& value,
             std::string const& help);
  Option Add(char const* names, std::optional<long long>& value,
             std::string const& help);
  Option Add(char const* names, std::optional<double>& value,
             std::string const& help);
  Option Add(char const* names, std::vector<std::string>& values,
             std::string const& help);
  Option Add(char const* names, std::vector<std::int32_t>& values,
             std::string const& help);
  Option AddFlag(char const* names, bool& value, std::string const& help);
  Option AddHelp(char const* names, std::string const& help);
  Option AddVersion(char const* names, std::string const& version,
                    std::string const& help);
  // One that has been added.
  Option Find(char const* name);

  // What help says below the options.
  void Notes(std::string const& text);
  std::string Notes() const;
  // In the order in which they were added.
  std::vector<OptionText> Texts() const;

  // The last word that the command line gave to an option of this name, even
  // where the line was wrong; empty for none and where there is no such option.
  std::string Given(char const* name) const;
  // Sets what the options are bound to; for those of a program.
  Parsed Parse(std::vector<std::string> arguments);
  // Whether the command line that was parsed names this command.
  bool IsChosen() const;

 private:
  explicit Options(std::shared_ptr<CLI::App> app);
  template <typename T>
  Option Bind(char const* names, T& value, std::string const& help);
  template <typename Number, typename T>
  Option BindWhole(char const* names, T& value, std::string const& help);

  std::shared_ptr<CLI::App> app_;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_OPTIONS_H
