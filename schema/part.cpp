#include "schema/part.h"

#include <cstring>

#include "platform/guarded.h"
#include "platform/platform.h"

namespace tabwerk {
namespace {

// Numbers and flags, without the blocks.  May throw std::bad_alloc.
void CopyNumbers(TablePart const& from, TablePart* to) {
  to->file_name = from.file_name;
  to->reserved = from.reserved;
  to->row_block_size = from.row_block_size;
  to->row_block_offset = from.row_block_offset;
  to->string_block_offset = from.string_block_offset;
  to->string_block_size = from.string_block_size;
  to->row_count = from.row_count;
  to->file_rows = from.file_rows;
  to->loaded = from.loaded;
  to->damaged = from.damaged;
  to->revision = from.revision;
}

}  // namespace

void SharedStream::Close() noexcept {
  if (stream_ == nullptr) return;
  // Whoever writes through the stream flushes it first and looks at the result;
  // here is nobody left to tell.
  static_cast<void>(platform::Close(stream_));
  stream_ = nullptr;
}

void SharedStream::Adopt(FILE* stream) noexcept {
  Close();
  stream_ = stream;
}

std::unique_ptr<TablePart> CopyPart(TablePart const& part) {
  return Guarded(std::unique_ptr<TablePart>(), [&part] {
    auto copy = std::make_unique<TablePart>();
    CopyNumbers(part, copy.get());
    if (part.rows.size() != 0) {
      if (!copy->rows.ResetUnset(part.rows.size())) copy.reset();
      if (copy) {
        std::memcpy(copy->rows.data(), part.rows.data(), part.rows.size());
      }
    }
    if (copy && !copy->strings->CopyFrom(*part.strings)) copy.reset();
    return copy;
  });
}

}  // namespace tabwerk
