#include "table/id_index.h"

#include <algorithm>
#include <limits>
#include <new>

#include "table/bit_tree.h"
#include "table/id_array.h"
#include "table/id_hash.h"

namespace tabwerk {
namespace {

constexpr std::int64_t kSmallestId = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kLargestId = std::numeric_limits<std::int32_t>::max();

// The IDs of a hash from one number on, for finding a free one.
struct TakenIds {
  std::int64_t first = 0;
  BitTree ids;

  bool Covers(std::int32_t id) const {
    return id >= first && static_cast<std::size_t>(id - first) < ids.size();
  }
  std::size_t Position(std::int32_t id) const {
    return static_cast<std::size_t>(id - first);
  }
};

// Lowest and largest of some IDs.
struct Span {
  std::int64_t first;
  std::int64_t last;

  explicit Span(std::int32_t id) : first(id), last(id) {}
  void Add(std::int32_t id) {
    first = std::min<std::int64_t>(first, id);
    last = std::max<std::int64_t>(last, id);
  }
  // True when an array over the span has at most this many places per entry,
  // and some.
  bool IsDense(std::size_t entries, std::int64_t places_per_entry) const {
    return last - first <
           places_per_entry * (static_cast<std::int64_t>(entries) + 256);
  }
};

// A span is dense enough to stay an array below the first number and to become
// one below the second; the distance keeps the form from changing to and fro.
constexpr std::int64_t kKeepArray = 4;
constexpr std::int64_t kBecomeArray = 2;

}  // namespace

struct IdIndex::Storage {
  bool dense = true;
  IdArray array;  // holds the entries while dense
  IdHash hash;    // holds them otherwise
  std::size_t expected = 0;

  // While not dense: the IDs as a heap, the largest in front, some of them no
  // longer in the hash.  Empty until it is needed.
  std::vector<std::int32_t> heap;
  // While not dense: as far as it is needed.
  std::optional<TakenIds> taken;

