// The list of tables of a directory.
#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "DBDirectory.h"
#include "platform/guarded.h"
#include "schema/bytes.h"
#include "schema/container.h"
#include "schema/corrupt.h"
#include "schema/directory_access.h"
#include "schema/layout.h"
#include "schema/part.h"

namespace tabwerk {
namespace {

using PartList = std::vector<std::unique_ptr<TablePart>>;

// Parts that an entry is to get.
struct NewParts {
  DBDirEntry* entry;
  PartList parts;
};

// Empty parts for the files from first to end - 1.
PartList EmptyParts(std::vector<FileRecord> const& files, std::size_t first,
                    std::size_t end) {
  PartList parts;
  for (std::size_t i = first; i < end; ++i) {
    parts.push_back(std::make_unique<TablePart>());
    parts.back()->file_name = files[i].name;
  }
  return parts;
}

// Appends the parts to their entries: to all of them, or to none when there is
// no memory (std::bad_alloc).
void Append(std::vector<NewParts>* all) {
  for (NewParts& it : *all) {
    PartList& parts = DirectoryAccess::Parts(*it.entry);
    parts.reserve(parts.size() + it.parts.size());
  }
  for (NewParts& it : *all) {
    PartList& parts = DirectoryAccess::Parts(*it.entry);
    for (auto& part : it.parts) parts.push_back(std::move(part));
  }
}

// Gives a part the directory numbers of another one.  The part itself and its
// blocks stay: tables point to them.
void ReplaceNumbers(TablePart* part, TablePart const& numbers) noexcept {
  part->reserved = numbers.reserved;
  part->row_block_size = numbers.row_block_size;
  part->row_block_offset = numbers.row_block_offset;
  part->string_block_offset = numbers.string_block_offset;
  part->string_block_size = numbers.string_block_size;
  part->row_count = numbers.row_count;
  part->file_rows = numbers.file_rows;
  part->damaged = numbers.damaged;
  part->loaded = false;
  ++part->revision;
}

// The entry of every name, the first where a name stands twice.
class EntriesByName {
 public:
  explicit EntriesByName(DBDirEntry* first) {
    for (DBDirEntry* it = first; it != nullptr; it = it->GetNext()) {
      entries_.try_emplace(it->GetName(), it);
    }
  }

  // Null when there is none or it was taken.
  DBDirEntry* Find(char const* name) const {
    auto const it = entries_.find(name);
    return it == entries_.end() ? nullptr : it->second;
  }
  // As Find, but gives every entry once.
  DBDirEntry* Take(char const* name) {
    auto const it = entries_.find(name);
    return it == entries_.end() ? nullptr : std::exchange(it->second, nullptr);
  }

 private:
  std::unordered_map<std::string_view, DBDirEntry*> entries_;
};

// Adds delta; false, and the nearest number, when the sum does not fit.
bool Add(std::int32_t* number, std::int32_t delta) noexcept {
  using Limits = std::numeric_limits<std::int32_t>;
  std::int64_t const sum = std::int64_t{*number} + delta;
  *number = static_cast<std::int32_t>(
      std::clamp<std::int64_t>(sum, Limits::min(), Limits::max()));
  return *number == sum;
}

}  // namespace

std::unique_ptr<DBDirEntry> DirectoryAccess::MakeList(
    std::vector<FileRecord> const& files, std::size_t file,
    std::vector<DirectoryRecord>* records) {
  std::unique_ptr<DBDirEntry> first;
  for (DirectoryRecord& record : *records) {
    auto entry = std::make_unique<DBDirEntry>();
    std::memcpy(entry->name_, record.name.data(), DBDirEntry::kNameSize);
    entry->definition_ = std::move(record.definition);
    entry->parts_ = EmptyParts(files, 0, file);
    entry->parts_.push_back(std::move(record.part));
    if (first) first->previous_ = entry.get();
    entry->next_ = first.release();
    first = std::move(entry);
  }
  return first;
}

bool DirectoryAccess::JoinRecords(DBDirectory& directory,
                                  std::vector<DirectoryRecord>* records,
                                  std::size_t file) {
  if (directory.entries_ != nullptr) {
    return AddParts(directory, records, file);
  }
  directory.entries_owner_ = MakeList(directory.files_, file, records);
  directory.entries_ = directory.entries_owner_.get();
  return directory.entries_ != nullptr;
}

bool DirectoryAccess::AddParts(DBDirectory& directory,
                               std::vector<DirectoryRecord>* records,
                               std::size_t file) {
  struct Replacement {
    TablePart* part;
    TablePart* numbers;
  };
  EntriesByName by_name(directory.entries_);
  std::vector<NewParts> added;
  std::vector<Replacement> replaced;
  // Backwards, as the file's own list would be: of two records of one name the
  // last one counts.
  for (auto it = records->rbegin(); it != records->rend(); ++it) {
    DBDirEntry* entry = by_name.Take(it->name.data());
    if (entry == nullptr) continue;  // the first file does not have the table
    if (!SameLayout(*entry->definition_, *it->definition)) {
      return Corrupt("definition of a table in a later file");
    }
    if (TablePart* part = Part(*entry, file)) {
      replaced.push_back({part, it->part.get()});
    } else {
      PartList parts = EmptyParts(directory.files_, entry->parts_.size(), file);
      parts.push_back(std::move(it->part));
      added.push_back({entry, std::move(parts)});
    }
  }
  // A part of a table that the file no longer holds becomes an empty one.
  TablePart const none;
  std::vector<TablePart*> present;
  for (DBDirEntry* it = directory.entries_; it != nullptr; it = it->next_) {
    if (TablePart* part = Part(*it, file)) present.push_back(part);
  }
  // Nothing was changed up to here, and nothing fails behind this line.
  Append(&added);
  for (TablePart* part : present) ReplaceNumbers(part, none);
  for (Replacement const& it : replaced) {
    it.part->file_name = std::move(it.numbers->file_name);
    ReplaceNumbers(it.part, *it.numbers);
  }
  return true;
}

void DirectoryAccess::LinkLast(DBDirectory& directory,
                               std::unique_ptr<DBDirEntry> entry) {
  if (directory.entries_ == nullptr) {
    directory.entries_owner_ = std::move(entry);
    directory.entries_ = directory.entries_owner_.get();
    return;
  }
  DBDirEntry* last = directory.entries_;
  while (last->next_ != nullptr) last = last->next_;
  entry->previous_ = last;
  last->next_ = entry.release();
}

bool DirectoryAccess::PadParts(DBDirectory& directory, std::size_t file) {
  if (file >= directory.files_.size()) return false;
  return Guarded(false, [&] {
    std::vector<NewParts> added;
    for (DBDirEntry* it = directory.entries_; it != nullptr; it = it->next_) {
      if (it->parts_.size() > file) continue;
      added.push_back(
          {it, EmptyParts(directory.files_, it->parts_.size(), file + 1)});
    }
    Append(&added);
    return true;
  });
}

}  // namespace tabwerk

