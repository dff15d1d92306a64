#include <cstring>
#include <new>
#include <utility>

#include "DBDefinition.h"
#include "schema/format.h"
#include "schema/layout.h"
#include "schema/names.h"

namespace {

// Copies a chain behind the field before.  False, and nothing made, without
// memory.
bool CopyChain(DBFeld const* source, DBFeld* before, DBFeld** copy) {
  DBFeld* first = nullptr;
  DBFeld* last = before;
  for (; source != nullptr; source = source->next) {
    auto* field = new (std::nothrow) DBFeld;
    if (field == nullptr) {
      delete first;
      return false;
    }
    field->type = source->type;
    std::memcpy(field->name, source->name, DBFeld::kNameSize);
    field->offset = source->offset;
    field->previous = last;
    (first == nullptr ? first : last->next) = field;
    last = field;
  }
  *copy = first;
  return true;
}

}  // namespace

DBFeld::DBFeld()
    : type(DBTypeUnknown),
      name{},
      previous(nullptr),
      next(nullptr),
      offset(0) {}

DBFeld::DBFeld(DBFeld const& other) : DBFeld() {
  type = other.type;
  std::memcpy(name, other.name, kNameSize);
  offset = other.offset;
  // Without memory the copy stands alone.
  static_cast<void>(CopyChain(other.next, this, &next));
}

DBFeld& DBFeld::operator=(DBFeld const& other) {
  if (this == &other) return *this;
  DBFeld* followers = nullptr;
  if (!CopyChain(other.next, this, &followers)) return *this;
  type = other.type;
  std::memcpy(name, other.name, kNameSize);
  offset = other.offset;
  // Last, for other may stand in this chain.
  delete std::exchange(next, followers);
  return *this;
}

DBFeld::~DBFeld() {
  // In a loop: a chain may be longer than the stack is deep.
  DBFeld* field = std::exchange(next, nullptr);
  while (field != nullptr) {
    DBFeld* following = std::exchange(field->next, nullptr);
    delete field;
    field = following;
  }
}

DBDefinition::DBDefinition() : fields_(nullptr), memory_size_(0) {}

DBDefinition::DBDefinition(char const* text) : DBDefinition() {
  GenerateDefinition(text);
}

DBDefinition::DBDefinition(DBDefinition const& other) : DBDefinition() {
  *this = other;
}

DBDefinition& DBDefinition::operator=(DBDefinition const& other) {
  if (this == &other) return *this;
  DBFeld* copy = nullptr;
  if (!CopyChain(other.fields_, nullptr, &copy)) return *this;
  delete std::exchange(fields_, copy);
  memory_size_ = other.memory_size_;
  return *this;
}

DBDefinition::~DBDefinition() { delete fields_; }

DBFeld* DBDefinition::GetDefinition() { return fields_; }

DBFeld const* DBDefinition::GetDefinition() const { return fields_; }

long DBDefinition::GetMemorySize() const { return memory_size_; }

int DBDefinition::GetOffset(char const* name, DBFeld*& field) const {
  if (name == nullptr) return 0;
  for (DBFeld* it = fields_; it != nullptr; it = it->next) {
    if (tabwerk::SameName(it->name, name)) {
      field = it;
      return 1;
    }
  }
  return 0;
}

namespace tabwerk {

bool SameLayout(DBDefinition const& left, DBDefinition const& right) noexcept {
  if (left.GetMemorySize() != right.GetMemorySize()) return false;
  DBFeld const* one = left.GetDefinition();
  DBFeld const* two = right.GetDefinition();
  while (one != nullptr && two != nullptr) {
    if (one->type != two->type || one->offset != two->offset) return false;
    one = one->next;
    two = two->next;
  }
  return one == nullptr && two == nullptr;
}

}  // namespace tabwerk
