#include "tests/support/random_files.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "tests/support/random_values.h"
#include "ztypes.h"

namespace tabwerk::test {
namespace {

using model::FileImage;

constexpr std::array kTables{
    std::pair{
        "ARTIKEL",
        "integer ID,integer FOLGE,integer STATUS,string NAME,real PRICE\n"},
    std::pair{"GRUPPE",
              "integer ID,integer FOLGE,integer STATUS,string NAME,"
              "string BEZ_DIN\n"},
    std::pair{"LISTE", "string NAME,integer FOLGE,integer ID\n"},
    std::pair{"REST", "string A,real B\n"},
    std::pair{"WERTE", "integer ID,real FOLGE,integer STATUS,integer N\n"}};

void AddFileRow(Random& random, FileImage::Table* table) {
  auto const definition = model::ParseDefinition(table->definition);
  auto const values = AnyFileRow(random, definition, 15);
  // Lone surrogates come into files through the library only.
  auto const whole = zWString::fromUtf8(zWString(values).toUtf8());
  model::AppendRow(definition, std::u16string(whole.view()), &table->part);
}

}  // namespace

FileImage AnyFile(Random& random, bool is_first) {
  FileImage image;
  auto const headers = std::array{PlainHeader::kCurrent, PlainHeader::kCurrent,
                                  PlainHeader::kCurrent, PlainHeader::k2018,
                                  PlainHeader::k2016,    PlainHeader::kNone};
  image.header = AnyOf(random, headers);
  image.time_stamp = random.Between(1, 5000);
  for (auto const& [name, definition] : kTables) {
    if (random.OneIn(is_first ? 3 : 6)) continue;
    image.tables.push_back({name, definition, {}});
    for (int i = random.Between(0, 8); i > 0; --i) {
      AddFileRow(random, &image.tables.back());
    }
  }
  if (image.tables.empty()) {
    image.tables.push_back({"REST", kTables[3].second, {}});
  }
  if (random.OneIn(3)) {
    std::reverse(image.tables.begin(), image.tables.end());
  }
  return image;
}

void ChangeFile(Random& random, FileImage* image) {
  for (auto& table : image->tables) {
    auto& rows = table.part.rows;
    if (!rows.empty() && random.OneIn(2)) rows.erase(rows.begin());
    if (random.OneIn(2)) std::reverse(rows.begin(), rows.end());
    for (int i = random.Between(0, 3); i > 0; --i) {
      AddFileRow(random, &table);
    }
  }
  if (random.OneIn(8) && image->tables.size() > 1) {
    image->tables.pop_back();
  } else if (random.OneIn(8)) {
    std::reverse(image->tables.begin(), image->tables.end());
  }
  image->time_stamp += random.OneIn(6) ? 0 : 1;
}

char const* AnyTable(Random& random) { return AnyOf(random, kTables).first; }

}  // namespace tabwerk::test
