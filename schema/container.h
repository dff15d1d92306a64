// The database file as a container: header, directory records, and where the
// blocks of the data area lie.
#ifndef TABWERK_SCHEMA_CONTAINER_H
#define TABWERK_SCHEMA_CONTAINER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "DBDirectory.h"
#include "schema/format.h"
#include "schema/part.h"

namespace tabwerk {

// What the header of a file says.
struct FileHeader {
  short version = 0;
  std::int64_t time_stamp = 0;  // 0 where the header has none
};

// One directory record as a file holds it.
struct DirectoryRecord {
  std::array<char, format::kMaxTableName> name{};  // NUL-terminated
  std::unique_ptr<DBDefinition> definition;
  std::unique_ptr<TablePart> part;  // block offsets from the data start
};

// The directory of a file.
struct FileDirectory {
  std::vector<DirectoryRecord> records;  // in file order
  std::int64_t data_start = 0;           // bytes
};

// Divisor that turns the stored size of a string block into 16-bit units.
short CharFactor(short version) noexcept;

// Reads the header from the start of the stream and leaves the stream at the
// first record.  Any bytes are a header; false when reading failed.
[[nodiscard]] bool ReadHeader(FILE* stream, FileHeader* header);

// Reads the records from the stream's position on and leaves the stream at the
// start of the data area.  False when a record is damaged, a text of it needs
// more memory than there is, or reading failed.
[[nodiscard]] bool ReadRecords(FILE* stream, zWString const& file_name,
                               FileDirectory* directory);

// Marks the parts of a file of file_size bytes whose numbers cannot be true.
void MarkDamagedParts(FileDirectory* directory, short char_factor,
                      std::int64_t file_size);

// The text form of a definition as a record holds it; false when it does not
// fit into a record or would not read back to the same layout.
[[nodiscard]] bool StoredText(DBDefinition const& definition,
                              std::string* text);

}  // namespace tabwerk

#endif  // TABWERK_SCHEMA_CONTAINER_H
