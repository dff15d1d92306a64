// Comparison of definitions by the row records that they describe.
#ifndef TABWERK_SCHEMA_LAYOUT_H
#define TABWERK_SCHEMA_LAYOUT_H

#include <cstdint>

#include "DBDefinition.h"
#include "schema/format.h"

namespace tabwerk {

// What every access to a value asks of a definition, without a call.
struct DefinitionAccess {
  static std::int32_t RecordSize(DBDefinition const& definition) noexcept {
    return definition.memory_size_;
  }
  static DBFeld* Fields(DBDefinition const& definition) noexcept {
    return definition.fields_;
  }
};

// Bytes of a value of that type in a row record; 0 for an unknown type.
inline std::int32_t ValueSize(DBType type) noexcept {
  switch (type) {
    case DBTypeReal:
      return format::kRealSize;
    case DBTypeInteger:
      return format::kIntegerSize;
    case DBTypeString:
      return format::kStringSize;
    case DBTypeUnknown:
      break;
  }
  return 0;
}

// True when a value of that type at that offset lies inside a record of
// record_size bytes.  A host can write to a field's offset.
inline bool LiesInRecord(DBType type, std::int32_t offset,
                         std::int64_t record_size) noexcept {
  return offset >= 0 && std::int64_t{offset} + ValueSize(type) <= record_size;
}

// True when both describe the same row record: the same number of fields with
// the same types and offsets, and the same record size.  Names do not count.
bool SameLayout(DBDefinition const& left, DBDefinition const& right) noexcept;

}  // namespace tabwerk

#endif  // TABWERK_SCHEMA_LAYOUT_H
