// Whole rows and the dump of the plain table.
#include <cstring>

#include "tests/support/decimal.h"
#include "tests/support/plain_model.h"

namespace tabwerk::test::model {
namespace {

std::u16string TextOf(Values const& values, std::string const& key) {
  auto const found = values.find(key);
  return found == values.end() ? u"" : found->second;
}

std::u16string Wide(std::string const& text) {
  return std::u16string(text.begin(), text.end());
}

std::u16string Shown(Part const& part, Bytes const& record,
                     Field const& field) {
  auto const* const place = record.data() + field.offset;
  if (field.type == Type::kReal) {
    double value;
    std::memcpy(&value, place, sizeof value);
    return Wide(Decimal(value));
  }
  if (field.type == Type::kUnknown) return u"";
  std::int32_t value;
  std::memcpy(&value, place, sizeof value);
  if (field.type == Type::kInteger) return Wide(Decimal(value));
  return u"\"" + TextAt(part.store, value).value_or(u"") + u"\"";
}

}  // namespace

bool Table::SetRowValues(Values const& values, Action action) {
  if (accessors.empty()) return false;
  if (action != Action::kUpdate && !NewRow(true)) return false;
  std::int64_t row_id = 0;
  for (auto const& field : entry->definition.fields) {
    SelectColumn(field.name);
    if (!WriteField(field, values, action, &row_id)) return false;
  }
  return true;
}

bool Table::WriteField(Field const& field, Values const& values, Action action,
                       std::int64_t* row_id) {
  auto const& name = field.name;
  auto const text = TextOf(values, name);
  if (name == "ID") return WriteId(ToInteger(text), action, row_id);
  if (name == "FOLGE") return WritePlace(values, action, *row_id);
  if (name == "STATUS") {
    return SetInteger(action == Action::kAppend ? 0 : ToInteger(text)) == 1;
  }
  bool const is_name = name == "NAME" || name == "BEZ_DIN";
  if (is_name && field.type == Type::kString) {
    return WriteName(name, text, *row_id);
  }
  switch (field.type) {
    case Type::kReal:
      return SetReal(ToReal(text)) == 1;
    case Type::kInteger:
      return SetInteger(ToInteger(text)) == 1;
    case Type::kString:
      return SetText(text) == 1;
    case Type::kUnknown:
      break;
  }
  return false;
}

bool Table::WriteId(std::int64_t given, Action action, std::int64_t* row_id) {
  if (action == Action::kUpdate) {
    if (SelectInteger("ID", given) == 0) return false;
    *row_id = given;
    return true;
  }
  auto const id = NewUserId();
  if (SetInteger(id) == 0) return false;
  *row_id = id;
  if (action == Action::kInsert && SelectInteger("ID", given) == 0) {
    if (SetInteger(given) == 0) return false;
    *row_id = given;
  }
  return true;
}

bool Table::WritePlace(Values const& values, Action action,
                       std::int64_t row_id) {
  auto const status = ToInteger(TextOf(values, "STATUS"));
  if (status == 2 && action != Action::kAppend) return SetInteger(0) == 1;
  if (action == Action::kUpdate) return true;
  auto place = ActiveRowCount();
  auto const given = ToInteger(TextOf(values, "FOLGE"));
  if (action == Action::kInsert && SelectInteger("FOLGE", given) == 1) {
    for (auto k = place - 1; k >= given; --k) {
      if (SelectInteger("FOLGE", k) == 0) continue;
      if (SetInteger(k + 1) == 0) return false;
    }
    SelectInteger("ID", row_id);
    place = given;
  }
  SelectColumn("FOLGE");
  return SetInteger(place) == 1;
}

bool Table::WriteName(std::string const& column, std::u16string name,
                      std::int64_t row_id) {
  while (SelectText(column, name) == 1) name += u"_NEW";
  SelectInteger("ID", row_id);
  SelectColumn(column);
  return SetText(name) == 1;
}

int Table::Dump(std::u16string const& separator, bool user,
                std::u16string* lines) {
  lines->clear();
  std::size_t const index = user ? 1 : 0;
  if (index >= accessors.size()) return 1;
  auto& accessor = accessors[index];
  auto const& part = *accessor.part;
  auto const& fields = entry->definition.fields;
  for (std::size_t row = 0; row < part.rows.size(); ++row) {
    accessor.row = static_cast<std::int64_t>(row);
    for (std::size_t i = 0; i < fields.size(); ++i) {
      if (!fields[i].name.empty()) {
        accessor.field = &fields[i];
        *lines += Shown(part, part.rows[row], fields[i]);
      }
      if (i + 1 < fields.size()) *lines += separator;
    }
    *lines += u'\n';
  }
  return static_cast<int>(part.rows.size()) + 1;
}

}  // namespace tabwerk::test::model
