// One table of an open database: its rows, values, selection, search and
// indices.
#ifndef TABWERK_DBTABELLE_H
#define TABWERK_DBTABELLE_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "DBDefinition.h"
#include "tabwerk_export.h"
#include "ztypes.h"

class DBDirectory;
class DBDirEntry;
class DBSubTable;

namespace tabwerk {
class IdIndex;
class RowLookups;
struct TableAccess;
}  // namespace tabwerk

// A table in memory.
//
// The rows of a table lie in one part per database file and are numbered from
// 0 over all parts: the main file's rows first, then the user file's.  All
// access to values goes through a current row and a current column, which
// stay until they are selected anew.
//
// Three columns have a meaning of their own: "ID" identifies a row, "FOLGE" is
// its place in the display order (from 1; 0 is none), "STATUS" is 0 for an
// active row.  The table keeps an index over each of them.  Column names
// compare byte for byte.
//
// The table owns its indices; rows and texts belong to the directory entry and
// outlive the table.  Tables that DBbase hands out are the manager's: they
// live until their database is closed or the manager is replaced.  Several
// tables over one entry see the same rows.
//
// int results are 1 for success and 0 for failure unless said otherwise; a
// failed operation changes nothing unless said otherwise.  Values are 32 bits
// wide: a long outside that range cannot be stored and is never found.
//
// A literal 0 fits the long, double and pointer forms of SelectZeile and
// SetWert alike: write 0L, 0.0 or a typed pointer.
class TABWERK_API DBTabelle {
 public:
  // The kind of write that SetZeileWerte does.
  enum Action {
    ActionInsert = 0,  // new row; keeps a free ID, inserts at a taken place
    ActionUpdate = 1,  // changes the row that has the given ID
    ActionAppend = 2   // new row with a new ID at the end of the order
  };

  // --- Making and binding -------------------------------------------------

  // No rows, empty indices, nothing selected.  Without memory all constructors
  // and the assignment throw std::bad_alloc; the target of an assignment stays
  // as it was.  No other member does.
  DBTabelle();
  // The same: a table gets its rows from SetDirEntry.
  explicit DBTabelle(DBDirEntry* entry);
  // Copies share the rows and have indices and a selection of their own.
  DBTabelle(DBTabelle const& other);
  DBTabelle& operator=(DBTabelle const& other);
  virtual ~DBTabelle();

  // Adds one sub-table for every part of the entry and takes its definition.
  // A second call adds further sub-tables.  Null, or exhausted memory, adds
  // none.
  void SetDirEntry(DBDirEntry* entry);
  // The entry behind sub-table 0 (false) or 1 (true); null without it.
  DBDirEntry* GetDirEntry(bool user);
  // 1 when every part is in memory (also without parts), else 0.
  int is_open();
  // Marks that part as being in memory or not.
  void SetOpen(bool open, std::size_t fileIndex);
  // Replaces that part's row block by size zero bytes; the row count stays.
  // Returns the block, owned by the entry; null, and the old block, when there
  // is no memory or no such part.
  void* SetMemory(std::size_t size, std::size_t fileIndex);

  // --- Blocks and files ---------------------------------------------------

  // Read the rows or the texts of the directory's current table from that
  // file.  False when dir is null, the file is not open, its directory record
  // is damaged, memory is exhausted or the file is too short.  A failed
  // ReadTabelle leaves a block of zero bytes (an empty one where the file is
  // too short or damaged; the old one without memory) and the part not in
  // memory; a failed ReadStrings leaves the texts as they were.
  bool ReadTabelle(std::size_t fileIndex, DBDirectory* dir);
  bool ReadStrings(std::size_t fileIndex, DBDirectory* dir);
  // Write the rows or the texts of the first part whose file is fileName at
  // offset and set end to the position behind them.  False when f is null,
  // there is no such part, or writing failed.
  //
  // WriteStrings gives every string of every row a copy of its own and points
  // the rows in memory to the new places, so it comes before WriteTabelle; the
  // texts in memory stay as they are, so strings read wrong until ReadStrings
  // has read the written block.  A string over 8,095 units ends the process.
  // The bool argument is not used.
  bool WriteTabelle(FILE* f, long offset, long& end, bool user,
                    zWString const& fileName);
  bool WriteStrings(FILE* f, long offset, long& end, bool user,
                    zWString const& fileName);

  // --- Rows ---------------------------------------------------------------

  // Appends a row to sub-table 0 (false) or 1 (true) and makes it current:
  // integers 0, reals 0.0, strings empty.  The FOLGE index gets an entry
  // without a row, the STATUS index a 0.  The column stays selected.  False,
  // with nothing changed, when the part does not exist or cannot grow, or the
  // table has no bytes in a row.
  bool NeueZeile(bool user);
  // An ID for a new user row: one more than the largest one, at least 20000;
  // 20000 with an empty ID index.  When the largest number is taken, the
  // lowest free one from 20000.
  long NewUserID();
  // Number of rows.
  int GetAnzahlZeilen();
  // Number of rows whose STATUS is 0; 0 when there is no integer column STATUS.
  // The column selected before is selected again, "ID" where none was, and the
  // row as well; but where a row's STATUS cannot be read (in row 0 when the
  // column is no integer) the count ends and that row stays selected.
  int GetAnzahlAktiveZeilen();

  // --- Selection and search -----------------------------------------------

