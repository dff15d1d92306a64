#include "cli/database_file.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>
#include <system_error>

#include "DBDirectory.h"
#include "cli/files.h"
#include "cli/table_list.h"
#include "schema/container.h"
#include "schema/format.h"

namespace tabwerk::tool {
namespace {

std::string ColumnsOf(DBDefinition const& definition) {
  std::string columns;
  for (DBFeld const* field : FieldsOf(definition)) {
    if (!columns.empty()) columns += ", ";
    columns += NameToUtf8(field->name) + " " + TypeName(field->type);
  }
  return columns;
}

bool StartsAsDatabase(std::FILE* stream) {
  std::array<char, format::kVersionTag.size()> tag{};
  std::rewind(stream);
  if (std::fread(tag.data(), 1, tag.size(), stream) != tag.size()) return false;
  std::string_view const found(tag.data(), tag.size());
  return found == format::kVersionTag || found == format::kRecordStart;
}

// Reads header and records from an open stream.
void ReadContainer(std::FILE* stream, DatabaseFile* file) {
  file->has_known_start = StartsAsDatabase(stream);
  FileHeader header;
  file->has_damaged_list = !ReadHeader(stream, &header);
  file->version = header.version;
  file->time_stamp = header.time_stamp;
  file->header_bytes = std::ftell(stream);
  FileDirectory directory;
  if (file->has_damaged_list || !ReadRecords(stream, zWString(), &directory)) {
    file->has_damaged_list = true;
    return;
  }
  MarkDamagedParts(&directory, CharFactor(header.version), file->size_bytes);
  for (DirectoryRecord const& record : directory.records) {
    file->tables.push_back({NameToUtf8(record.name.data()),
                            ColumnsOf(*record.definition),
                            record.part->row_count, record.part->damaged});
  }
}

}  // namespace

bool DatabaseFile::IsDamaged() const {
  return has_damaged_list || (size_bytes > 0 && !has_known_start) ||
         std::any_of(tables.begin(), tables.end(),
                     [](TableSummary const& it) { return it.damaged; });
}

std::int64_t DatabaseFile::RowCount() const {
  std::int64_t count = 0;
  for (TableSummary const& table : tables) {
    if (!table.damaged) count += table.row_count;
  }
  return count;
}

std::optional<Problem> ReadDatabaseFile(std::string const& path,
                                        DatabaseFile* file) {
  *file = DatabaseFile();
  file->path = path;
  DBDirectory directory;
  directory.Initialize(zWString(), {zWString::fromUtf8(path)});
  // What it says of the tables is not needed: a damaged file, and one without
  // tables, leave their stream all the same.
  static_cast<void>(directory.OpenDBdatei(0, false, false));
  std::FILE* const stream = directory.GetFile(0);
  std::error_code error;
  auto const size = std::filesystem::file_size(ToPath(path), error);
  if (stream == nullptr || error) return WhyNotOpened(path, Access::kRead);
  file->size_bytes = static_cast<std::int64_t>(size);
  ReadContainer(stream, file);
  return std::nullopt;
}

bool IsUserFile(std::string const& path) {
  return path.ends_with(format::kUserFileExtension);
}

}  // namespace tabwerk::tool
