// The command line, files, the machine.
#include "cli/codes.h"

namespace tabwerk::tool {
namespace {

constexpr CodeEntry kFileCodes[] = {
    {101, "wrong-arguments", "The command line makes no sense",
     ExitCode::kUsage,
     "An option is missing, unknown or has a value that it does not "
     "take. The help of the command says what it takes.",
     "tabwerk show --help"},
    {102, "unknown-command", "There is no such command", ExitCode::kUsage,
     "The first word is neither a command nor a file. A file that is "
     "called like a command is named with its folder.",
     "tabwerk help\n"
     "tabwerk info ./show"},
    {103, "unsuitable-separator", "The separator cannot separate values",
     ExitCode::kUsage,
     "A separator is one character, and neither a double quote nor the "
     "end of a line.",
     "tabwerk import rows.txt stock.db STOCK.UDB -t ARTICLE --separator "
     "\"\\t\""},
    {104, "no-user-file-name", "The file is not named as a user file",
     ExitCode::kUsage,
     "A user file is recognised by its name: it ends in \".UDB\", in "
     "capital letters, and the main file does not.",
     "mv stock.udb STOCK.UDB"},
    {105, "user-file-needed", "The command needs a user file", ExitCode::kUsage,
     "The rows that are asked for stand in the user file, and none is "
     "named.",
     "tabwerk dump stock.db STOCK.UDB -t ARTICLE --user"},
    {106, "no-such-table", "There is no such table", ExitCode::kUsage,
     "The database has no table of that name. Capital and small letters "
     "differ.",
     "tabwerk info stock.db"},
    {107, "no-such-column", "There is no such column", ExitCode::kUsage,
     "A column that is asked for is not among those of the output. "
     "Capital and small letters differ.",
     "tabwerk show stock.db -t ARTICLE --columns ID,NAME"},
    {108, "output-is-data", "The output would replace data", ExitCode::kUsage,
     "The file behind -o or --rejected is a database, an index file or the "
     "input. Output never takes the place of one.",
     "tabwerk show stock.db -t ARTICLE -o article.txt"},
    {109, "no-such-code", "There is no such number", ExitCode::kUsage,
     "The numbers are those that stand in brackets in messages.",
     "tabwerk explain\n"
     "tabwerk explain TW110"},
    {110, "no-such-file", "The file is not there", ExitCode::kFile,
     "No file has that path. A path is taken from the folder in which "
     "the command runs.",
     "tabwerk build stock.script -C data"},
    {111, "is-a-folder", "A folder stands where a file is needed",
     ExitCode::kFile, "The path is that of a folder.",
     "tabwerk info data/stock.db"},
    {112, "cannot-open", "The file cannot be opened", ExitCode::kFile,
     "The system does not let the file be opened, most often for want of "
     "a permission.",
     "chmod u+r stock.db"},
    {113, "read-only", "The file is read-only", ExitCode::kFile,
     "The command has to change the file, and its attributes forbid "
     "that.",
     "chmod u+w STOCK.UDB"},
    {114, "held", "Another process holds the file", ExitCode::kHeld,
     "A program that writes a database keeps others from writing it at "
     "the same time, and while it makes a file anew, from reading it.",
     "Close the program that uses the database and try again."},
    {115, "cannot-make", "The file cannot be made", ExitCode::kFile,
     "The folder is missing or cannot be written, or the disk is full.",
     "mkdir data"},
    {116, "cannot-read", "The input cannot be read", ExitCode::kFile,
     "The file with the input is not there, or the system does not let "
     "it be read.",
     "ls -l rows.txt"},
    {117, "cannot-write", "The file cannot be written", ExitCode::kFile,
     "The folder cannot be written, the disk is full, or a program holds "
     "the file that is to be replaced.",
     "df ."},
    {118, "no-temporary-folder",
     "The folder for temporary files cannot be used", ExitCode::kFile,
     "A save and a look at a user file need a folder for temporary files "
     "with room for copies of the files.",
     "TMPDIR=/var/tmp tabwerk show stock.db STOCK.UDB -t ARTICLE"},
    {119, "not-saved", "The database was not saved", ExitCode::kFile,
     "Something failed before the new file took the place of the old "
     "one; the old one is as it was.",
     "df . /tmp"},
    {120, "output-lost", "Some of the output was lost", ExitCode::kFile,
     "Nobody reads the pipe any more, or the disk that takes the output "
     "is full.",
     "tabwerk show stock.db -t ARTICLE > /tmp/article.txt"},
    {121, "out-of-memory", "There is not enough memory", ExitCode::kFile,
     "Tables are held in memory as a whole.",
     "Close other programs and try again."},
    {122, "unexpected", "The system refused something", ExitCode::kFile,
     "The text comes from the system.", "Try again with -v."},
    {123, "no-database",
     "This is no database, or its list of tables is damaged",
     ExitCode::kDamaged,
     "The file does not begin as a database does, or the records that "
     "describe its tables cannot be true.",
     "tabwerk info stock.db\n"
     "cp backup/stock.db ."},
    {124, "damaged-table", "A table is damaged", ExitCode::kDamaged,
     "The place or the size of the rows or the texts of a table cannot "
     "be true. The other tables can be read.",
     "tabwerk info stock.db\n"
     "cp backup/stock.db ."},
    {125, "damaged-file", "The file is damaged", ExitCode::kDamaged,
     "Something in the header or in the list of tables cannot be true. "
     "The output shows what.",
     "cp backup/stock.db ."},
    {126, "other-definitions", "The files do not belong together",
     ExitCode::kFile,
     "A table has other types or another record size in the user file "
     "than in the main file.",
     "tabwerk show stock-2023.db STOCK.UDB -t ARTICLE"},
    {127, "table-not-in-user-file", "The user file lacks the table",
     ExitCode::kFile,
     "The user file was made before the main file got the table. The "
     "program that uses it gives it the table when it next saves.",
     "tabwerk info stock.db STOCK.UDB"},
    {128, "column-without-type", "A column has no type", ExitCode::kDamaged,
     "The definition of the table names a type that there is not, so "
     "that no value can be read or written.",
     "NEWTABLE ARTICLE\n"
     "ID integer\n"
     "NAME string\n"
     "ENDDEF"},
    {129, "no-units", "The text is not UTF-16", ExitCode::kFile,
     "Texts with rows are UTF-16, little-endian, as spreadsheets save "
     "\"Unicode text\".",
     "iconv -f UTF-8 -t UTF-16LE rows.csv > rows.txt"},
    {130, "no-working-folder", "There is no such folder to work in",
     ExitCode::kFile, "The folder behind -C is not there or cannot be entered.",
     "tabwerk build stock.script -C data"},
    {131, "no-backup", "The backup could not be made", ExitCode::kFile,
     "A copy beside the file could not be written; nothing was changed.",
     "df ."},
    {132, "no-such-row", "There is no such row", ExitCode::kFindings,
     "No row of the table has the ID or the number that is asked for. The "
     "other rows are shown.",
     "tabwerk show stock.db ARTICLE --columns ID,NAME"},
    {133, "unsuitable-condition", "The condition does not suit the table",
     ExitCode::kUsage,
     "A condition names a column, then \"=\" and a value: a number for a "
     "column of numbers. Patterns are for columns of texts.",
     "tabwerk show stock.db ARTICLE --where PRICE=0.25\n"
     "tabwerk show stock.db ARTICLE --match \"NAME=B.*\""},
    {134, "bad-pattern", "The pattern cannot be used", ExitCode::kUsage,
     "Patterns are regular expressions in the grammar of ECMAScript. One "
     "that is malformed, or that would take too long, finds nothing.",
     "tabwerk find \"B(olt|olzen)\" stock.db\n"
     "tabwerk find --literal \"1.5 (new)\" stock.db"},
    {150, "already-there", "A file of the export is there already",
     ExitCode::kUsage,
     "An export replaces files only when it is told to; a script may hold "
     "comments that a database does not keep.",
     "tabwerk export stock.db -d source --force"},
    {151, "name-not-carried", "A script cannot say a name", ExitCode::kFindings,
     "Names of tables and columns are words in a script: without blanks and "
     "line ends, one table of a name, and no column is called ENDDEF.",
     "tabwerk info stock.db"},
    {152, "other-form", "The file is not in the current form",
     ExitCode::kFindings,
     "Building makes files of the current form, so an older file cannot be "
     "rebuilt byte for byte.",
     "tabwerk convert stock.db -o stock-2025.db\n"
     "tabwerk export stock-2025.db -d source"},
    {153, "columns-not-carried", "Table data cannot fill a column",
     ExitCode::kFindings,
     "The reader of table data stops at a column without a type and puts "
     "values into the first column of a name.",
     "tabwerk info stock.db"},
    {154, "not-rebuilt", "The export does not rebuild the file",
     ExitCode::kFindings,
     "The script was tried out, and the file that it made has other bytes: "
     "the file was written by another program or holds what its tables do "
     "not use.",
     "tabwerk convert stock.db -o stock-new.db\n"
     "tabwerk export stock-new.db -d source"},
    {155, "more-refusals", "More values cannot be exported",
     ExitCode::kFindings, "Only the first ones are listed.",
     "tabwerk export stock.db -d source"},
    {156, "index-not-exported", "The index is not part of an export",
     ExitCode::kFindings,
     "A user's order, and the status of shipped rows, stand in the index "
     "file; scripts and table data cannot say them.",
     "cp STOCK.idx source"},
    {157, "no-target", "There is no target to convert to", ExitCode::kUsage,
     "A file is replaced only with a copy of what it was, and a terminal takes "
     "no database.",
     "tabwerk convert stock.db -o stock-new.db\n"
     "tabwerk convert stock.db --backup"},
    {158, "target-taken", "The target is there already", ExitCode::kUsage,
     "A conversion takes the place of no other file.",
     "tabwerk convert stock.db -o stock-new.db"},
};

}  // namespace

std::span<CodeEntry const> FileCodes() { return kFileCodes; }

}  // namespace tabwerk::tool
