// What differs between two databases.
#ifndef TABWERK_CLI_DIFF_MODEL_H
#define TABWERK_CLI_DIFF_MODEL_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/session.h"
#include "cli/table_out.h"

namespace tabwerk::tool {

enum class Change { kRemoved, kAdded, kChanged };

// A column that only one of them has, or that has another type.
struct ColumnChange {
  Change change;
  std::string name;
  std::string before;  // its type; empty without one
  std::string after;
};

// A value, or a piece of a text in one language.
struct CellDifference {
  std::string column;
  std::optional<std::size_t> language;  // from 0
  std::optional<std::size_t> section;   // from 1, where a text has several
  Cell before;                          // missing: the language is new
  Cell after;
};

struct ColumnCell {
  std::string column;
  Cell value;
};

struct RowChange {
  Change change;
  std::int64_t key;                   // ID, or number of the row from 0
  int occurrence;                     // of rows with one ID, from 1
  std::vector<CellDifference> cells;  // of a changed row
  std::vector<ColumnCell> values;     // of another one
};

// What a table is called and how its rows are told apart.
struct TableChange {
  Change change = Change::kChanged;  // both have it
  std::string name;
  bool by_id = false;  // else by the number of the row
  std::int64_t rows_before = 0;
  std::int64_t rows_after = 0;
  std::vector<ColumnChange> columns;
  bool reordered = false;  // columns that both have stand in another order
};

// Numbers of rows.
struct ChangeCounts {
  std::int64_t same = 0;
  std::int64_t changed = 0;
  std::int64_t removed = 0;
  std::int64_t added = 0;
};

// Takes the differences as they are found: for each table that differs
// BeginTable, its rows, EndTable.
class DiffOut {
 public:
  DiffOut() = default;
  DiffOut(DiffOut const&) = delete;
  DiffOut& operator=(DiffOut const&) = delete;
  virtual ~DiffOut() = default;

  virtual void Begin(DatabaseFiles const& before,
                     DatabaseFiles const& after) = 0;
  virtual void BeginTable(TableChange const& table) = 0;
  virtual void Row(RowChange const& row) = 0;
  // False when nobody takes rows any more.
  virtual bool WantsMore() const = 0;
  virtual void EndTable(ChangeCounts const& counts) = 0;
  // Numbers of tables, those that are the same included.
  virtual void End(std::size_t table_count, std::size_t different_count) = 0;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_DIFF_MODEL_H