  // Makes the first column of that name current.  On failure the column stays,
  // but a value set next keeps the index of the name that was asked for
  // (STATUS, FOLGE, ID) up to date, not that of the column.
  int SelectColumn(char const* name);
  // Makes that row current.  A row beyond the end selects the last one and
  // returns 0; a negative one changes nothing.
  int SelectZeile(long row);
  // Select the first row whose value in that column equals value.  "ID" and
  // "FOLGE" are looked up in their indices and leave the current row alone on
  // failure; any other column is searched row by row, which leaves the table
  // on the row where the search ended, and the column selected before is
  // selected again.
  //
  // The search for a real in a table of 32 rows or more looks at the rows r
  // with r >> (rows mod 32) equal to 0 only (and at row 0).
  int SelectZeile(char const* column, long value);
  int SelectZeile(char const* column, double value);
  // The text form compares by the type of the column: numbers as text reads,
  // strings in the current language.
  int SelectZeile(char const* column, wchar_t const* text);
  // Rows whose whole value in that string column, in the current language,
  // matches the regular expression (ECMAScript grammar, on 16-bit units), in
  // ascending order: row numbers, or their IDs when ids is true.  A pattern
  // that is malformed or cannot be matched in bounded time throws
  // std::regex_error; the column selected before is selected again.
  std::vector<long> FindRows(char const* column, zWString const& pattern,
                             bool ids);

  // --- Values at the current row and column -------------------------------

  // Each returns 0 and leaves the argument unchanged when there is no current
  // row or column or the column has another type.
  int GetWert(long& value);      // DBTypeInteger
  int GetWert(double& value);    // DBTypeReal
  int GetWert(zWString& value);  // DBTypeString, in the current language
  // Store a value; 0 when the column has another type.  When the column FOLGE,
  // STATUS or ID is selected, its index follows (before the type is tested).
  int SetWert(long value);    // DBTypeInteger
  int SetWert(double value);  // DBTypeReal
  // Store a text without testing the type: the column's 4 bytes are taken as a
  // place in the string store.  A text that is no longer than the old one
  // overwrites it in place, for every row that shares it; a longer one is
  // appended.  0 when text is null, the place lies outside the store, or there
  // is no memory.
  int SetWert(wchar_t const* text);
  int SetWert(char16_t const* text);
  // Takes at most 8,095 bytes, each sign-extended to 16 bits (0xE4 becomes
  // U+FFE4, not U+00E4).
  int SetWert(char const* text);

  // Type of the current column; DBTypeUnknown without one.
  DBType GetType();
  // Current column; null before any was selected.
  DBFeld* GetAktuelleFeldDef();

  // --- Indices ------------------------------------------------------------

  // Largest place that the FOLGE index has room for.
  long MaxFolge() const;
  // Row of that ID; -1 when the ID index is empty.  An ID that the index does
  // not have is entered with row 0.
  long GetRowByID(long id);
  // Row at that place; -1 when there is none.
  long GetRowByFolge(long folge) const;

  // What the members from here to ResortIndexID used last stays selected.  The
  // Make forms: the index's own column, if there is one, and the last row.  The
  // Read forms of FOLGE and STATUS: that column, and the row of the last entry
  // (ReadIndexFolgeNoUpdate: the row of before).  ResortIndexID: FOLGE and the
  // last row.  ReadIndexID, a section with a wrong tag and the Write forms
  // select nothing.

  // Build one index from the rows.
  void MakeIndexID();
  void MakeIndexFolge();
  void MakeIndexStatus();
  // Write one section of an index file at the stream's position.
  void WriteIndexID(FILE* f);
  void WriteIndexFolge(FILE* f);
  void WriteIndexStatus(FILE* f);
  // Read one section at the stream's position.  A wrong tag leaves the index
  // as it was.  ReadIndexFolge and ReadIndexStatus also write the values into
  // the rows; the other forms change the index only.
  void ReadIndexID(FILE* f);
  void ReadIndexFolge(FILE* f);
  void ReadIndexFolgeNoUpdate(FILE* f);
  void ReadIndexStatus(FILE* f);
  void ReadIndexStatusNoUdate(FILE* f);
  // Numbers the active rows 1, 2, 3 … in an order that merges the recorded
  // order (indices) with that of the rows, repairs STATUS from its index and
  // builds all indices anew.
  void ResortIndexID();

  // --- Whole rows ---------------------------------------------------------

  // Writes one row from texts by column name; a missing column reads as "".
  // True when every column was written; false at the first that could not be,
  // with what was written before kept.
  bool SetZeileWerte(std::map<std::string, std::wstring>& values,
                     DBTabelle::Action action);
  // The value stored under key; the empty text when there is none or memory is
  // exhausted.
  std::wstring mapGetString(std::map<std::string, std::wstring>& values,
                            std::string key);
  // Writes the rows of sub-table 0 (false) or 1 (true) as lines of text, fields
  // in order with separator between them, strings in double quotes as they are
  // stored.  Returns the number of rows plus 1; 0 when stream is null, or when
  // memory is exhausted, with the lines before written.  Afterwards values of
  // that part are read and set in its last row and field, until a row and a
  // column are selected; the number of the current row, which the indices
  // take, stays.
  int Dump(FILE* stream, wchar_t* separator, bool user);

 private:
  friend struct tabwerk::TableAccess;

  std::size_t current_sub_table_ = 0;
  long current_row_ = 0;
  std::vector<DBSubTable> sub_tables_;
  DBFeld* current_field_ = nullptr;
  DBDefinition* definition_ = nullptr;
  std::vector<std::int32_t> folge_index_;
  std::vector<std::int32_t> status_index_;
  std::unique_ptr<tabwerk::IdIndex> id_index_;
  std::unique_ptr<tabwerk::RowLookups> lookups_;  // null until it pays
  bool folge_selected_ = false;
  bool status_selected_ = false;
  bool id_selected_ = false;
};

#endif  // TABWERK_DBTABELLE_H
