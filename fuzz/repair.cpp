#include "fuzz/repair.h"

#include <algorithm>
#include <optional>
#include <random>
#include <string_view>

#include "DBDefinition.h"
#include "tests/support/container_bytes.h"

#ifdef TABWERK_FUZZ
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size,
                                        std::size_t max_size);
#endif

namespace tabwerk::fuzz {
namespace {

using test::Le32;
using test::Le64;

constexpr std::string_view kPairMarker = "\n=== user file ===\n";
constexpr std::size_t kMostRecords = 8;
constexpr std::size_t kMostName = 63;
constexpr std::size_t kMostDefinition = 2000;
constexpr std::int32_t kMostRows = 40;

// Takes bytes from the front of what is left; zero bytes behind the end.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : rest_(bytes) {}

  bool AtEnd() const { return rest_.empty(); }
  std::string_view rest() const { return rest_; }
  bool Skip(std::string_view tag) {
    if (!rest_.starts_with(tag)) return false;
    rest_.remove_prefix(tag.size());
    return true;
  }
  Bytes Take(std::size_t size) {
    Bytes taken(rest_.substr(0, size));
    rest_.remove_prefix(taken.size());
    taken.resize(size, '\0');
    return taken;
  }
  std::int32_t TakeInt32() {
    Bytes const bytes = Take(4);
    std::uint32_t value = 0;
    for (std::size_t i = 4; i-- > 0;) {
      value = value << 8U | static_cast<unsigned char>(bytes[i]);
    }
    return static_cast<std::int32_t>(value);
  }
  // Up to a NUL, which is used up, or that many bytes.
  Bytes TakeText(std::size_t most) {
    Bytes text(rest_.substr(0, std::min(rest_.find('\0'), rest_.size())));
    rest_.remove_prefix(std::min(text.size() + 1, rest_.size()));
    text.resize(std::min(text.size(), most));
    return text;
  }

 private:
  std::string_view rest_;
};

// From 0 to limit, whatever value is.
std::int32_t Within(std::int64_t value, std::int64_t limit) {
  if (value >= 0 && value <= limit) return static_cast<std::int32_t>(value);
  return static_cast<std::int32_t>((value & 0x7FFFFFFF) % (limit + 1));
}

struct File {
  Bytes header;
  std::int64_t unit_size = 1;  // what sizes of string blocks count, in bytes
  std::vector<test::RecordBytes> records;
  Bytes data;
};

void TakeHeader(Reader* reader, File* file) {
  if (reader->rest().starts_with("anf")) return;
  reader->Take(3);
  file->header = "ver";
  for (char const digit : reader->Take(4)) {
    file->header += digit >= '0' && digit <= '9' ? digit : '2';
  }
  if (!file->header.ends_with("2014")) file->unit_size = 2;
  if (reader->rest().starts_with("anf")) return;
  file->header += reader->Take(12);
}

File Take(Bytes const& bytes) {
  File file;
  Reader reader(bytes);
  TakeHeader(&reader, &file);
  while (reader.Skip("anf") && file.records.size() < kMostRecords) {
    test::RecordBytes record;
    record.name = reader.TakeText(kMostName);
    record.definition = reader.TakeText(kMostDefinition);
    record.row_count = reader.TakeInt32();
    reader.TakeInt32();
    record.row_size = reader.TakeInt32();
    record.row_offset = reader.TakeInt32();
    record.string_offset = reader.TakeInt32();
    record.string_size = reader.TakeInt32();
    reader.Take(3);
    if (record.name.empty()) record.name = "T";
    file.records.push_back(record);
  }
  reader.Skip(std::string_view("\0", 1));
  file.data = Bytes(reader.rest());
  return file;
}

void RepairNumbers(test::RecordBytes* record, File const& file) {
  auto const size = static_cast<std::int64_t>(file.data.size());
  std::int64_t const row =
      DBDefinition(record->definition.c_str()).GetMemorySize();
  record->row_offset = Within(record->row_offset, size);
  std::int64_t const room = size - record->row_offset;
  record->row_count =
      Within(record->row_count, row == 0 ? kMostRows : room / row);
  record->row_size = static_cast<std::int32_t>(record->row_count * row);
  record->string_offset = Within(record->string_offset, size);
  record->string_size = Within(record->string_size,
                               (size - record->string_offset) / file.unit_size);
}

// One number of one record that cannot be true.
void Spoil(File* file, std::uint32_t choice) {
  if (file->records.empty()) return;
  auto& record = file->records[choice / 64 % file->records.size()];
  std::int32_t* const numbers[] = {&record.row_count, &record.row_size,
                                   &record.row_offset, &record.string_offset,
                                   &record.string_size};
  constexpr std::int32_t kWrong[] = {-1, 0x7FFFFFFF, 1, 0x40000000};
  auto& number = *numbers[choice / 4 % 5];
  number = static_cast<std::int32_t>(std::int64_t{number} + kWrong[choice % 4]);
}

void Repair(File* file, std::uint32_t choice) {
  for (auto& record : file->records) RepairNumbers(&record, *file);
  if (choice % 8 == 0) Spoil(file, choice / 8);
}

Bytes Join(File const& file) {
  Bytes bytes = file.header;
  for (auto const& record : file.records) bytes += test::Record(record);
  return bytes + Bytes(1, '\0') + file.data;
}

// Numbers of one section of an index file.
std::vector<std::int32_t> TakeNumbers(Reader* reader, std::string_view tag,
                                      std::size_t width) {
  reader->Take(tag.size());
  auto const room = reader->rest().size() / 4 / width;
  auto count = reader->TakeInt32();
  count = Within(count, static_cast<std::int64_t>(std::min<std::size_t>(
                            room, static_cast<std::size_t>(kMostRows))));
  std::vector<std::int32_t> numbers;
  for (std::size_t i = 0; i < static_cast<std::size_t>(count) * width; ++i) {
    numbers.push_back(reader->TakeInt32());
  }
  return numbers;
}

Bytes JoinNumbers(std::vector<std::int32_t> const& numbers) {
  Bytes bytes;
  for (auto const number : numbers) bytes += Le32(number);
  return bytes;
}

// The three sections of a table of that many rows.
Bytes RepairSections(Reader* reader, std::int32_t rows, bool exact) {
  auto ids = TakeNumbers(reader, "ID", 2);
  auto folge = TakeNumbers(reader, "FOLGE", 1);
  auto status = TakeNumbers(reader, "STATUS", 1);
  if (exact) status.resize(static_cast<std::size_t>(rows));
  rows = static_cast<std::int32_t>(status.size());
  folge.resize(status.size() + 1, -1);
  ids.resize(std::min(ids.size(), 2 * status.size()));
  for (auto& row : folge) row = row < 0 || rows == 0 ? -1 : row % rows;
  for (std::size_t i = 1; i < ids.size(); i += 2) {
    ids[i] = Within(ids[i], rows - 1);
  }
  return "ID" + Le32(static_cast<std::int32_t>(ids.size() / 2)) +
         JoinNumbers(ids) + "FOLGE" + Le32(rows + 1) + JoinNumbers(folge) +
         "STATUS" + Le32(rows) + JoinNumbers(status);
}

}  // namespace