  std::size_t size() const { return dense ? array.size() : hash.size(); }
  void SetBeyondArray(std::int32_t id, std::int32_t row);
  void MoveArray(Span span, std::int32_t id);
  void SetInHash(std::int32_t id, std::int32_t row);
  bool BecomeArray(std::int32_t id);
  void BecomeHash();
  void NoteInserted(std::int32_t id) noexcept;
  void ShrinkArray() noexcept;
  void FillHeap();
  std::int32_t LargestInHash();
  std::optional<std::int32_t> LowestFreeInHash(std::int32_t from);
  void FillTaken(std::int32_t from);
};

// --- While the entries lie in the array -----------------------------------

void IdIndex::Storage::SetBeyondArray(std::int32_t id, std::int32_t row) {
  Span span(id);
  if (array.size() != 0) {
    span.Add(array.LowestId());
    span.Add(array.LargestId());
  }
  if (!span.IsDense(std::max(array.size(), expected), kKeepArray)) {
    BecomeHash();
    SetInHash(id, row);
    return;
  }
  MoveArray(span, id);
  array.Set(id, row);
}

// Gives the array a window over the span with room to grow on the side of id.
void IdIndex::Storage::MoveArray(Span span, std::int32_t id) {
  std::int64_t const room =
      std::max<std::int64_t>(64, (span.last - span.first) / 2);
  if (id == span.last) {
    span.last = std::min(kLargestId, span.last + room);
  } else if (id == span.first) {
    span.first = std::max(kSmallestId, span.first - room);
  }
  array = array.OverWindow(span.first, span.last);
}

// After many removals: a smaller window, or the hash.
void IdIndex::Storage::ShrinkArray() noexcept {
  try {
    if (array.size() == 0) {
      array = IdArray();
      return;
    }
    Span span(array.LowestId());
    span.Add(array.LargestId());
    if (span.IsDense(array.size(), kKeepArray)) {
      MoveArray(span, array.LargestId());
    } else {
      BecomeHash();
    }
  } catch (std::bad_alloc const&) {
    // Without memory the array stays as large as it is.
  }
}

void IdIndex::Storage::BecomeHash() {
  IdHash entries;
  // Half as many again before the form is looked at anew.
  entries.Reserve(array.size() + array.size() / 2 + 1);
  array.ForEach([&entries](auto id, auto row) { entries.Insert(id, row); });
  hash = std::move(entries);
  array = IdArray();
  dense = false;
}

// --- While the entries lie in the hash ------------------------------------

void IdIndex::Storage::SetInHash(std::int32_t id, std::int32_t row) {
  if (std::int32_t* const found = hash.Find(id)) {
    *found = row;
    return;
  }
  // The hash is copied to a larger one now and then: the time to look whether
  // an array would do.
  if (hash.IsFull() && BecomeArray(id)) {
    array.Set(id, row);
    return;
  }
  hash.Insert(id, row);
  NoteInserted(id);
}

bool IdIndex::Storage::BecomeArray(std::int32_t id) {
  Span span(id);
  hash.ForEach([&span](auto entry, auto) { span.Add(entry); });
  if (!span.IsDense(hash.size(), kBecomeArray)) return false;
  IdArray entries(span.first, span.last);
  hash.ForEach([&entries](auto entry, auto row) { entries.Set(entry, row); });
  array = std::move(entries);
  hash = IdHash();
  heap = {};
  taken.reset();
  dense = true;
  return true;
}

void IdIndex::Storage::NoteInserted(std::int32_t id) noexcept {
  if (taken && taken->Covers(id)) taken->ids.Insert(taken->Position(id));
  if (heap.empty()) return;
  try {
    // Too many that are gone: begin anew when it is needed.
    if (heap.size() > 2 * hash.size() + 64) {
      heap.clear();
      return;
    }
    heap.push_back(id);
    std::push_heap(heap.begin(), heap.end());
  } catch (std::bad_alloc const&) {
    heap.clear();
  }
}

void IdIndex::Storage::FillHeap() {
  heap.reserve(hash.size());
  hash.ForEach([this](auto id, auto) { heap.push_back(id); });
  std::make_heap(heap.begin(), heap.end());
}

std::int32_t IdIndex::Storage::LargestInHash() {
  try {
    if (heap.empty()) FillHeap();
    while (hash.Find(heap.front()) == nullptr) {
      std::pop_heap(heap.begin(), heap.end());
      heap.pop_back();
      if (heap.empty()) FillHeap();
    }
    return heap.front();
  } catch (std::bad_alloc const&) {
    auto largest = static_cast<std::int32_t>(kSmallestId);
    hash.ForEach([&](auto id, auto) { largest = std::max(largest, id); });
    return largest;
  }
}

void IdIndex::Storage::FillTaken(std::int32_t from) {
  // Twice as many as there are entries: one of them is free.
  std::int64_t const wanted = 2 * static_cast<std::int64_t>(hash.size()) + 64;
  std::int64_t const size = std::min(wanted, kLargestId - from + 1);
  TakenIds fresh{from, BitTree(static_cast<std::size_t>(size))};
  hash.ForEach([&fresh](auto id, auto) {
    if (fresh.Covers(id)) fresh.ids.Insert(fresh.Position(id));
  });
  taken = std::move(fresh);
}

std::optional<std::int32_t> IdIndex::Storage::LowestFreeInHash(
    std::int32_t from) {
  try {
    if (!taken || taken->first != from) FillTaken(from);
    auto position = taken->ids.LowestMissing(0);
    if (!position) {
      FillTaken(from);
      position = taken->ids.LowestMissing(0);
    }
    if (!position) return std::nullopt;
    return static_cast<std::int32_t>(from +
                                     static_cast<std::int64_t>(*position));
  } catch (std::bad_alloc const&) {
    for (std::int64_t id = from; id <= kLargestId; ++id) {
      auto const candidate = static_cast<std::int32_t>(id);
      if (hash.Find(candidate) == nullptr) return candidate;
    }
    return std::nullopt;
  }
}

// --------------------------------------------------------------------------

IdIndex::IdIndex() : storage_(nullptr) {}

IdIndex::IdIndex(IdIndex const& other)
    : storage_(other.storage_ == nullptr ? nullptr
                                         : new Storage(*other.storage_)) {}

IdIndex& IdIndex::operator=(IdIndex const& other) {
  return *this = IdIndex(other);
}

IdIndex::~IdIndex() { delete storage_; }

void IdIndex::Clear() noexcept {
  delete storage_;
  storage_ = nullptr;
}

std::size_t IdIndex::size() const noexcept {
  return storage_ == nullptr ? 0 : storage_->size();
}

bool IdIndex::Find(std::int32_t id, std::int32_t* row) const noexcept {
  if (storage_ == nullptr) return false;
  return storage_->dense ? storage_->array.Find(id, row)
                         : storage_->hash.Find(id, row);
}

void IdIndex::Set(std::int32_t id, std::int32_t row) {
  if (storage_ == nullptr) storage_ = new Storage;
  if (!storage_->dense) {
    storage_->SetInHash(id, row);
  } else if (storage_->array.Covers(id)) {
    storage_->array.Set(id, row);
  } else {
    storage_->SetBeyondArray(id, row);
  }
}

void IdIndex::Erase(std::int32_t id) noexcept {
  if (storage_ == nullptr) return;
  Storage& entries = *storage_;
  if (!entries.dense) {
    bool const removed = entries.hash.Remove(id);
    auto& taken = entries.taken;
    if (removed && taken && taken->Covers(id)) {
      taken->ids.Remove(taken->Position(id));
    }
    return;
  }
  entries.expected = 0;
  if (entries.array.Remove(id) &&
      entries.array.WindowSize() > 16 * (entries.array.size() + 256)) {
    entries.ShrinkArray();
  }
}

void IdIndex::Reserve(std::size_t count) {
  if (storage_ == nullptr) storage_ = new Storage;
  if (storage_->dense) {
    storage_->expected = count;
  } else {
    storage_->hash.Reserve(count);
  }
}

void IdIndex::Reserve(std::size_t count, std::int32_t first,
                      std::int32_t last) {
  Reserve(count);
  Span span(first);
  span.Add(last);
  if (!storage_->dense || !span.IsDense(count, kKeepArray)) return;
  // New IDs mostly follow the largest one.
  std::int64_t const room = (span.last - span.first) / 8;
  storage_->array = IdArray(span.first, std::min(kLargestId, span.last + room));
}

std::int32_t IdIndex::LargestId() const {
  return storage_->dense ? storage_->array.LargestId()
                         : storage_->LargestInHash();
}

std::optional<std::int32_t> IdIndex::LowestFreeId(std::int32_t from) const {
  if (storage_ == nullptr) return from;
  return storage_->dense ? storage_->array.LowestFreeId(from)
                         : storage_->LowestFreeInHash(from);
}

std::vector<IdIndex::Entry> IdIndex::Entries() const {
  std::vector<Entry> entries;
  if (storage_ == nullptr) return entries;
  entries.reserve(size());
  auto const add = [&entries](auto id, auto row) {
    entries.emplace_back(id, row);
  };
  if (storage_->dense) {
    storage_->array.ForEach(add);
  } else {
    storage_->hash.ForEach(add);
    std::sort(entries.begin(), entries.end());
  }
  return entries;
}

}  // namespace tabwerk
