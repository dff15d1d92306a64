// Opening, closing and reading the files of a directory.
#include <memory>

#include "DBDirectory.h"
#include "platform/guarded.h"
#include "platform/platform.h"
#include "schema/container.h"
#include "schema/directory_access.h"
#include "schema/part.h"

namespace tabwerk {
namespace {

using platform::Mode;
using platform::Share;

struct Opening {
  Mode mode;
  Share share;
};

// How a file is opened by the flags of its record.  new_file is the mode for
// writing anew.
Opening OpeningFor(FileRecord const& file, Mode new_file) {
  if (file.write && file.create) return {new_file, Share::kDenyAll};
  if (file.write) return {Mode::kUpdate, Share::kDenyWriters};
  return {Mode::kRead, Share::kDenyNone};
}

// Opens a file's stream.  One that is open is closed first: its share mode
// would stand in the way.
bool OpenStream(FileRecord* file, Opening how) {
  auto shared = std::make_shared<SharedStream>(nullptr);
  if (file->stream) file->stream->Close();
  platform::Error error = platform::Error::kNone;
  shared->Adopt(platform::OpenFile(file->name, how.mode, how.share, &error));
  file->stream = std::move(shared);
  return file->stream->get() != nullptr;
}

// Time stamp of the file at that path; 0 when it has none or cannot be read.
std::int64_t ReadTimeStamp(zWString const& path) {
  platform::Error error = platform::Error::kNone;
  SharedStream const stream(
      platform::OpenFile(path, Mode::kRead, Share::kDenyNone, &error));
  short version = 0;
  long long time_stamp = 0;
  return DBDirectory::ReadFileVersion(stream.get(), version, time_stamp)
             ? time_stamp
             : 0;
}

}  // namespace

bool DirectoryAccess::OpenFile(DBDirectory& directory, std::size_t file,
                               bool write, bool create) {
  if (file >= directory.files_.size()) return false;
  FileRecord& record = directory.files_[file];
  record.create = create;
  record.write = write;
  record.open = false;
  if (write && create) {
    // A stream of this record may hold the file: its share mode would stand in
    // the way.
    if (record.stream) record.stream->Close();
    record.replaced_time_stamp = ReadTimeStamp(record.name);
  }
  if (!OpenStream(&record, OpeningFor(record, Mode::kCreate))) return false;
  if (!(write && create)) {
    if (!ReadContainer(directory, record.stream->get(), file)) return false;
    directory.AdjustOffset(record.data_start, file);
  }
  record.open = true;
  return true;
}

bool DirectoryAccess::ReadContainer(DBDirectory& directory, FILE* stream,
                                    std::size_t file) {
  if (stream == nullptr || file >= directory.files_.size()) return false;
  FileRecord& record = directory.files_[file];
  FileHeader header;
  if (!ReadHeader(stream, &header)) return false;
  directory.file_version_ = header.version;
  directory.char_factor_ = CharFactor(header.version);
  record.char_factor = directory.char_factor_;
  record.time_stamp = header.time_stamp;

  FileDirectory read;
  if (!ReadRecords(stream, record.name, &read)) return false;
  std::int64_t const size = platform::FileSize(stream);
  if (size < 0) return false;
  MarkDamagedParts(&read, record.char_factor, size);
  if (!JoinRecords(directory, &read.records, file)) return false;
  // A directory that was read is not longer than 31 bits can tell.
  record.data_start = static_cast<std::int32_t>(read.data_start);
  return true;
}

bool DirectoryAccess::OpenForReplacement(DBDirectory& directory,
                                         std::size_t file, bool* made) {
  *made = false;
  FileRecord& record = directory.files_[file];
  record.create = true;
  record.write = true;
  record.open = false;
  return Guarded(false, [&] {
    bool const was_there = platform::Exists(record.name);
    if (!OpenStream(&record, OpeningFor(record, Mode::kCreateKeep))) {
      return false;
    }
    FILE* const stream = record.stream->get();
    // Whoever is told that the file was made may remove it again: only an empty
    // one can have been made.
    *made = !was_there && platform::FileSize(stream) == 0;
    FileHeader header;
    if (!*made && ReadHeader(stream, &header)) {
      record.time_stamp = header.time_stamp;
    }
    record.open = true;
    return true;
  });
}

bool DirectoryAccess::ReopenStream(DBDirectory& directory, std::size_t file) {
  if (file >= directory.files_.size()) return false;
  FileRecord& record = directory.files_[file];
  return Guarded(false, [&record] {
    return OpenStream(&record, OpeningFor(record, Mode::kCreateKeep));
  });
}

}  // namespace tabwerk

bool DBDirectory::OpenDBdatei(std::size_t file, bool write, bool create) {
  return tabwerk::Guarded(false, [&] {
    return tabwerk::DirectoryAccess::OpenFile(*this, file, write, create);
  });
}

bool DBDirectory::CloseDBdatei() {
  for (tabwerk::FileRecord& file : files_) {
    if (file.stream) file.stream->Close();
  }
  return true;
}

bool DBDirectory::ReadFromFile(FILE* stream, int file) {
  if (file < 0) return false;
  return tabwerk::Guarded(false, [&] {
    return tabwerk::DirectoryAccess::ReadContainer(
        *this, stream, static_cast<std::size_t>(file));
  });
}
