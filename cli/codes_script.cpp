// Scripts and table data.
#include "cli/codes.h"

namespace tabwerk::tool {
namespace {

constexpr CodeEntry kScriptCodes[] = {
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
    {220, "lower-case-database-name", "The name of a database is changed",
     ExitCode::kFindings,
     "Databases are known by their names in capital letters, and an index "
     "file is called so.",
     "NEWDATABASE STOCK stock.db"},
    {221, "database-name-cut", "The name of a database is cut",
     ExitCode::kFindings,
     "The name of a database ends before its first full "
     "stop.",
     "NEWDATABASE STOCK stock.db"},
    {222, "database-name-empty", "A database has no name", ExitCode::kFindings,
     "Nothing is left of a name that begins with a full stop, and a database "
     "without a name is not written.",
     "NEWDATABASE STOCK stock.db"},
    {223, "database-forgotten", "A database is not written",
     ExitCode::kFindings,
     "A script writes the database of its last NEWDATABASE only.",
     "Make one script for each database."},
    {224, "other-table-word", "Data go into another table", ExitCode::kFindings,
     "TABLEDATA fills the table that was defined last, whatever table it "
     "names.",
     "NEWTABLE ARTICLE\n"
     "ID integer\n"
     "ENDDEF\n"
     "TABLEDATA ARTICLE article.txt"},
    {225, "version-read-twice", "Rows are read twice", ExitCode::kFindings,
     "TABLEDATA VERSION reads its file twice, the second time to take note of "
     "the version. Every row is in the table twice afterwards.",
     "tabwerk lint stock.script --ignore TW225"},
    {226, "column-name-too-long", "The name of a column is too long",
     ExitCode::kFindings,
     "A name has up to 63 characters. A database with a longer one is not "
     "written.",
     "NAME string"},
    {227, "definition-not-stored", "A definition cannot be stored",
     ExitCode::kFindings,
     "The text of the definition, as a database file holds it, would be read "
     "back as another one, or is too long. The database is not written.",
     "NAME string"},
    {228, "column-read-otherwise", "A column is read as something else",
     ExitCode::kFindings,
     "Commas, semicolons and \"=\" end names or types in the text that the "
     "library makes of the lines of a definition.",
     "NAME string"},
    {229, "unknown-type", "A column has no known type", ExitCode::kFindings,
     "The types are integer, real and string (also LONG, DOUBLE and STRING). "
     "A column of any other type holds nothing, and a value for it ends the "
     "reading of its data file. Between NEWTABLE and ENDDEF every line is a "
     "column, so comments are columns, too.",
     "NAME string"},
    {230, "column-twice", "A column is defined twice", ExitCode::kFindings,
     "Values of both go into the first one of that name.", "NAME2 string"},
    {231, "surplus-words", "Words are not read", ExitCode::kFindings,
     "A statement or column has no use for further words. Names and paths "
     "cannot have blanks.",
     "TABLEDATA ARTICLE my_article.txt"},
    {232, "script-line-too-long", "A line of a script is too long",
     ExitCode::kFindings,
     "A line has up to 4,095 bytes; the rest is read as another line.",
     "Make two comments of it."},
    {233, "hidden-statement", "A statement is not carried out",
     ExitCode::kFindings,
     "Behind an empty line a keyword may have only blanks around it, no tab "
     "and no semicolon.",
     "TABLEDATA ARTICLE article.txt"},
    {234, "unknown-keyword", "A line looks like a statement",
     ExitCode::kFindings,
     "Keywords are written in capital letters; every line that does not begin "
     "with one is a comment.",
     "NEWTABLE ARTICLE"},
    {235, "nul-in-script", "A line of a script has a NUL", ExitCode::kFindings,
     "A line ends at its first NUL character.", "Take the character out."},
    {236, "text-behind-end", "A script goes on behind its end",
     ExitCode::kFindings, "The character Ctrl-Z (1A) ends a script.",
     "Take the character out."},
    {237, "script-encoding", "A script is not plain text", ExitCode::kFindings,
     "Scripts are 8-bit text without a byte-order mark.",
     "Save it as ASCII or Latin-1."},
    {238, "odd-character", "A name has a character that looks like an end",
     ExitCode::kFindings,
     "Words of a statement are separated by blanks. Tabs, semicolons and "
     "carriage returns may become a part of them.",
     "NEWTABLE ARTICLE"},
    {239, "name-encoding", "A name or path is not what it looks like",
     ExitCode::kFindings,
     "Names are read as Latin-1; paths of data files are UTF-8.",
     "NEWTABLE GROESSE"},
    {240, "no-tables", "A database has no tables", ExitCode::kFindings,
     "It is written, but a main file without tables does not open.",
     "NEWTABLE ARTICLE\n"
     "ID integer\n"
     "ENDDEF"},
    {241, "no-values", "A table takes no rows", ExitCode::kFindings,
     "It has no column that can hold a value.", "ID integer"},
    {242, "statement-in-definition", "A statement is read as a column",
     ExitCode::kFindings, "Every line between NEWTABLE and ENDDEF is a column.",
     "ENDDEF\n"
     "TABLEDATA ARTICLE article.txt"},
    {243, "system-column-name", "A column looks like a system column",
     ExitCode::kFindings,
     "The library makes use of columns that are called ID, FOLGE and STATUS, "
     "in capital letters.",
     "ID integer"},
    {244, "system-column-type", "A system column is no integer",
     ExitCode::kFindings,
     "ID, FOLGE and STATUS count only where they are integers.",
     "FOLGE integer"},
    {250, "no-data-mark", "A data file has no byte-order mark",
     ExitCode::kFindings,
     "The first two bytes of a data file are not read, whatever they are.",
     "Save the file as UTF-16LE with a byte-order mark."},
    {251, "data-big-endian", "A data file is big-endian", ExitCode::kFindings,
     "Data files are UTF-16LE.", "iconv -f UTF-16 -t UTF-16LE article.txt"},
    {252, "data-not-utf16", "A data file is 8-bit text", ExitCode::kFindings,
     "Data files are UTF-16LE behind a byte-order mark.",
     "Save the file as UTF-16LE with a byte-order mark."},
    {253, "odd-byte", "A data file has an odd number of bytes",
     ExitCode::kFindings, "Every character takes two or four of them.",
     "See whether the file was cut."},
    {254, "nul-in-data", "A line of data has a NUL", ExitCode::kFindings,
     "A line ends at its first NUL character.", "Take the character out."},
    {255, "data-line-too-long", "A line of data is too long",
     ExitCode::kFindings,
     "A line has up to 4,095 characters; the rest is read as another row.",
     "Shorten its texts."},
    {256, "text-too-long", "A text is too long", ExitCode::kFindings,
     "No text of a database has more than 8,095 characters.",
     "Make two texts of it."},
    {257, "line-begins-with-comma", "A line makes no row", ExitCode::kFindings,
     "A line that begins with a comma replaces values of the row before it; "
     "the first one becomes 0 or empty.",
     "\"\",\"Bolt\",0.25"},
    {258, "too-few-values", "A row has fewer values than columns",
     ExitCode::kFindings, "The other columns stay 0 or empty.",
     "1,\"Bolt\",0.25"},
    {259, "not-a-number", "A value is no number", ExitCode::kFindings,
     "Of a text in a column of numbers, only the number that it begins with "
     "is read; 0 where it begins with none.",
     "1,\"Bolt\",0.25"},
    {260, "number-too-large", "A number is too large", ExitCode::kFindings,
     "Integers have 32 bits: -2,147,483,648 to 2,147,483,647. The nearest "
     "number is stored.",
     "PRICE real"},
    {261, "id-twice", "Two rows have one ID", ExitCode::kFindings,
     "A row is found by its ID; of two, one is never found.", "2,\"Nut\",0.1"},
    {262, "folge-gap", "The order of the rows has gaps", ExitCode::kFindings,
     "FOLGE numbers the rows from 1 without gaps. Behind a gap, rows that a "
     "later version adds come to the front.",
     "1,1,\"Bolt\"\n"
     "2,2,\"Nut\""},
    {263, "folge-twice", "Two rows have one place", ExitCode::kFindings,
     "Of two rows with one value of FOLGE only one has that place.",
     "1,1,\"Bolt\"\n"
     "2,2,\"Nut\""},
    {264, "folge-negative", "A place in the order is negative",
     ExitCode::kFindings, "Places count from 1; 0 is none.", "1,1,\"Bolt\""},
    {265, "section-open", "A text in several languages is not closed",
     ExitCode::kFindings,
     "A section that does not end is not translated, and swallows the values "
     "behind it.",
     "1,\"#TS(Bolt¬Bolzen)TS~\",0.25"},
    {266, "quote-open", "A quote is not closed", ExitCode::kFindings,
     "Commas between quotes belong to the text; behind a quote without its "
     "pair all do.",
     "1,\"Bolt, long\",0.25"},
    {267, "quote-kept", "A quote becomes a part of the text",
     ExitCode::kFindings,
     "Quotes are taken off only where they are the first and the last "
     "characters of a value.",
     "1,\"Bolt\",0.25"},
    {268, "closing-marker-alone", "A closing marker stands alone",
     ExitCode::kFindings,
     "\")TS~\" without \"#TS(\" before it is shown as it stands.",
     "1,\"#TS(Bolt¬Bolzen)TS~\",0.25"},
    {269, "half-character", "Half of a character stands alone",
     ExitCode::kFindings,
     "Characters beyond U+FFFF take two units of 16 bits; one of them alone "
     "is no character.",
     "See whether a program has cut the text."},
    {270, "mark-inside", "A byte-order mark stands inside a file",
     ExitCode::kFindings, "It becomes a part of the value, unseen.",
     "Join files without their first two bytes."},
    {271, "section-inside", "A section begins inside another",
     ExitCode::kFindings, "Sections do not nest: the first \")TS~\" ends both.",
     "1,\"#TS(Bolt¬Bolzen)TS~ #TS(red¬rot)TS~\",0.25"},
};

}  // namespace

std::span<CodeEntry const> ScriptCodes() { return kScriptCodes; }

}  // namespace tabwerk::tool
