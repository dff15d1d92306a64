// Values at the current row and column.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "DBTabelle.h"
#include "base/translation.h"
#include "platform/guarded.h"
#include "schema/bytes.h"
#include "schema/format.h"
#include "schema/layout.h"
#include "schema/part.h"
#include "table/id_index.h"
#include "table/row_lookups.h"
#include "table/sub_table.h"
#include "table/table_access.h"
#include "ztypes/string_access.h"

namespace {

using tabwerk::Guarded;
using tabwerk::RowLookups;
using tabwerk::TableAccess;
using tabwerk::TablePart;
namespace format = tabwerk::format;

// The first size bytes of the selected field in the selected row; null when
// there is no row or no field, or when they do not lie inside the record and
// the row block.
std::byte* Place(DBSubTable const* selected, DBDefinition const* definition,
                 std::int32_t size) {
  if (selected == nullptr || selected->field == nullptr) return nullptr;
  std::int32_t const record_size =
      tabwerk::DefinitionAccess::RecordSize(*definition);
  std::int32_t const offset = selected->field->offset;
  // As an unsigned number a negative offset lies behind every record.
  if (std::int64_t{static_cast<std::uint32_t>(offset)} >
      std::int64_t{record_size} - size) {
    return nullptr;
  }
  std::byte* const record = selected->part->Row(selected->row, record_size);
  return record == nullptr ? nullptr : record + offset;
}

bool HasType(DBSubTable const* selected, DBType type) {
  return selected != nullptr && selected->field != nullptr &&
         selected->field->type == type;
}

// Tells what is remembered of a table's rows of a text that was set at the
// selected place.
[[gnu::noinline]] void TellOfText(DBTabelle& table, RowLookups* lookups,
                                  RowLookups::TextChange change) {
  lookups->TextSet(table, TableAccess::CurrentSubTable(table),
                   TableAccess::Current(table)->field,
                   TableAccess::ValueRow(table), change);
}

bool EndsWithNul(DBStringMemory const& strings) {
  std::size_t const count = strings.count();
  return count == 0 ||
         tabwerk::LoadValue<char16_t>(strings.data() + 2 * (count - 1)) == 0;
}

// Appends a text to a store whose last text has no NUL: it gets that first, or
// it would run into this one.  False, and no change, without memory.
[[gnu::noinline]] bool AppendBehindOpenText(DBStringMemory* strings,
                                            std::u16string_view text) {
  // text may lie in the store, which moves.
  std::u16string const copy(text);
  std::uint32_t const count_before = strings->count();
  if (!strings->Append({})) return false;
  bool const appended = strings->Append(copy);
  if (!appended) strings->Truncate(count_before);
  return appended;
}

// Stores text for a value whose place in the store is *index and holds the text
// old, and makes *index its new place.  False, and no change, without memory.
bool StoreText(DBStringMemory* strings, std::int32_t* index,
               std::u16string_view old, std::u16string_view text) {
  std::uint32_t const count = strings->count();
  bool const at_end = static_cast<std::uint32_t>(*index) == count;
  if (!at_end && text.size() <= old.size()) {
    strings->Overwrite(*index, text);
    return true;
  }
  bool const open = !EndsWithNul(*strings);
  bool const appended =
      open ? AppendBehindOpenText(strings, text) : strings->Append(text);
  if (!appended) return false;
  *index = static_cast<std::int32_t>(count + (open ? 1 : 0));
  return true;
}

int SetText(DBTabelle& table, std::u16string_view text) {
  DBSubTable* const selected = TableAccess::Current(table);
  std::byte* const place =
      Place(selected, TableAccess::Definition(table), format::kStringSize);
  if (place == nullptr) return 0;
  TablePart& part = *selected->part;
  auto const old_index = tabwerk::LoadValue<std::int32_t>(place);
  auto const old = part.strings->Text(old_index);
  if (!old) return 0;
  auto* const lookups = TableAccess::Lookups(table);
  bool const same = lookups != nullptr && *old == text;
  std::int32_t index = old_index;
  if (!StoreText(part.strings.get(), &index, *old, text)) return 0;
  tabwerk::StoreValue(place, index);
  ++part.revision;
  if (lookups != nullptr) {
    using Change = RowLookups::TextChange;
    auto const in_place = same ? Change::kNone : Change::kInPlace;
    TellOfText(table, lookups,
               index == old_index ? in_place : Change::kAppended);
  }
  return 1;
}

[[gnu::noinline]] void TellOfNumber(DBTabelle& table, std::int32_t old_value,
                                    std::int32_t value) {
  TableAccess::Lookups(table)->NumberSet(
      table, TableAccess::CurrentSubTable(table),
      TableAccess::Current(table)->field, old_value, value);
}

// Stores an integer at the selected place if the selected field is one.
int StoreInteger(DBTabelle& table, std::byte* place, std::int32_t value) {
  DBSubTable const& selected = *TableAccess::Current(table);
  if (selected.field->type != DBTypeInteger) return 0;
  auto const old_value = tabwerk::LoadValue<std::int32_t>(place);
  tabwerk::StoreValue(place, value);
  ++selected.part->revision;
  if (TableAccess::Lookups(table) != nullptr) {
    TellOfNumber(table, old_value, value);
  }
  return 1;
}

// The same for the column ID, whose index follows first.
[[gnu::noinline]] int SetId(DBTabelle& table, std::byte* place,
                            std::int32_t value) {
  bool const integer =
      TableAccess::Current(table)->field->type == DBTypeInteger;
  auto const old_value = integer ? tabwerk::LoadValue<std::int32_t>(place) : 0;
  if (!TableAccess::FollowId(table, old_value, value)) return 0;
  return StoreInteger(table, place, value);
}

}  // namespace

