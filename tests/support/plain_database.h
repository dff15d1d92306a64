// A second, plain reader and writer of database and index files.
//
// It shares no code with the library, so tests can let it make the files that
// the library reads and read the files that the library makes.
#ifndef TABWERK_TESTS_SUPPORT_PLAIN_DATABASE_H
#define TABWERK_TESTS_SUPPORT_PLAIN_DATABASE_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tabwerk::test {

// One table: "integer ID,string NAME\n" and rows such as "1|Anna", one UTF-8
// text for every field.
struct PlainTable {
  std::string name;
  std::string definition;
  std::vector<std::string> rows;
};

// Which of the four header forms a file has.
enum class PlainHeader {
  kNone,     // version 2014: no header, string blocks counted in bytes
  k2016,     // "ver2016"
  k2018,     // "ver2018", no time stamp
  kCurrent,  // "ver2025", "time" and the stamp
};

struct PlainDatabase {
  PlainHeader header = PlainHeader::kCurrent;
  std::int64_t time_stamp = 1000;
  std::vector<PlainTable> tables;  // in file order
};

// Bytes as files are written in the tests.
std::string AsText(std::vector<unsigned char> const& bytes);

std::vector<unsigned char> EncodeDatabase(PlainDatabase const& database);
// Nothing when the bytes are not a well-formed database file.
std::optional<PlainDatabase> DecodeDatabase(
    std::vector<unsigned char> const& bytes);

// "[1|Anna][2|Bert]" of a table of that name; "-" when there is none.
std::string RowsOf(PlainDatabase const& database, std::string const& table);

struct PlainIndex {
  struct Table {
    std::vector<std::pair<std::int32_t, std::int32_t>> ids;
    std::vector<std::int32_t> folge;
    std::vector<std::int32_t> status;
  };
  std::vector<std::int64_t> time_stamps;
  std::vector<Table> tables;
};

std::vector<unsigned char> EncodeIndex(PlainIndex const& index);
std::optional<PlainIndex> DecodeIndex(std::vector<unsigned char> const& bytes,
                                      std::size_t file_count);
// "ID 1>0 2>1 FOLGE -1 0 1 STATUS 0 0".
std::string Describe(PlainIndex::Table const& table);

std::vector<unsigned char> ReadFileBytes(std::string const& path);
void WriteFileBytes(std::string const& path,
                    std::vector<unsigned char> const& bytes);

// Reads a database file; fails the test and returns an empty one when it is
// missing or malformed.
PlainDatabase ReadDatabase(std::string const& path);

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_PLAIN_DATABASE_H
