// Access to single values of a row record that the caller provides.
#ifndef TABWERK_DBZEILE_H
#define TABWERK_DBZEILE_H

#include <cstddef>

#include "DBDefinition.h"
#include "tabwerk_export.h"

// Reads and writes the value of one field in one row record.
//
// Both the field and the record are borrowed: the caller keeps them alive and
// provides a record that is large enough for the field.  Copies refer to the
// same field and record.  Writing here touches no index of any table.
class TABWERK_API DBZeile {
 public:
  // No field, no record.
  DBZeile();
  DBZeile(DBZeile const& other);
  DBZeile& operator=(DBZeile const& other);
  virtual ~DBZeile();

  // Sets the field and the offset of its value in bytes from the start of the
  // record.
  void SelectField(DBFeld* field, long offset);
  // Sets the start of the record.
  void SetMemory(void* record);
  // The start of the record plus n bytes; null without a record.
  void* GetMemory(std::size_t n);
  DBFeld* GetField();
  // The field's type; DBTypeUnknown without a field.
  DBType GetType();

  // Each returns 1, or 0 with nothing changed when the field has another type,
  // there is no field or no record, or value does not fit into 32 bits.
  int SetWert(long value);     // DBTypeInteger
  int SetWert(double value);   // DBTypeReal
  int GetWert(long& value);    // DBTypeInteger
  int GetWert(double& value);  // DBTypeReal

 private:
  DBFeld* field_;
  void* memory_;
  std::int32_t offset_;
};

#endif  // TABWERK_DBZEILE_H
