// Database and index files as bytes, put together without the library.
#ifndef TABWERK_TESTS_SUPPORT_CONTAINER_BYTES_H
#define TABWERK_TESTS_SUPPORT_CONTAINER_BYTES_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tabwerk::test {

// Little-endian bytes of a number.
std::string Le32(std::int32_t value);
std::string Le64(std::int64_t value);
// 16-bit units of an ASCII text; "^" is a NUL.
std::string Utf16(std::string_view text);
// A section of an index file: its tag and the numbers behind it.
std::string Section(std::string_view tag,
                    std::vector<std::int32_t> const& numbers);

// A directory record.  What is not set fits the other members.
struct RecordBytes {
  std::string name = "T";
  std::string definition = "integer ID\n";
  std::int32_t row_count = 0;
  std::int32_t row_size = 0;    // bytes
  std::int32_t row_offset = 0;  // from the data start
  std::int32_t string_offset = 0;
  std::int32_t string_size = 0;  // as stored
  std::string start = "anf";
  std::string end = "end";
};
std::string Record(RecordBytes const& record);
// Ends the directory.
inline std::string const kNul(1, '\0');

// The header of the current format.
std::string CurrentHeader(std::int64_t time_stamp);

// A current file whose tables hold these numbers of rows, each row 4 bytes
// (an integer ID that counts from 1), without texts.
struct TableRows {
  std::string name;
  std::int32_t row_count = 0;
  std::string definition = "integer ID\n";
};
std::string FileWith(std::vector<TableRows> const& tables,
                     std::int64_t time_stamp = 1000);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_CONTAINER_BYTES_H
