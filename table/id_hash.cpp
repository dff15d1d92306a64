#include "table/id_hash.h"

#include <algorithm>
#include <utility>

namespace tabwerk {
namespace {

constexpr std::size_t kFewestSlots = 16;

// At most 4 of 5 slots are taken.
std::size_t Room(std::size_t slot_count) { return slot_count / 5 * 4; }
std::size_t SlotsFor(std::size_t count) {
  return std::max(kFewestSlots, count / 4 * 5 + 5);
}

// Spreads every bit of the input over the result.
std::uint64_t Mix(std::uint64_t value) {
  value ^= value >> 32;
  value *= 0xD6E8FEB86659FD93U;
  value ^= value >> 32;
  value *= 0xD6E8FEB86659FD93U;
  value ^= value >> 32;
  return value;
}

}  // namespace

IdHash::IdHash()
    : seed_(Mix(reinterpret_cast<std::uintptr_t>(this) | std::uint64_t{1}
                                                             << 63)) {}

std::size_t IdHash::Home(std::int32_t id) const noexcept {
  std::uint64_t const hash = Mix(static_cast<std::uint32_t>(id) ^ seed_) >> 32;
  // Maps 32 bits evenly onto the slots; there are fewer than 2^32.
  return static_cast<std::size_t>(hash * slots_.size() >> 32);
}

std::size_t IdHash::SlotOf(std::int32_t id) const noexcept {
  std::size_t slot = Home(id);
  while (slots_[slot].id != id && slots_[slot].id != kFreeId) slot = Next(slot);
  return slot;
}

std::int32_t* IdHash::Find(std::int32_t id) noexcept {
  if (id == kFreeId) return free_id_row_ ? &*free_id_row_ : nullptr;
  if (slots_.empty()) return nullptr;
  Slot& slot = slots_[SlotOf(id)];
  return slot.id == id ? &slot.row : nullptr;
}

bool IdHash::Find(std::int32_t id, std::int32_t* row) const noexcept {
  auto const* const found = const_cast<IdHash*>(this)->Find(id);
  if (found == nullptr) return false;
  *row = *found;
  return true;
}

bool IdHash::IsFull() const noexcept { return count_ >= Room(slots_.size()); }

void IdHash::Insert(std::int32_t id, std::int32_t row) {
  if (id == kFreeId) {
    free_id_row_ = row;
  } else {
    if (IsFull()) Rebuild(SlotsFor(count_ + count_ / 2));
    slots_[SlotOf(id)] = {id, row};
  }
  ++count_;
}

bool IdHash::Remove(std::int32_t id) noexcept {
  if (id == kFreeId) {
    if (!free_id_row_) return false;
    free_id_row_.reset();
    --count_;
    return true;
  }
  if (slots_.empty()) return false;
  std::size_t hole = SlotOf(id);
  if (slots_[hole].id != id) return false;
  // Entries behind the hole move up unless that would put them before their
  // home slot.
  for (std::size_t slot = Next(hole); slots_[slot].id != kFreeId;
       slot = Next(slot)) {
    std::size_t const home = Home(slots_[slot].id);
    bool const stays =
        hole < slot ? hole < home && home <= slot : hole < home || home <= slot;
    if (stays) continue;
    slots_[hole] = slots_[slot];
    hole = slot;
  }
  slots_[hole] = {};
  --count_;
  return true;
}

void IdHash::Reserve(std::size_t count) {
  if (count > Room(slots_.size())) Rebuild(SlotsFor(count));
}

void IdHash::Rebuild(std::size_t slot_count) {
  std::vector<Slot> old(slot_count);
  old.swap(slots_);
  for (Slot const& entry : old) {
    if (entry.id != kFreeId) slots_[SlotOf(entry.id)] = entry;
  }
}

}  // namespace tabwerk
