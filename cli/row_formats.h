// The formats of rows.  Each borrows the file that it writes to.
#ifndef TABWERK_CLI_ROW_FORMATS_H
#define TABWERK_CLI_ROW_FORMATS_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/out_file.h"
#include "cli/table_out.h"

namespace tabwerk::tool {

// Columns of a terminal below which no value is cut.
inline constexpr std::size_t kSmallestCut = 8;

// RFC 4180 with a line of names: a value with a comma, a double quote or a line
// end stands between double quotes, which are doubled inside.  Lines end in a
// line feed.
std::unique_ptr<RowFormat> MakeCsv(OutFile& file);
// Lines of values separated by tabs, behind a line of names; control characters
// stand as \t, \n, \r and \xHH, "\" as "\\".
std::unique_ptr<RowFormat> MakeTsv(OutFile& file);
// An array of objects, or an object a line.  Integers are exact, reals in the
// shortest form that reads back as the same number, null for a missing value,
// infinity and not-a-number.  A second column of one name is called NAME_2.
std::unique_ptr<RowFormat> MakeJson(OutFile& file, bool as_array);
// An object as it stands there, without a line feed; as many cells as columns.
std::string JsonObject(std::vector<ColumnHead> const& columns,
                       std::vector<Cell> const& cells);
// A table of Markdown; characters that mean something to it are escaped, a line
// end is <br>.
std::unique_ptr<RowFormat> MakeMarkdown(OutFile& file);
// A line "NAME  value" for each value, an empty line between two rows.  With a
// width the values are cut to fit into it.
std::unique_ptr<RowFormat> MakeList(OutFile& file,
                                    std::optional<std::size_t> width);
// Values below each other.  With a width the columns are cut to fit into it;
// without, every value is complete.  Columns are measured by the first rows.
std::unique_ptr<RowFormat> MakeFittedTable(OutFile& file,
                                           std::optional<std::size_t> width,
                                           bool colors);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_ROW_FORMATS_H
