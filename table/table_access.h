// The library's own access to tables.
#ifndef TABWERK_TABLE_TABLE_ACCESS_H
#define TABWERK_TABLE_TABLE_ACCESS_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <vector>

#include "DBTabelle.h"
#include "platform/block.h"
#include "schema/part.h"
#include "table/id_index.h"
#include "table/sub_table.h"

namespace tabwerk {

class SectionSource;

// What reading a section of an index file changes.
enum class RowUpdate : std::uint8_t {
  kIndexOnly,
  kRowsToo,  // its values go into the rows as well
};

struct TableAccess {
  static std::vector<DBSubTable>& SubTables(DBTabelle& table) {
    return table.sub_tables_;
  }
  static IdIndex& Ids(DBTabelle& table) { return *table.id_index_; }
  static std::vector<std::int32_t>& Folge(DBTabelle& table) {
    return table.folge_index_;
  }
  static std::vector<std::int32_t>& Status(DBTabelle& table) {
    return table.status_index_;
  }
  static long CurrentRow(DBTabelle const& table) { return table.current_row_; }
  // Number over all parts of the row that is selected in the current part: the
  // row whose values are read and set.  It differs from CurrentRow after Dump.
  static std::int64_t ValueRow(DBTabelle& table) noexcept;
  static std::size_t CurrentSubTable(DBTabelle const& table) {
    return table.current_sub_table_;
  }
  // The part that the current row lies in, or null.
  static DBSubTable* Current(DBTabelle& table) {
    // Compared as places, because counting the parts takes a division.
    auto& parts = table.sub_tables_;
    auto const current =
        parts.begin() + static_cast<std::ptrdiff_t>(table.current_sub_table_);
    return current < parts.end() ? &*current : nullptr;
  }

  // What the table remembers of its rows, or null.
  static RowLookups* Lookups(DBTabelle& table) { return table.lookups_.get(); }
  // The same, made where there is none yet; throws std::bad_alloc.
  static RowLookups& NeedLookups(DBTabelle& table);
  static DBDefinition* Definition(DBTabelle& table) {
    return table.definition_;
  }
  // The field of the column that was selected last, or null.
  static DBFeld* Field(DBTabelle& table) { return table.current_field_; }
  // Which index follows a value that is set: "FOLGE", "STATUS", "ID" or "".
  static char const* FollowingIndex(DBTabelle const& table) {
    if (table.folge_selected_) return "FOLGE";
    if (table.status_selected_) return "STATUS";
    return table.id_selected_ ? "ID" : "";
  }
  // Makes that row of that part current; row counts over all parts.
  static void SetCurrent(DBTabelle& table, std::size_t part,
                         std::int32_t part_row, std::int64_t row) {
    table.sub_tables_[part].row = part_row;
    table.current_sub_table_ = part;
    table.current_row_ = static_cast<long>(row);
  }

  // Makes that row current if it lies in the first part, as most rows do;
  // false, and no change, otherwise.
  static bool SelectInFirstPart(DBTabelle& table, std::int64_t row) noexcept {
    auto& parts = table.sub_tables_;
    if (row < 0 || parts.empty() || row >= parts[0].part->Rows()) return false;
    SetCurrent(table, 0, static_cast<std::int32_t>(row), row);
    return true;
  }

  // Lets the index of the column that is selected (FOLGE or STATUS) follow a
  // value that the current row gets.
  static void FollowValue(DBTabelle& table, std::int32_t value) noexcept {
    auto const row = static_cast<std::int32_t>(table.current_row_);
    if (table.folge_selected_) {
      auto& folge = table.folge_index_;
      if (value >= 1 && static_cast<std::size_t>(value) < folge.size()) {
        folge[static_cast<std::size_t>(value)] = row;
      }
    } else if (table.status_selected_) {
      auto& status = table.status_index_;
      if (row >= 0 && static_cast<std::size_t>(row) < status.size()) {
        status[static_cast<std::size_t>(row)] = value;
      }
    }
  }
  // Lets the ID index follow an ID that the current row gets in place of
  // old_id.  False, and no change, without memory.
  static bool FollowId(DBTabelle& table, std::int32_t old_id, std::int32_t id);

  // True when the current value, whatever its type, names a text of the store:
  // SetWert by a text then fails only for lack of memory.
  static bool HasText(DBTabelle& table);

  // As SelectZeile by a text; throws std::bad_alloc.
  static int SelectText(DBTabelle& table, char const* column,
                        std::u16string_view text);

  // Read one section of an index file, as the members of the same names do.
  // False when memory was exhausted: the index is then empty, the rows are as
  // they were.  A wrong tag or a source that ends early gives true.
  static bool ReadIds(DBTabelle& table, SectionSource& source);
  static bool ReadFolge(DBTabelle& table, SectionSource& source,
                        RowUpdate update);
  static bool ReadStatus(DBTabelle& table, SectionSource& source,
                         RowUpdate update);

  // As ResortIndexID.  False when memory was exhausted: rows and indices are
  // then as they were.
  static bool Resort(DBTabelle& table);
  // As MakeIndexFolge and MakeIndexStatus, in a vector of the caller's that has
  // as many entries as the index needs.
  static void MakeFolge(DBTabelle& table, std::vector<std::int32_t> entries);
  static void MakeStatus(DBTabelle& table, std::vector<std::int32_t> entries);

  // Gives a table the indices and the selection of a copy.
  static void TakeIndices(DBTabelle& table, DBTabelle& copy) noexcept;

  // Writes the texts of a part's rows at the stream's position, each with a
  // copy of its own, in row and field order, and puts into *rows the part's row
  // records as they address the written block.  The table is left as it is.
  // False when the stream failed or memory is exhausted.  A text over
  // format::kMaxTextUnits ends the process.
  static bool WriteTexts(DBTabelle& table, std::size_t part, FILE* stream,
                         platform::Block* rows);
};

}  // namespace tabwerk

#endif  // TABWERK_TABLE_TABLE_ACCESS_H
