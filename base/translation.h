// Text translation: the one part of the manager that tables call.
#ifndef TABWERK_BASE_TRANSLATION_H
#define TABWERK_BASE_TRANSLATION_H

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

// The manager's current language number.
short CurrentLanguage() noexcept;

}  // namespace tabwerk

#endif  // TABWERK_BASE_TRANSLATION_H
