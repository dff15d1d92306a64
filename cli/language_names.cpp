#include "cli/language_names.h"

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

}  // namespace

void AddLanguagesOption(Options& options, LanguageNames* languages) {
  options
      .Add("--languages", languages->words_,
           "How many there are to be, or their names with commas; "
           "without, as many as any text has")
      .List()
      .Value("N|NAMES");
}

std::optional<Problem> LanguageNames::Parse() {
  if (words_.empty()) return std::nullopt;
  if (words_.size() > 1 || !IsNumber(words_.front())) {
    names_ = words_;
    count_ = names_.size();
  } else {
    std::string const& text = words_.front();
    auto const result =
        std::from_chars(text.data(), text.data() + text.size(), count_);
    if (result.ec != std::errc()) count_ = 0;
  }
  if (count_ >= 1 && count_ <= kMostLanguages) return std::nullopt;
  return Problem{TW(531), "",
                 "--languages: there are between 1 and 32768 languages",
                 "give their number, or their names as en,de,fr"};
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
