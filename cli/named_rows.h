// Rows of CSV, TSV or JSON text, whose values have names of columns.
#ifndef TABWERK_CLI_NAMED_ROWS_H
#define TABWERK_CLI_NAMED_ROWS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/errors.h"

namespace tabwerk::tool {

enum class NamedForm { kCsv, kTsv, kJson, kNdjson };

// A line and a character in it, both from 1.
struct TextPlace {
  std::size_t line = 1;
  std::size_t character = 1;
};

// Finds places in a text, one behind the other.  Borrows the text.
class PlaceFinder {
 public:
  explicit PlaceFinder(std::string_view text) : text_(text) {}

  // offset is not before that of the call before.
  TextPlace At(std::size_t offset);

 private:
  std::string_view text_;
  std::size_t offset_ = 0;
  TextPlace place_;
};

struct NamedColumn {
  std::string name;
  TextPlace place;
};

struct NamedCell {
  std::size_t column;  // of NamedRows::columns
  std::string text;
  TextPlace place;
};

// Why a row is not taken.
struct NamedObjection {
  Code code;
  TextPlace place;
  std::string what;
};

struct NamedRow {
  std::vector<NamedCell> cells;
  std::optional<NamedObjection> objection;
  std::string source;  // as it stands, without a line end
};

struct NamedRows {
  std::vector<NamedColumn> columns;
  std::vector<NamedRow> rows;
  std::string head;  // the line of names as it stands
};

// The form that a file's name tells; nothing for any other name.
std::optional<NamedForm> FormOfName(std::string const& path);
// "csv", "tsv", "json" or "ndjson".
std::optional<NamedForm> FormOfWord(std::string const& word);

// Text in UTF-8, or in UTF-16LE behind a mark, as UTF-8 without a mark.  A
// problem at the first byte that is neither.
std::optional<Problem> DecodeText(std::string const& file, std::string bytes,
                                  std::string* text);

// Takes a text apart.  A problem where it cannot be gone on with.  separator is
// that of CSV.
std::optional<Problem> ReadNamedRows(NamedForm form, std::string const& file,
                                     std::string_view text, char separator,
                                     NamedRows* rows);

// The rows as a text of that form, for those that were not taken.
std::string NamedText(NamedForm form, std::string const& head,
                      std::vector<std::string> const& sources);

// The parts of ReadNamedRows.
std::optional<Problem> ReadDelimited(NamedForm form, std::string const& file,
                                     std::string_view text, char separator,
                                     NamedRows* rows);
std::optional<Problem> ReadJson(NamedForm form, std::string const& file,
                                std::string_view text, NamedRows* rows);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_NAMED_ROWS_H
