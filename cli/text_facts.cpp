#include "cli/text_facts.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

#include "cli/files.h"
#include "cli/translated_text.h"
#include "schema/part.h"

namespace tabwerk::tool {

TextFacts FactsOf(TableContent const& table) {
  TextFacts facts;
  if (!table.loaded) return facts;
  facts.units = table.part->strings->count();
  facts.unused_units = facts.units;
  std::int32_t longest_place = 0;
  std::unordered_set<std::u16string_view> seen;
  ForEachText(table, [&](StoredText const& stored) {
    auto const length = static_cast<std::int64_t>(stored.text.size());
    // The last text of a store may lack its NUL.
    std::int64_t const size = std::min(length + 1, facts.units - stored.place);
    ++facts.texts;
    facts.unused_units -= size;
    if (!seen.insert(stored.text).second) {
      ++facts.repeated;
      facts.repeated_units += size;
    }
    if (length > facts.longest) {
      facts.longest = length;
      longest_place = stored.place;
    }
  });
  if (facts.longest < 0) return facts;
  ForEachPlace(table,
               [&](std::int32_t place, std::int32_t row, DBFeld const& field) {
                 if (place != longest_place) return true;
                 facts.longest_row = row;
                 facts.longest_column = NameToUtf8(field.name);
                 return false;
               });
  return facts;
}

int LanguagesOf(FileContent const& file) {
  int count = 1;
  for (TableContent const& table : file.tables()) {
    ForEachText(table, [&](StoredText const& stored) {
      count = std::max(count, LanguageCount(stored.text));
    });
  }
  return count;
}

}  // namespace tabwerk::tool
