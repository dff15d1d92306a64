// One database file seen from outside: header and list of tables, without
// their rows, also where it is damaged.
#ifndef TABWERK_CLI_DATABASE_FILE_H
#define TABWERK_CLI_DATABASE_FILE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/errors.h"

namespace tabwerk::tool {

struct TableSummary {
  std::string name;
  std::string columns;  // "ID integer, NAME string"
  std::int32_t row_count = 0;
  bool damaged = false;  // its numbers cannot be true
};

struct DatabaseFile {
  std::string path;
  std::int64_t size_bytes = 0;
  bool has_known_start = false;  // begins as every database file does
  short version = 0;
  std::int64_t header_bytes = 0;
  std::int64_t time_stamp = 0;  // seconds since 1970-01-01 00:00 UTC; 0: none
  std::vector<TableSummary> tables;  // in file order
  bool has_damaged_list = false;     // then there are no tables above

  bool IsDamaged() const;
  std::int64_t RowCount() const;
};

// Reads it.  A damaged file is no problem; one that does not open is.
std::optional<Problem> ReadDatabaseFile(std::string const& path,
                                        DatabaseFile* file);

// True for a path that makes the file the user's, as the library sees it.
bool IsUserFile(std::string const& path);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_DATABASE_FILE_H
