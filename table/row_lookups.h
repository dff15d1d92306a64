// What a table remembers of its rows, so that repeated questions about all of
// them cost no pass over them.
#ifndef TABWERK_TABLE_ROW_LOOKUPS_H
#define TABWERK_TABLE_ROW_LOOKUPS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "DBTabelle.h"
#include "table/text_lookup.h"

namespace tabwerk {

// The number of active rows, and the rows of one string column by their text.
//
// Both are answers that a pass over the rows would give; they are kept while
// the table itself tells of every change, and forgotten as soon as a part has
// changed in another way (its revision then is not the one that was seen).
class RowLookups {
 public:
  // How far setting one text can change what other rows read.
  enum class Sharing : std::uint8_t {
    kNone,      // every value has a text of its own
    kInPlace,   // overwriting a text may change several rows
    kAtTheEnd,  // appending a text may, too: a value lies behind the store
  };

  // Number of rows with a STATUS of 0, if it is known.
  std::optional<int> ActiveRows(DBTabelle& table);
  // Remembers what a pass has found; status is the integer column that it read.
  void SetActiveRows(DBTabelle& table, DBFeld const* status, int count);

  // The rows of that column by text in the current language, if they are known
  // or worth finding out: at the second search for a text in that column.
  // Null otherwise.
  TextLookup const* TextsOf(DBTabelle& table, DBFeld* field);

  // The table tells of a change, right after it was made and the part's
  // revision was raised by one.
  //
  // A new row, with number row over all parts.
  void RowAdded(DBTabelle& table, std::size_t part, std::int64_t row);
  // An integer at that field of a row.
  void NumberSet(DBTabelle& table, std::size_t part, DBFeld const* field,
                 std::int32_t old_value, std::int32_t value);
  // A real of a row.
  void RealSet(DBTabelle& table, std::size_t part);
  // A text at that field; appended tells whether it got a new place in the
  // store, so that no other row can have changed with it.
  void TextSet(DBTabelle& table, std::size_t part, DBFeld const* field,
               std::int64_t row, bool appended);

 private:
  void ForgetAll() noexcept;
  bool IsFresh(DBTabelle& table);
  // True when nothing but the one change to that part happened since; that
  // change then counts as seen.
  bool FollowsOn(DBTabelle& table, std::size_t part);
  void SeePresent(DBTabelle& table);
  void UpdateText(DBTabelle& table, std::int64_t row);

  std::vector<std::uint64_t> seen_;  // revision of every part
  DBFeld const* status_ = nullptr;   // null while the number is not known
  int active_rows_ = 0;
  DBFeld const* searched_ = nullptr;  // column of the last search
  short searched_language_ = 0;
  std::unique_ptr<TextLookup> texts_;
  Sharing sharing_ = Sharing::kAtTheEnd;
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_ROW_LOOKUPS_H
