// IDs and places of the rows of one table: twice, missing, or impossible.
#ifndef TABWERK_CLI_ROW_NUMBERS_H
#define TABWERK_CLI_ROW_NUMBERS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>

#include "cli/data_lines.h"

namespace tabwerk::tool {

// Where a number of a row stands.
struct RowPlace {
  std::size_t file;  // position in the table's files
  LinePlace in_file;
};

class RowNumbers {
 public:
  // The row that had the number before; nothing for a new number, which is
  // taken down.
  std::optional<RowPlace> AddId(std::int32_t id, RowPlace const& row);
  // The same for a place; 0 is none.
  std::optional<RowPlace> AddFolge(std::int32_t folge, RowPlace const& row);

  // Places from 1 to the largest that no row has.
  struct Gaps {
    long long count = 0;
    std::int32_t first = 0;  // the smallest
    std::int32_t next = 0;   // the first place behind it that a row has
    RowPlace row{};          // where that is given
  };
  // Linear in the number of rows.
  Gaps FindGaps() const;

 private:
  using Rows = std::unordered_map<std::int32_t, RowPlace>;

  static std::optional<RowPlace> Add(Rows* rows, std::int32_t number,
                                     RowPlace const& row);

  Rows ids_;
  Rows places_;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_ROW_NUMBERS_H
