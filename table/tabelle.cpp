// Making a table, binding it to its rows, and the state of its parts.
#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

#include "DBTabelle.h"
#include "platform/guarded.h"
#include "schema/directory_access.h"
#include "schema/part.h"
#include "table/id_index.h"
#include "table/row_lookups.h"
#include "table/sub_table.h"
#include "table/table_access.h"

using tabwerk::DirectoryAccess;
using tabwerk::IdIndex;

DBTabelle::DBTabelle() : id_index_(std::make_unique<IdIndex>()) {}

DBTabelle::DBTabelle(DBDirEntry* /*entry*/) : DBTabelle() {}

DBTabelle::DBTabelle(DBTabelle const& other)
    : current_sub_table_(other.current_sub_table_),
      current_row_(other.current_row_),
      sub_tables_(other.sub_tables_),
      current_field_(other.current_field_),
      definition_(other.definition_),
      folge_index_(other.folge_index_),
      status_index_(other.status_index_),
      id_index_(std::make_unique<IdIndex>(*other.id_index_)),
      folge_selected_(other.folge_selected_),
      status_selected_(other.status_selected_),
      id_selected_(other.id_selected_) {}

DBTabelle& DBTabelle::operator=(DBTabelle const& other) {
  // All copies that may fail come first.
  DBTabelle copy(other);
  tabwerk::TableAccess::TakeIndices(*this, copy);
  definition_ = copy.definition_;
  lookups_.reset();
  return *this;
}

void tabwerk::TableAccess::TakeIndices(DBTabelle& table,
                                       DBTabelle& copy) noexcept {
  table.current_sub_table_ = copy.current_sub_table_;
  table.current_row_ = copy.current_row_;
  table.sub_tables_ = std::move(copy.sub_tables_);
  table.current_field_ = copy.current_field_;
  table.folge_index_ = std::move(copy.folge_index_);
  table.status_index_ = std::move(copy.status_index_);
  table.id_index_ = std::move(copy.id_index_);
  table.folge_selected_ = copy.folge_selected_;
  table.status_selected_ = copy.status_selected_;
  table.id_selected_ = copy.id_selected_;
}

DBTabelle::~DBTabelle() = default;

void DBTabelle::SetDirEntry(DBDirEntry* entry) {
  if (entry == nullptr) return;
  auto& parts = DirectoryAccess::Parts(*entry);
  bool const room = tabwerk::Guarded(false, [&] {
    sub_tables_.reserve(sub_tables_.size() + parts.size());
    return true;
  });
  if (!room) return;
  for (auto const& part : parts) sub_tables_.emplace_back(entry, part.get());
  definition_ = entry->GetDefinition();
}

DBDirEntry* DBTabelle::GetDirEntry(bool user) {
  std::size_t const index = user ? 1 : 0;
  return index < sub_tables_.size() ? sub_tables_[index].entry : nullptr;
}

int DBTabelle::is_open() {
  for (DBSubTable const& sub_table : sub_tables_) {
    if (!sub_table.part->loaded) return 0;
  }
  return 1;
}

void DBTabelle::SetOpen(bool open, std::size_t fileIndex) {
  if (fileIndex >= sub_tables_.size()) return;
  sub_tables_[fileIndex].part->loaded = open;
}

void* DBTabelle::SetMemory(std::size_t size, std::size_t fileIndex) {
  constexpr auto kLargest =
      static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
  if (fileIndex >= sub_tables_.size() || size > kLargest) return nullptr;
  tabwerk::TablePart& part = *sub_tables_[fileIndex].part;
  if (!part.ReplaceRows(size)) return nullptr;
  std::fill(part.rows.data(), part.rows.data() + size, std::byte{0});
  part.lent = true;
  return part.rows.data();
}
