// The rows of one part as text.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "DBTabelle.h"
#include "platform/guarded.h"
#include "platform/platform.h"
#include "schema/bytes.h"
#include "schema/layout.h"
#include "schema/part.h"
#include "table/sub_table.h"

namespace {

using tabwerk::TablePart;

// The stored value of a field as text, a string in quotes.  Nothing when the
// value lies outside its record or the row block, or the type is unknown; the
// quotes alone when a string's place lies outside the store.
std::u16string ValueText(TablePart& part, std::int32_t row,
                         DBDefinition const& definition, DBFeld const& field) {
  auto const record_size =
      static_cast<std::int32_t>(definition.GetMemorySize());
  auto const* const record = part.Row(row, record_size);
  if (record == nullptr ||
      !tabwerk::LiesInRecord(field.type, field.offset, record_size)) {
    return {};
  }
  auto const* const value = record + field.offset;
  switch (field.type) {
    case DBTypeReal:
      return std::u16string(
          zWString(tabwerk::LoadValue<double>(value), 0).view());
    case DBTypeInteger:
      return std::u16string(
          zWString::fromLatin1(
              std::to_string(tabwerk::LoadValue<std::int32_t>(value)))
              .view());
    case DBTypeString: {
      auto const text =
          part.strings->Text(tabwerk::LoadValue<std::int32_t>(value));
      return u"\"" + std::u16string(text.value_or(u"")) + u"\"";
    }
    case DBTypeUnknown:
      break;
  }
  return {};
}

// Puts the line of one row into *line and leaves the accessor on that row and
// on the last field that has a name.
void MakeLine(DBSubTable& sub_table, std::int32_t row, DBDefinition& definition,
              std::u16string_view separator, std::u16string* line) {
  sub_table.row = row;
  line->clear();
  for (auto* field = definition.GetDefinition(); field != nullptr;
       field = field->next) {
    if (field->name[0] != '\0') {
      sub_table.field = field;
      *line += ValueText(*sub_table.part, row, definition, *field);
    }
    if (field->next != nullptr) *line += separator;
  }
  *line += u'\n';
}

}  // namespace

int DBTabelle::Dump(FILE* stream, wchar_t* separator, bool user) {
  if (stream == nullptr) return 0;
  std::size_t const index = user ? 1 : 0;
  // Kept: the result is the number of rows plus 1, also for a part that does
  // not exist; hosts tell it from the 0 of a missing stream.
  if (index >= sub_tables_.size()) return 1;
  DBSubTable& sub_table = sub_tables_[index];
  auto const row_count = sub_table.part->Rows();
  return tabwerk::Guarded(0, [&] {
    zWString const between(separator);
    std::u16string line;
    for (std::int32_t row = 0; row < row_count; ++row) {
      MakeLine(sub_table, row, *definition_, between.view(), &line);
      // Not examined, as write errors never were here: the host sees them in
      // its stream.
      (void)tabwerk::platform::WriteText(stream, line);
    }
    return row_count + 1;
  });
}
