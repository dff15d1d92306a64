// The rows and texts of one database file in memory, table by table.
#ifndef TABWERK_CLI_FILE_CONTENT_H
#define TABWERK_CLI_FILE_CONTENT_H

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "DBDirectory.h"
#include "DBTabelle.h"

namespace tabwerk {
struct TablePart;
}

namespace tabwerk::tool {

// One table of the file.  Borrows the content.
struct TableContent {
  DBDirEntry* entry = nullptr;
  TablePart* part = nullptr;
  bool loaded = false;  // else damaged, or there is no memory
};

// A text that a row refers to.
struct StoredText {
  std::int32_t place;  // of its first unit in the string store
  std::u16string_view text;
};

// The tables in file order; none when the directory cannot be read.
class FileContent {
 public:
  explicit FileContent(std::string const& path);

  std::vector<TableContent> const& tables() const { return tables_; }

 private:
  DBDirectory directory_;
  std::vector<TableContent> tables_;
};

// Calls for each text that a row of the table refers to, once, by place.  A
// text that lies inside of one that was handed out is left out.  The time grows
// with rows and units alone.
void ForEachText(TableContent const& table,
                 std::function<void(StoredText const&)> const& call);

// Calls for each value of a string column, with row and field, until the answer
// is false.  Places may lie anywhere.
void ForEachPlace(TableContent const& table,
                  std::function<bool(std::int32_t place, std::int32_t row,
                                     DBFeld const&)> const& call);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_FILE_CONTENT_H
