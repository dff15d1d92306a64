// The comparison of two databases.
#ifndef TABWERK_CLI_DIFF_TABLES_H
#define TABWERK_CLI_DIFF_TABLES_H

#include <optional>

#include "cli/diff_columns.h"
#include "cli/diff_model.h"
#include "cli/diff_snapshot.h"

namespace tabwerk::tool {

// Compares them, table by table, and hands out what differs; *equal tells
// whether nothing does.  A problem: a table or a column that is asked for is in
// none of them.
std::optional<Problem> CompareDatabases(Snapshot const& before,
                                        Snapshot const& after,
                                        DiffOptions const& options,
                                        DiffOut& out, bool* equal);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_DIFF_TABLES_H
