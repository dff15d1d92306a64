// What there is to say of the texts of one table in one file.
#ifndef TABWERK_CLI_TEXT_FACTS_H
#define TABWERK_CLI_TEXT_FACTS_H

#include <cstdint>
#include <string>

#include "cli/file_content.h"

namespace tabwerk::tool {

// Sizes in 16-bit units count a text with its NUL, lengths without.
struct TextFacts {
  std::int64_t texts = 0;           // places that rows refer to
  std::int64_t units = 0;           // of the string store
  std::int64_t unused_units = 0;    // that no row refers to
  std::int64_t repeated = 0;        // texts that stand there once more
  std::int64_t repeated_units = 0;  // what these take
  std::int64_t longest = -1;        // -1: no row refers to a text
  std::int32_t longest_row = 0;     // of the file, from 0
  std::string longest_column;
};

TextFacts FactsOf(TableContent const& table);

// Languages that the texts of a file have pieces for; 1 at least.
int LanguagesOf(FileContent const& file);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TEXT_FACTS_H