using tabwerk::DirectoryAccess;
using tabwerk::Guarded;
using tabwerk::TablePart;

int DBDirectory::AddEntry(DBDefinition* definition, char const* name,
                          zWString const& file_name, bool loaded, int row_count,
                          long row_block_offset, long /*reserved*/,
                          long string_block_offset, std::size_t part) {
  std::unique_ptr<DBDefinition> owned(definition);
  if (part != 0 || !tabwerk::FitsInt32(row_block_offset) ||
      !tabwerk::FitsInt32(string_block_offset)) {
    return 0;
  }
  return Guarded(0, [&] {
    auto entry = std::make_unique<DBDirEntry>();
    if (owned) entry->definition_ = std::move(owned);
    std::string_view const text(name == nullptr ? "" : name);
    bool const named = !text.empty() && text.size() < DBDirEntry::kNameSize;
    if (named) {
      text.copy(entry->name_, text.size());
      auto first = std::make_unique<TablePart>();
      first->file_name = file_name;
      first->row_count = row_count;
      first->row_block_offset = static_cast<std::int32_t>(row_block_offset);
      first->string_block_offset =
          static_cast<std::int32_t>(string_block_offset);
      first->loaded = loaded;
      entry->parts_.push_back(std::move(first));
    }
    // Kept: an entry that cannot be named stays in the list all the same.
    DirectoryAccess::LinkLast(*this, std::move(entry));
    return named ? 1 : 0;
  });
}

DBDirEntry* DBDirectory::FindTable(char const* name, DBDirEntry* start) const {
  if (name == nullptr) return nullptr;
  DBDirEntry* it = start;
  while (it != nullptr && std::strcmp(it->name_, name) != 0) it = it->next_;
  return it;
}

int DBDirectory::AdjustOffset(long delta, std::size_t part) {
  if (!tabwerk::FitsInt32(delta)) return 0;
  auto const step = static_cast<std::int32_t>(delta);
  for (DBDirEntry* it = entries_; it != nullptr; it = it->next_) {
    TablePart* const target = DirectoryAccess::Part(*it, part);
    if (target == nullptr) continue;
    bool const rows_fit = tabwerk::Add(&target->row_block_offset, step);
    bool const strings_fit = tabwerk::Add(&target->string_block_offset, step);
    if (rows_fit && strings_fit) continue;
    target->damaged = true;  // and so without rows
    ++target->revision;
  }
  current_table_ = nullptr;
  return 1;
}

void DBDirectory::ResetEntries() {
  current_table_ = nullptr;
  entries_ = nullptr;
  entries_owner_.reset();
}

bool DBDirectory::Merge(DBDirEntry* existing, DBDirEntry* incoming) {
  return Guarded(false, [&] {
    tabwerk::EntriesByName const by_name(incoming);
    std::vector<tabwerk::NewParts> added;
    for (DBDirEntry* it = existing; it != nullptr; it = it->next_) {
      DBDirEntry* const source = by_name.Find(it->name_);
      if (source == nullptr || source->parts_.empty()) continue;
      tabwerk::PartList copy;
      copy.push_back(tabwerk::CopyPart(*source->parts_.front()));
      if (!copy.back()) return false;
      added.push_back({it, std::move(copy)});
    }
    tabwerk::Append(&added);
    return true;
  });
}
