#include "cli/file_image.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <string_view>
#include <system_error>

#include "DBDirectory.h"
#include "cli/files.h"
#include "schema/bytes.h"
#include "schema/format.h"

namespace tabwerk::tool {
namespace {

constexpr std::size_t kNumbers = 6;

// Walks the list of tables in the bytes that are there.
class ListWalk {
 public:
  ListWalk(FileImage& image, std::size_t start) : image_(image), at_(start) {}

  // Notes records, the place behind them and the first fault.
  void Run() {
    image_.records.clear();
    image_.fault = ListFault::kNone;
    image_.has_list_end = false;
    while (at_ < image_.bytes.size() && image_.bytes[at_] != '\0') {
      if (!Record()) return;
    }
    image_.has_list_end = at_ < image_.bytes.size();
    if (image_.has_list_end) ++at_;
    image_.data_start = static_cast<std::int64_t>(at_);
    if (image_.data_start > std::numeric_limits<std::int32_t>::max()) {
      Fault(ListFault::kTooLong, at_);
    }
  }

 private:
  bool Fault(ListFault fault, std::size_t at) {
    image_.fault = fault;
    image_.fault_at = static_cast<std::int64_t>(at);
    return false;
  }

  bool Has(std::size_t size) const { return image_.bytes.size() - at_ >= size; }

  bool Tag(std::string_view tag, ListFault fault) {
    if (!Has(tag.size())) return Fault(ListFault::kCut, image_.bytes.size());
    if (image_.bytes.compare(at_, tag.size(), tag) != 0) {
      return Fault(fault, at_);
    }
    at_ += tag.size();
    return true;
  }

  // A text of at most limit bytes, the NUL included.
  std::string Text(std::size_t limit, bool* is_cut) {
    std::string_view const room =
        std::string_view(image_.bytes).substr(at_, limit);
    std::size_t const end = room.find('\0');
    *is_cut = end == std::string_view::npos;
    at_ += *is_cut ? room.size() : end + 1;
    return std::string(room.substr(0, end));
  }

  bool Record() {
    RecordImage record;
    record.start_at = Now();
    if (!Tag(format::kRecordStart, ListFault::kRecordStart)) return false;
    record.name_at = Now();
    std::string const name = Text(format::kMaxTableName, &record.name_is_cut);
    record.name = NameToUtf8(name.substr(0, format::kMaxTableName - 1).c_str());
    record.definition_at = Now();
    std::string const text =
        Text(format::kMaxDefinition, &record.definition_is_cut);
    record.definition.GenerateDefinition(text.c_str());
    record.numbers_at = Now();
    if (!Numbers(&record)) return false;
    record.end_at = Now();
    if (!Tag(format::kRecordEnd, ListFault::kRecordEnd)) return false;
    image_.records.push_back(std::move(record));
    return true;
  }

  bool Numbers(RecordImage* record) {
    constexpr std::size_t kSize = sizeof(std::int32_t);
    if (!Has(kNumbers * kSize)) {
      return Fault(ListFault::kCut, image_.bytes.size());
    }
    for (std::int32_t* const number :
         {&record->row_count, &record->reserved, &record->row_size,
          &record->row_offset, &record->string_offset, &record->string_size}) {
      *number = LoadValue<std::int32_t>(
          reinterpret_cast<std::byte const*>(image_.bytes.data() + at_));
      at_ += kSize;
    }
    return true;
  }

  std::int64_t Now() const { return static_cast<std::int64_t>(at_); }

