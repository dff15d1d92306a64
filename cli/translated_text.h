// Texts with sections "#TS(Bolt¬Bolzen)TS~", which hold a piece for each
// language.
#ifndef TABWERK_CLI_TRANSLATED_TEXT_H
#define TABWERK_CLI_TRANSLATED_TEXT_H

#include <string>
#include <string_view>

#include "DBTabelle.h"

namespace tabwerk::tool {

class Options;

// Languages 0, 1 … that a text as it is stored has pieces for; 0 when it has no
// closed section and reads the same in every language.  Of several sections the
// one with most pieces counts.
int LanguageCount(std::u16string_view stored);

// The greatest count of a string column, 0 for another one.  Selects the column
// and the last row and sets the manager's language to kAsStored.
int LanguageCount(DBTabelle& table, char const* column);

// The manager's language in which texts read as they are stored: it has no
// piece anywhere.
inline constexpr short kAsStored = -1;

// What --language says: a number, "all" or "raw".
struct LanguageChoice {
  std::string text;

  bool IsAll() const { return text == "all"; }
  // The manager's language that was chosen; not for all.
  short Number() const;
};

// Adds --language N|all|raw.
void AddLanguageOption(Options& options, LanguageChoice* choice,
                       std::string const& help);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TRANSLATED_TEXT_H
