// Reading the header and the directory of a database file.
#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>

#include "platform/platform.h"
#include "schema/bytes.h"
#include "schema/container.h"
#include "schema/corrupt.h"
#include "schema/stream_reader.h"

namespace tabwerk {
namespace {

constexpr std::int64_t kVersionedHeaderSize = static_cast<std::int64_t>(
    format::kVersionTag.size() + format::kCurrentVersion.size());

// The first bytes of a text as a decimal number: white space, sign, digits;
// everything from the first other character on is ignored.
short DecimalPrefix(std::string_view text) noexcept {
  std::size_t at = std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size());
  bool const negative = at < text.size() && text[at] == '-';
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;
  int value = 0;
  for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
    value = value * 10 + (text[at] - '0');
  }
  return static_cast<short>(negative ? -value : value);
}

// Reads up to and including a NUL, at most limit bytes; the text without it.
// A text that fills the limit is cut there and goes on in what follows.
std::string ReadText(StreamReader* reader, std::size_t limit) {
  std::string text;
  char byte = '\0';
  for (std::size_t i = 0; i < limit; ++i) {
    if (!reader->ReadByte(&byte) || byte == '\0') break;
    text.push_back(byte);
  }
  return text;
}

bool ReadTag(StreamReader* reader, std::string_view tag) {
  std::array<char, 3> bytes{};
  return reader->Read(bytes.data(), bytes.size()) == bytes.size() &&
         std::string_view(bytes.data(), bytes.size()) == tag;
}

// The six numbers of a record.
bool ReadNumbers(StreamReader* reader, TablePart* part) {
  std::array<std::byte, 6 * sizeof(std::int32_t)> bytes{};
  if (reader->Read(bytes.data(), bytes.size()) != bytes.size()) return false;
  auto const number = [&bytes](std::size_t index) {
    return LoadValue<std::int32_t>(bytes.data() + index * sizeof(std::int32_t));
  };
  part->row_count = number(0);
  part->file_rows = part->row_count;
  part->row_block_size = number(2);
  part->row_block_offset = number(3);
  part->string_block_offset = number(4);
  part->string_block_size = number(5);
  return true;
}

bool ReadRecord(StreamReader* reader, DirectoryRecord* record) {
  if (!ReadTag(reader, format::kRecordStart)) {
    return Corrupt("start of a directory record");
  }
  std::string const name = ReadText(reader, format::kMaxTableName);
  name.copy(record->name.data(), record->name.size() - 1);
  record->definition = std::make_unique<DBDefinition>();
  std::string const text = ReadText(reader, format::kMaxDefinition);
  if (record->definition->GenerateDefinition(text.c_str()) == 0) {
    return false;  // no memory
  }
  record->part = std::make_unique<TablePart>();
  if (!ReadNumbers(reader, record->part.get())) {
    return Corrupt("numbers of a directory record");
  }
  if (!ReadTag(reader, format::kRecordEnd)) {
    return Corrupt("end of a directory record");
  }
  return true;
}

// A block of a file.
struct Extent {
  std::int64_t offset;  // bytes from the data start
  std::int64_t size;    // bytes
};

// True when the block lies in the file and is reached by a 32-bit offset.
bool LiesInFile(Extent block, std::int64_t data_start, std::int64_t file_size) {
  constexpr std::int64_t kMaxOffset = std::numeric_limits<std::int32_t>::max();
  return data_start + block.offset <= kMaxOffset &&
         data_start + block.offset + block.size <= file_size;
}

// True when the numbers can be those of a written table.  The signs count as
// they are stored: the data start must not make a negative offset sound.
bool SoundNumbers(TablePart const& part, std::int64_t record_size) {
  if (part.row_count < 0 || part.row_block_size < 0 ||
      part.row_block_offset < 0 || part.string_block_offset < 0 ||
      part.string_block_size < 0) {
    return false;
  }
  if (part.row_count > 0 && record_size == 0) return false;
  return part.row_count * record_size <= part.row_block_size;
}

}  // namespace

