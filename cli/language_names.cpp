#include "cli/language_names.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

#include "cli/options.h"

namespace tabwerk::tool {
namespace {

// Language numbers are 16-bit and signed.
constexpr std::size_t kMostLanguages =
    std::size_t{std::numeric_limits<short>::max()} + 1;

bool IsNumber(std::string const& text) {
  return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

std::optional<std::size_t> ParseNumber(std::string const& text) {
  std::size_t number = 0;
  auto const result =
      std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec != std::errc()) return std::nullopt;
  return number;
}

// An empty name counts, as the others would be those of other pieces.
std::vector<std::string> SplitNames(std::vector<std::string> const& words) {
  std::vector<std::string> names;
  for (std::string const& word : words) {
    for (std::size_t begin = 0; begin <= word.size();) {
      std::size_t const end = std::min(word.find(',', begin), word.size());
      names.push_back(word.substr(begin, end - begin));
      begin = end + 1;
    }
  }
  return names;
}

std::optional<Problem> CheckNames(std::vector<std::string> const& names) {
  for (auto name = names.begin(); name != names.end(); ++name) {
    bool const is_second = std::find(names.begin(), name, *name) != name;
    if (!name->empty() && !is_second) continue;
    return Problem{TW(531), "",
                   name->empty() ? "--languages: a name is empty"
                                 : "--languages: " + *name + " is there twice",
                   "name each once, in the order of the pieces, as en,de,fr"};
  }
  return std::nullopt;
}

}  // namespace

void AddLanguagesOption(Options& options, LanguageNames* languages) {
  options
      .Add("--languages", languages->words_,
           "How many there are to be, or their names with commas; "
           "without, as many as any text has")
      .OneWord()
      .Value("N|NAMES");
  options
      .Add("--language", languages->only_word_,
           "This one only: its number, 0 is the first, or its name among "
           "--languages")
      .Value("N|NAME");
}

std::optional<Problem> LanguageNames::Parse() {
  if (words_.empty()) return std::nullopt;
  if (words_.size() == 1 && IsNumber(words_.front())) {
    count_ = ParseNumber(words_.front()).value_or(0);
  } else {
    names_ = SplitNames(words_);
    count_ = names_.size();
    if (auto problem = CheckNames(names_)) return problem;
  }
  if (count_ >= 1 && count_ <= kMostLanguages) return std::nullopt;
  return Problem{TW(531), "",
                 "--languages: there are between 1 and 32768 languages",
                 "give their number, or their names as en,de,fr"};
}

std::optional<Problem> LanguageNames::ParseOnly() {
  if (only_word_.empty()) return std::nullopt;
  auto const name = std::find(names_.begin(), names_.end(), only_word_);
  std::size_t number = count_;
  if (name != names_.end()) {
    number = static_cast<std::size_t>(name - names_.begin());
  } else if (IsNumber(only_word_)) {
    number = ParseNumber(only_word_).value_or(count_);
  }
  if (number < count_) {
    only_ = number;
    return std::nullopt;
  }
  return Problem{TW(532), "", "there is no language " + only_word_,
                 count_ == 0 ? "no text has sections for languages"
                             : "they are numbered from 0 to " +
                                   std::to_string(count_ - 1) +
                                   "; --languages gives them names"};
}

std::string LanguageNames::Name(std::size_t language) const {
  return language < names_.size() ? names_[language] : "";
}

std::string LanguageNames::Title(std::size_t language) const {
  std::string const name = Name(language);
  std::string const number = std::to_string(language);
  return name.empty() ? number : number + " (" + name + ")";
}

}  // namespace tabwerk::tool
