// Text translation: the one part of the manager that tables call.
#ifndef TABWERK_BASE_TRANSLATION_H
#define TABWERK_BASE_TRANSLATION_H

#include <optional>
#include <string>
#include <string_view>

namespace tabwerk {

// True when text has a "#TS(", so that translating may change it.
bool HasTranslation(std::u16string_view text) noexcept;

// Replaces the "#TS(" … ")TS~" sections of text, front to back, by their
// pieces of the manager's current language, until a section lacks that piece
// or no section is left.  What a replacement yields is translated, too.
// Linear in the length of the text for texts without nested markers.
void TranslateText(std::u16string& text);

// For a text that begins with a section: the unit that its translation begins
// with, if it has one other than "#" (a section that is not closed stays).
// Nothing where that cannot be told at once.
std::optional<char16_t> FirstTranslatedUnit(std::u16string_view text,
                                            short language) noexcept;

// The manager's current language number.
short CurrentLanguage() noexcept;

}  // namespace tabwerk

#endif  // TABWERK_BASE_TRANSLATION_H
