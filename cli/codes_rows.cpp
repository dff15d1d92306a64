// Rows to be imported.
#include "cli/codes.h"

namespace tabwerk::tool {
namespace {

constexpr CodeEntry kRowCodes[] = {
    {601, "row-too-long", "A row is too long", ExitCode::kRejected,
     "A line has up to 4,094 characters; a longer one would become two "
     "rows.",
     "Shorten the text, or split the row by hand."},
    {602, "row-with-nul", "A row holds a NUL character", ExitCode::kRejected,
     "A text ends at its first NUL.",
     "Save the text again as UTF-16, little-endian."},
    {603, "value-count", "A row has not as many values as there are columns",
     ExitCode::kRejected,
     "Values stand in the order of the columns, and every column has "
     "one. Between tabs and blanks an empty value counts as none.",
     "0;0;0;Rivet;0.1"},
    {604, "no-integer", "A value is no integer", ExitCode::kRejected,
     "The column takes whole numbers from -2147483648 to 2147483647.",
     "0;0;0;Rivet;12"},
    {605, "no-real", "A value is no number", ExitCode::kRejected,
     "The column takes numbers with a decimal point or comma, and no "
     "signs between thousands.",
     "0;0;0;Rivet;1234.5"},
    {610, "line-feed-in-text", "A text has a line feed", ExitCode::kFindings,
     "A line of table data ends at a line feed, also inside double quotes.",
     "tabwerk export stock.db -d source --dry-run"},
    {611, "quotes-in-text", "Table data cannot say where a text ends",
     ExitCode::kFindings,
     "Double quotes around a text are taken off, all of them; and a comma "
     "behind an odd number of double quotes, or behind \"#TS(\" without "
     "\")TS~\", separates nothing.",
     "Use other quotation marks at the ends of a text."},
    {612, "data-line-too-long", "A line of table data is too long",
     ExitCode::kFindings,
     "A line has up to 4,095 characters; a longer one is read as two rows.",
     "Shorten the texts of the row."},
    {613, "number-not-carried", "No text stands for a number",
     ExitCode::kFindings,
     "Of the bit patterns that are no number only the common one has a text.",
     "Store a number in the row."},
    {614, "text-outside", "A text lies outside the texts of the file",
     ExitCode::kDamaged, "The place that a row names is behind the last text.",
     "cp backup/stock.db ."},
    {620, "no-such-row", "There is no such row", ExitCode::kUsage,
     "No row of the table has that ID, neither in the main file nor in the "
     "user file.",
     "tabwerk show stock.db STOCK.UDB -t ARTICLE"},
    {621, "shipped-row", "A shipped row cannot be changed", ExitCode::kUsage,
     "The values of shipped rows stand in the main file, which its vendor "
     "replaces as a whole. The user file keeps rows of its own; their order, "
     "and order and status of shipped rows, stand in the index.",
     "tabwerk deactivate stock.db STOCK.UDB -t ARTICLE --id 1\n"
     "tabwerk add stock.db STOCK.UDB -t ARTICLE NAME=Bolt"},
    {622, "assigned-column", "A column is not set by hand", ExitCode::kUsage,
     "ID, FOLGE and STATUS say which row it is, where it stands and whether "
     "it is shown; they have commands of their own.",
     "tabwerk move stock.db STOCK.UDB -t ARTICLE --id 20000 --first"},
    {623, "no-assignment", "A word sets no column", ExitCode::kUsage,
     "Values are given as COLUMN=VALUE, every column once. A word with blanks "
     "stands between quotes.",
     "tabwerk add stock.db STOCK.UDB -t ARTICLE \"NAME=Hex bolt\""},
    {624, "text-too-long", "A text is too long", ExitCode::kRejected,
     "A database file takes texts of up to 8,095 characters.",
     "Shorten the text."},
    {625, "row-without-place", "The row has no place in the order",
     ExitCode::kUsage, "Rows that are switched off have no place.",
     "tabwerk activate stock.db STOCK.UDB -t ARTICLE --id 1"},
    {626, "shipped-switched-off", "The row is shipped switched off",
     ExitCode::kUsage,
     "The status of the main file counts unless it is 0, so a user cannot "
     "switch the row on for good.",
     "tabwerk add stock.db STOCK.UDB -t ARTICLE NAME=Bolt"},
    {627, "column-needed", "The table lacks a column that is needed",
     ExitCode::kUsage,
     "Rows are found by the integer column ID; FOLGE holds their order and "
     "STATUS whether they are shown.",
     "tabwerk info stock.db"},
    {628, "two-columns-of-one-name", "A table has two columns of one name",
     ExitCode::kUsage,
     "Values of a new row find their columns by name, so that a second column "
     "of a name never gets one. Rows that are there can be shown all the same.",
     "NEWTABLE ARTICLE\n"
     "ID integer\n"
     "NAME string\n"
     "NAME2 string\n"
     "ENDDEF"},
    {630, "no-utf8", "The text is not UTF-8", ExitCode::kFile,
     "CSV, TSV and JSON are read as UTF-8, or as UTF-16, little-endian, "
     "behind a byte-order mark.",
     "iconv -f WINDOWS-1252 -t UTF-8 rows.csv > rows-utf8.csv"},
    {631, "text-behind-quote", "There is text behind a closing double quote",
     ExitCode::kRejected,
     "A value in double quotes ends at the quote; one that belongs to the "
     "text is doubled.",
     "1,\"Pipe 3\"\" long\""},
    {632, "open-quote", "A double quote is never closed", ExitCode::kFile,
     "All that follows would belong to the value.", "1,\"Pipe 3\"\" long\""},
    {633, "no-json", "The input is not JSON of rows", ExitCode::kFile,
     "JSON is an array of objects, newline-delimited JSON an object a line; "
     "each object is a row, each of its names a column.",
     "[{\"NAME\": \"Bolt\", \"PRICE\": 0.25}]"},
    {634, "no-value", "This is no value of a table", ExitCode::kRejected,
     "Columns take numbers and texts. null stands for no value.",
     "{\"NAME\": \"Bolt\", \"PRICE\": 0.25}"},
    {635, "wrong-column", "The input has a column that does not fit",
     ExitCode::kUsage,
     "Every name is that of a column of the table, and stands there once. "
     "Capital and small letters differ.",
     "tabwerk info stock.db"},
    {636, "missing-column", "The input lacks a column", ExitCode::kFindings,
     "The rows get 0 or an empty text in it.", "NAME,PRICE"},
};

}  // namespace

std::span<CodeEntry const> RowCodes() { return kRowCodes; }

}  // namespace tabwerk::tool
