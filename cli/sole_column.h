// Columns by their place: of several columns of one name the library finds the
// first one alone.
#ifndef TABWERK_CLI_SOLE_COLUMN_H
#define TABWERK_CLI_SOLE_COLUMN_H

#include <vector>

#include "DBTabelle.h"

namespace tabwerk::tool {

// While it lives, the name of a column finds that column, also where an earlier
// one of the table has the same name.  Borrows the table.
class SoleColumn {
 public:
  // field is one of the table's definition.
  SoleColumn(DBTabelle& table, DBFeld const& field);
  ~SoleColumn();
  SoleColumn(SoleColumn const&) = delete;
  SoleColumn& operator=(SoleColumn const&) = delete;

 private:
  std::vector<DBFeld*> hidden_;
  char initial_;  // of their names
};

// Selects that column, as SelectColumn does by name.
bool SelectField(DBTabelle& table, DBFeld const& field);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_SOLE_COLUMN_H
