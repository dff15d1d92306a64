// Scripts and table data.
#include "cli/codes.h"

namespace tabwerk::tool {
namespace {

constexpr CodeEntry kCodes[] = {
    {201, "database-operands", "NEWDATABASE lacks its name or its file",
     ExitCode::kFindings,
     "The statement names the database and the file that it is written "
     "to.",
     "NEWDATABASE stock stock.db"},
    {202, "table-before-database", "A table is defined before any database",
     ExitCode::kFindings,
     "Tables belong to the database of the NEWDATABASE before them.",
     "NEWDATABASE stock stock.db\n"
     "NEWTABLE ARTICLE"},
    {203, "table-name-missing", "NEWTABLE lacks its name", ExitCode::kFindings,
     "The statement names the table that the lines behind it define.",
     "NEWTABLE ARTICLE"},
    {204, "table-name-too-long", "The name of a table is too long",
     ExitCode::kFindings, "A name has up to 63 characters.",
     "NEWTABLE ARTICLE"},
    {205, "table-twice", "A table is defined twice", ExitCode::kFindings,
     "Every table of a database has a name of its own.",
     "NEWTABLE ARTICLE_OLD"},
    {206, "definition-open", "A definition does not end", ExitCode::kFindings,
     "The columns of a table end with a line ENDDEF.",
     "NEWTABLE ARTICLE\n"
     "ID integer\n"
     "ENDDEF"},
    {207, "column-line", "A column lacks its name or its type",
     ExitCode::kFindings,
     "Every line between NEWTABLE and ENDDEF defines a column.", "NAME string"},
    {208, "empty-line", "There is an empty line in a definition",
     ExitCode::kFindings,
     "Every line between NEWTABLE and ENDDEF defines a column; a blank "
     "line ends the script.",
     "NEWTABLE ARTICLE\n"
     "ID integer\n"
     "ENDDEF"},
    {209, "definition-too-long", "A definition is too long",
     ExitCode::kFindings,
     "Names and types of the columns of a table have up to 16,383 "
     "characters together.",
     "Use fewer columns, or shorter names."},
    {210, "data-operands", "TABLEDATA lacks its table or its file",
     ExitCode::kFindings,
     "The statement names the table and the file with its rows.",
     "TABLEDATA ARTICLE article.txt"},
    {211, "data-path-too-long", "The path of a data file is too long",
     ExitCode::kFindings, "It has up to 259 bytes.",
     "tabwerk build stock.script -C data"},
    {212, "data-before-table", "Data stand before any table",
     ExitCode::kFindings, "Data go into the table that was defined last.",
     "NEWTABLE ARTICLE\n"
     "ID integer\n"
     "ENDDEF\n"
     "TABLEDATA ARTICLE article.txt"},
    {213, "no-data-file", "A data file is not there", ExitCode::kFile,
     "Paths in a script are relative to the folder in which the command "
     "runs.",
     "tabwerk build stock.script -C data"},
    {214, "data-file-is-none", "A data file is a folder", ExitCode::kFile,
     "The path of the data is that of something else than a file.",
     "TABLEDATA ARTICLE data/article.txt"},
    {215, "no-database-statement", "The script makes no database",
     ExitCode::kFindings, "Nothing is written before a statement NEWDATABASE.",
     "NEWDATABASE stock stock.db"},
    {216, "last-line-open", "The last line is not carried out",
     ExitCode::kFindings, "A statement is carried out when its line ends.",
     "Put a line feed at the end of the script."},
    {217, "surplus-values", "A row has more values than columns",
     ExitCode::kFindings, "The values behind the last column were left out.",
     "1,\"Bolt\",0.25"},
    {218, "data-left-out", "The rest of a data file was left out",
     ExitCode::kFindings,
     "A value could not be stored, most often because its column has no "
     "type.",
     "NAME string"},
    {219, "other-version", "The data have another version than expected",
     ExitCode::kFindings,
     "The table VERSION does not hold the version behind --expect- "
     "version. The database was written all the same.",
     "tabwerk show stock.db -t VERSION"},
};

}  // namespace

std::span<CodeEntry const> ScriptCodes() { return kCodes; }

}  // namespace tabwerk::tool
