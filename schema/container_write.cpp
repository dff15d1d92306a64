// Writing the header and the directory of a database file.
#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "platform/guarded.h"
#include "platform/platform.h"
#include "schema/container.h"
#include "schema/directory_access.h"
#include "schema/layout.h"

namespace tabwerk {
namespace {

// Collects bytes and hands them to a stream in large pieces.
class StreamWriter {
 public:
  explicit StreamWriter(FILE* stream) : stream_(stream) {}

  // False once the stream took less than it was given.
  [[nodiscard]] bool Put(std::string_view text) {
    buffer_.append(text);
    return buffer_.size() < kPieceSize || Finish();
  }

  template <typename Number>
  [[nodiscard]] bool PutNumber(Number value) {
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    return Put({bytes, sizeof value});
  }

  [[nodiscard]] bool Finish() {
    bool const done = platform::Write(stream_, buffer_.data(),
                                      buffer_.size()) == buffer_.size();
    buffer_.clear();
    return done;
  }

 private:
  static constexpr std::size_t kPieceSize = 65536;

  FILE* stream_;
  std::string buffer_;
};

constexpr std::string_view kNul("\0", 1);

bool PutHeader(StreamWriter* writer, std::int64_t time_stamp) {
  return writer->Put(format::kVersionTag) &&
         writer->Put(format::kCurrentVersion) &&
         writer->Put(format::kTimeTag) && writer->PutNumber(time_stamp);
}

bool PutRecord(StreamWriter* writer, DBDirEntry const& entry,
               TablePart const& part) {
  std::string text;
  if (!StoredText(*entry.GetDefinition(), &text)) return false;
  // Rows without bytes could not be told from a wrong count when the file is
  // read again.
  if (part.row_count > 0 && entry.GetDefinition()->GetMemorySize() == 0) {
    return false;
  }
  constexpr std::int32_t kReserved = 0;
  return writer->Put(format::kRecordStart) && writer->Put(entry.GetName()) &&
         writer->Put(kNul) && writer->Put(text) && writer->Put(kNul) &&
         writer->PutNumber(part.row_count) && writer->PutNumber(kReserved) &&
         writer->PutNumber(part.row_block_size) &&
         writer->PutNumber(part.row_block_offset) &&
         writer->PutNumber(part.string_block_offset) &&
         writer->PutNumber(part.string_block_size) &&
         writer->Put(format::kRecordEnd);
}

}  // namespace

bool StoredText(DBDefinition const& definition, std::string* text) {
  // One byte more: the size that is passed does not count the NUL.
  std::vector<char> buffer(format::kMaxDefinition + 1);
  if (definition.GenerateString(
          buffer.data(), static_cast<long>(format::kMaxDefinition)) == 0) {
    return false;
  }
  text->assign(buffer.data());
  if (text->size() >= format::kMaxDefinition) return false;
  return SameLayout(definition, DBDefinition(text->c_str()));
}

bool DirectoryAccess::WriteContainer(DBDirectory& directory, FILE* stream,
                                     std::size_t file,
                                     std::int64_t time_stamp) {
  directory.current_table_ = nullptr;
  return Guarded(false, [&] {
    StreamWriter writer(stream);
    if (!platform::Seek(stream, 0, platform::Origin::kStart) ||
        !PutHeader(&writer, time_stamp)) {
      return false;
    }
    for (DBDirEntry* it = directory.entries_; it != nullptr; it = it->next_) {
      TablePart const* part = Part(*it, file);
      if (part == nullptr || it->name_[0] == '\0' ||
          !PutRecord(&writer, *it, *part)) {
        return false;
      }
    }
    return writer.Put(kNul) && writer.Finish();
  });
}

std::int64_t DirectoryAccess::NextTimeStamp(DBDirectory const& directory,
                                            std::size_t file) {
  std::int64_t const now = platform::Now();
  if (file >= directory.files_.size()) return now;
  FileRecord const& record = directory.files_[file];
  std::int64_t const last =
      std::max(record.time_stamp, record.replaced_time_stamp);
  // Behind the greatest number there is only one that differs.
  if (last == std::numeric_limits<std::int64_t>::max()) return now;
  return std::max(now, last + 1);
}

}  // namespace tabwerk

int DBDirectory::WriteToFile(FILE* stream, std::size_t file) {
  using tabwerk::DirectoryAccess;
  if (stream == nullptr) return 0;
  std::int64_t const stamp = DirectoryAccess::NextTimeStamp(*this, file);
  return DirectoryAccess::WriteContainer(*this, stream, file, stamp) ? 1 : 0;
}
