// What a table remembers of its rows, so that repeated questions about all of
// them cost no pass over them.
#ifndef TABWERK_TABLE_ROW_LOOKUPS_H
#define TABWERK_TABLE_ROW_LOOKUPS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "DBTabelle.h"
#include "table/text_lookup.h"

namespace tabwerk {

// The number of active rows, and the rows of a few string columns by their
// text.
//
// Both are answers that a pass over the rows would give; they are kept while
// the table itself tells of every change, and forgotten as soon as a part has
// changed in another way (its revision then is not the one that was seen).
class RowLookups {
 public:
  // What setting a text did.
  enum class TextChange : std::uint8_t {
    kNone,      // place and text of the value are as before
    kInPlace,   // the old text was overwritten
    kAppended,  // the text got a new place at the end of the store
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
  // A text at that field.
  void TextSet(DBTabelle& table, std::size_t part, DBFeld const* field,
               std::int64_t row, TextChange change);

 private:
  // A column in which a text was searched.
  struct SearchedColumn {
    DBFeld const* field = nullptr;
    std::optional<short> language;      // of the last search
    std::unique_ptr<TextLookup> texts;  // null before the second search
  };

  // How far a text that is set can reach, in one part.
  struct Places {
    std::size_t most_units;      // of MostUnitsUnnamed
    std::optional<bool> shared;  // SharesTexts, once it was needed
  };

  void ForgetAll() noexcept;
  bool IsFresh(DBTabelle& table);
  // True when nothing but the one change to that part happened since; that
  // change then counts as seen.
  bool FollowsOn(DBTabelle& table, std::size_t part);
  // What is remembered from here on is that of the present rows.
  void SeePresent(DBTabelle& table);
  void SeePlaces(DBTabelle& table);
  bool HasReachedValues(DBTabelle& table, std::size_t part) const;
  bool SharesPlaces(DBTabelle& table, std::size_t part);
  // The entry of that column, made where there is none, as the last one.
  SearchedColumn& Searched(DBFeld const* field);
  void UpdateText(DBTabelle& table, SearchedColumn* column, std::int64_t row);

  std::vector<std::uint64_t> seen_;  // revision of every part
  DBFeld const* status_ = nullptr;   // null while the number is not known
  int active_rows_ = 0;
  std::vector<SearchedColumn> columns_;  // the one searched last at the end
  std::vector<Places> places_;           // of every part, while texts are kept
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_ROW_LOOKUPS_H
