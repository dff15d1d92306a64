#include "table/row_lookups.h"

#include <utility>

#include "base/translation.h"
#include "platform/guarded.h"
#include "schema/bytes.h"
#include "schema/part.h"
#include "table/row_walk.h"
#include "table/sub_table.h"
#include "table/table_access.h"

namespace tabwerk {
namespace {

using Sharing = RowLookups::Sharing;

bool StartsAText(DBStringMemory const& strings, std::size_t place) {
  return place == 0 || LoadValue<char16_t>(strings.data() + 2 * place - 2) == 0;
}

// Whether the string values of a part have places of their own, each right
// behind the end of another text.
Sharing SharingOf(TablePart& part, DBDefinition const& definition) {
  auto const record_size =
      static_cast<std::int32_t>(definition.GetMemorySize());
  auto const& strings = *part.strings;
  std::size_t const count = strings.count();
  std::vector<bool> taken(count);
  auto sharing = Sharing::kNone;
  for (std::int32_t row = 0; row < part.Rows(); ++row) {
    auto const* const record = part.Row(row, record_size);
    if (record == nullptr) return Sharing::kAtTheEnd;
    for (auto const* field = definition.GetDefinition(); field != nullptr;
         field = field->next) {
      if (field->type != DBTypeString) continue;
      auto const index = LoadValue<std::int32_t>(record + field->offset);
      if (index < 0) continue;  // names no text, now or later
      auto const place = static_cast<std::size_t>(index);
      if (place >= count) return Sharing::kAtTheEnd;
      if (taken[place] || !StartsAText(strings, place)) {
        sharing = Sharing::kInPlace;
      }
      taken[place] = true;
    }
  }
  bool const ends = count == 0 || StartsAText(strings, count);
  return ends ? sharing : Sharing::kAtTheEnd;
}

Sharing SharingOf(DBTabelle& table) {
  auto worst = Sharing::kNone;
  for (auto& sub_table : TableAccess::SubTables(table)) {
    auto const sharing =
        SharingOf(*sub_table.part, *TableAccess::Definition(table));
    if (sharing > worst) worst = sharing;
  }
  return worst;
}

}  // namespace

void RowLookups::ForgetAll() noexcept {
  status_ = searched_ = nullptr;
  texts_.reset();
}

bool RowLookups::IsFresh(DBTabelle& table) {
  auto const& sub_tables = TableAccess::SubTables(table);
  bool fresh = seen_.size() == sub_tables.size();
  for (std::size_t i = 0; fresh && i < seen_.size(); ++i) {
    fresh = seen_[i] == sub_tables[i].part->revision &&
            !sub_tables[i].part->lent;
  }
  if (!fresh) ForgetAll();
  return fresh;
}

void RowLookups::SeePresent(DBTabelle& table) {
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
  if (!IsFresh(table)) SeePresent(table);
  status_ = status;
  active_rows_ = count;
}

TextLookup const* RowLookups::TextsOf(DBTabelle& table, DBFeld* field) {
  if (!IsFresh(table)) SeePresent(table);
  bool const known = texts_ != nullptr && texts_->field() == field &&
                     texts_->IsInCurrentLanguage();
  if (known) return texts_.get();
  // A single search is not worth it: looking at the rows once is faster.
  auto const language = CurrentLanguage();
  bool const again = searched_ == field && searched_language_ == language;
  searched_ = field;
  searched_language_ = language;
  if (!again) return nullptr;
  texts_.reset();
  auto fresh = std::make_unique<TextLookup>();
  if (!fresh->Build(table, field)) return nullptr;
  sharing_ = SharingOf(table);
  texts_ = std::move(fresh);
  return texts_.get();
}

void RowLookups::RowAdded(DBTabelle& table, std::size_t part,
                          std::int64_t row) {
  if (!FollowsOn(table, part)) return;
  // A new row has only zeros.
  if (status_ != nullptr) ++active_rows_;
  if (row + 1 == CountRows(table)) {
    UpdateText(table, row);
  } else {
    texts_.reset();  // the rows behind it have other numbers now
  }
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
                         DBFeld const* field, std::int64_t row, bool appended) {
  if (!FollowsOn(table, part)) return;
  bool const one_row = sharing_ == Sharing::kNone ||
                       (sharing_ == Sharing::kInPlace && appended) ||
                       texts_ == nullptr;
  // A text that was set on a column of numbers may have gone anywhere.
  if (field->type != DBTypeString || !one_row) {
    ForgetAll();
  } else if (texts_ != nullptr && texts_->field()->offset == field->offset) {
    UpdateText(table, row);
  }
}

void RowLookups::UpdateText(DBTabelle& table, std::int64_t row) {
  if (texts_ == nullptr) return;
  bool const kept = Guarded(false, [&] {
    return texts_->IsInCurrentLanguage() &&
           texts_->Update(table, static_cast<std::int32_t>(row));
  });
  if (!kept) texts_.reset();
}

RowLookups& TableAccess::NeedLookups(DBTabelle& table) {
  if (table.lookups_ == nullptr) {
    table.lookups_ = std::make_unique<RowLookups>();
  }
  return *table.lookups_;
}

}  // namespace tabwerk
