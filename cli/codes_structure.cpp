// What is inside a database file.
#include "cli/codes.h"

namespace tabwerk::tool {
namespace {

using enum ExitCode;

constexpr char kBackup[] = "cp backup/stock.db .";
constexpr char kBuild[] = "tabwerk build stock.script";
constexpr char kDefinition[] =
    "NEWTABLE ARTICLE\n"
    "ID integer\n"
    "NAME string\n"
    "ENDDEF";

constexpr CodeEntry kStructureCodes[] = {
    // --- Header
    {310, "unknown-start", "The file does not begin as a database does",
     kFindings,
     "A database file begins with \"ver\" and its version, or in the oldest "
     "form with \"anf\". Another start is read as if it were there, so the "
     "tables may be sound all the same.",
     kBackup},
    {311, "cut-header", "The file ends inside its header", kFindings,
     "Version, \"time\" and time of writing take 19 bytes; the file has fewer.",
     kBackup},
    {312, "odd-version", "The format version is not known", kFindings,
     "Versions have four digits, from 2014 to 2025. Any other one is read as "
     "its number says; where that is none, as 0.",
     "tabwerk info stock.db"},
    {313, "odd-time-tag", "\"time\" is missing in the header", kFindings,
     "Whatever stands there is skipped when the file is read. The library "
     "never writes anything else, so the header has been changed.",
     kBackup},
    {314, "odd-time", "The time of writing is no date", kFindings,
     "The time counts seconds since 1970. It tells the index whether the file "
     "has changed.",
     kBackup},
    {315, "no-tables", "A main file has no tables", kDamaged,
     "A main file without tables does not open. Only a user file may be "
     "empty: it gets its tables when it is first saved.",
     kBuild},
    // --- List of tables
    {320, "record-start", "A record of the list of tables has a wrong start",
     kDamaged,
     "Every record begins with \"anf\". As the records stand one behind the "
     "other, nothing behind the place can be read, and the file does not "
     "open.",
     kBackup},
    {321, "table-name-length", "The name of a table does not end", kFindings,
     "A name has up to 63 characters and a NUL. Without the NUL it is cut, and "
     "its rest is read as the definition.",
     kBackup},
    {322, "table-without-name", "A table has no name", kFindings,
     "A file that has a table without a name cannot be saved.", kBackup},
    {323, "double-table", "Two tables have one name", kFindings,
     "Tables are found by their names; of two with one name only the one that "
     "stands last in the file is found.",
     "tabwerk info stock.db"},
    {324, "definition-length", "A definition does not end", kFindings,
     "A definition has up to 16,383 characters and a NUL. Without the NUL it "
     "is cut.",
     kBackup},
    {325, "cut-list", "The list of tables is cut off", kDamaged,
     "The file ends inside a record, or the list is longer than a file of this "
     "format can have it. The file does not open.",
     kBackup},
    {326, "record-end", "A record of the list of tables has a wrong end",
     kDamaged,
     "Every record ends with \"end\". Name, definition or numbers before the "
     "place are not what they were, and the file does not open.",
     kBackup},
    {327, "no-list-end", "The list of tables is not ended", kFindings,
     "A zero byte ends the list; the file ends before it. Its tables are read, "
     "but have no room for rows.",
     kBackup},
    {328, "unknown-type", "A column has an unknown type", kFindings,
     "A type is integer, real or string (or LONG, DOUBLE, STRING). A column of "
     "another one takes no room in a row and holds no value.",
     kDefinition},
    {329, "unsaveable-definition", "A definition cannot be saved", kFindings,
     "Written and read again, the definition would describe other rows. A "
     "column with a name of 64 characters or more does that. The file can be "
     "read but not saved.",
     kDefinition},
    {330, "double-column", "Two columns have one name", kFindings,
     "Columns are found by their names, and of two with one name the first is "
     "found. The second can be neither read nor set.",
     kDefinition},
    {331, "reserved-number", "A number that has to be 0 is not", kFindings,
     "The second number of a record is always written as 0 and not used. "
     "Another value shows that the bytes have been changed.",
     kBackup},
    // --- Blocks
    {340, "negative-number", "A number of a table is negative", kDamaged,
     "Counts, sizes and offsets are not negative. The table cannot be loaded; "
     "the others can.",
     kBackup},
    {341, "too-many-rows", "The rows do not fit into their block", kDamaged,
     "The number of rows times the bytes of a row is more than the row block "
     "has. The table cannot be loaded; the others can.",
     kBackup},
    {342, "large-row-block", "A row block is larger than its rows", kFindings,
     "A row block ends with its last row. What stands behind it is read and "
     "never used, and gone after a save: perhaps the number of rows is wrong.",
     "tabwerk info stock.db"},
    {343, "rows-without-bytes", "A table has rows that have no bytes", kDamaged,
     "A table whose columns take no room in a row has no rows. The table "
     "cannot be loaded; the others can.",
     kBackup},
    {344, "block-beyond-file", "A block ends behind the end of the file",
     kDamaged,
     "The file was cut off, or the numbers of the table have been changed. The "
     "table cannot be loaded; the others can.",
     kBackup},
    {345, "block-out-of-reach", "A block begins behind 2 GiB", kDamaged,
     "Offsets have 32 bits, with a sign. The table cannot be loaded; the "
     "others can.",
     kBackup},
    {346, "overlap", "Two blocks lie over each other", kFindings,
     "Every block has bytes of its own. Of two that share bytes at least one "
     "reads what is not its own; where blocks claim more bytes than the file "
     "has, the table cannot be loaded.",
     kBackup},
    {347, "unused-bytes", "Bytes belong to no table", kFindings,
     "Blocks stand one behind the other, up to the end of the file. Bytes "
     "between or behind them are never read, and gone after a save.",
     "tabwerk info stock.db"},
    {348, "odd-string-block", "A string block has an odd number of bytes",
     kFindings,
     "Files of version 2014 count the bytes of their string blocks, and a "
     "character has two. The last byte is not read.",
     kBackup},
    {349, "other-definition", "A table is defined otherwise in the user file",
     kFindings,
     "Types, order and number of the columns of a table have to be the same in "
     "both files; names may differ. The files do not open together.",
     "tabwerk check stock-2023.db STOCK.UDB"},
    {350, "table-only-in-user-file", "Only the user file has a table",
     kFindings,
     "The main file decides which tables there are. Rows of the user in "
     "another one stay in the user file until the next save, which leaves "
     "them out.",
     "cp STOCK.UDB STOCK-old.UDB"},
    // --- String blocks
    {360, "text-outside", "A text lies outside its string block", kFindings,
     "A row names a text by its place in the string block, and the block does "
     "not reach there. The value cannot be read, and the file cannot be "
     "saved.",
     kBackup},
    {361, "no-final-nul", "The last text has no NUL", kFindings,
     "Every text ends with a NUL. The last one is read as if it had one; "
     "perhaps the end of it is missing.",
     kBackup},
    {362, "text-at-end", "A text begins at the end of its string block",
     kFindings,
     "The value reads as empty. The library gives an empty text a place of its "
     "own, so the place has been changed.",
     kBackup},
    {363, "shared-text", "Two values have one text", kFindings,
     "They read as they should; but a text that is set in one of them and is "
     "no longer than the old one changes the other, too. A save gives each its "
     "own.",
     "tabwerk convert stock.db"},
    {364, "text-inside-text", "A text begins inside another one", kFindings,
     "The value is the end of another text. A save gives it a text of its "
     "own.",
     "tabwerk show stock.db -t ARTICLE"},
    {365, "text-without-row", "No row has a text", kFindings,
     "The text takes room and is never read. A save leaves it out.",
     "tabwerk convert stock.db"},
    {370, "text-too-long", "A text is too long to be saved", kFindings,
     "A text has up to 8,095 characters (UTF-16 units). It can be read, but a "
     "program that saves the file is ended at once.",
     "Shorten the text."},
};

}  // namespace

std::span<CodeEntry const> StructureCodes() { return kStructureCodes; }

}  // namespace tabwerk::tool
