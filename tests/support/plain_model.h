// A second, plain implementation of a table: rows, values, selection, search,
// indices, whole rows and the dump.
//
// It shares no code with the library and does everything the slow, obvious
// way, so that it can judge the library on random operations.
#ifndef TABWERK_TESTS_SUPPORT_PLAIN_MODEL_H
#define TABWERK_TESTS_SUPPORT_PLAIN_MODEL_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tabwerk::test::model {

using Bytes = std::vector<unsigned char>;
using Numbers = std::vector<std::int32_t>;
using Values = std::map<std::string, std::u16string>;

enum class Type { kUnknown, kReal, kInteger, kString };

std::size_t SizeOf(Type type);

struct Field {
  std::string name;
  Type type;
  std::size_t offset;  // bytes from the start of the record
};

struct Definition {
  std::vector<Field> fields;
  std::size_t record_size = 0;

  // The first field of that name, or null.
  Field const* Find(std::string const& name) const;
};

// From "integer ID,string NAME\n": one blank in each field, "," between them.
Definition ParseDefinition(std::string const& text);

// The rows of one file, each a record of bytes, and their string store.
struct Part {
  std::vector<Bytes> rows;
  std::u16string store;
};

// What all tables of one name share.  Parts never move.
struct Entry {
  std::string name;
  Definition definition;
  std::deque<Part> parts;
};

// The text at that place of the store, up to its NUL; nothing outside.
std::optional<std::u16string> TextAt(std::u16string const& store,
                                     std::int32_t index);
// Appends a row: integers and reals 0, strings empty with a place of their own.
void AppendRow(Definition const& definition, Part* part);
// Appends a row of values "1|Anna", one for every field, as a file has it.
void AppendRow(Definition const& definition, std::u16string const& values,
               Part* part);

// The language that texts are read in; the library has it in its manager.
void SetLanguage(int language);
std::u16string Translate(std::u16string text);

// Numbers as the text says: white space, a sign and digits, the nearest 32-bit
// value; a decimal number.  0 for anything else.
std::int32_t ToInteger(std::u16string const& text);
double ToReal(std::u16string const& text);

class Table {
 public:
  explicit Table(Entry* entry);

  // --- Rows -----------------------------------------------------------------
  bool NewRow(bool user);
  std::int64_t NewUserId() const;
  std::int64_t RowCount() const;
  std::int64_t ActiveRowCount();

  // --- Selection and search -------------------------------------------------
  int SelectColumn(std::string const& name);
  int SelectRow(std::int64_t row);
  int SelectInteger(std::string const& column, std::int64_t value);
  int SelectReal(std::string const& column, double value);
  int SelectText(std::string const& column, std::u16string const& text);
  std::vector<std::int64_t> FindRows(std::string const& column,
                                     std::u16string const& pattern, bool ids);

  // --- Values ---------------------------------------------------------------
  int GetInteger(std::int64_t* value) const;
  int GetReal(double* value) const;
  int GetText(std::u16string* value) const;
  int SetInteger(std::int64_t value);
  int SetReal(double value);
  int SetText(std::u16string const& text);
  int SetBytes(std::string const& text);
  Type CurrentType() const;

  // --- Indices --------------------------------------------------------------
  std::int64_t MaxFolge() const;
  std::int64_t RowById(std::int64_t id);
  std::int64_t RowByFolge(std::int64_t folge) const;
  void MakeIndexId();
  void MakeIndexFolge();
  void MakeIndexStatus();
  Bytes WriteIndexId() const;
  Bytes WriteIndexFolge() const;
  Bytes WriteIndexStatus() const;
  // These read from *at on and leave *at behind what they took.
  void ReadIndexId(Bytes const& bytes, std::size_t* at);
  void ReadIndexFolge(Bytes const& bytes, std::size_t* at, bool update);
  void ReadIndexStatus(Bytes const& bytes, std::size_t* at, bool update);
  void ResortIndexId();

  // --- Whole rows -----------------------------------------------------------
  enum class Action { kInsert, kUpdate, kAppend };
  bool SetRowValues(Values const& values, Action action);
  // The result and the lines, each with its line feed.
  int Dump(std::u16string const& separator, bool user, std::u16string* lines);

  // --- State ----------------------------------------------------------------
  // The row and the field that are selected in one part.
  struct Accessor {
    Part* part;
    Field const* field = nullptr;
    std::int64_t row = -1;
  };
  Entry* entry;
  std::vector<Accessor> accessors;
  std::size_t current_part = 0;
  std::int64_t current_row = 0;
  Field const* current_field = nullptr;
  std::map<std::int32_t, std::int32_t> id_index;
  Numbers folge_index;
  Numbers status_index;
  bool folge_selected = false;
  bool status_selected = false;
  bool id_selected = false;

 private:
  unsigned char* Place(std::size_t size);
  unsigned char const* Place(std::size_t size) const;
  std::string Remembered(std::string const& column) const;
  void Follow(std::int32_t old_value, std::int32_t value);
  // Selects the column and reads it; *value stays when it is no integer column.
  void ReadColumn(std::string const& column, std::int64_t* value);
  // Selects the column and writes it; only its index where there is no column.
  void WriteColumn(std::string const& column, std::int64_t value);
  void RepairStatus();
  Numbers RecordedOrder() const;
  Numbers FieldOrder();

  bool WriteField(Field const& field, Values const& values, Action action,
                  std::int64_t* row_id);
  bool WriteId(std::int64_t given, Action action, std::int64_t* row_id);
  bool WritePlace(Values const& values, Action action, std::int64_t row_id);
  bool WriteName(std::string const& column, std::u16string name,
                 std::int64_t row_id);
};

}  // namespace tabwerk::test::model

#endif  // TABWERK_TESTS_SUPPORT_PLAIN_MODEL_H
