// The rules for the blocks of a database file.
#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "cli/check_structure.h"
#include "cli/text.h"

namespace tabwerk::tool {
namespace {

using enum Severity;

// A number of a record with its place in it.
struct RecordNumber {
  char const* what;
  std::int64_t value;
  std::int64_t at;  // bytes behind the first number
};

// True when a number is negative; the first one is reported.
bool HasNegative(FileImage const& image, RecordImage const& record,
                 CheckReport& report) {
  for (auto const& [what, value, at] :
       {RecordNumber{"number of rows", record.row_count, 0},
        RecordNumber{"size of the row block", record.row_size, 8},
        RecordNumber{"offset of the row block", record.row_offset, 12},
        RecordNumber{"offset of the string block", record.string_offset, 16},
        RecordNumber{"size of the string block", record.string_size, 20}}) {
    if (value >= 0) continue;
    report.AddDamage(TW(340), At(image, record, record.numbers_at + at),
                     fmt::format("the {} is {}", what, value), kRestore);
    return true;
  }
  return false;
}

// False when the rows cannot be read.
bool CheckRowCount(FileImage const& image, RecordImage const& record,
                   CheckReport& report) {
  std::int64_t const needed = record.row_count * record.RowSize();
  if (record.row_count > 0 && record.RowSize() == 0) {
    report.AddDamage(TW(343), At(image, record, record.numbers_at),
                     fmt::format("the table has {} without a byte in them",
                                 Count(record.row_count, "row")),
                     kRestore);
    return false;
  }
  if (needed > record.row_size) {
    report.AddDamage(TW(341), At(image, record, record.numbers_at),
                     fmt::format("{} of {} do not fit into a row block of {}",
                                 Count(record.row_count, "row"),
                                 Count(record.RowSize(), "byte"),
                                 Count(record.row_size, "byte")),
                     kRestore);
    return false;
  }
  if (needed < record.row_size) {
    report.Add(kWarning, TW(342),
               At(image, record, record.rows.offset + needed),
               fmt::format("{} of the row block stand behind its last row",
                           Count(record.row_size - needed, "byte")),
               kSaveAnew);
  }
  return true;
}

// False when the block does not lie in the file.  at is the place of its offset
// behind the first number.
bool CheckBounds(FileImage const& image, RecordImage const& record,
                 Extent const& block, char const* what, std::int64_t at,
                 CheckReport& report) {
  CheckPlace const place = At(image, record, record.numbers_at + at);
  if (block.offset > std::numeric_limits<std::int32_t>::max()) {
    report.AddDamage(TW(345), place,
                     fmt::format("the {} begins at byte {}, where no 32-bit "
                                 "offset reaches",
                                 what, block.offset),
                     kRestore);
    return false;
  }
  if (block.End() > image.size_bytes) {
    report.AddDamage(TW(344), place,
                     fmt::format("the {} would end at byte {}, but the file at "
                                 "byte {}",
                                 what, block.End(), image.size_bytes),
                     kRestore);
    return false;
  }
  return true;
}

// A block of a table.
struct Block {
  Extent extent;
  RecordImage const* record;
  char const* what;
};

std::vector<Block> BlocksInOrder(
    FileImage const& image, std::vector<RecordImage const*> const& records) {
  std::vector<Block> blocks;
  std::int64_t const unit =
      CharFactor(image.header.version) == 1 ? sizeof(char16_t) : 1;
  for (RecordImage const* const record : records) {
    // A last odd byte belongs to the block as well.
    Extent const strings{record->strings.offset, record->string_size * unit};
    for (Block const& block : {Block{strings, record, "string block"},
                               Block{record->rows, record, "row block"}}) {
      if (block.extent.size > 0) blocks.push_back(block);
    }
  }
  std::sort(blocks.begin(), blocks.end(), [](Block const& a, Block const& b) {
    return a.extent.offset < b.extent.offset;
  });
  return blocks;
}

// Blocks that lie over each other.
void CheckOverlaps(FileImage const& image, std::vector<Block> const& blocks,
                   CheckReport& report) {
  Block const* longest = nullptr;  // that reaches farthest so far
  for (Block const& block : blocks) {
    if (longest != nullptr && block.extent.offset < longest->extent.End()) {
      CheckPlace const place = At(image, *block.record, block.extent.offset);
      std::string const what =
          fmt::format("the {} lies over the {} of table {}", block.what,
                      longest->what, Escape(longest->record->name));
      if (block.record->damaged || longest->record->damaged) {
        report.AddDamage(TW(346), place, what, kRestore);
      } else {
        report.Add(kError, TW(346), place, what, kRestore);
      }
    }
    if (longest == nullptr || block.extent.End() > longest->extent.End()) {
      longest = &block;
    }
  }
}

void CheckUnused(FileImage const& image, std::vector<Block> const& blocks,
                 CheckReport& report) {
  std::int64_t end = image.data_start;
  auto const note = [&](std::int64_t next) {
    if (next > end) {
      report.Add(
          kWarning, TW(347), At(image, end),
          fmt::format("{} belong to no table", Count(next - end, "byte")),
          kSaveAnew);
    }
  };
  for (Block const& block : blocks) {
    note(block.extent.offset);
    end = std::max(end, block.extent.End());
  }
  note(image.size_bytes);
}

}  // namespace

void CheckBlocks(FileImage const& image, CheckReport& report) {
  if (!image.HasWholeList()) return;
  std::vector<RecordImage const*> sound;
  for (RecordImage const& record : image.records) {
    if (HasNegative(image, record, report)) continue;
    bool const has_rows = CheckRowCount(image, record, report);
    bool const rows_lie_inside =
        CheckBounds(image, record, record.rows, "row block", 12, report);
    bool const strings_lie_inside =
        CheckBounds(image, record, record.strings, "string block", 16, report);
    if (record.string_size % CharFactor(image.header.version) != 0) {
      report.Add(kWarning, TW(348), At(image, record, record.numbers_at + 20),
                 fmt::format("the string block has an odd number of bytes, {}",
                             record.string_size),
                 kRestore);
    }
    if (has_rows && rows_lie_inside && strings_lie_inside) {
      sound.push_back(&record);
    }
  }
  std::vector<Block> const blocks = BlocksInOrder(image, sound);
  CheckOverlaps(image, blocks, report);
  // What a damaged table has in the file is not known.
  if (sound.size() == image.records.size() && image.has_list_end) {
    CheckUnused(image, blocks, report);
  }
}

}  // namespace tabwerk::tool
