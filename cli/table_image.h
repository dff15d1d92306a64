// One table of a database, read from the bytes of its files.
#ifndef TABWERK_CLI_TABLE_IMAGE_H
#define TABWERK_CLI_TABLE_IMAGE_H

#include <cstdint>
#include <string>
#include <vector>

#include "cli/check_report.h"
#include "cli/file_image.h"

namespace tabwerk::tool {

// The rows of a table in one file.
struct PartImage {
  FileImage const* file = nullptr;
  RecordImage const* record = nullptr;
  std::int64_t first_row = 0;  // over all files
  bool is_user_file = false;

  std::int64_t RowCount() const { return record->row_count; }
  // Place of a column's value in the file; row counts in this file.
  std::int64_t ByteOf(std::int64_t row, DBFeld const& field) const;
  std::int32_t Number(std::int64_t row, DBFeld const& field) const;
};

// An ID with the row that has it, over all files.
struct RowId {
  std::int32_t id;
  std::int32_t row;

  bool operator==(RowId const&) const = default;
  // clang-tidy takes the comparison with 0 that this stands for for a pointer.
  auto operator<=>(RowId const&) const = default;  // NOLINT
};

// A table whose parts can be loaded.  Borrows the images.
class TableImage {
 public:
  // user may be null.  A part that is missing, damaged or defined otherwise has
  // no rows.
  TableImage(FileImage const& main, RecordImage const& record,
             bool main_is_user_file, FileImage const* user);

  std::string const& name() const { return record_.name; }
  DBDefinition const& definition() const { return record_.definition; }
  std::vector<PartImage> const& parts() const { return parts_; }
  std::int64_t RowCount() const { return row_count_; }
  // False when a part is damaged or defined otherwise.
  bool IsWhole() const { return whole_; }

  // The columns with a meaning of their own; null for one that is missing or
  // holds no integers.
  DBFeld const* id() const { return id_; }
  DBFeld const* folge() const { return folge_; }
  DBFeld const* status() const { return status_; }

  // All IDs, ascending; of one ID the rows in their order.  Needs the column.
  std::vector<RowId> SortedIds() const;

  // Of a row of a part, and of a value in it.
  CheckPlace PlaceOf(PartImage const& part, std::int64_t row) const;
  CheckPlace PlaceOf(PartImage const& part, std::int64_t row,
                     DBFeld const& field) const;
  // The part that has a row over all files.
  PartImage const& PartOf(std::int64_t row) const;

 private:
  void AddPart(FileImage const& file, RecordImage const& record,
               bool is_user_file);

  RecordImage const& record_;
  std::vector<PartImage> parts_;
  std::int64_t row_count_ = 0;
  bool whole_ = true;
  DBFeld const* id_ = nullptr;
  DBFeld const* folge_ = nullptr;
  DBFeld const* status_ = nullptr;
};

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TABLE_IMAGE_H
