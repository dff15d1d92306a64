// The texts of a string column as a host reads them.
#ifndef TABWERK_TABLE_TEXT_COLUMN_H
#define TABWERK_TABLE_TEXT_COLUMN_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "DBDefinition.h"
#include "base/translation.h"
#include "schema/bytes.h"
#include "schema/part.h"
#include "table/row_walk.h"

namespace tabwerk {

// Reads the texts of one column in the current language, without a copy where
// nothing is to be translated.
class TextColumn {
 public:
  TextColumn(DBTabelle& table, DBFeld const* field)
      : column_(ColumnOf(table, field, DBTypeString)) {}

  // The store from the text of the walk's present row on, that text and those
  // behind it, as it is stored; nothing as for Read.
  std::optional<std::u16string_view> StoredUnits(RowWalk const& walk) const {
    std::int32_t index = 0;
    if (!walk.Read(column_, &index)) return std::nullopt;
    return walk.part().strings->UnitsFrom(index);
  }
  // False when that cannot be text in any language, as far as that can be told
  // without translating: what stands before the first "#" is the same in all.
  static bool MayBe(std::u16string_view units, std::u16string_view text) {
    std::size_t same = 0;
    while (same < text.size() && same < units.size() &&
           units[same] == text[same]) {
      if (units[same] == kSectionStart) return true;
      ++same;
    }
    char16_t const differs = same < units.size() ? units[same] : u'\0';
    if (differs == kSectionStart && same == 0) return MayBegin(units, text);
    return differs == kSectionStart || (differs == 0 && same == text.size());
  }

  // Moves the walk over rows behind its present one of which MayBe is false by
  // their first unit.  Most rows differ there from a text that is searched.
  void SkipOthers(RowWalk* walk, std::u16string_view text) const {
    auto const& strings = *walk->part().strings;
    auto const* const units = strings.data();
    auto const count = strings.count();
    char16_t const first = text.empty() ? u'\0' : text.front();
    walk->SkipWhile<std::int32_t>(column_, [=](std::int32_t index) {
      // Places that name no text, negative ones too, are looked at singly.
      auto const place = static_cast<std::uint32_t>(index);
      if (place >= count) return false;
      auto const unit =
          LoadValue<char16_t>(units + std::size_t{place} * sizeof(char16_t));
      return unit != first && unit != kSectionStart;
    });
  }

  // Text of the walk's present row; nothing when the column is no string or
  // the row names no text.  Valid until the next call.  Throws std::bad_alloc.
  std::optional<std::u16string_view> Read(RowWalk const& walk) {
    return ReadFrom(StoredUnits(walk));
  }
  // The same for what StoredUnits gave.
  std::optional<std::u16string_view> ReadFrom(
      std::optional<std::u16string_view> units) {
    if (!units) return std::nullopt;
    auto const stored = ScanText(*units);
    if (!stored.has_section_start) return stored.text;
    translated_ = stored.text;
    TranslateText(translated_);
    return translated_;
  }

 private:
  // MayBe for units that begin with a section, and a text that does not.
  static bool MayBegin(std::u16string_view units, std::u16string_view text) {
    auto const first = FirstTranslatedUnit(units, CurrentLanguage());
    return !first || (!text.empty() && *first == text.front());
  }

  Column column_;
  std::u16string translated_;
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_TEXT_COLUMN_H
