// The rows that an import takes in, and how a table gets them.
#ifndef TABWERK_CLI_IMPORT_SOURCE_H
#define TABWERK_CLI_IMPORT_SOURCE_H

#include <memory>
#include <optional>
#include <string>

#include "DBTabelle.h"
#include "cli/errors.h"
#include "cli/named_rows.h"

namespace tabwerk::tool {

// Sorts the rows of an input into those that a table takes and the others.
class ImportSource {
 public:
  ImportSource() = default;
  ImportSource(ImportSource const&) = delete;
  ImportSource& operator=(ImportSource const&) = delete;
  virtual ~ImportSource() = default;

  // Takes the bytes of the input apart; a problem when that cannot be done.
  virtual std::optional<Problem> Read(std::string bytes) = 0;
  // Warns of each row that the table does not take.  A problem when the input
  // as a whole does not fit.
  virtual std::optional<Problem> Sort(DBTabelle& table) = 0;
  virtual long AcceptedCount() const = 0;
  virtual long RejectedCount() const = 0;
  // "line" or "row": what is counted as rejected.
  virtual char const* RejectedNoun() const = 0;
  // A file of the same kind with the rejected rows.
  virtual std::string RejectedBytes() const = 0;
  // Appends the accepted rows, with a Progress.  False when not all of them got
  // into the table; a problem when they could not be read.
  virtual std::optional<Problem> Append(DBTabelle& table, bool* complete) = 0;
};

// Values in the order of the columns, as the library's own import reads them.
std::unique_ptr<ImportSource> MakePositionalSource(std::string const& name,
                                                   char16_t separator);
// Values with the names of their columns.
std::unique_ptr<ImportSource> MakeNamedSource(std::string const& name,
                                              NamedForm form, char separator);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_IMPORT_SOURCE_H
