#include "table/row_lookups.h"

#include <algorithm>
#include <utility>

#include "base/translation.h"
#include "platform/guarded.h"
#include "schema/part.h"
#include "table/row_walk.h"
#include "table/sub_table.h"
#include "table/table_access.h"
#include "table/text_places.h"

namespace tabwerk {
namespace {

// Columns of texts that are remembered; the one that was searched longest ago
// makes room.
constexpr std::size_t kMostColumns = 4;

}  // namespace

void RowLookups::ForgetAll() noexcept {
  status_ = nullptr;
  columns_.clear();
}

bool RowLookups::IsFresh(DBTabelle& table) {
  auto const& sub_tables = TableAccess::SubTables(table);
  bool fresh = seen_.size() == sub_tables.size();
  for (std::size_t i = 0; fresh && i < seen_.size(); ++i) {
    fresh =
        seen_[i] == sub_tables[i].part->revision && !sub_tables[i].part->lent;
  }
  if (!fresh) ForgetAll();
  return fresh;
}

void RowLookups::SeePresent(DBTabelle& table) {
  if (IsFresh(table)) return;
  seen_.clear();
  for (auto const& sub_table : TableAccess::SubTables(table)) {
    seen_.push_back(sub_table.part->revision);
  }
}

bool RowLookups::FollowsOn(DBTabelle& table, std::size_t part) {
  if (part < seen_.size()) ++seen_[part];
  return IsFresh(table);
}

std::optional<int> RowLookups::ActiveRows(DBTabelle& table) {
  if (!IsFresh(table) || status_ == nullptr) return std::nullopt;
  return active_rows_;
}

void RowLookups::SetActiveRows(DBTabelle& table, DBFeld const* status,
                               int count) {
  SeePresent(table);
  status_ = status;
  active_rows_ = count;
}

RowLookups::SearchedColumn& RowLookups::Searched(DBFeld const* field) {
  auto const it = std::find_if(
      columns_.begin(), columns_.end(),
      [field](auto const& column) { return column.field == field; });
  if (it != columns_.end()) {
    std::rotate(it, it + 1, columns_.end());
    return columns_.back();
  }
  if (columns_.size() == kMostColumns) columns_.erase(columns_.begin());
  columns_.emplace_back().field = field;
  return columns_.back();
}

TextLookup const* RowLookups::TextsOf(DBTabelle& table, DBFeld* field) {
  SeePresent(table);
  auto& column = Searched(field);
  auto const language = CurrentLanguage();
  // A single search is not worth it: looking at the rows once is faster.
  bool const again = column.language == language;
  if (again && column.texts != nullptr) return column.texts.get();
  column.language = language;
  column.texts.reset();
  if (!again) return nullptr;
  auto fresh = std::make_unique<TextLookup>();
  if (!fresh->Build(table, field)) return nullptr;
  SeePlaces(table);
  column.texts = std::move(fresh);
  return column.texts.get();
}

void RowLookups::SeePlaces(DBTabelle& table) {
  std::vector<Places> places;
  for (auto const& sub_table : TableAccess::SubTables(table)) {
    auto const most_units =
        MostUnitsUnnamed(*sub_table.part, *TableAccess::Definition(table));
    places.push_back({most_units, std::nullopt});
  }
  places_ = std::move(places);
}

// Whether a text was put where a value of another row points to.
bool RowLookups::HasReachedValues(DBTabelle& table, std::size_t part) const {
  auto const& strings = *TableAccess::SubTables(table)[part].part->strings;
  return part < places_.size() && strings.count() > places_[part].most_units;
}

// Whether other values may have changed with a text that was overwritten.  Rows
// that are only added never need to know.  Without memory they may.
bool RowLookups::SharesPlaces(DBTabelle& table, std::size_t part) {
  if (part >= places_.size()) return false;
  auto& shared = places_[part].shared;
  if (!shared) {
    shared = Guarded(true, [&] {
      return SharesTexts(*TableAccess::SubTables(table)[part].part,
                         *TableAccess::Definition(table));
    });
  }
  return *shared;
}

void RowLookups::RowAdded(DBTabelle& table, std::size_t part,
                          std::int64_t row) {
  if (!FollowsOn(table, part)) return;
  // A new row has only zeros.
  if (status_ != nullptr) ++active_rows_;
  // The rows behind one that is not the last have other numbers now.  A value
  // that the new row's empty texts have reached still reads as empty.
  if (row + 1 != CountRows(table)) {
    columns_.clear();
    return;
  }
  for (auto& column : columns_) UpdateText(table, &column, row);
}

void RowLookups::NumberSet(DBTabelle& table, std::size_t part,
                           DBFeld const* field, std::int32_t old_value,
                           std::int32_t value) {
  if (!FollowsOn(table, part) || field != status_) return;
  if (old_value == 0) --active_rows_;
  if (value == 0) ++active_rows_;
}

void RowLookups::RealSet(DBTabelle& table, std::size_t part) {
  (void)FollowsOn(table, part);  // nothing that is remembered depends on it
}

void RowLookups::TextSet(DBTabelle& table, std::size_t part,
                         DBFeld const* field, std::int64_t row,
                         TextChange change) {
  if (!FollowsOn(table, part)) return;
  if (field->type != DBTypeString && change != TextChange::kNone) {
    // A text that was set on a column of numbers may have gone anywhere.
    ForgetAll();
    return;
  }
  if (columns_.empty()) return;
  if ((change == TextChange::kInPlace && SharesPlaces(table, part)) ||
      HasReachedValues(table, part)) {
    columns_.clear();
    return;
  }
  if (change == TextChange::kNone) return;
  for (auto& column : columns_) {
    if (column.field->offset == field->offset) UpdateText(table, &column, row);
  }
}

void RowLookups::UpdateText(DBTabelle& table, SearchedColumn* column,
                            std::int64_t row) {
  if (column->texts == nullptr) return;
  bool const kept = Guarded(false, [&] {
    return column->texts->IsInCurrentLanguage() &&
           column->texts->Update(table, static_cast<std::int32_t>(row));
  });
  if (!kept) column->texts.reset();
}

RowLookups& TableAccess::NeedLookups(DBTabelle& table) {
  if (table.lookups_ == nullptr) {
    table.lookups_ = std::make_unique<RowLookups>();
  }
  return *table.lookups_;
}

}  // namespace tabwerk
