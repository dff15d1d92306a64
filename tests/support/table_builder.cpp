#include "tests/support/table_builder.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include "schema/bytes.h"
#include "schema/directory_access.h"
#include "table/id_index.h"
#include "table/table_access.h"

namespace tabwerk::test {
namespace {

// A test cannot go on without memory.
void Require(bool done) {
  if (!done) std::abort();
}

std::string NextValue(std::string_view* row) {
  auto const end = row->find('|');
  std::string value(row->substr(0, end));
  row->remove_prefix(end == std::string_view::npos ? row->size() : end + 1);
  return value;
}

void StoreField(TablePart& part, std::byte* record, DBFeld const& field,
                std::string const& value) {
  std::byte* const place = record + field.offset;
  switch (field.type) {
    case DBTypeInteger:
      StoreValue(place, static_cast<std::int32_t>(
                            std::strtol(value.c_str(), nullptr, 10)));
      break;
    case DBTypeReal:
      StoreValue(place, std::strtod(value.c_str(), nullptr));
      break;
    case DBTypeString: {
      auto const index = static_cast<std::int32_t>(part.strings->count());
      Require(part.strings->Append(zWString::fromUtf8(value.c_str()).view()));
      StoreValue(place, index);
      break;
    }
    case DBTypeUnknown:
      break;
  }
}

std::string StringOf(TablePart const& part, std::int32_t index) {
  auto const text = part.strings->Text(index);
  return text ? zWString(*text).toUtf8() : "?";
}

std::string FieldText(TablePart const& part, std::byte const* record,
                      DBFeld const& field) {
  std::byte const* const place = record + field.offset;
  switch (field.type) {
    case DBTypeInteger:
      return std::to_string(LoadValue<std::int32_t>(place));
    case DBTypeReal:
      return zWString(LoadValue<double>(place), 0).toUtf8();
    case DBTypeString:
      return StringOf(part, LoadValue<std::int32_t>(place));
    case DBTypeUnknown:
      break;
  }
  return "";
}

std::string RowText(TablePart const& part, std::byte const* record,
                    DBDefinition const& definition) {
  if (record == nullptr) return "[?]";
  std::string text = "[";
  for (DBFeld const* field = definition.GetDefinition(); field != nullptr;
       field = field->next) {
    text += FieldText(part, record, *field);
    if (field->next != nullptr) text += '|';
  }
  return text + "]";
}

std::string Join(std::vector<std::int32_t> const& numbers) {
  std::string text;
  for (std::int32_t const number : numbers) {
    if (!text.empty()) text += ' ';
    text += std::to_string(number);
  }
  return text;
}

}  // namespace

TestTable::TestTable(char const* definition, std::size_t part_count) {
  std::vector<zWString> files;
  for (std::size_t i = 0; i < part_count; ++i) {
    files.push_back(zWString::fromUtf8("part" + std::to_string(i)));
  }
  directory.Initialize(zWString(u"TEST"), files);
  auto owned = std::make_unique<DBDefinition>(definition);
  Require(directory.AddEntry(owned.release(), "T", zWString(u"part0"), true, 0,
                             0, 0, 0, 0) == 1);
  Require(directory.SelectTabelle("T"));
  entry = directory.GetAktuelleTabelle();
  auto& parts = DirectoryAccess::Parts(*entry);
  parts.resize(part_count);
  for (std::size_t i = 0; i < part_count; ++i) {
    if (parts[i] == nullptr) parts[i] = std::make_unique<TablePart>();
    parts[i]->file_name = files[i];
    parts[i]->loaded = true;
  }
  table.SetDirEntry(entry);
}

TablePart& TestTable::Part(std::size_t part) {
  return *DirectoryAccess::Parts(*entry).at(part);
}

void TestTable::AddRows(std::size_t part,
                        std::initializer_list<std::string_view> rows) {
  for (std::string_view const row : rows) AddRow(part, row);
}

void TestTable::AddRow(std::size_t part, std::string_view row) {
  TablePart& target = Part(part);
  DBDefinition& definition = *entry->GetDefinition();
  auto const size = static_cast<std::size_t>(definition.GetMemorySize());
  std::size_t const used = target.rows.size();
  Require(target.rows.Resize(used + size));
  for (DBFeld const* field = definition.GetDefinition(); field != nullptr;
       field = field->next) {
    StoreField(target, target.rows.data() + used, *field, NextValue(&row));
  }
  ++target.row_count;
  target.row_block_size = static_cast<std::int32_t>(used + size);
  ++target.revision;
}

std::string Rows(DBDirEntry& entry) {
  std::string text;
  for (std::size_t i = 0; i < DirectoryAccess::Parts(entry).size(); ++i) {
    text += Rows(entry, i);
  }
  return text;
}

std::string Rows(DBDirEntry& entry, std::size_t part) {
  TablePart& source = *DirectoryAccess::Parts(entry).at(part);
  DBDefinition const& definition = *entry.GetDefinition();
  auto const size = static_cast<std::int32_t>(definition.GetMemorySize());
  std::string text;
  for (std::int32_t row = 0; row < source.row_count; ++row) {
    text += RowText(source, source.Row(row, size), definition);
  }
  return text;
}

std::string Units(std::u16string_view text) {
  std::string shown;
  for (char16_t const unit : text) {
    if (unit == 0) {
      shown += '^';
    } else if (unit >= 0x20 && unit < 0x7F) {
      shown += static_cast<char>(unit);
    } else {
      std::array<char, 8> number{};
      std::snprintf(number.data(), number.size(), "<%04X>",
                    static_cast<unsigned>(unit));
      shown += number.data();
    }
  }
  return shown;
}

std::string Store(TablePart const& part) {
  std::u16string units;
  for (std::uint32_t i = 0; i < part.strings->count(); ++i) {
    units += LoadValue<char16_t>(part.strings->data() + 2 * std::size_t{i});
  }
  return Units(units);
}

std::string IdIndexOf(DBTabelle& table) {
  std::string text;
  for (auto const& [id, row] : TableAccess::Ids(table).Entries()) {
    if (!text.empty()) text += ' ';
    text += std::to_string(id) + ">" + std::to_string(row);
  }
  return text;
}

std::string FolgeIndexOf(DBTabelle& table) {
  return Join(TableAccess::Folge(table));
}

std::string StatusIndexOf(DBTabelle& table) {
  return Join(TableAccess::Status(table));
}

std::string Indices(DBTabelle& table) {
  return "ID " + IdIndexOf(table) + " FOLGE " + FolgeIndexOf(table) +
         " STATUS " + StatusIndexOf(table);
}

std::string Selected(DBTabelle& table) {
  DBFeld const* const field = table.GetAktuelleFeldDef();
  return (field == nullptr ? std::string("-") : std::string(field->name)) +
         "@" + std::to_string(TableAccess::CurrentRow(table));
}

std::string Value(DBTabelle& table) {
  long integer = 0;
  double real = 0;
  zWString text;
  if (table.GetWert(integer) == 1) return std::to_string(integer);
  if (table.GetWert(real) == 1) return zWString(real, 0).toUtf8();
  if (table.GetWert(text) == 1) return text.toUtf8();
  return "-";
}

}  // namespace tabwerk::test
