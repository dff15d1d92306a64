// Adding rows.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <vector>

#include "DBTabelle.h"
#include "platform/guarded.h"
#include "schema/bytes.h"
#include "schema/layout.h"
#include "schema/part.h"
#include "table/id_index.h"
#include "table/row_lookups.h"
#include "table/sub_table.h"

namespace {

using tabwerk::DefinitionAccess;
using tabwerk::TablePart;

constexpr std::int32_t kFirstUserId = 20000;
constexpr std::int64_t kLargestNumber =
    std::numeric_limits<std::int32_t>::max();

[[gnu::noinline]] void Enlarge(std::vector<std::int32_t>* index) {
  index->reserve(std::max<std::size_t>(16, 2 * index->capacity()));
}

// Makes room for one more entry at amortised constant cost.
void ReserveOneMore(std::vector<std::int32_t>* index) {
  if (index->size() == index->capacity()) Enlarge(index);
}

std::uint32_t CountStringFields(DBFeld const* field) {
  std::uint32_t count = 0;
  for (; field != nullptr; field = field->next) {
    if (field->type == DBTypeString) ++count;
  }
  return count;
}

// Integers and reals are zero; strings name the texts from first_text on.  A
// field that does not lie inside the record is left out.
void FillRecord(std::byte* record, std::int32_t record_size,
                DBFeld const* field, std::int32_t first_text) {
  std::memset(record, 0, static_cast<std::size_t>(record_size));
  for (; field != nullptr; field = field->next) {
    if (field->type != DBTypeString) continue;
    auto const text = first_text++;
    if (tabwerk::LiesInRecord(DBTypeString, field->offset, record_size)) {
      tabwerk::StoreValue(record + field->offset, text);
    }
  }
}

// Appends a record behind the rows in use and gives it empty texts of its own.
// False, and no change, when the rows in use are not all in memory, memory is
// exhausted, or a size would not fit into 31 bits.
bool AppendRecord(TablePart* part, DBDefinition const& definition) {
  std::int32_t const record_size = DefinitionAccess::RecordSize(definition);
  if (record_size <= 0 || part->damaged || part->row_count < 0) return false;
  std::int64_t const used = std::int64_t{part->row_count} * record_size;
  std::int64_t const grown = used + record_size;
  if (grown > kLargestNumber) return false;
  if (static_cast<std::uint64_t>(used) > part->rows.size()) return false;

  DBFeld const* const fields = DefinitionAccess::Fields(definition);
  std::uint32_t const units_before = part->strings->count();
  if (!part->strings->AppendEmpty(CountStringFields(fields))) return false;
  if (!part->rows.ResizeUnset(static_cast<std::size_t>(grown))) {
    part->strings->Truncate(units_before);
    return false;
  }
  FillRecord(part->rows.data() + used, record_size, fields,
             static_cast<std::int32_t>(units_before));
  part->row_block_size = static_cast<std::int32_t>(grown);
  ++part->row_count;
  ++part->revision;
  return true;
}

}  // namespace

bool DBTabelle::NeueZeile(bool user) {
  std::size_t const index = user ? 1 : 0;
  if (index >= sub_tables_.size()) return false;
  DBSubTable& sub_table = sub_tables_[index];
  std::int64_t rows = sub_table.part->Rows();
  if (user) rows += sub_tables_[0].part->Rows();
  if (rows >= kLargestNumber) return false;
  // Nothing that can fail may follow the new record.
  bool const room = tabwerk::Guarded(false, [&] {
    ReserveOneMore(&status_index_);
    ReserveOneMore(&folge_index_);
    return true;
  });
  if (!room || !AppendRecord(sub_table.part, *definition_)) return false;
  status_index_.push_back(0);
  folge_index_.push_back(-1);
  current_sub_table_ = index;
  current_row_ = static_cast<long>(rows);
  sub_table.row = sub_table.part->row_count - 1;
  if (lookups_ != nullptr) lookups_->RowAdded(*this, index, rows);
  return true;
}

long DBTabelle::NewUserID() {
  if (id_index_->empty()) return kFirstUserId;
  std::int32_t const largest = id_index_->LargestId();
  if (largest < kLargestNumber) return std::max(largest + 1, kFirstUserId);
  return id_index_->LowestFreeId(kFirstUserId).value_or(kFirstUserId);
}
