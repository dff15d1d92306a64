// What the machine allows: a table written by hand for exactly these columns.
#ifndef TABWERK_BENCH_LIMIT_PLAIN_TABLE_H
#define TABWERK_BENCH_LIMIT_PLAIN_TABLE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace tabwerk::bench {

// Packed records and one store of texts, behind calls of the same shape as the
// library's: a row and a column are selected, then a value is read or set.
class PlainTable {
 public:
  enum class Column { kId, kFolge, kStatus, kName, kPrice, kNote };

  // Rows are numbered from 0, IDs from 1.
  void Reserve(std::size_t row_count, std::size_t unit_count);
  std::size_t RowCount() const { return records_.size() / kRecordBytes; }

  bool SelectId(long id);
  bool SelectRow(long row);
  bool SelectColumn(Column column);
  bool Get(long* value) const;
  bool Get(double* value) const;
  // In the first language, into a text that is used again.
  bool Get(std::u16string* value) const;

  // Appends a row of zeros and selects it.
  bool AppendRow();
  bool Set(long value);
  bool Set(double value);
  bool Set(std::u16string_view value);

  // The first row with that text in the first language; -1 without one.  One
  // pass, without calls.
  long FindText(Column column, std::u16string_view text) const;
  // Calls matches with the NUL-terminated text of every row of that column; the
  // number of those it is true for.
  template <typename Matches>
  long CountText(Column column, Matches const& matches) const {
    long count = 0;
    for (std::size_t row = 0; row < RowCount(); ++row) {
      count += matches(TextAt(row, column)) ? 1 : 0;
    }
    return count;
  }

 private:
  static constexpr std::size_t kRecordBytes = 28;
  static std::size_t OffsetOf(Column column) {
    constexpr std::array<std::size_t, 6> kOffsets = {0, 4, 8, 12, 16, 24};
    return kOffsets[static_cast<std::size_t>(column)];
  }
  char16_t const* TextAt(std::size_t row, Column column) const {
    std::int32_t place = 0;
    std::memcpy(&place, &records_[row * kRecordBytes + OffsetOf(column)],
                sizeof place);
    return &texts_[static_cast<std::size_t>(place)];
  }

  std::vector<std::byte> records_;
  std::vector<char16_t> texts_;
  std::vector<std::int32_t> row_of_id_;
  std::size_t row_ = 0;
  std::size_t offset_ = 0;
};

}  // namespace tabwerk::bench

#endif  // TABWERK_BENCH_LIMIT_PLAIN_TABLE_H
