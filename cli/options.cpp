#include "cli/options.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <system_error>
#include <utility>

namespace tabwerk::tool {
namespace {

// The library writes "FORMAT:{csv,tsv}": the name, then what is checked.
void SplitType(std::string const& type, OptionText* text) {
  std::size_t const colon = type.find(':');
  text->value = type.substr(0, colon);
  if (colon == type.npos || type[colon + 1] != '{') return;
  std::string_view rest = std::string_view(type).substr(colon + 2);
  rest = rest.substr(0, rest.find('}'));
  while (!rest.empty()) {
    std::size_t const length = std::min(rest.find(','), rest.size());
    text->choices.emplace_back(rest.substr(0, length));
    rest.remove_prefix(std::min(length + 1, rest.size()));
  }
}

bool NamesFile(std::string_view value) {
  constexpr std::array<std::string_view, 3> kOthers = {"SCRIPT", "ROWS", "DIR"};
  return value.ends_with("FILE") ||
         std::find(kOthers.begin(), kOthers.end(), value) != kOthers.end();
}

OptionText TextOf(CLI::Option const& option) {
  OptionText text;
  for (auto const& name : option.get_snames()) {
    text.short_names.push_back("-" + name);
  }
  for (auto const& name : option.get_lnames()) {
    text.long_names.push_back("--" + name);
  }
  if (option.get_items_expected_max() > 0) {
    SplitType(option.get_type_name(), &text);
  }
  if (text.IsPositional()) text.value = option.get_single_name();
  text.takes_file = NamesFile(text.value);
  text.description = option.get_description();
  text.group = option.get_group();
  text.is_required = option.get_required();
  text.is_repeated = text.IsPositional() && option.get_expected_max() > 1;
  return text;
}

// What is wrong with a text that is to be a whole number; the text becomes the
// plain number, as the library would take "010" for 8.
template <typename Number>
std::string TakeWholeNumber(std::string& text) {
  std::string_view digits = text;
  if (digits.starts_with('+')) digits.remove_prefix(1);
  Number number = 0;
  char const* const end = digits.data() + digits.size();
  auto const [stop, error] = std::from_chars(digits.data(), end, number);
  if (stop != end || error == std::errc::invalid_argument) {
    return "\"" + text + "\" is no whole number";
  }
  if (error == std::errc::result_out_of_range) {
    return text + (text.starts_with('-') ? " is too small" : " is too large");
  }
  text = std::to_string(number);
  return "";
}

template <typename Number>
void TakeWholeNumbers(CLI::Option& option) {
  option.transform(CLI::Validator(&TakeWholeNumber<Number>, ""));
}

std::string NotBetween(std::string const& text, double least, double most) {
  double number = 0;
  char const* const end = text.data() + text.size();
  auto const [stop, error] = std::from_chars(text.data(), end, number);
  bool const fits =
      stop == end && error == std::errc() && number >= least && number <= most;
  if (fits) return "";
  return fmt::format("\"{}\" is no number from {} to {}", text, least, most);
}

// The library counts the values: "--id: 1 required ID missing".
std::string WrongCount(std::string const& what) {
  std::string const option = what.substr(0, what.find(':'));
  bool const is_missing = what.ends_with(" missing");
  return option + (is_missing ? " needs a value" : " is given twice");
}

}  // namespace

Option& Option::Value(std::string const& name) {
  option_->type_name(name);
  return *this;
}

Option& Option::Group(std::string const& name) {
  option_->group(name);
  return *this;
}

Option& Option::Required(bool required) {
  option_->required(required);
  return *this;
}

Option& Option::Describe(std::string const& help) {
  option_->description(help);
  return *this;
}

Option& Option::OneWord() {
  option_->allow_extra_args(false);
  return *this;
}

Option& Option::List() {
  option_->delimiter(',');
  return OneWord();
}

Option& Option::OneOf(std::vector<std::string> const& choices) {
  option_->check(CLI::IsMember(choices));
  return *this;
}

Option& Option::NotNegative() {
  option_->check([](std::string const& text) {
    return text.starts_with('-') ? text + " is less than 0" : std::string();
  });
  return *this;
}

Option& Option::Between(double least, double most) {
  option_->check([least, most](std::string const& text) {
    return NotBetween(text, least, most);
  });
  return *this;
}

Option& Option::Check(std::string (*wrong)(std::string const& text)) {
  option_->check(wrong);
  return *this;
}

Options::Options(std::string const& description, std::string const& program)
    : app_(std::make_shared<CLI::App>(description, program)) {
  app_->require_subcommand(1);
}

Options::Options(std::shared_ptr<CLI::App> app) : app_(std::move(app)) {}

Options Options::AddCommand(std::string const& name,
                            std::string const& summary) {
  return Options(app_->get_subcommand_ptr(app_->add_subcommand(name, summary)));
}

template <typename T>
Option Options::Bind(char const* names, T& value, std::string const& help) {
  return Option(app_->add_option(names, value, help));
}

template <typename Number, typename T>
Option Options::BindWhole(char const* names, T& value,
                          std::string const& help) {
  CLI::Option* const option = app_->add_option(names, value, help);
  TakeWholeNumbers<Number>(*option);
  return Option(option);
}

Option Options::Add(char const* names, std::string& value,
                    std::string const& help) {
  return Bind(names, value, help);
}
Option Options::Add(char const* names, std::int32_t& value,
                    std::string const& help) {
  return BindWhole<std::int32_t>(names, value, help);
}
Option Options::Add(char const* names, long long& value,
                    std::string const& help) {
  return BindWhole<long long>(names, value, help);
}
Option Options::Add(char const* names, std::optional<std::string>& value,
                    std::string const& help) {
  return Bind(names, value, help);
}
Option Options::Add(char const* names, std::optional<std::int32_t>& value,
                    std::string const& help) {
  return BindWhole<std::int32_t>(names, value, help);
}
Option Options::Add(char const* names, std::optional<long long>& value,
                    std::string const& help) {
  return BindWhole<long long>(names, value, help);
}
Option Options::Add(char const* names, std::optional<double>& value,
                    std::string const& help) {
  return Bind(names, value, help);
}
Option Options::Add(char const* names, std::vector<std::string>& values,
                    std::string const& help) {
  return Bind(names, values, help);
}
Option Options::Add(char const* names, std::vector<std::int32_t>& values,
                    std::string const& help) {
  return BindWhole<std::int32_t>(names, values, help);
}

Option Options::AddFlag(char const* names, bool& value,
                        std::string const& help) {
  return Option(app_->add_flag(names, value, help));
}

Option Options::AddHelp(char const* names, std::string const& help) {
  return Option(app_->set_help_flag(names, help));
}

Option Options::AddVersion(char const* names, std::string const& version,
                           std::string const& help) {
  return Option(app_->set_version_flag(names, version, help));
}

Option Options::Find(char const* name) {
  return Option(app_->get_option(name));
}

void Options::Notes(std::string const& text) { app_->footer(text); }

std::string Options::Notes() const { return app_->get_footer(); }

std::vector<OptionText> Options::Texts() const {
  std::vector<OptionText> texts;
  for (CLI::Option const* option : std::as_const(*app_).get_options()) {
    texts.push_back(TextOf(*option));
  }
  return texts;
}

std::string Options::Given(char const* name) const {
  CLI::Option const* const option =
      std::as_const(*app_).get_option_no_throw(name);
  if (option == nullptr || option->results().empty()) return "";
  return option->results().back();
}

Parsed Options::Parse(std::vector<std::string> arguments) {
  // The library takes them from the end.
  std::reverse(arguments.begin(), arguments.end());
  try {
    app_->parse(std::move(arguments));
  } catch (CLI::CallForVersion const& answer) {
    return {Parsed::Outcome::kVersion, answer.what()};
  } catch (CLI::Success const&) {
    return {Parsed::Outcome::kHelp, ""};
  } catch (CLI::ExtrasError const&) {
    return {
        Parsed::Outcome::kWrong,
        fmt::format("not expected: {}", fmt::join(app_->remaining(true), " "))};
  } catch (CLI::RequiredError const& error) {
    bool const has_command = !app_->get_subcommands().empty();
    return {Parsed::Outcome::kWrong,
            has_command ? error.what() : "no command is named"};
  } catch (CLI::ArgumentMismatch const& error) {
    return {Parsed::Outcome::kWrong, WrongCount(error.what())};
  } catch (CLI::ParseError const& error) {
    return {Parsed::Outcome::kWrong, error.what()};
  }
  return {};
}

bool Options::IsChosen() const { return app_->parsed(); }

}  // namespace tabwerk::tool
