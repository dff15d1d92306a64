// The texts of a string column as a host reads them.
#ifndef TABWERK_TABLE_TEXT_COLUMN_H
#define TABWERK_TABLE_TEXT_COLUMN_H

#include <optional>
#include <string>
#include <string_view>

#include "DBDefinition.h"
#include "base/translation.h"
#include "schema/part.h"
#include "table/row_walk.h"

namespace tabwerk {

// Reads the texts of one column in the current language, without a copy where
// nothing is to be translated.
class TextColumn {
 public:
  TextColumn(DBTabelle& table, DBFeld const* field)
      : column_(ColumnOf(table, field, DBTypeString)) {}

  // Text of the walk's present row; nothing when the column is no string or
  // the row names no text.  Valid until the next call.  Throws std::bad_alloc.
  std::optional<std::u16string_view> Read(RowWalk const& walk) {
    std::int32_t index = 0;
    if (!walk.Read(column_, &index)) return std::nullopt;
    auto const text = walk.part().strings->Text(index);
    if (!text || !HasTranslation(*text)) return text;
    translated_ = *text;
    TranslateText(translated_);
    return translated_;
  }

 private:
  Column column_;
  std::u16string translated_;
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_TEXT_COLUMN_H
