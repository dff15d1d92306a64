#include "table/text_lookup.h"

#include <algorithm>
#include <bit>
#include <functional>

#include "base/translation.h"
#include "table/row_walk.h"
#include "table/text_column.h"

namespace tabwerk {
namespace {

constexpr std::int32_t kNone = -1;
constexpr std::size_t kFewestBuckets = 16;
// Longest way to a row's place among rows of the same bucket.  Only rows that
// share one text in great number and are set in mixed order go farther.
constexpr int kLongestWay = 64;

std::uint32_t HashOf(std::u16string_view text) noexcept {
  auto const hash =
      static_cast<std::uint64_t>(std::hash<std::u16string_view>()(text));
  return static_cast<std::uint32_t>(hash ^ hash >> 32U);
}

}  // namespace

bool TextLookup::Build(DBTabelle& table, DBFeld* field) {
  field_ = field;
  language_ = CurrentLanguage();
  links_.clear();
  // With room for rows to come: they are what a lookup is kept for.
  auto const rows = static_cast<std::size_t>(CountRows(table));
  links_.reserve(rows + rows / 8);
  TextColumn column(table, field);
  RowWalk walk(table);
  while (walk.Next()) {
    auto const text = column.Read(walk);
    if (!text) return false;
    links_.push_back({kNone, kNone, HashOf(*text)});
  }
  Rehash();
  return true;
}

bool TextLookup::IsInCurrentLanguage() const noexcept {
  return language_ == CurrentLanguage();
}

std::optional<std::int32_t> TextLookup::Find(DBTabelle& table,
                                             std::u16string_view text) const {
  auto const hash = HashOf(text);
  auto const head = heads_[BucketOf(hash)];
  if (head == kNone) return std::nullopt;
  TextColumn column(table, field_);
  RowWalk walk(table);
  auto row = head;
  do {
    auto const& link = links_[static_cast<std::size_t>(row)];
    if (link.hash == hash && walk.MoveTo(row) && column.Read(walk) == text) {
      return row;
    }
    row = link.next;
  } while (row != head);
  return std::nullopt;
}

bool TextLookup::Update(DBTabelle& table, std::int32_t row) {
  auto const position = static_cast<std::size_t>(row);
  TextColumn column(table, field_);
  RowWalk walk(table);
  if (!walk.MoveTo(row)) return false;
  auto const text = column.Read(walk);
  if (!text) return false;
  auto const hash = HashOf(*text);
  if (position < links_.size()) {
    if (links_[position].hash == hash) return true;
    Remove(row);
    links_[position].hash = hash;
    return Insert(row);
  }
  if (position > links_.size()) return false;
  links_.push_back({kNone, kNone, hash});
  if (links_.size() > heads_.size()) {
    Rehash();
  } else {
    Append(row);
  }
  return true;
}

// Links all rows anew, into at least as many buckets as there are rows.
void TextLookup::Rehash() {
  auto const wanted = std::max(kFewestBuckets, 2 * links_.size());
  heads_.assign(std::bit_ceil(wanted), kNone);
  for (std::size_t row = 0; row < links_.size(); ++row) {
    Append(static_cast<std::int32_t>(row));
  }
}

// Links a row behind all others of its bucket.
void TextLookup::Append(std::int32_t row) noexcept {
  auto& link = links_[static_cast<std::size_t>(row)];
  auto& head = heads_[BucketOf(link.hash)];
  if (head == kNone) {
    head = link.previous = link.next = row;
    return;
  }
  auto& first = links_[static_cast<std::size_t>(head)];
  link.previous = first.previous;
  link.next = head;
  links_[static_cast<std::size_t>(first.previous)].next = row;
  first.previous = row;
}

// Links a row at its place in ascending order; false when that is far from the
// end of its bucket.
bool TextLookup::Insert(std::int32_t row) noexcept {
  auto& head = heads_[BucketOf(links_[static_cast<std::size_t>(row)].hash)];
  if (head == kNone || links_[static_cast<std::size_t>(head)].previous < row) {
    Append(row);
    return true;
  }
  bool const becomes_first = row < head;
  auto behind = head;  // the row that will follow
  if (!becomes_first) {
    auto before = links_[static_cast<std::size_t>(head)].previous;
    for (int way = 0; before > row; ++way) {
      if (way == kLongestWay) return false;
      behind = before;
      before = links_[static_cast<std::size_t>(before)].previous;
    }
  }
  auto& link = links_[static_cast<std::size_t>(row)];
  auto& next = links_[static_cast<std::size_t>(behind)];
  link.previous = next.previous;
  link.next = behind;
  links_[static_cast<std::size_t>(next.previous)].next = row;
  next.previous = row;
  if (becomes_first) head = row;
  return true;
}

void TextLookup::Remove(std::int32_t row) noexcept {
  auto const& link = links_[static_cast<std::size_t>(row)];
  auto& head = heads_[BucketOf(link.hash)];
  if (link.next == row) {
    head = kNone;
    return;
  }
  links_[static_cast<std::size_t>(link.previous)].next = link.next;
  links_[static_cast<std::size_t>(link.next)].previous = link.previous;
  if (head == row) head = link.next;
}

}  // namespace tabwerk
