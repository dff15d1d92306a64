#include "cli/table_image.h"

#include <algorithm>

#include "cli/files.h"
#include "schema/bytes.h"
#include "schema/layout.h"

namespace tabwerk::tool {
namespace {

DBFeld const* IntegerColumn(DBDefinition const& definition, char const* name) {
  DBFeld* field = nullptr;
  if (definition.GetOffset(name, field) == 0) return nullptr;
  return field->type == DBTypeInteger ? field : nullptr;
}

}  // namespace

std::int64_t PartImage::ByteOf(std::int64_t row, DBFeld const& field) const {
  return record->rows.offset + row * record->RowSize() + field.offset;
}

std::int32_t PartImage::Number(std::int64_t row, DBFeld const& field) const {
  return LoadValue<std::int32_t>(reinterpret_cast<std::byte const*>(
      file->bytes.data() + ByteOf(row, field)));
}

TableImage::TableImage(FileImage const& main, RecordImage const& record,
                       bool main_is_user_file, FileImage const* user)
    : record_(record),
      id_(IntegerColumn(record.definition, "ID")),
      folge_(IntegerColumn(record.definition, "FOLGE")),
      status_(IntegerColumn(record.definition, "STATUS")) {
  AddPart(main, record, main_is_user_file);
  // Of two tables of one name only one gets the user's rows.
  if (user == nullptr || main.Find(record.name) != &record) return;
  RecordImage const* const own = user->Find(record.name);
  if (own == nullptr) return;
  if (SameLayout(record.definition, own->definition)) {
    AddPart(*user, *own, true);
  } else {
    whole_ = false;
  }
}

void TableImage::AddPart(FileImage const& file, RecordImage const& record,
                         bool is_user_file) {
  if (record.damaged) {
    whole_ = false;
    return;
  }
  parts_.push_back({&file, &record, row_count_, is_user_file});
  row_count_ += record.row_count;
}

std::vector<RowId> TableImage::SortedIds() const {
  std::vector<RowId> ids;
  ids.reserve(static_cast<std::size_t>(row_count_));
  for (PartImage const& part : parts_) {
    for (std::int64_t row = 0; row < part.RowCount(); ++row) {
      ids.push_back({part.Number(row, *id_),
                     static_cast<std::int32_t>(part.first_row + row)});
    }
  }
  // Most tables are in order already.
  if (!std::is_sorted(ids.begin(), ids.end())) {
    std::sort(ids.begin(), ids.end());
  }
  return ids;
}

CheckPlace TableImage::PlaceOf(PartImage const& part, std::int64_t row) const {
  CheckPlace place;
  place.file = part.file->path;
  place.byte = part.record->rows.offset + row * part.record->RowSize();
  place.table = name();
  place.row = part.first_row + row;
  if (id_ != nullptr) place.id = part.Number(row, *id_);
  return place;
}

CheckPlace TableImage::PlaceOf(PartImage const& part, std::int64_t row,
                               DBFeld const& field) const {
  CheckPlace place = PlaceOf(part, row);
  place.byte = part.ByteOf(row, field);
  place.column = NameToUtf8(field.name);
  return place;
}

PartImage const& TableImage::PartOf(std::int64_t row) const {
  PartImage const* part = &parts_.front();
  for (PartImage const& it : parts_) {
    if (row >= it.first_row) part = &it;
  }
  return *part;
}

}  // namespace tabwerk::tool
