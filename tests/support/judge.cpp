#include "tests/support/judge.h"

#include <array>
#include <cstdio>

#include "schema/bytes.h"
#include "schema/part.h"
#include "table/table_access.h"
#include "tests/support/decimal.h"

namespace tabwerk::test {
namespace {

std::string Hex(unsigned char const* bytes, std::size_t size) {
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  for (std::size_t i = 0; i < size; ++i) {
    text += kDigits[bytes[i] >> 4U];
    text += kDigits[bytes[i] & 15U];
  }
  return text;
}

}  // namespace

std::wstring WideText(std::u16string const& units) {
  return zWString(units).toStdWString();
}

std::string Shown(std::u16string_view units) {
  std::string shown;
  for (char16_t const unit : units) {
    if (unit >= 0x20 && unit < 0x7F) {
      shown += static_cast<char>(unit);
      continue;
    }
    std::array<char, 8> number{};
    std::snprintf(number.data(), number.size(), "<%04X>",
                  static_cast<unsigned>(unit));
    shown += number.data();
  }
  return shown;
}

std::string ValueOf(DBTabelle& table) {
  long integer = 0;
  double real = 0;
  zWString text;
  std::string shown = std::to_string(table.GetType());
  if (table.GetWert(integer) != 0) shown += " " + std::to_string(integer);
  if (table.GetWert(real) != 0) shown += " " + Decimal(real);
  if (table.GetWert(text) != 0) shown += " \"" + Shown(text.view()) + "\"";
  return shown;
}

std::string ValueOf(model::Table const& table) {
  std::int64_t integer = 0;
  double real = 0;
  std::u16string text;
  std::string shown = std::to_string(static_cast<int>(table.CurrentType()));
  if (table.GetInteger(&integer) != 0) shown += " " + std::to_string(integer);
  if (table.GetReal(&real) != 0) shown += " " + Decimal(real);
  if (table.GetText(&text) != 0) shown += " \"" + Shown(text) + "\"";
  return shown;
}

std::string SelectionOf(model::Table const& table) {
  auto const name = [](model::Field const* field) {
    return field == nullptr ? "-" : field->name;
  };
  std::string follows;
  if (table.folge_selected) follows = "FOLGE";
  if (table.status_selected) follows = "STATUS";
  if (table.id_selected) follows = "ID";
  auto text = name(table.current_field) + " follows " + follows + ", part " +
              std::to_string(table.current_part) + " row " +
              std::to_string(table.current_row) + ", parts";
  for (auto const& accessor : table.accessors) {
    text += " " + name(accessor.field) + "@" + std::to_string(accessor.row);
  }
  return text;
}

std::string IndicesOf(model::Table const& table) {
  std::string ids;
  for (auto const& [id, row] : table.id_index) {
    ids += (ids.empty() ? "" : " ") + std::to_string(id) + ">" +
           std::to_string(row);
  }
  return "ID " + ids + " FOLGE " + ShownNumbers(table.folge_index) +
         " STATUS " + ShownNumbers(table.status_index);
}

std::string BlocksOf(DBTabelle& table) {
  std::string text;
  for (auto const& sub_table : TableAccess::SubTables(table)) {
    auto const& part = *sub_table.part;
    text += "rows ";
    if (part.rows.size() != 0) {
      text += Hex(reinterpret_cast<unsigned char const*>(part.rows.data()),
                  part.rows.size());
    }
    std::u16string units;
    for (std::size_t i = 0; i < part.strings->count(); ++i) {
      units += LoadValue<char16_t>(part.strings->data() + 2 * i);
    }
    text += "\ntexts " + Shown(units) + "\n";
  }
  return text;
}

std::string BlocksOf(model::Table const& table) {
  std::string text;
  for (auto const& accessor : table.accessors) {
    text += "rows ";
    for (auto const& row : accessor.part->rows) {
      text += Hex(row.data(), row.size());
    }
    text += "\ntexts " + Shown(accessor.part->store) + "\n";
  }
  return text;
}

std::string Tail(std::vector<std::string> const& log) {
  constexpr std::size_t kLast = 30;
  std::string text;
  for (std::size_t i = log.size() < kLast ? 0 : log.size() - kLast;
       i < log.size(); ++i) {
    text += "  " + log[i] + "\n";
  }
  return text;
}

}  // namespace tabwerk::test
