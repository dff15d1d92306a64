#include "tests/support/plain_model.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <sstream>

#include "tests/support/standard_regex.h"

namespace tabwerk::test::model {
namespace {

int language_number = 0;

template <typename T>
T Load(unsigned char const* place) {
  T value;
  std::memcpy(&value, place, sizeof value);
  return value;
}

template <typename T>
void Store(unsigned char* place, T value) {
  std::memcpy(place, &value, sizeof value);
}

bool IsInt32(std::int64_t value) {
  return value >= std::numeric_limits<std::int32_t>::min() &&
         value <= std::numeric_limits<std::int32_t>::max();
}

std::string Narrow(std::u16string const& text) {
  std::string narrow;
  for (char16_t const unit : text) {
    narrow += unit < 0x80 ? static_cast<char>(unit) : '?';
  }
  return narrow;
}

std::vector<std::u16string> Split(std::u16string const& text,
                                  char16_t separator) {
  std::vector<std::u16string> pieces(1);
  for (char16_t const unit : text) {
    if (unit == separator) {
      pieces.emplace_back();
    } else {
      pieces.back() += unit;
    }
  }
  return pieces;
}

std::int32_t AppendText(std::u16string const& text, std::u16string* store) {
  auto const index = static_cast<std::int32_t>(store->size());
  *store += text;
  *store += u'\0';
  return index;
}

}  // namespace

// --- Definitions, rows and texts --------------------------------------------

std::size_t SizeOf(Type type) {
  switch (type) {
    case Type::kReal:
      return 8;
    case Type::kInteger:
    case Type::kString:
      return 4;
    case Type::kUnknown:
      break;
  }
  return 0;
}

Field const* Definition::Find(std::string const& name) const {
  for (auto const& field : fields) {
    if (field.name == name) return &field;
  }
  return nullptr;
}

Definition ParseDefinition(std::string const& text) {
  Definition definition;
  std::istringstream list(text.substr(0, text.find('\n')));
  for (std::string item; std::getline(list, item, ',');) {
    auto const blank = item.find(' ');
    auto const word = item.substr(0, blank);
    Type type = Type::kUnknown;
    if (word == "real" || word == "DOUBLE") type = Type::kReal;
    if (word == "integer" || word == "LONG") type = Type::kInteger;
    if (word == "string" || word == "STRING") type = Type::kString;
    definition.fields.push_back(
        {item.substr(blank + 1), type, definition.record_size});
    definition.record_size += SizeOf(type);
  }
  return definition;
}

std::optional<std::u16string> TextAt(std::u16string const& store,
                                     std::int32_t index) {
  if (index < 0) return std::nullopt;
  auto const from = static_cast<std::size_t>(index);
  if (from > store.size()) return std::nullopt;
  std::u16string text;
  for (auto i = from; i < store.size() && store[i] != 0; ++i) text += store[i];
  return text;
}

void AppendRow(Definition const& definition, Part* part) {
  Bytes record(definition.record_size, 0);
  for (auto const& field : definition.fields) {
    if (field.type != Type::kString) continue;
    Store(record.data() + field.offset, AppendText(u"", &part->store));
  }
  part->rows.push_back(record);
}

void AppendRow(Definition const& definition, std::u16string const& values,
               Part* part) {
  auto texts = Split(values, u'|');
  texts.resize(definition.fields.size());
  Bytes record(definition.record_size, 0);
  for (std::size_t i = 0; i < texts.size(); ++i) {
    auto const& field = definition.fields[i];
    auto* const place = record.data() + field.offset;
    if (field.type == Type::kInteger) Store(place, ToInteger(texts[i]));
    if (field.type == Type::kReal) Store(place, ToReal(texts[i]));
    if (field.type == Type::kString) {
      Store(place, AppendText(texts[i], &part->store));
    }
  }
  part->rows.push_back(record);
}

void SetLanguage(int language) { language_number = language; }

std::u16string Translate(std::u16string text) {
  for (;;) {
    auto const i = text.find(u"#TS(");
    if (i == std::u16string::npos) return text;
    auto const j = text.find(u")TS~", i);
    if (j == std::u16string::npos) return text;
    auto const pieces = Split(text.substr(i + 4, j - i - 4), u'\u00AC');
    if (language_number < 0) return text;
    auto const wanted = static_cast<std::size_t>(language_number);
    if (wanted >= pieces.size()) return text;
    text = text.substr(0, i) + pieces[wanted] + text.substr(j + 4);
  }
}

std::int32_t ToInteger(std::u16string const& text) {
  auto const narrow = Narrow(text);
  std::size_t i = 0;
  while (i < narrow.size() &&
         std::strchr(" \t\n\v\f\r", narrow[i]) != nullptr) {
    ++i;
  }
  bool const negative = i < narrow.size() && narrow[i] == '-';
  if (i < narrow.size() && (narrow[i] == '-' || narrow[i] == '+')) ++i;
  std::int64_t value = 0;
  for (; i < narrow.size() && narrow[i] >= '0' && narrow[i] <= '9'; ++i) {
    value = value * 10 + (narrow[i] - '0');
    value = std::min(value, std::int64_t{1} << 40U);
  }
  if (negative) value = -value;
  value = std::max<std::int64_t>(value, std::numeric_limits<int>::min());
  value = std::min<std::int64_t>(value, std::numeric_limits<int>::max());
  return static_cast<std::int32_t>(value);
}

double ToReal(std::u16string const& text) {
  auto const narrow = Narrow(text);
  char* end = nullptr;
  double const value = std::strtod(narrow.c_str(), &end);
  // Some C libraries read a sign alone as -0.
  return end == narrow.c_str() ? 0 : value;
}

// --- Rows -------------------------------------------------------------------

Table::Table(Entry* its_entry) : entry(its_entry) {
  for (auto& part : entry->parts) accessors.push_back({&part});
}

bool Table::NewRow(bool user) {
  std::size_t const part = user ? 1 : 0;
  if (part >= accessors.size() || entry->definition.record_size == 0) {
    return false;
  }
  AppendRow(entry->definition, accessors[part].part);
  auto const rows =
      static_cast<std::int64_t>(accessors[part].part->rows.size());
  accessors[part].row = rows - 1;
  status_index.push_back(0);
  folge_index.push_back(-1);
  current_part = part;
  current_row = rows - 1;
  if (user) {
    current_row += static_cast<std::int64_t>(accessors[0].part->rows.size());
  }
  return true;
}

std::int64_t Table::NewUserId() const {
  if (id_index.empty()) return 20000;
  std::int64_t id = std::int64_t{id_index.rbegin()->first} + 1;
  if (id < 20000) id = 20000;
  if (IsInt32(id)) return id;
  id = 20000;
  while (id_index.count(static_cast<std::int32_t>(id)) != 0) ++id;
  return id;
}

std::int64_t Table::RowCount() const {
  std::int64_t rows = 0;
  for (auto const& accessor : accessors) {
    rows += static_cast<std::int64_t>(accessor.part->rows.size());
  }
  return rows;
}

std::int64_t Table::ActiveRowCount() {
  std::string const column =
      current_field == nullptr ? "ID" : current_field->name;
  auto const row = current_row;
  if (SelectColumn("STATUS") == 0) {
    SelectColumn(column);
    SelectRow(row);
    return 0;
  }
  std::int64_t count = 0;
  for (std::int64_t i = 0; i < RowCount(); ++i) {
    std::int64_t status = 0;
    if (SelectRow(i) == 0 || GetInteger(&status) == 0) {
      SelectColumn(column);
      return 0;
    }
    if (status == 0) ++count;
  }
  SelectColumn(column);
  SelectRow(row);
  return count;
}

// --- Selection and search ---------------------------------------------------

int Table::SelectColumn(std::string const& name) {
  folge_selected = name == "FOLGE";
  status_selected = name == "STATUS";
  id_selected = name == "ID";
  auto const* const field = entry->definition.Find(name);
  if (field == nullptr) return 0;
  current_field = field;
  for (auto& accessor : accessors) accessor.field = field;
  return 1;
}

int Table::SelectRow(std::int64_t row) {
  if (row < 0) return 0;
  current_row = row;
  std::int64_t total = 0;
  for (std::size_t k = 0; k < accessors.size(); ++k) {
    auto const before = total;
    total += static_cast<std::int64_t>(accessors[k].part->rows.size());
    if (row < total) {
      current_part = k;
      accessors[k].row = row - before;
      return 1;
    }
  }
  current_part = 0;
  for (std::size_t k = accessors.size(); k-- > 0;) {
    if (accessors[k].part->rows.empty()) continue;
    current_part = k;
    accessors[k].row =
        static_cast<std::int64_t>(accessors[k].part->rows.size()) - 1;
    break;
  }
  current_row = total - 1;
  return 0;
}

std::string Table::Remembered(std::string const& column) const {
  if (current_part >= accessors.size()) return column;
  auto const* const field = accessors[current_part].field;
  return field == nullptr ? column : field->name;
}

int Table::SelectInteger(std::string const& column, std::int64_t value) {
  if (column == "ID") {
    for (auto const& [id, row] : id_index) {
      if (id == value) return SelectRow(row);
    }
    return 0;
  }
  if (column == "FOLGE") {
    if (value < 0 || value >= static_cast<std::int64_t>(folge_index.size())) {
      return 0;
    }
    return SelectRow(folge_index[static_cast<std::size_t>(value)]);
  }
  auto const remembered = Remembered(column);
  int found = 0;
  if (SelectColumn(column) == 1 && SelectRow(0) == 1) {
    for (std::int64_t i = 0;;) {
      std::int64_t stored = 0;
      if (GetInteger(&stored) == 0) break;
      if (stored == value) {
        found = 1;
        break;
      }
      ++i;
      if (i >= RowCount() || SelectRow(i) == 0) break;
    }
  }
  SelectColumn(remembered);
  return found;
}

int Table::SelectReal(std::string const& column, double value) {
  auto const remembered = Remembered(column);
  int found = 0;
  if (SelectColumn(column) == 1 && SelectRow(0) == 1) {
    for (std::int64_t i = 0;;) {
      double stored = 0;
      if (GetReal(&stored) == 0) break;
      if (stored == value) {
        found = 1;
        break;
      }
      ++i;
      if ((i >> (RowCount() % 32)) != 0) break;
      if (SelectRow(i) == 0) break;
    }
  }
  SelectColumn(remembered);
  return found;
}

int Table::SelectText(std::string const& column, std::u16string const& text) {
  auto const remembered = Remembered(column);
  int found = 0;
  if (SelectColumn(column) == 0) {
    SelectColumn(remembered);
    return 0;
  }
  for (std::int64_t i = 0;;) {
    auto const type = CurrentType();
    if (type == Type::kUnknown || SelectRow(i) == 0) break;
    bool match = false;
    if (type == Type::kReal) {
      double stored = 0;
      GetReal(&stored);
      match = stored == ToReal(text);
    } else if (type == Type::kInteger) {
      std::int64_t stored = 0;
      GetInteger(&stored);
      match = stored == ToInteger(text);
    } else {
      std::u16string stored;
      if (GetText(&stored) == 0) break;
      match = stored == text;
    }
    if (match) {
      found = 1;
      break;
    }
    ++i;
    if (i >= RowCount()) break;
  }
  SelectColumn(remembered);
  return found;
}

std::vector<std::int64_t> Table::FindRows(std::string const& column,
                                          std::u16string const& pattern,
                                          bool ids) {
  std::vector<std::int64_t> found;
  auto const remembered = Remembered(column);
  StandardRegex const expression(pattern);
  if (SelectColumn(column) == 1) {
    for (std::int64_t i = 0; i < RowCount(); ++i) {
      std::u16string value;
      if (SelectRow(i) == 0 || GetText(&value) == 0) continue;
      if (!expression.Matches(value)) continue;
      if (!ids) {
        found.push_back(i);
        continue;
      }
      std::int64_t id = 0;
      SelectColumn("ID");
      if (GetInteger(&id) == 1) found.push_back(id);
      SelectColumn(column);
    }
  }
  SelectColumn(remembered);
  return found;
}

// --- Values -----------------------------------------------------------------

unsigned char const* Table::Place(std::size_t size) const {
  if (current_part >= accessors.size()) return nullptr;
  auto const& accessor = accessors[current_part];
  auto& rows = accessor.part->rows;
  if (accessor.field == nullptr || accessor.row < 0 ||
      static_cast<std::size_t>(accessor.row) >= rows.size() ||
      accessor.field->offset + size > entry->definition.record_size) {
    return nullptr;
  }
  return rows[static_cast<std::size_t>(accessor.row)].data() +
         accessor.field->offset;
}

unsigned char* Table::Place(std::size_t size) {
  return const_cast<unsigned char*>(
      static_cast<Table const*>(this)->Place(size));
}

Type Table::CurrentType() const {
  if (current_part >= accessors.size()) return Type::kUnknown;
  auto const* const field = accessors[current_part].field;
  return field == nullptr ? Type::kUnknown : field->type;
}

int Table::GetInteger(std::int64_t* value) const {
  auto const* const place = Place(4);
  if (place == nullptr || CurrentType() != Type::kInteger) return 0;
  *value = Load<std::int32_t>(place);
  return 1;
}

int Table::GetReal(double* value) const {
  auto const* const place = Place(8);
  if (place == nullptr || CurrentType() != Type::kReal) return 0;
  *value = Load<double>(place);
  return 1;
}

int Table::GetText(std::u16string* value) const {
  auto const* const place = Place(4);
  if (place == nullptr || CurrentType() != Type::kString) return 0;
  auto const text =
      TextAt(accessors[current_part].part->store, Load<std::int32_t>(place));
  if (!text) return 0;
  *value = Translate(*text);
  return 1;
}

void Table::Follow(std::int32_t old_value, std::int32_t value) {
  auto const row = static_cast<std::int32_t>(current_row);
  if (folge_selected) {
    if (value >= 1 && static_cast<std::size_t>(value) < folge_index.size()) {
      folge_index[static_cast<std::size_t>(value)] = row;
    }
  } else if (status_selected) {
    if (row >= 0 && static_cast<std::size_t>(row) < status_index.size()) {
      status_index[static_cast<std::size_t>(row)] = value;
    }
  } else if (id_selected && old_value != value) {
    id_index[value] = row;
    id_index.erase(old_value);
  }
}

int Table::SetInteger(std::int64_t value) {
  auto* const place = Place(SizeOf(CurrentType()));
  if (place == nullptr || !IsInt32(value)) return 0;
  bool const is_integer = CurrentType() == Type::kInteger;
  auto const stored = static_cast<std::int32_t>(value);
  Follow(is_integer ? Load<std::int32_t>(place) : 0, stored);
  if (!is_integer) return 0;
  Store(place, stored);
  return 1;
}

int Table::SetReal(double value) {
  auto* const place = Place(8);
  if (place == nullptr || CurrentType() != Type::kReal) return 0;
  Store(place, value);
  return 1;
}

int Table::SetText(std::u16string const& text) {
  auto* const place = Place(4);
  if (place == nullptr) return 0;
  auto& store = accessors[current_part].part->store;
  auto index = Load<std::int32_t>(place);
  auto const old = TextAt(store, index);
  if (!old) return 0;
  bool const at_end = static_cast<std::size_t>(index) == store.size();
  if (at_end || text.size() > old->size()) {
    index = AppendText(text, &store);
  } else {
    store.replace(static_cast<std::size_t>(index), text.size(), text);
    store[static_cast<std::size_t>(index) + text.size()] = 0;
  }
  Store(place, index);
  return 1;
}

int Table::SetBytes(std::string const& text) {
  std::u16string units;
  for (char const byte : text.substr(0, 8095)) {
    auto const unit = static_cast<unsigned char>(byte);
    units += static_cast<char16_t>(unit < 0x80 ? unit : 0xFF00 + unit);
  }
  return SetText(units);
}

}  // namespace tabwerk::test::model
