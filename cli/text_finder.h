// Finding texts in the columns of a table, in all languages.
#ifndef TABWERK_CLI_TEXT_FINDER_H
#define TABWERK_CLI_TEXT_FINDER_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "DBTabelle.h"
#include "cli/errors.h"
#include "cli/translated_text.h"

namespace tabwerk::tool {

struct TextHit {
  long row;
  std::size_t column;  // among the fields of the definition
  // None for a text that reads the same in every language, and for one as it
  // is stored.
  std::optional<short> language;
  std::string text;  // UTF-8
};

// Adds what matches as a whole in the string columns of a table, by row, column
// and language.  Of all languages those count that a text has pieces for.
// Moves the table's selection and the manager's language.
std::optional<Problem> FindTexts(DBTabelle& table, std::string const& pattern,
                                 LanguageChoice const& language,
                                 std::vector<TextHit>* hits);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TEXT_FINDER_H
