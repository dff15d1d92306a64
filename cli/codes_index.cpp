// Index, order and status.
#include "cli/codes.h"

namespace tabwerk::tool {
namespace {

using enum ExitCode;

constexpr char kCopyBack[] = "cp backup/STOCK.UDB backup/STOCK.idx .";
constexpr char kRows[] = "tabwerk show stock.db STOCK.UDB -t ARTICLE";
constexpr char kRemove[] = "rm STOCK.idx";

constexpr CodeEntry kIndexCodes[] = {
    // --- IDs
    {410, "double-id", "Two rows have one ID", kFindings,
     "A row is found by its ID, and of two with one ID only the later one is. "
     "Order and status are carried over by ID, too.",
     kRows},
    {411, "low-user-id", "A row of the user has an ID of shipped rows",
     kFindings,
     "IDs below 20000 are the vendor's. A new main file may give this one to "
     "another row, which then hides one of the two.",
     kRows},
    {412, "high-shipped-id", "A shipped row has an ID of the user's rows",
     kFindings,
     "IDs from 20000 on are the user's. A program gives its next row the "
     "largest ID plus one, and somebody else's user file may have given this "
     "one away.",
     kRows},
    // --- Order
    {420, "double-place", "Two rows have one place in the order", kFindings,
     "FOLGE is the place of a row in the order. Of two rows with one place "
     "only the later one is in the order; the other one does not show.",
     kRows},
    {421, "place-out-of-range", "A place lies outside the order", kFindings,
     "A table has as many places as rows, from 1 on. A row with a place behind "
     "them, or a negative one, is not in the order and does not show.",
     kRows},
    {422, "gap", "A place in the order is empty", kFindings,
     "The places of a main file are 1, 2, 3 and so on. When order and status "
     "are carried over to a new main file, new rows that stand behind a gap "
     "move to the front.",
     kRows},
    {423, "active-without-place", "An active row has no place", kFindings,
     "Its FOLGE is 0, as that of inactive rows. It does not show where rows "
     "are listed in their order.",
     kRows},
    {424, "row-not-in-order", "An active row is not in the order", kFindings,
     "With the order of the index applied, another row has its place, or it "
     "has none. That is so after a new main file has brought a row to a place "
     "that the user has given away, until the program numbers its rows anew.",
     kRows},
    {425, "odd-status", "A status has no meaning", kFindings,
     "0 is active; 1 and 2 are not. Any other value becomes 1 when order and "
     "status are carried over.",
     kRows},
    {426, "system-column-type", "ID, FOLGE or STATUS holds no integers",
     kFindings,
     "A column of this name has a meaning only when it holds integers.",
     "NEWTABLE ARTICLE\n"
     "ID integer\n"
     "FOLGE integer\n"
     "STATUS integer\n"
     "NAME string\n"
     "ENDDEF"},
    // --- Index file
    {430, "unreadable-index", "The index cannot be read", kFindings,
     "The index beside the user file holds the user's order, and the status of "
     "shipped rows. Until it can be read they are as shipped; nothing is "
     "written over it.",
     "chmod u+r STOCK.idx"},
    {431, "cut-index", "The index is cut off", kFindings,
     "It ends before the sections of all tables have been there. It counts as "
     "missing, and the next opening writes a new one.",
     kCopyBack},
    {432, "index-section", "The index is none of this database", kFindings,
     "Where a section of a table has to begin, something else stands. The "
     "database may have got a table more or less. The index counts as missing, "
     "and the next opening writes a new one.",
     kCopyBack},
    {433, "index-count", "A section of the index has an impossible size",
     kFindings,
     "The number of entries is negative, or there are fewer bytes. The index "
     "counts as missing, and the next opening writes a new one.",
     kCopyBack},
    {434, "index-sizes", "Sections of the index do not fit each other",
     kFindings,
     "A table has one place more than rows, and no more IDs than rows. The "
     "index counts as missing, and the next opening writes a new one.",
     kCopyBack},
    {435, "index-row", "The index names a row that there is not", kFindings,
     "Rows count from 0. The index counts as missing, and the next opening "
     "writes a new one.",
     kCopyBack},
    {436, "index-rest", "Something stands behind the index", kFindings,
     "Behind the sections of the last table the index has to end. The database "
     "may have lost a table. The index counts as missing, and the next opening "
     "writes a new one.",
     kCopyBack},
    {437, "index-row-count", "The index is for another number of rows",
     kFindings,
     "It carries the times of writing of these files, but they have more or "
     "fewer rows. It counts as missing, and the next opening writes a new "
     "one.",
     kCopyBack},
    {438, "stale-index", "The index is older than the files", kFindings,
     "So it is after a new main file. The next opening carries order and "
     "status over by ID and writes the index anew.",
     kRows},
    {439, "waiting-index", "An index waits to be put in its place", kFindings,
     "A save was interrupted in its last step. The next opening completes it.",
     "tabwerk check stock.db STOCK.UDB"},
    {440, "index-ids", "The index knows other IDs than the rows", kFindings,
     "It carries the times of writing of these files, but they have other "
     "rows: perhaps both have none, as files of old formats. Order and status "
     "are applied to whatever rows stand there.",
     kRemove},
    {441, "index-id-order", "IDs of the index are not in order", kFindings,
     "They stand in ascending order, each once. The index has been changed.",
     kRemove},
    {442, "index-double-place", "A row has two places in the index", kFindings,
     "The index is always written with one place for each row.", kRemove},
    {443, "index-status", "The index has a status without a meaning", kFindings,
     "0 is active; 1 and 2 are not. The value is applied to the row when the "
     "database is opened.",
     kRows},
};

}  // namespace

std::span<CodeEntry const> IndexCodes() { return kIndexCodes; }

}  // namespace tabwerk::tool