short CharFactor(short version) noexcept {
  return version == format::kHeaderlessVersion ? 2 : 1;
}

bool ReadHeader(FILE* stream, FileHeader* header) {
  using platform::Origin;
  *header = FileHeader();
  if (!platform::Seek(stream, 0, Origin::kStart)) return false;
  std::array<char, 4> bytes{};
  auto const read = [stream, &bytes](std::size_t size) {
    return std::string_view(bytes.data(),
                            platform::Read(stream, bytes.data(), size));
  };
  if (read(format::kVersionTag.size()) == format::kRecordStart) {
    header->version = format::kHeaderlessVersion;
    return platform::Seek(stream, 0, Origin::kStart);
  }
  // Kept: whatever stands in place of the tag is skipped.
  header->version = DecimalPrefix(read(format::kCurrentVersion.size()));
  if (header->version >= format::kFirstTimedVersion) {
    if (read(format::kTimeTag.size()).starts_with(format::kRecordStart)) {
      return platform::Seek(stream, kVersionedHeaderSize, Origin::kStart);
    }
    std::array<std::byte, sizeof(std::int64_t)> stamp{};
    if (platform::Read(stream, stamp.data(), stamp.size()) == stamp.size()) {
      header->time_stamp = LoadValue<std::int64_t>(stamp.data());
    }
  }
  return !platform::Failed(stream);
}

bool ReadRecords(FILE* stream, zWString const& file_name,
                 FileDirectory* directory) {
  std::int64_t const start = platform::Tell(stream);
  if (start < 0) return false;
  StreamReader reader(stream);
  char byte = '\0';
  while (reader.Peek(&byte) && byte != '\0') {
    DirectoryRecord record;
    if (!ReadRecord(&reader, &record)) return false;
    record.part->file_name = file_name;
    directory->records.push_back(std::move(record));
  }
  // A failed read is not the end of the file: tables would be missing.
  if (platform::Failed(stream)) return false;
  static_cast<void>(reader.ReadByte(&byte));  // the NUL, where there is one
  directory->data_start = start + reader.consumed_bytes();
  if (directory->data_start > std::numeric_limits<std::int32_t>::max()) {
    return Corrupt("length of the directory");
  }
  return platform::Seek(stream, directory->data_start,
                        platform::Origin::kStart);
}

void MarkDamagedParts(FileDirectory* directory, short char_factor,
                      std::int64_t file_size) {
  // Blocks that lie over each other must not let a small file ask for any
  // amount of memory.  But one table whose sizes are wrong can claim all bytes
  // for its rows and again for its texts, and the others are to stay usable.
  std::int64_t const most_claimed = 3 * file_size;
  std::int64_t const start = directory->data_start;
  std::int64_t claimed = 0;
  for (DirectoryRecord& record : directory->records) {
    TablePart& part = *record.part;
    constexpr std::int64_t kUnitSize = sizeof(char16_t);
    Extent const rows{part.row_block_offset, part.row_block_size};
    Extent const strings{part.string_block_offset,
                         part.string_block_size / char_factor * kUnitSize};
    part.damaged = !SoundNumbers(part, record.definition->GetMemorySize()) ||
                   !LiesInFile(rows, start, file_size) ||
                   !LiesInFile(strings, start, file_size) ||
                   claimed + rows.size + strings.size > most_claimed;
    if (part.damaged) {
      static_cast<void>(Corrupt("numbers of a table"));
    } else {
      claimed += rows.size + strings.size;
    }
  }
}

}  // namespace tabwerk

bool DBDirectory::ReadFileVersion(FILE* stream, short& version,
                                  long long& time_stamp) {
  version = 0;
  time_stamp = 0;
  if (stream == nullptr) return false;
  tabwerk::FileHeader header;
  // Whoever goes on reading finds out that the stream failed.
  static_cast<void>(tabwerk::ReadHeader(stream, &header));
  version = header.version;
  time_stamp = header.time_stamp;
  return true;
}
