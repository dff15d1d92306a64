// Reading and writing the row block and the string block of a part.
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

#include "DBDirectory.h"
#include "DBTabelle.h"
#include "platform/guarded.h"
#include "platform/platform.h"
#include "schema/bytes.h"
#include "schema/directory_access.h"
#include "schema/format.h"
#include "schema/part.h"
#include "table/sub_table.h"
#include "table/table_access.h"

namespace {

using tabwerk::DirectoryAccess;
using tabwerk::TablePart;
namespace format = tabwerk::format;
namespace platform = tabwerk::platform;

// True when size bytes from offset on lie inside the file; nothing lies
// everywhere.
bool LiesInFile(FILE* stream, std::int64_t offset, std::int64_t size) {
  if (offset < 0 || size < 0) return false;
  return size == 0 || offset + size <= platform::FileSize(stream);
}

bool ReadBlock(FILE* stream, std::int64_t offset, platform::Block* block) {
  if (block->size() == 0) return true;
  return platform::Seek(stream, offset, platform::Origin::kStart) &&
         platform::Read(stream, block->data(), block->size()) == block->size();
}

bool SeekTo(FILE* stream, long offset) {
  return offset >= 0 &&
         platform::Seek(stream, offset, platform::Origin::kStart);
}

// Sets *position to the stream's position; false when it is not known or does
// not fit.
bool TellPosition(FILE* stream, long* position) {
  std::int64_t const now = platform::Tell(stream);
  if (now < 0 || now > std::numeric_limits<long>::max()) return false;
  *position = static_cast<long>(now);
  return true;
}

constexpr std::size_t kNotFound = std::numeric_limits<std::size_t>::max();

// The first part whose file is that one.
std::size_t FindPart(std::vector<DBSubTable> const& sub_tables,
                     zWString const& file_name) {
  for (std::size_t i = 0; i < sub_tables.size(); ++i) {
    if (sub_tables[i].part->file_name == file_name) return i;
  }
  return kNotFound;
}

// Bytes that a part's rows take; -1 when they are not all in memory.
std::int64_t BytesOfRows(TablePart const& part,
                         DBDefinition const& definition) {
  if (part.damaged || part.row_count < 0) return -1;
  std::int64_t const bytes =
      std::int64_t{part.row_count} * definition.GetMemorySize();
  if (static_cast<std::uint64_t>(bytes) > part.rows.size()) return -1;
  return bytes;
}

// Ends the process as long as no exception is being handled.
[[noreturn]] void ThrowAgain() { throw; }

// Kept: a text that no reader could take ends the process, so that it never
// gets into a file.  noexcept makes sure of it: nothing on the way may catch
// the exception that a host may be handling while it calls.
[[noreturn]] void EndProcess() noexcept { ThrowAgain(); }

// Writes texts to a stream, many at a time.
class TextWriter {
 public:
  explicit TextWriter(FILE* stream) : stream_(stream) {}

  // Units taken so far: the place of the next text.
  std::int64_t units() const { return written_ + used_; }

  // Takes a text, with the NUL that follows it.
  bool Add(std::u16string_view text) {
    if (text.size() > format::kMaxTextUnits) EndProcess();
    auto const length = static_cast<std::int64_t>(text.size());
    if (used_ + length + 1 > kUnits && !Flush()) return false;
    char16_t* const place = buffer_.data() + used_;
    text.copy(place, text.size());
    place[text.size()] = 0;
    used_ += length + 1;
    return true;
  }

  bool Flush() {
    auto const bytes = static_cast<std::size_t>(used_) * sizeof(char16_t);
    if (platform::Write(stream_, buffer_.data(), bytes) != bytes) return false;
    written_ += used_;
    used_ = 0;
    return true;
  }

 private:
  static constexpr std::int64_t kUnits = 32768;
  static_assert(kUnits > static_cast<std::int64_t>(format::kMaxTextUnits));

  FILE* stream_;
  std::int64_t written_ = 0;
  std::int64_t used_ = 0;
  std::array<char16_t, kUnits> buffer_{};
};

// Writes the texts of one row and enters their new places into its record.
bool WriteTextsOfRow(TextWriter* writer, DBStringMemory const& strings,
                     DBDefinition const& definition, std::byte* record) {
  std::int64_t const record_size = definition.GetMemorySize();
  for (DBFeld const* field = definition.GetDefinition(); field != nullptr;
       field = field->next) {
    if (field->type != DBTypeString) continue;
    std::int64_t const offset = field->offset;
    if (offset < 0 || offset + format::kStringSize > record_size) return false;
    std::byte* const place = record + offset;
    auto const text = strings.Text(tabwerk::LoadValue<std::int32_t>(place));
    std::int64_t const index = writer->units();
    if (!text || index > std::numeric_limits<std::int32_t>::max()) return false;
    if (!writer->Add(*text)) return false;
    tabwerk::StoreValue(place, static_cast<std::int32_t>(index));
  }
  return true;
}

}  // namespace

