// The languages that a command is asked for.
#ifndef TABWERK_CLI_LANGUAGE_NAMES_H
#define TABWERK_CLI_LANGUAGE_NAMES_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cli/errors.h"

namespace tabwerk::tool {

class Options;

// Their number, and what they are called where that was said.
class LanguageNames {
 public:
  // Takes in what the option has set.
  std::optional<Problem> Parse();
  bool IsGiven() const { return !words_.empty(); }
  void SetCount(std::size_t count) { count_ = count; }
  std::size_t Count() const { return count_; }
  // Takes in which language alone is meant, when their number is known.
  std::optional<Problem> ParseOnly();
  bool Wants(std::size_t language) const {
    return !only_ || *only_ == language;
  }
  // Empty for a language without one.
  std::string Name(std::size_t language) const;
  // "1", or "1 (de)".
  std::string Title(std::size_t language) const;

 private:
  friend void AddLanguagesOption(Options& options, LanguageNames* languages);

  std::vector<std::string> words_;
  std::string only_word_;
  std::optional<std::size_t> only_;
  std::vector<std::string> names_;
  std::size_t count_ = 0;
};

// Adds --languages and --language.
void AddLanguagesOption(Options& options, LanguageNames* languages);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_LANGUAGE_NAMES_H
