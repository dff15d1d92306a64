// The comparison of one table of two databases.
#ifndef TABWERK_CLI_DIFF_TABLE_H
#define TABWERK_CLI_DIFF_TABLE_H

#include "cli/diff_columns.h"
#include "cli/diff_model.h"
#include "cli/diff_snapshot.h"

namespace tabwerk::tool {

// Hands out what differs between a table and its namesake; true when something
// does.  The rows belong together by their IDs where both have a column ID of
// integers, and the n-th of several with one ID to the n-th; else by their
// numbers.  The columns belong together by their names; values of columns of
// different types are not compared.
bool CompareTables(SnapshotTable const& before, SnapshotTable const& after,
                   DiffOptions const& options, DiffOut& out);

// Hands out a table that only one of them has: its rows are counted, not
// listed.
void HandOutLoneTable(SnapshotTable const& table, Change change,
                      DiffOptions const& options, DiffOut& out);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_DIFF_TABLE_H
