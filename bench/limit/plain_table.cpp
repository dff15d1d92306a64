#include "bench/limit/plain_table.h"

#include <algorithm>
#include <cstring>

#include "bench/limit/plain_text.h"

namespace tabwerk::bench {
namespace {

template <typename T>
T Load(std::byte const* from) {
  T value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

template <typename T>
void Store(std::byte* to, T value) {
  std::memcpy(to, &value, sizeof value);
}

std::size_t LengthOf(char16_t const* text) {
  std::size_t length = 0;
  while (text[length] != 0) ++length;
  return length;
}

}  // namespace

void PlainTable::Reserve(std::size_t row_count, std::size_t unit_count) {
  records_.reserve(row_count * kRecordBytes);
  texts_.reserve(unit_count);
  row_of_id_.reserve(row_count + 1);
}

bool PlainTable::SelectId(long id) {
  if (id < 0 || static_cast<std::size_t>(id) >= row_of_id_.size()) return false;
  auto const row = row_of_id_[static_cast<std::size_t>(id)];
  if (row < 0) return false;
  row_ = static_cast<std::size_t>(row);
  return true;
}

bool PlainTable::SelectRow(long row) {
  if (row < 0 || static_cast<std::size_t>(row) >= RowCount()) return false;
  row_ = static_cast<std::size_t>(row);
  return true;
}

bool PlainTable::SelectColumn(Column column) {
  offset_ = OffsetOf(column);
  return true;
}

bool PlainTable::Get(long* value) const {
  *value = Load<std::int32_t>(&records_[row_ * kRecordBytes + offset_]);
  return true;
}

bool PlainTable::Get(double* value) const {
  *value = Load<double>(&records_[row_ * kRecordBytes + offset_]);
  return true;
}

bool PlainTable::Get(std::u16string* value) const {
  auto const place =
      Load<std::int32_t>(&records_[row_ * kRecordBytes + offset_]);
  auto const* const text = &texts_[static_cast<std::size_t>(place)];
  value->assign(PieceOf({text, LengthOf(text)}));
  return true;
}

bool PlainTable::AppendRow() {
  row_ = RowCount();
  records_.resize(records_.size() + kRecordBytes);
  return true;
}

bool PlainTable::Set(long value) {
  Store(&records_[row_ * kRecordBytes + offset_],
        static_cast<std::int32_t>(value));
  if (offset_ != OffsetOf(Column::kId) || value < 0) return true;
  auto const id = static_cast<std::size_t>(value);
  if (id >= row_of_id_.size()) row_of_id_.resize(id + 1, -1);
  row_of_id_[id] = static_cast<std::int32_t>(row_);
  return true;
}

bool PlainTable::Set(double value) {
  Store(&records_[row_ * kRecordBytes + offset_], value);
  return true;
}

bool PlainTable::Set(std::u16string_view value) {
  Store(&records_[row_ * kRecordBytes + offset_],
        static_cast<std::int32_t>(texts_.size()));
  texts_.insert(texts_.end(), value.begin(), value.end());
  texts_.push_back(0);
  return true;
}

long PlainTable::FindText(Column column, std::u16string_view text) const {
  std::size_t const rows = RowCount();
  for (std::size_t row = 0; row < rows; ++row) {
    // The comparison ends at the stored text's NUL at the latest.
    auto const* stored = TextAt(row, column);
    bool const translated = std::u16string_view(stored, 1) == u"#";
    if (translated) stored += 4;
    if (!std::equal(text.begin(), text.end(), stored)) continue;
    auto const end = stored[text.size()];
    if (end == (translated ? u'\u00AC' : u'\0')) return static_cast<long>(row);
  }
  return -1;
}

}  // namespace tabwerk::bench
