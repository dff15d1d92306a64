// Field and table definitions: which columns a table has, of which type, and
// where in the packed row record each value lies.
#ifndef TABWERK_DBDEFINITION_H
#define TABWERK_DBDEFINITION_H

#include <cstddef>
#include <cstdint>

#include "tabwerk_export.h"

namespace tabwerk {
struct DefinitionAccess;
}  // namespace tabwerk

// Type of a field.  The numbers are part of the interface.
enum DBType : std::int32_t {
  DBTypeUnknown = 0,  // no bytes in the row record
  DBTypeReal = 1,     // 8 bytes: IEEE 754 double
  DBTypeInteger = 2,  // 4 bytes: signed integer
  DBTypeString =
      3  // 4 bytes: place of the text in the string store, in 16-bit units
};

// One field of a definition, linked into the chain of its neighbours.
//
// A field owns every field behind it: destroying one destroys the rest of its
// chain (in a loop, so chains may be long).  The links are the chain's own;
// a caller reads them but does not change them.
class TABWERK_API DBFeld {
 public:
  static constexpr std::size_t kNameSize = 64;

  // A blank field: type 0, empty name, offset 0, no neighbours.
  DBFeld();
  // Copies the field and, deeply, all fields behind it.  The copy has no
  // previous field; without memory for all of them it has no next one either.
  DBFeld(DBFeld const& other);
  // Replaces type, name, offset and all fields behind this one by copies;
  // the link to the previous field stays.  Without memory nothing changes.
  DBFeld& operator=(DBFeld const& other);
  virtual ~DBFeld();

  DBType type;
  char name[kNameSize];  // NUL-terminated, at most 63 characters
  DBFeld* previous;      // borrowed
  DBFeld* next;          // owned
  std::int32_t offset;   // bytes from the start of the row record
};

// The definition of one table: its fields in order and the size of one row
// record.  A record is packed: every field begins where the one before it
// ends, without alignment.
//
// A definition owns its fields.  Pointers to fields live until the definition
// is rebuilt, assigned or destroyed.
//
// The text form of a definition is a list of pairs "type name", for example
// "integer ID,string NAME,real PRICE\n".  Type words are "real" or "DOUBLE",
// "integer" or "LONG", "string" or "STRING"; any other word gives a field of
// type 0.
class TABWERK_API DBDefinition {
 public:
  // No fields, record size 0.
  DBDefinition();
  // As the empty definition followed by GenerateDefinition(text).
  explicit DBDefinition(char const* text);
  // Deep copies.  Self-assignment changes nothing.  Without memory the copy is
  // empty and an assignment changes nothing.
  DBDefinition(DBDefinition const& other);
  DBDefinition& operator=(DBDefinition const& other);
  virtual ~DBDefinition();

  // First field, or null when there is none.
  DBFeld* GetDefinition();
  DBFeld const* GetDefinition() const;

  // Size of one row record in bytes.
  long GetMemorySize() const;

  // Finds the first field of exactly this name (case counts).  Returns 1 and
  // sets field; returns 0 and leaves field unchanged when there is none or
  // name is null.
  int GetOffset(char const* name, DBFeld*& field) const;

  // Replaces the definition by the one that text describes.  Returns 1 for
  // every text, null (empty definition) included; 0, and the definition is
  // empty, only without memory.
  //
  // A type word ends at the first blank, "=" or tab; a name ends at the first
  // blank, tab, ",", ";" or line feed.  Between a name and the next type
  // exactly one such character may stand, followed by blanks only; the text
  // ends with one.  A name of 64 characters or more gives a blank field.
  // Text from the 16,384th byte on is not read.
  int GenerateDefinition(char const* text);

  // Writes the text form, NUL-terminated, into a buffer of size bytes.
  // Returns 1; returns 0 and leaves the buffer untouched when size is less
  // than the length of the text.  The NUL is not counted by that test: a
  // buffer must have one byte more than the size that is passed.
  int GenerateString(char* buffer, long size) const;

 private:
  friend struct tabwerk::DefinitionAccess;

  DBFeld* fields_;
  std::int32_t memory_size_;
};

#endif  // TABWERK_DBDEFINITION_H