bool DBTabelle::ReadTabelle(std::size_t fileIndex, DBDirectory* dir) {
  DBDirEntry* const entry =
      dir == nullptr ? nullptr : dir->GetAktuelleTabelle();
  TablePart const* const source =
      entry == nullptr ? nullptr : DirectoryAccess::Part(*entry, fileIndex);
  if (source == nullptr || fileIndex >= sub_tables_.size()) return false;
  DBSubTable& sub_table = sub_tables_[fileIndex];
  TablePart& part = *sub_table.part;
  std::int64_t const offset = source->row_block_offset;
  std::int32_t const size = source->row_block_size;
  sub_table.entry = entry;
  part.loaded = false;
  FILE* const stream = dir->GetFile(fileIndex);
  bool const sound = !source->damaged && size >= 0 &&
                     (stream == nullptr || LiesInFile(stream, offset, size));
  if (!sound) {
    // The numbers may be huge: nothing is allocated for them.
    part.rows.Clear();
    ++part.revision;
    return false;
  }
  auto const bytes = static_cast<std::size_t>(size);
  if (stream == nullptr) {
    static_cast<void>(SetMemory(bytes, fileIndex));
    return false;
  }
  if (!part.ReplaceRows(bytes)) return false;
  if (!ReadBlock(stream, offset, &part.rows)) {
    std::memset(part.rows.data(), 0, part.rows.size());
    return false;
  }
  part.loaded = true;
  return true;
}

bool DBTabelle::ReadStrings(std::size_t fileIndex, DBDirectory* dir) {
  FILE* const stream = dir == nullptr ? nullptr : dir->GetFile(fileIndex);
  if (stream == nullptr || fileIndex >= sub_tables_.size()) return false;
  TablePart& part = *sub_tables_[fileIndex].part;
  // The file's own divisor: the directory's is that of the file read last.
  auto const factor =
      std::int64_t{DirectoryAccess::Files(*dir)[fileIndex].char_factor};
  if (part.damaged || part.string_block_size < 0 || factor < 1) return false;
  std::int64_t const bytes =
      part.string_block_size / factor * std::int64_t{sizeof(char16_t)};
  std::int64_t const offset = part.string_block_offset;
  if (!LiesInFile(stream, offset, bytes)) return false;
  platform::Block units;
  if (!units.ResetUnset(static_cast<std::size_t>(bytes)) ||
      !ReadBlock(stream, offset, &units)) {
    return false;
  }
  part.strings->Adopt(std::move(units));
  ++part.revision;
  return true;
}

bool DBTabelle::WriteTabelle(FILE* f, long offset, long& end, bool /*user*/,
                             zWString const& fileName) {
  std::size_t const index = FindPart(sub_tables_, fileName);
  if (f == nullptr || index == kNotFound) return false;
  TablePart const& part = *sub_tables_[index].part;
  std::int64_t const bytes = BytesOfRows(part, *definition_);
  if (bytes < 0 || !SeekTo(f, offset)) return false;
  auto const size = static_cast<std::size_t>(bytes);
  if (size > 0 && platform::Write(f, part.rows.data(), size) != size) {
    return false;
  }
  return TellPosition(f, &end);
}

bool DBTabelle::WriteStrings(FILE* f, long offset, long& end, bool /*user*/,
                             zWString const& fileName) {
  std::size_t const index = FindPart(sub_tables_, fileName);
  if (f == nullptr || index == kNotFound || !SeekTo(f, offset)) return false;
  TablePart& part = *sub_tables_[index].part;
  platform::Block rows;
  if (!tabwerk::TableAccess::WriteTexts(*this, index, f, &rows) ||
      !TellPosition(f, &end)) {
    return false;
  }
  if (rows.size() > 0) {
    std::memcpy(part.rows.data(), rows.data(), rows.size());
    ++part.revision;
  }
  return true;
}

bool tabwerk::TableAccess::WriteTexts(DBTabelle& table, std::size_t part,
                                      FILE* stream, platform::Block* rows) {
  if (part >= table.sub_tables_.size()) return false;
  TablePart const& source = *table.sub_tables_[part].part;
  DBDefinition const& definition = *table.definition_;
  std::int64_t const bytes = BytesOfRows(source, definition);
  if (bytes < 0 || !rows->ResetUnset(static_cast<std::size_t>(bytes)))
    return false;
  if (bytes == 0) return true;
  std::memcpy(rows->data(), source.rows.data(), rows->size());
  auto const record_size = static_cast<std::size_t>(definition.GetMemorySize());
  TextWriter writer(stream);
  for (std::size_t at = 0; at < rows->size(); at += record_size) {
    if (!WriteTextsOfRow(&writer, *source.strings, definition,
                         rows->data() + at)) {
      return false;
    }
  }
  return writer.Flush();
}
