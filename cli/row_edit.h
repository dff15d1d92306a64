// Changes of one row of an open database, in memory.
#ifndef TABWERK_CLI_ROW_EDIT_H
#define TABWERK_CLI_ROW_EDIT_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "DBTabelle.h"
#include "cli/errors.h"
#include "cli/session.h"

namespace tabwerk::tool {

// "COLUMN=VALUE" of a command line; UTF-8.
struct Assignment {
  std::string column;
  std::string value;
};

std::optional<Problem> ParseAssignments(std::vector<std::string> const& words,
                                        std::vector<Assignment>* assignments);

struct CellChange {
  std::string column;
  std::string before;  // as they are stored, UTF-8
  std::string after;
};

// Where a row is to go.
struct MoveTarget {
  enum class Kind { kBefore, kAfter, kFirst, kLast };

  Kind kind = Kind::kLast;
  std::int32_t id = 0;  // of the other row, for kBefore and kAfter
};

// Borrows what it is given.  Each change is done wholly or, with a problem, not
// to be saved.
class RowEdit {
 public:
  RowEdit(DatabaseFiles const& files, std::string const& table_name,
          DBTabelle& table)
      : files_(files), table_name_(table_name), table_(table) {}

  // A row of the user at the end of the order, with a new ID.
  std::optional<Problem> Add(std::vector<Assignment> const& assignments,
                             std::int32_t* id);
  // Values of a row of the user.
  std::optional<Problem> Set(std::int32_t id,
                             std::vector<Assignment> const& assignments);
  // Status and, with it, the place of any row.
  std::optional<Problem> SetActive(std::int32_t id, bool active);
  std::optional<Problem> Move(std::int32_t id, MoveTarget const& target);

  // What has changed in the row itself; empty when nothing has.
  std::vector<CellChange> const& Changes() const { return changes_; }
  // Place of the row that was changed; 0 for none.
  std::int32_t Place() const { return place_; }

 private:
  Problem Refusal(Code code, std::string const& what,
                  std::string const& advice) const;
  std::optional<Problem> CheckColumn(char const* name) const;
  std::optional<Problem> CheckAssignment(Assignment const& assignment) const;
  std::optional<Problem> FindRow(std::int32_t id, long* row) const;
  bool IsShipped(long row) const;
  DBFeld const* FindField(std::string const& column) const;
  std::int32_t Number(long row, char const* column) const;
  bool SetNumber(long row, char const* column, std::int32_t value);
  std::string Text(long row, DBFeld const& field) const;
  bool Store(long row, DBFeld const& field, std::string const& value);
  std::vector<long> ActiveRows() const;
  bool Renumber(std::vector<long> const& active_rows, long changed_row);

  DatabaseFiles const& files_;
  std::string const& table_name_;
  DBTabelle& table_;
  std::vector<CellChange> changes_;
  std::int32_t place_ = 0;
};

// A problem when the row is one of the main file that is switched off there:
// the user cannot switch it on.  Opens the main file alone.
std::optional<Problem> CheckShippedStatus(DatabaseFiles const& files,
                                          std::string const& table_name,
                                          std::int32_t id);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_ROW_EDIT_H
