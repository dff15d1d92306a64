// Texts and translations.
#include "cli/codes.h"

namespace tabwerk::tool {
namespace {

using enum ExitCode;

constexpr CodeEntry kTextCodes[] = {
    {510, "unclosed-section", "A section for several languages does not end",
     kFindings,
     "Without \")TS~\" the section is no section: it shows as it is stored, "
     "with its marker and all languages.",
     "#TS(Bolt¬Schraube)TS~"},
    {511, "nested-section", "A section begins inside another one", kFindings,
     "Sections do not nest. The first \")TS~\" behind the first \"#TS(\" ends "
     "the section, and what it leaves over is translated once more.",
     "#TS(Bolt¬Schraube)TS~ #TS(long¬lang)TS~"},
    {512, "stray-marker", "An end marker stands outside a section", kFindings,
     "A \")TS~\" that ends no section is text like any other, so users see it.",
     "#TS(Bolt¬Schraube)TS~"},
    {513, "blocked-section", "A section is blocked by an earlier one",
     kFindings,
     "The first section that lacks a language ends the translation of the "
     "text: the ones behind it show with their markers in that language, even "
     "where they have it.",
     "#TS(Bolt¬Schraube)TS~ #TS(long¬lang)TS~"},
    {530, "language-incomplete", "A language is less complete than it must be",
     ExitCode::kFindings,
     "The sections of the texts that are shown in that language are fewer than "
     "--fail-under asks for.",
     "tabwerk languages stock.db --cells --format csv -o todo.csv"},
    {531, "number-of-languages", "The languages that are named make no sense",
     ExitCode::kUsage,
     "Languages are numbered from 0 to 32767, in the order of the pieces of a "
     "section; each has one name of its own.",
     "tabwerk languages stock.db --languages en,de,fr"},
    {532, "no-such-language", "There is no such language", ExitCode::kUsage,
     "A language has a number, from 0, or one of the names that --languages "
     "gives.",
     "tabwerk languages stock.db --languages en,de,fr --language fr"},
};

}  // namespace

std::span<CodeEntry const> TextCodes() { return kTextCodes; }

}  // namespace tabwerk::tool
