// A database file as bytes, with the place of everything in it.
#ifndef TABWERK_CLI_FILE_IMAGE_H
#define TABWERK_CLI_FILE_IMAGE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "DBDefinition.h"
#include "cli/errors.h"
#include "schema/container.h"

namespace tabwerk::tool {

// A stretch of a file, in bytes from the file's start.
struct Extent {
  std::int64_t offset = 0;
  std::int64_t size = 0;

  std::int64_t End() const { return offset + size; }
};

// A directory record.  Places are bytes from the file's start.
struct RecordImage {
  std::string name;  // UTF-8
  DBDefinition definition;
  std::int64_t start_at = 0;
  std::int64_t name_at = 0;
  std::int64_t definition_at = 0;
  std::int64_t numbers_at = 0;
  std::int64_t end_at = 0;   // of the closing tag
  bool name_is_cut = false;  // no NUL where a name has to end
  bool definition_is_cut = false;
  // As they are stored.
  std::int32_t row_count = 0;
  std::int32_t reserved = 0;
  std::int32_t row_size = 0;
  std::int32_t row_offset = 0;
  std::int32_t string_offset = 0;
  std::int32_t string_size = 0;
  // Not negative when the numbers above are not.
  Extent rows;
  Extent strings;
  // The library does not load the table.
  bool damaged = false;

  // Bytes of a row.
  std::int64_t RowSize() const { return definition.GetMemorySize(); }
};

// Why a list of tables cannot be read to its end.
enum class ListFault {
  kNone,
  kRecordStart,  // another tag
  kRecordEnd,    // another tag
  kCut,          // the file ends inside a record
  kTooLong,      // no 32-bit offset reaches behind it
};

struct FileImage {
  std::string path;
  std::int64_t size_bytes = 0;
  std::string bytes;  // all, or the first ones up to the data area
  bool has_known_start = false;
  FileHeader header;
  std::int64_t header_bytes = 0;
  bool header_is_cut = false;
  std::vector<RecordImage> records;  // in file order, up to a fault
  ListFault fault = ListFault::kNone;
  std::int64_t fault_at = 0;
  bool has_list_end = false;  // the zero byte
  std::int64_t data_start = 0;

  bool HasWholeList() const { return fault == ListFault::kNone; }
  // Null when there is no such table.  Of several, the one that the library
  // finds.
  RecordImage const* Find(std::string const& name) const;

  std::unordered_map<std::string, std::size_t> places;  // of records, by name
};

// Reads a file: all of it, or no more than its list of tables takes.  A damaged
// file is no problem; one that does not open is.
std::optional<Problem> ReadFileImage(std::string const& path, bool all,
                                     FileImage* image);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_FILE_IMAGE_H
