#include "bench/support/rows.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <random>

namespace tabwerk::bench {
namespace {

constexpr std::array<std::u16string_view, 16> kWords = {
    u"Pump",   u"Valve",  u"Filter", u"Abscess", u"Gasket", u"Bearing",
    u"Flange", u"Nozzle", u"Motor",  u"Sensor",  u"Relay",  u"Abrasive",
    u"Clamp",  u"Spring", u"Washer", u"Coupling"};

class Generator {
 public:
  explicit Generator(std::uint32_t seed) : random_(seed) {}

  // A number from 0 to limit - 1.  Not by a distribution of the standard
  // library, whose results are not the same everywhere.
  std::uint32_t Below(std::uint32_t limit) {
    return static_cast<std::uint32_t>(std::uint64_t{random_()} * limit >> 32);
  }

  // A word, a blank and letters or digits.
  std::u16string Name() {
    std::size_t const length = 8 + Below(17);
    std::u16string name(kWords[Below(kWords.size())]);
    name += u' ';
    bool const ends_in_digits = Below(8) == 0;
    while (name.size() < length) {
      bool const digit = ends_in_digits && name.size() + 3 >= length;
      name +=
          static_cast<char16_t>(digit ? u'0' + Below(10) : u'a' + Below(26));
    }
    return name;
  }

  std::u16string Note() {
    std::u16string note(Below(121), u' ');
    for (auto& unit : note) {
      if (Below(6) != 0) unit = static_cast<char16_t>(u'a' + Below(26));
    }
    return note;
  }

 private:
  std::mt19937 random_;
};

std::vector<Row> MakeRows(long count) {
  Generator generator(20250101);
  std::vector<Row> rows(static_cast<std::size_t>(count));
  std::int32_t number = 0;
  for (auto& row : rows) {
    ++number;
    row.id = number;
    row.folge = number;
    row.status = 0;
    row.price = generator.Below(40000) / 4.0;
    row.name = generator.Name();
    if (generator.Below(10) == 0) {
      row.name = u"#TS(" + row.name + u'\u00AC' + generator.Name() + u")TS~";
    }
    row.note = generator.Note();
  }
  return rows;
}

}  // namespace

std::vector<Row> const& Rows(long count) {
  static std::vector<Row> rows;
  if (rows.size() != static_cast<std::size_t>(count)) rows = MakeRows(count);
  return rows;
}

std::vector<std::int32_t> const& ShuffledIds(long count) {
  static std::vector<std::int32_t> ids;
  if (ids.size() != static_cast<std::size_t>(count)) {
    ids.resize(static_cast<std::size_t>(count));
    std::iota(ids.begin(), ids.end(), 1);
    Generator generator(7);
    for (std::size_t i = ids.size(); i > 1; --i) {
      std::swap(ids[i - 1],
                ids[generator.Below(static_cast<std::uint32_t>(i))]);
    }
  }
  return ids;
}

}  // namespace tabwerk::bench
