// The rows of a string column by their text.
#ifndef TABWERK_TABLE_TEXT_LOOKUP_H
#define TABWERK_TABLE_TEXT_LOOKUP_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "DBTabelle.h"

namespace tabwerk {

// Finds the first row that has a text, without a pass over the rows.
//
// Every row is linked into the bucket of its text's hash value, in ascending
// order of row.  The texts themselves stay in the table: a row that is found is
// read and compared.
class TextLookup {
 public:
  // Enters all rows of the column in the current language.  False when a row
  // names no text: a search must then end there.  Throws std::bad_alloc.
  bool Build(DBTabelle& table, DBFeld* field);

  DBFeld const* field() const noexcept { return field_; }
  // True for the language that was current when it was built.
  bool IsInCurrentLanguage() const noexcept;

  // First row of the column with that text.  Throws std::bad_alloc.
  std::optional<std::int32_t> Find(DBTabelle& table,
                                   std::u16string_view text) const;

  // Takes over the present text of a row that has changed, or of one that was
  // added at the end.  False when that would take long: the lookup is then
  // incomplete.  Throws std::bad_alloc.
  bool Update(DBTabelle& table, std::int32_t row);

 private:
  struct Link {
    std::int32_t previous;
    std::int32_t next;
    std::uint32_t hash;
  };

  std::size_t BucketOf(std::uint32_t hash) const noexcept {
    return hash & (heads_.size() - 1);
  }
  void Rehash();
  void Append(std::int32_t row) noexcept;
  bool Insert(std::int32_t row) noexcept;
  void Remove(std::int32_t row) noexcept;

  DBFeld* field_ = nullptr;
  short language_ = 0;
  std::vector<std::int32_t> heads_;  // first row of every bucket, or -1
  std::vector<Link> links_;          // by row; a bucket's rows form a ring
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_TEXT_LOOKUP_H
