// What a directory keeps of one file of a database and of the part of a table
// that lies in it.
#ifndef TABWERK_SCHEMA_PART_H
#define TABWERK_SCHEMA_PART_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <utility>

#include "platform/block.h"
#include "schema/string_memory.h"
#include "ztypes.h"

namespace tabwerk {

// An open stream that copies of a directory share.  Closes itself, once.
class SharedStream {
 public:
  explicit SharedStream(FILE* stream) noexcept : stream_(stream) {}
  SharedStream(SharedStream const&) = delete;
  SharedStream& operator=(SharedStream const&) = delete;
  ~SharedStream() { Close(); }

  FILE* get() const noexcept { return stream_; }
  void Close() noexcept;
  // Closes the stream and takes another one, which may be null.
  void Adopt(FILE* stream) noexcept;
  // Gives the stream up without closing it.
  void Release() noexcept { stream_ = nullptr; }

 private:
  FILE* stream_;
};

// One database file.
struct FileRecord {
  zWString name;  // path
  bool open = false;
  bool create = false;          // the last opening was for creating
  bool write = false;           // the last opening was for writing
  std::int32_t data_start = 0;  // bytes
  std::int64_t time_stamp = 0;
  // Of the file that an opening for creation emptied; 0 when it had none.
  std::int64_t replaced_time_stamp = 0;
  // Divisor of this file's stored string block sizes: 2 for format 2014,
  // else 1.
  short char_factor = 1;
  std::shared_ptr<SharedStream> stream;
};

// The part of a table that lies in one database file: numbers from the file's
// directory, and rows and texts once they are loaded.
struct TablePart {
  zWString file_name;
  std::int32_t reserved = 0;             // copied along
  std::int32_t row_block_size = 0;       // bytes
  std::int32_t row_block_offset = 0;     // bytes from the start of the file
  std::int32_t string_block_offset = 0;  // bytes from the start of the file
  std::int32_t string_block_size = 0;    // as stored: units, or bytes for 2014
  std::int32_t row_count = 0;
  std::int32_t file_rows = 0;  // row_count as the file has it
  bool loaded = false;
  // The numbers above cannot be true of the file: nothing is read.
  bool damaged = false;
  // A host has the address of the rows and may change them at any time.
  bool lent = false;
  platform::Block rows;
  std::unique_ptr<DBStringMemory> strings = std::make_unique<DBStringMemory>();
  // Changes with every change of a row or text through any table, so that a
  // table can tell whether what it remembers still holds.
  std::uint64_t revision = 0;

  // Number of rows a table sees: 0 for a damaged part, never less.
  std::int32_t Rows() const noexcept {
    return damaged || row_count < 0 ? 0 : row_count;
  }
  // Replaces the row block by size bytes of any content, at most as many as fit
  // into 31 bits; false, and the old block, without memory.
  [[nodiscard]] bool ReplaceRows(std::size_t size) noexcept {
    platform::Block fresh;
    // An empty block has an address, too, so that null always means failure.
    if (!fresh.ResetUnset(size == 0 ? 1 : size) || !fresh.Resize(size)) {
      return false;
    }
    rows = std::move(fresh);
    row_block_size = static_cast<std::int32_t>(size);
    lent = false;
    ++revision;
    return true;
  }
  // Start of a row's record of record_size bytes; null when it does not lie
  // wholly inside the row block.
  std::byte* Row(std::int32_t row, std::int32_t record_size) noexcept {
    auto const size = static_cast<std::size_t>(record_size);
    // As an unsigned number a negative row lies behind all others.
    std::size_t const position = static_cast<std::uint32_t>(row);
    if (static_cast<std::int64_t>(position) >= row_count ||
        (position + 1) * size > rows.size()) {
      return nullptr;
    }
    return rows.data() + position * size;
  }
};

// Deep copy, rows and texts included; null without memory.
std::unique_ptr<TablePart> CopyPart(TablePart const& part);

}  // namespace tabwerk

#endif  // TABWERK_SCHEMA_PART_H
