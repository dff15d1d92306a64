#include "DBZeile.h"
#include "schema/bytes.h"

namespace {

// An offset that no value has: every access fails.
constexpr std::int32_t kNoOffset = -1;

// Place of the value; null unless it is one of that type.
std::byte* Value(void* record, DBFeld const* field, DBType type,
                 std::int32_t offset) {
  if (record == nullptr || field == nullptr || field->type != type ||
      offset < 0) {
    return nullptr;
  }
  return static_cast<std::byte*>(record) + offset;
}

}  // namespace

DBZeile::DBZeile() : field_(nullptr), memory_(nullptr), offset_(0) {}
DBZeile::DBZeile(DBZeile const& other) = default;
DBZeile& DBZeile::operator=(DBZeile const& other) = default;
DBZeile::~DBZeile() = default;

void DBZeile::SelectField(DBFeld* field, long offset) {
  field_ = field;
  offset_ = tabwerk::FitsInt32(offset) ? static_cast<std::int32_t>(offset)
                                       : kNoOffset;
}

void DBZeile::SetMemory(void* record) { memory_ = record; }

void* DBZeile::GetMemory(std::size_t n) {
  if (memory_ == nullptr) return nullptr;
  return static_cast<std::byte*>(memory_) + n;
}

DBFeld* DBZeile::GetField() { return field_; }

DBType DBZeile::GetType() {
  return field_ == nullptr ? DBTypeUnknown : field_->type;
}

int DBZeile::SetWert(long value) {
  std::byte* const place = Value(memory_, field_, DBTypeInteger, offset_);
  if (place == nullptr || !tabwerk::FitsInt32(value)) return 0;
  tabwerk::StoreValue(place, static_cast<std::int32_t>(value));
  return 1;
}

int DBZeile::SetWert(double value) {
  std::byte* const place = Value(memory_, field_, DBTypeReal, offset_);
  if (place == nullptr) return 0;
  tabwerk::StoreValue(place, value);
  return 1;
}

int DBZeile::GetWert(long& value) {
  std::byte const* const place = Value(memory_, field_, DBTypeInteger, offset_);
  if (place == nullptr) return 0;
  value = tabwerk::LoadValue<std::int32_t>(place);
  return 1;
}

int DBZeile::GetWert(double& value) {
  std::byte const* const place = Value(memory_, field_, DBTypeReal, offset_);
  if (place == nullptr) return 0;
  value = tabwerk::LoadValue<double>(place);
  return 1;
}