int DBTabelle::GetWert(long& value) {
  DBSubTable const* const selected = TableAccess::Current(*this);
  if (!HasType(selected, DBTypeInteger)) return 0;
  std::byte const* const place =
      Place(selected, definition_, format::kIntegerSize);
  if (place == nullptr) return 0;
  value = tabwerk::LoadValue<std::int32_t>(place);
  return 1;
}

int DBTabelle::GetWert(double& value) {
  DBSubTable const* const selected = TableAccess::Current(*this);
  if (!HasType(selected, DBTypeReal)) return 0;
  std::byte const* const place =
      Place(selected, definition_, format::kRealSize);
  if (place == nullptr) return 0;
  value = tabwerk::LoadValue<double>(place);
  return 1;
}

int DBTabelle::GetWert(zWString& value) {
  DBSubTable const* const selected = TableAccess::Current(*this);
  if (!HasType(selected, DBTypeString)) return 0;
  std::byte const* const place =
      Place(selected, definition_, format::kStringSize);
  if (place == nullptr) return 0;
  auto const units = selected->part->strings->UnitsFrom(
      tabwerk::LoadValue<std::int32_t>(place));
  if (!units) return 0;
  auto const stored = tabwerk::ScanText(*units);
  return Guarded(0, [&] {
    auto& text = tabwerk::StringAccess::Units(value);
    text.assign(stored.text);
    // Shortens the text in its own buffer.
    if (stored.has_section_start) tabwerk::TranslateText(text);
    return 1;
  });
}

int DBTabelle::SetWert(long value) {
  DBSubTable const* const selected = TableAccess::Current(*this);
  if (!tabwerk::FitsInt32(value) || selected == nullptr ||
      selected->field == nullptr) {
    return 0;
  }
  std::byte* const place =
      Place(selected, definition_, tabwerk::ValueSize(selected->field->type));
  if (place == nullptr) return 0;
  auto const stored = static_cast<std::int32_t>(value);
  // Kept: the index follows before the type is tested, so a column FOLGE,
  // STATUS or ID of another type changes its index although the result is 0.
  if (id_selected_) return SetId(*this, place, stored);
  TableAccess::FollowValue(*this, stored);
  return StoreInteger(*this, place, stored);
}

int DBTabelle::SetWert(double value) {
  DBSubTable const* const selected = TableAccess::Current(*this);
  if (!HasType(selected, DBTypeReal)) return 0;
  std::byte* const place = Place(selected, definition_, format::kRealSize);
  if (place == nullptr) return 0;
  tabwerk::StoreValue(place, value);
  ++selected->part->revision;
  if (lookups_ != nullptr) lookups_->RealSet(*this, current_sub_table_);
  return 1;
}

int DBTabelle::SetWert(wchar_t const* text) {
  if (text == nullptr) return 0;
  return Guarded(0, [&] {
    zWString const units(text);
    return SetText(*this, units.view());
  });
}

int DBTabelle::SetWert(char16_t const* text) {
  if (text == nullptr) return 0;
  return Guarded(0, [&] { return SetText(*this, tabwerk::TextFrom(text)); });
}

int DBTabelle::SetWert(char const* text) {
  if (text == nullptr) return 0;
  return Guarded(0, [&] {
    std::u16string units;
    for (; *text != '\0' && units.size() < format::kMaxTextUnits; ++text) {
      // Kept: bytes are sign-extended; existing data was written this way.
      units += static_cast<char16_t>(static_cast<signed char>(*text));
    }
    return SetText(*this, units);
  });
}

DBType DBTabelle::GetType() {
  DBFeld const* const field = GetAktuelleFeldDef();
  return field == nullptr ? DBTypeUnknown : field->type;
}

DBFeld* DBTabelle::GetAktuelleFeldDef() {
  DBSubTable const* const selected = TableAccess::Current(*this);
  return selected == nullptr ? nullptr : selected->field;
}

bool tabwerk::TableAccess::HasText(DBTabelle& table) {
  DBSubTable const* const selected = Current(table);
  std::byte const* const place =
      Place(selected, table.definition_, format::kStringSize);
  return place != nullptr &&
         selected->part->strings->Text(LoadValue<std::int32_t>(place))
             .has_value();
}

bool tabwerk::TableAccess::FollowId(DBTabelle& table, std::int32_t old_id,
                                    std::int32_t id) {
  if (old_id == id) return true;
  bool const entered = Guarded(false, [&] {
    table.id_index_->Set(id, static_cast<std::int32_t>(table.current_row_));
    return true;
  });
  if (!entered) return false;
  // Kept: the entry of the old ID goes whichever row it names, so the first
  // ID of a new row removes the entry of ID 0.
  table.id_index_->Erase(old_id);
  return true;
}
