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

}  // namespace

void AddLanguagesOption(Options& options, LanguageNames* languages) {
  options
      .Add("--languages", languages->words_,
           "How many there are to be, or their names with commas; "
           "without, as many as any text has")
      .List()
      .Value("N|NAMES");
  options
      .Add("--language", languages->only_word_,
           "This one only: its number, 0 is the first, or its name among "
           "--languages")
      .Value("N|NAME");
}

std::optional<Problem> LanguageNames::Parse() {
  if (words_.empty()) return std::nullopt;
  if (words_.size() > 1 || !IsNumber(words_.front())) {
    names_ = words_;
    count_ = names_.size();
  } else {
    count_ = ParseNumber(words_.front()).value_or(0);
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