  FileImage& image_;
  std::size_t at_;
};

// Adds up to size bytes from the stream's position on; false when there were
// none.
bool Append(std::FILE* stream, std::int64_t size, std::string* bytes) {
  std::size_t const before = bytes->size();
  bytes->resize(before + static_cast<std::size_t>(size));
  std::size_t const read = std::fread(bytes->data() + before, 1,
                                      static_cast<std::size_t>(size), stream);
  bytes->resize(before + read);
  return read > 0;
}

void ReadHeaderOf(std::FILE* stream, FileImage* image) {
  static_cast<void>(ReadHeader(stream, &image->header));
  image->header_bytes = std::ftell(stream);
  std::string_view const bytes(image->bytes);
  bool const has_header = bytes.starts_with(format::kVersionTag);
  image->has_known_start =
      has_header || bytes.starts_with(format::kRecordStart);
  std::size_t const version_end =
      format::kVersionTag.size() + format::kCurrentVersion.size();
  bool const is_timed = image->header.version >= format::kFirstTimedVersion &&
                        !bytes.substr(std::min(version_end, bytes.size()))
                             .starts_with(format::kRecordStart);
  image->header_is_cut =
      has_header &&
      bytes.size() < (is_timed ? format::kHeaderSize : version_end);
}

// Takes the library's word for which tables it loads.
void TakeVerdict(std::FILE* stream, FileImage* image) {
  FileHeader header;
  FileDirectory directory;
  if (!ReadHeader(stream, &header) ||
      !ReadRecords(stream, zWString(), &directory)) {
    return;
  }
  short const factor = CharFactor(header.version);
  MarkDamagedParts(&directory, factor, image->size_bytes);
  std::size_t const count =
      std::min(directory.records.size(), image->records.size());
  for (std::size_t i = 0; i < count; ++i) {
    image->records[i].damaged = directory.records[i].part->damaged;
  }
}

// Reads the bytes and walks the list in them.
void ReadBytes(std::FILE* stream, bool all, FileImage* image) {
  constexpr std::int64_t kFirstBytes = 1 << 16;
  std::int64_t wanted = all ? image->size_bytes : kFirstBytes;
  for (;;) {
    if (std::fseek(stream, static_cast<long>(image->bytes.size()), SEEK_SET) !=
        0) {
      return;
    }
    bool const grew = Append(stream, wanted, &image->bytes);
    ReadHeaderOf(stream, image);
    ListWalk(*image, static_cast<std::size_t>(image->header_bytes)).Run();
    bool const is_whole = image->HasWholeList() && image->has_list_end;
    if (all || is_whole || !grew) break;
    wanted = static_cast<std::int64_t>(image->bytes.size());
  }
  // Nothing is looked for behind what was read.
  if (all) image->size_bytes = static_cast<std::int64_t>(image->bytes.size());
}

void FindBlocks(FileImage* image) {
  constexpr std::int64_t kUnitSize = sizeof(char16_t);
  short const factor = CharFactor(image->header.version);
  for (RecordImage& record : image->records) {
    record.rows = {image->data_start + record.row_offset, record.row_size};
    record.strings = {image->data_start + record.string_offset,
                      record.string_size / factor * kUnitSize};
  }
}

}  // namespace

RecordImage const* FileImage::Find(std::string const& name) const {
  auto const found = places.find(name);
  return found == places.end() ? nullptr : &records[found->second];
}

std::optional<Problem> ReadFileImage(std::string const& path, bool all,
                                     FileImage* image) {
  *image = FileImage();
  image->path = path;
  DBDirectory directory;
  directory.Initialize(zWString(), {zWString::fromUtf8(path)});
  // What it says of the tables is not needed: a damaged file, and one without
  // tables, leave their stream all the same.
  static_cast<void>(directory.OpenDBdatei(0, false, false));
  std::FILE* const stream = directory.GetFile(0);
  std::error_code error;
  auto const size = std::filesystem::file_size(ToPath(path), error);
  if (stream == nullptr || error) return WhyNotOpened(path, Access::kRead);
  image->size_bytes = static_cast<std::int64_t>(size);
  ReadBytes(stream, all, image);
  FindBlocks(image);
  for (std::size_t i = 0; i < image->records.size(); ++i) {
    image->places[image->records[i].name] = i;
  }
  TakeVerdict(stream, image);
  return std::nullopt;
}

}  // namespace tabwerk::tool
