// The text front end: database scripts, table data and delimited rows.
#ifndef TABWERK_DBINTERPRETER_H
#define TABWERK_DBINTERPRETER_H

#include <atomic>
#include <memory>

#include "tabwerk_export.h"
#include "ztypes.h"

class DBTabelle;

namespace tabwerk {
class TokenBuffer;
class TextFile;
struct InterpreterAccess;
}  // namespace tabwerk

// Reads text into databases.
//
// ReadScript builds a whole database.  ReadDatei fills one table: set it with
// SetTabelle, open the text with OpenDatei (mode "rb"), call ReadDatei and
// then CloseDatei.
//
// An interpreter owns its open file.  A copy shares the file, its position and
// the line that is being split with its source; both are released once, by the
// last of them.  The table and the error are copied, the count of bytes is not.
class TABWERK_API DBInterpreter {
 public:
  // No file, no table, no error.
  DBInterpreter();
  DBInterpreter(DBInterpreter const& other);
  DBInterpreter& operator=(DBInterpreter const& other);
  virtual ~DBInterpreter();

  // Opens a file in a mode of the C library's fopen; it is read by bytes, in
  // text mode too.  1, or 0 when it does not open or path or mode is null:
  // then no file is open.  A file that was open before is let go of.
  int OpenDatei(char const* path, char const* mode);
  // Lets go of the file, which is closed unless a copy uses it.
  void CloseDatei();
  // The table that ReadDatei fills; borrowed.
  void SetTabelle(DBTabelle* table);

  // Number and text of the last error; 0 and "" without one.  They are never
  // cleared, so after a success they may show an earlier error.
  //   1  a line had more values than the table has columns (the rest of the
  //      line was left out)
  //   2  a value could not be stored, or a column has no usable type
  //   3  a row could not be added
  int GetError() const;
  // Valid until the next error or the end of this object.
  char const* GetErrorString() const;
  // Bytes of table data and of delimited rows that this interpreter has read
  // since it was made; byte-order marks are not among them.  The one operation
  // that another thread may call meanwhile: it tells how far a ReadScript or
  // ReadDatei has come.
  long long GetReadBytes() const;

  // Splits a line at separators that stand neither between double quotes nor
  // inside "#TS(" … ")TS~".  With a line, returns its first token; with null,
  // the next one; null when there is none or the line is over 16,384
  // characters.  Leading blanks and tabs of a token are skipped, quotes stay.
  // A separator at the end of the line gives no empty last token.  The token
  // may be written to; it lives until the next line or call of ReadDatei or
  // ReadScript, which split lines of their own.
  wchar_t* GetNextToken(wchar_t* line, wchar_t separator);

  // Reads the open file into the table.
  //   conditions false: UTF-16LE table data behind a two-byte mark, one row a
  //     line, values separated by commas, in the order of the columns.  version
  //     takes the value of a string column "VERSION".  1; 0 on error 2 or 3,
  //     when reading fails (what was read before stays) and without a file or
  //     table.
  //   conditions true: UTF-16LE delimited rows from the start of the file,
  //     separated by the first character of conditionText (null or empty:
  //     none), each appended as a new user row.  Always 1.
  int ReadDatei(zWString& version, bool conditions,
                wchar_t const* conditionText);

  // Builds the database that a script describes and writes it.  The manager's
  // configuration is replaced and, unless the script fails, restored, so all
  // pointers into it are stale afterwards.
  // 1: written.  2: written by a script whose file is called "D000" and whose
  // VERSION differs from expectedVersion.  0: failed; a database file that was
  // there before is as it was.
  int ReadScript(char const* path, zWString expectedVersion);

 private:
  friend struct tabwerk::InterpreterAccess;

  int checkFeldConditions(wchar_t const* conditionText);

  std::shared_ptr<tabwerk::TextFile> file_;
  DBTabelle* table_ = nullptr;
  char error_text_[1024];
  int error_number_ = 0;
  std::atomic<long long> read_bytes_{0};
  std::shared_ptr<tabwerk::TokenBuffer> tokens_;  // made with the first line
  // The cursor and the buffer that it points into: in a copy that has not yet
  // split a line of its own, the source's.
  std::shared_ptr<tabwerk::TokenBuffer> cursor_tokens_;
  wchar_t* cursor_ = nullptr;
};

#endif  // TABWERK_DBINTERPRETER_H
