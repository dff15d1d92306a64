// Random arguments for operations on tables.
#ifndef TABWERK_TESTS_SUPPORT_RANDOM_VALUES_H
#define TABWERK_TESTS_SUPPORT_RANDOM_VALUES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include "tests/support/plain_model.h"
#include "tests/support/random_table.h"

namespace tabwerk::test {

template <typename T, std::size_t N>
T const& AnyOf(Random& random, std::array<T, N> const& choices) {
  return choices[static_cast<std::size_t>(
      random.Between(0, static_cast<int>(N) - 1))];
}

// Few different texts, so that names clash and rows are found; several
// languages, a lone surrogate and a pair among them.
inline std::u16string AnyText(Random& random) {
  static std::array<std::u16string, 24> const kTexts{
      u"",
      u"a",
      u"b",
      u"ab",
      u"Pump",
      u"Pump",
      u"Pump_NEW",
      u"Pump_NEW_NEW",
      u"Abc",
      u"abcdefghijklmnopqrstuvwxyz",
      u"7",
      u"1.5",
      u" 20001",
      u"-3 rows",
      u"#TS(Yes\u00ACJa)TS~",
      u"x #TS(Pump\u00ACPumpe)TS~ #TS(b\u00AC\u00ACc)TS~",
      u"#TS(x#TS(y)TS~\u00ACz)TS~",
      u"#TS(open\u00ACoffen",
      u"Ja",
      u"\u00C4rger",
      u"\u65E5\u672C",
      std::u16string(1, char16_t{0xD83D}),
      std::u16string{char16_t{0xD83D}, char16_t{0xDE00}},
      u"a,b;\"c\""};
  return AnyOf(random, kTexts);
}

// Small numbers, row numbers, user IDs; now and then the ends of the range and,
// where long is wider, a number beyond them.
inline long AnyNumber(Random& random, int rows) {
  if (random.OneIn(60)) {
    return random.OneIn(2) ? std::numeric_limits<std::int32_t>::max()
                           : std::numeric_limits<std::int32_t>::min();
  }
  if (sizeof(long) > 4 && random.OneIn(60)) {
    return static_cast<long>(std::int64_t{1} << 32U) + random.Between(0, 3);
  }
  if (random.OneIn(8)) return 19998 + random.Between(0, 6);
  if (random.OneIn(5)) return random.Between(0, 2);
  return random.Between(-1, rows + 2);
}

inline std::u16string AnyNumberText(Random& random, int rows) {
  if (random.OneIn(20)) {
    return AnyOf(random, std::array<std::u16string, 5>{u"", u"x", u" +7",
                                                       u"99999999999", u"1.5"});
  }
  auto const text = std::to_string(random.Between(0, rows + 2));
  return std::u16string(text.begin(), text.end());
}

inline double AnyReal(Random& random, int rows) {
  if (random.OneIn(20)) return std::numeric_limits<double>::infinity();
  if (random.OneIn(20)) return std::numeric_limits<double>::quiet_NaN();
  if (random.OneIn(10)) return 1e300;
  if (random.OneIn(4)) return 1.5;
  return random.Between(-1, rows);
}

// A map for SetZeileWerte; some of the columns are missing.
inline model::Values AnyRow(Random& random, model::Definition const& definition,
                            int rows) {
  model::Values values;
  for (auto const& field : definition.fields) {
    if (random.OneIn(6)) continue;
    auto& text = values[field.name];
    if (field.name == "STATUS") {
      text = AnyOf(random, std::array<std::u16string, 6>{u"0", u"0", u"0", u"1",
                                                         u"2", u"7"});
    } else if (field.name == "ID" && random.OneIn(4)) {
      auto const id = std::to_string(20000 + random.Between(0, rows));
      text = std::u16string(id.begin(), id.end());
    } else if (field.type == model::Type::kString) {
      text = AnyText(random);
    } else {
      text = AnyNumberText(random, rows);
    }
  }
  return values;
}

// The values of a row as a file or a test table has them: "1|Anna".
inline std::u16string AnyFileRow(Random& random,
                                 model::Definition const& definition,
                                 int rows) {
  std::u16string row;
  for (auto const& field : definition.fields) {
    if (&field != &definition.fields.front()) row += u'|';
    if (field.name == "STATUS") {
      row += random.OneIn(4) ? u"1" : u"0";
    } else if (field.type == model::Type::kString) {
      row += AnyText(random);
    } else {
      auto const number = std::to_string(random.Between(0, rows + 1));
      row += std::u16string(number.begin(), number.end());
    }
  }
  return row;
}

}  // namespace tabwerk::test

#endif  // TABWERK_TESTS_SUPPORT_RANDOM_VALUES_H
