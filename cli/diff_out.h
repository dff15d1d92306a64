// The forms in which differences come out.  Each borrows the file that it
// writes to.
#ifndef TABWERK_CLI_DIFF_OUT_H
#define TABWERK_CLI_DIFF_OUT_H

#include <memory>

#include "cli/diff_model.h"
#include "cli/out_file.h"

namespace tabwerk::tool {

// A line for each difference, which begins with "-" (only the first database
// has it), "+" (only the second one) or "~" (both, and they differ).
std::unique_ptr<DiffOut> MakeDiffText(OutFile& file, bool colors);
// An object as docs/schema/diff.json describes it.
std::unique_ptr<DiffOut> MakeDiffJson(OutFile& file);
// A heading and a table for each table.
std::unique_ptr<DiffOut> MakeDiffMarkdown(OutFile& file);

// "~", "-" or "+".
char const* ChangeMark(Change change);
// "geo.db, GEO.UDB".
std::string FilesText(DatabaseFiles const& files);
// "ID 8", "row 3"; "ID 8 (number 2)" for the second row of that ID.
std::string RowLabel(TableChange const& table, RowChange const& row);
// "NAME", "NAME, language 1", "NAME, section 2, language 1".
std::string CellLabel(CellDifference const& cell);
// "3 rows changed, 1 row removed, 253 rows the same".
std::string CountsText(ChangeCounts const& counts);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_DIFF_OUT_H
