#include <utility>

#include "DBDirectory.h"
#include "schema/part.h"

DBDirEntry::DBDirEntry()
    : name_{},
      definition_(std::make_unique<DBDefinition>()),
      previous_(nullptr),
      next_(nullptr) {}

DBDirEntry::~DBDirEntry() {
  // First: it may point to the definition and the parts.
  companion_.reset();
  // In a loop: a list may be longer than the stack is deep.
  DBDirEntry* entry = std::exchange(next_, nullptr);
  while (entry != nullptr) {
    DBDirEntry* following = std::exchange(entry->next_, nullptr);
    delete entry;
    entry = following;
  }
}

char const* DBDirEntry::GetName() const noexcept { return name_; }

DBDefinition* DBDirEntry::GetDefinition() const noexcept {
  return definition_.get();
}

DBDirEntry* DBDirEntry::GetNext() const noexcept { return next_; }

DBDirEntry* DBDirEntry::GetPrevious() const noexcept { return previous_; }

std::size_t DBDirEntry::GetNumberOfParts() const noexcept {
  return parts_.size();
}

long DBDirEntry::GetPartRows(std::size_t part) const noexcept {
  return part < parts_.size() ? parts_[part]->row_count : 0;
}

bool DBDirEntry::GetPartLoaded(std::size_t part) const noexcept {
  return part < parts_.size() && parts_[part]->loaded;
}
