#include "tests/support/container_bytes.h"

namespace tabwerk::test {
namespace {

std::string LittleEndian(std::uint64_t value, int size) {
  std::string bytes;
  for (int i = 0; i < size; ++i) {
    bytes.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
  }
  return bytes;
}

}  // namespace

std::string Le32(std::int32_t value) {
  return LittleEndian(static_cast<std::uint32_t>(value), 4);
}

std::string Le64(std::int64_t value) {
  return LittleEndian(static_cast<std::uint64_t>(value), 8);
}

std::string Utf16(std::string_view text) {
  std::string bytes;
  for (char unit : text) {
    bytes.push_back(unit == '^' ? '\0' : unit);
    bytes.push_back('\0');
  }
  return bytes;
}

std::string Section(std::string_view tag,
                    std::vector<std::int32_t> const& numbers) {
  std::string bytes(tag);
  for (std::int32_t const number : numbers) bytes += Le32(number);
  return bytes;
}

std::string Record(RecordBytes const& record) {
  return record.start + record.name + kNul + record.definition + kNul +
         Le32(record.row_count) + Le32(0) + Le32(record.row_size) +
         Le32(record.row_offset) + Le32(record.string_offset) +
         Le32(record.string_size) + record.end;
}

std::string CurrentHeader(std::int64_t time_stamp) {
  return "ver2025time" + Le64(time_stamp);
}

std::string FileWith(std::vector<TableRows> const& tables,
                     std::int64_t time_stamp) {
  std::string directory = CurrentHeader(time_stamp);
  std::string data;
  for (TableRows const& table : tables) {
    auto const place = static_cast<std::int32_t>(data.size());
    RecordBytes record;
    record.name = table.name;
    record.definition = table.definition;
    record.row_count = table.row_count;
    record.row_size = 4 * table.row_count;
    record.row_offset = place;
    record.string_offset = place;
    directory += Record(record);
    for (std::int32_t id = 1; id <= table.row_count; ++id) data += Le32(id);
  }
  return directory + std::string(1, '\0') + data;
}

}  // namespace tabwerk::test