Bytes RepairDatabase(Bytes const& bytes, std::uint32_t choice) {
  File file = Take(bytes);
  Repair(&file, choice);
  return Join(file);
}

std::pair<Bytes, Bytes> SplitPair(Bytes const& bytes) {
  auto const place = bytes.find(kPairMarker);
  if (place == bytes.npos) return {bytes, bytes};
  return {bytes.substr(0, place), bytes.substr(place + kPairMarker.size())};
}

Bytes JoinPair(Bytes const& main, Bytes const& user) {
  return main + Bytes(kPairMarker) + user;
}

Bytes RepairPair(Bytes const& bytes, std::uint32_t choice) {
  auto const [main_bytes, user_bytes] = SplitPair(bytes);
  File main = Take(main_bytes);
  File user = Take(user_bytes);
  bool const same_tables = choice % 4 != 0;
  for (std::size_t i = 0; same_tables && i < user.records.size(); ++i) {
    if (main.records.empty()) break;
    auto const& model = main.records[i % main.records.size()];
    user.records[i].name = model.name;
    user.records[i].definition = model.definition;
  }
  Repair(&main, choice / 4);
  Repair(&user, choice / 128);
  return JoinPair(Join(main), Join(user));
}

Bytes RepairIndex(Bytes const& bytes, IndexShape const& shape,
                  std::uint32_t choice) {
  Reader reader(bytes);
  Bytes repaired;
  bool const valid = choice % 4 != 0;
  for (auto const stamp : shape.time_stamps) {
    auto const found = reader.Take(8);
    repaired += valid ? Le64(stamp) : found;
  }
  bool const exact = valid || choice % 8 == 4;
  for (auto const rows : shape.row_counts) {
    repaired += RepairSections(&reader, rows, exact);
  }
  return repaired;
}

#ifdef TABWERK_FUZZ

std::size_t MutateAndRepair(std::uint8_t* data, std::size_t size,
                            std::size_t max_size, unsigned seed,
                            RepairFunction repair) {
  std::minstd_rand random(seed);
  size = LLVMFuzzerMutate(data, size, max_size);
  // Every eighth stays as it is: the checks themselves are to be reached, too.
  if (random() % 8 == 0) return size;
  auto const choice = static_cast<std::uint32_t>(random());
  auto const repaired =
      repair(Bytes(reinterpret_cast<char const*>(data), size), choice);
  if (repaired.size() > max_size) return size;
  std::copy(repaired.begin(), repaired.end(), data);
  return repaired.size();
}

#endif

}  // namespace tabwerk::fuzz
