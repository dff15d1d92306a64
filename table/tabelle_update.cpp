// Writing a whole row from texts by column name.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <string_view>

#include "DBDirectory.h"
#include "DBTabelle.h"
#include "platform/guarded.h"
#include "platform/numbers.h"
#include "table/sub_table.h"
#include "table/table_access.h"

namespace {

using tabwerk::Guarded;
using tabwerk::TableAccess;

using Values = std::map<std::string, std::wstring>;

constexpr long kStatusWithoutPlace = 2;

// The row that is being written.
//
// The steps go through the table's own selection, one column after the other:
// which row a value ends in depends on where the steps before it left the
// table, and hosts rely on that.
class RowWriter {
 public:
  RowWriter(DBTabelle& table, Values const& values, DBTabelle::Action action)
      : table_(table), values_(values), action_(action) {}

  bool Write(DBFeld const* fields);

 private:
  zWString Text(char const* key) {
    auto const found = values_.find(key);
    return found == values_.end() ? zWString()
                                  : zWString(found->second.c_str());
  }
  long Number(char const* key) {
    return tabwerk::platform::ParseInt32(Text(key).view());
  }

  bool WriteField(DBFeld const& field);
  bool WriteId();
  bool WritePlace();
  bool MakePlace(long place, long active_rows);
  bool WriteStatus();
  bool WriteName(char const* column);
  bool WriteByType(DBFeld const& field);

  DBTabelle& table_;
  Values const& values_;
  DBTabelle::Action action_;
  long row_id_ = 0;
};

bool RowWriter::Write(DBFeld const* fields) {
  for (auto const* field = fields; field != nullptr; field = field->next) {
    table_.SelectColumn(field->name);
    if (!WriteField(*field)) return false;
  }
  return true;
}

bool RowWriter::WriteField(DBFeld const& field) {
  std::string_view const name = field.name;
  if (name == "ID") return WriteId();
  if (name == "FOLGE") return WritePlace();
  if (name == "STATUS") return WriteStatus();
  bool const unique = name == "NAME" || name == "BEZ_DIN";
  // Of two columns of one name the first is selected: where it holds numbers,
  // no "_NEW" makes another value of a text.
  bool const has_texts =
      field.type == DBTypeString && table_.GetType() == DBTypeString;
  if (unique && has_texts) return WriteName(field.name);
  return WriteByType(field);
}

bool RowWriter::WriteId() {
  auto const given = Number("ID");
  if (action_ == DBTabelle::ActionUpdate) {
    if (table_.SelectZeile("ID", given) == 0) return false;
    row_id_ = given;
    return true;
  }
  row_id_ = table_.NewUserID();
  if (table_.SetWert(row_id_) == 0) return false;
  if (action_ == DBTabelle::ActionAppend) return true;
  // Kept: a taken ID leaves the table on the row that holds it, so the columns
  // up to the next one that reselects go into that row.
  if (table_.SelectZeile("ID", given) != 0) return true;
  if (table_.SetWert(given) == 0) return false;
  row_id_ = given;
  return true;
}

bool RowWriter::WritePlace() {
  bool const has_place = Number("STATUS") != kStatusWithoutPlace ||
                         action_ == DBTabelle::ActionAppend;
  if (!has_place) return table_.SetWert(0L) != 0;
  if (action_ == DBTabelle::ActionUpdate) return true;
  // Kept: without a row to move away, the new one goes behind the last active
  // row, whatever place was given.
  long place = table_.GetAnzahlAktiveZeilen();
  auto const given = Number("FOLGE");
  if (action_ == DBTabelle::ActionInsert &&
      table_.SelectZeile("FOLGE", given) != 0) {
    if (!MakePlace(given, place)) return false;
    place = given;
  }
  table_.SelectColumn("FOLGE");
  return table_.SetWert(place) != 0;
}

// Moves the rows from that place on up by one, the last one first, and returns
// to the written row.
bool RowWriter::MakePlace(long place, long active_rows) {
  for (long k = active_rows - 1; k >= place; --k) {
    if (table_.SelectZeile("FOLGE", k) == 0) continue;
    if (table_.SetWert(k + 1) == 0) return false;
  }
  table_.SelectZeile("ID", row_id_);
  return true;
}

bool RowWriter::WriteStatus() {
  bool const append = action_ == DBTabelle::ActionAppend;
  return table_.SetWert(append ? 0L : Number("STATUS")) != 0;
}

// Kept: the row that is being updated counts as taken, too, so an unchanged
// name gets "_NEW" as well.
bool RowWriter::WriteName(char const* column) {
  zWString name = Text(column);
  // Not by SelectZeile: without memory that takes every name for a free one.
  while (TableAccess::SelectText(table_, column, name.view()) != 0) {
    name += zWString(u"_NEW");
  }
  table_.SelectZeile("ID", row_id_);
  table_.SelectColumn(column);
  return table_.SetWert(name.utf16()) != 0;
}

bool RowWriter::WriteByType(DBFeld const& field) {
  switch (field.type) {
    case DBTypeReal:
      return table_.SetWert(
                 tabwerk::platform::ParseReal(Text(field.name).view())) != 0;
    case DBTypeInteger:
      return table_.SetWert(Number(field.name)) != 0;
    case DBTypeString:
      return table_.SetWert(Text(field.name).utf16()) != 0;
    case DBTypeUnknown:
      break;
  }
  return false;
}

}  // namespace

bool DBTabelle::SetZeileWerte(std::map<std::string, std::wstring>& values,
                              DBTabelle::Action action) {
  return Guarded(false, [&] {
    if (sub_tables_.empty()) return false;
    if (action != ActionUpdate && !NeueZeile(true)) return false;
    auto const& definition = *sub_tables_.front().entry->GetDefinition();
    return RowWriter(*this, values, action).Write(definition.GetDefinition());
  });
}

std::wstring DBTabelle::mapGetString(
    std::map<std::string, std::wstring>& values, std::string key) {
  return Guarded(std::wstring(), [&] {
    auto const found = values.find(key);
    return found == values.end() ? std::wstring() : found->second;
  });
}
