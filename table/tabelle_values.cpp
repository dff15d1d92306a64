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

bool EndsWithNul(DBStringMemory const& strings) {
  std::size_t const count = strings.count();
  return count == 0 ||
         tabwerk::LoadValue<char16_t>(strings.data() + 2 * (count - 1)) == 0;
}

// Place of the appended text; nothing, and no change, without memory.
std::optional<std::int32_t> AppendText(DBStringMemory* strings,
                                       std::u16string_view text) {
  if (EndsWithNul(*strings)) return strings->Append(text);
  // The store's last text gets its NUL first, or it would run into this one.
  // text may lie in the store, which moves.
  std::u16string const copy(text);
  std::uint32_t const count_before = strings->count();
  if (!strings->Append({})) return std::nullopt;
  auto const index = strings->Append(copy);
  if (!index) strings->Truncate(count_before);
  return index;
}

// Stores text for a value whose present place in the store is index and holds
// the text old; its new place, or nothing (and no change) without memory.
std::optional<std::int32_t> StoreText(DBStringMemory* strings,
                                      std::int32_t index,
                                      std::u16string_view old,
                                      std::u16string_view text) {
  bool const at_end = static_cast<std::uint32_t>(index) == strings->count();
  if (at_end || text.size() > old.size()) return AppendText(strings, text);
  strings->Overwrite(index, text);
  return index;
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
  auto const index = StoreText(part.strings.get(), old_index, *old, text);
  if (!index) return 0;
  tabwerk::StoreValue(place, *index);
  ++part.revision;
  if (lookups != nullptr) {
    using Change = RowLookups::TextChange;
    auto const in_place = same ? Change::kNone : Change::kInPlace;
    lookups->TextSet(table, TableAccess::CurrentSubTable(table),
                     selected->field, TableAccess::ValueRow(table),
                     *index == old_index ? in_place : Change::kAppended);
  }
  return 1;
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
  DBType const type = selected->field->type;
  std::byte* const place =
      Place(selected, definition_, tabwerk::ValueSize(type));
  if (place == nullptr) return 0;
  auto const stored = static_cast<std::int32_t>(value);
  std::int32_t const old =
      type == DBTypeInteger ? tabwerk::LoadValue<std::int32_t>(place) : 0;
  // Kept: the index follows before the type is tested, so a column FOLGE,
  // STATUS or ID of another type changes its index although the result is 0.
  if (!TableAccess::FollowValue(*this, old, stored)) return 0;
  if (type != DBTypeInteger) return 0;
  tabwerk::StoreValue(place, stored);
  ++selected->part->revision;
  if (lookups_ != nullptr) {
    lookups_->NumberSet(*this, current_sub_table_, selected->field, old,
                        stored);
  }
  return 1;
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

bool tabwerk::TableAccess::FollowValue(DBTabelle& table, std::int32_t old_value,
                                       std::int32_t value) {
  auto const row = static_cast<std::int32_t>(table.current_row_);
  if (table.folge_selected_) {
    if (value >= 1 &&
        static_cast<std::size_t>(value) < table.folge_index_.size()) {
      table.folge_index_[static_cast<std::size_t>(value)] = row;
    }
  } else if (table.status_selected_) {
    if (row >= 0 && static_cast<std::size_t>(row) < table.status_index_.size())
      table.status_index_[static_cast<std::size_t>(row)] = value;
  } else if (table.id_selected_ && old_value != value) {
    bool const entered = Guarded(false, [&] {
      table.id_index_->Set(value, row);
      return true;
    });
    if (!entered) return false;
    // Kept: the entry of the old ID goes whichever row it names, so the first
    // ID of a new row removes the entry of ID 0.
    table.id_index_->Erase(old_value);
  }
  return true;
}
