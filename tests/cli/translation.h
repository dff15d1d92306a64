// What the library makes of a text in a language.
#ifndef TABWERK_TESTS_CLI_TRANSLATION_H
#define TABWERK_TESTS_CLI_TRANSLATION_H

#include <string>

namespace tabwerk::test {

// Leaves 0 as the language.
std::u16string Translated(std::u16string const& text, int language);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_CLI_TRANSLATION_H
