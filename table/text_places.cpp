#include "table/text_places.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "schema/bytes.h"
#include "schema/layout.h"

namespace tabwerk {
namespace {

bool StartsAText(DBStringMemory const& strings, std::size_t place) {
  return place == 0 || LoadValue<char16_t>(strings.data() + 2 * place - 2) == 0;
}

// Calls visit(place) for every place that a string value of the part names.
// Negative ones name no text, now or later.
template <typename Visit>
void ForEachPlace(TablePart& part, DBDefinition const& definition,
                  Visit const& visit) {
  auto const record_size =
      static_cast<std::int32_t>(definition.GetMemorySize());
  for (std::int32_t row = 0; row < part.Rows(); ++row) {
    auto const* const record = part.Row(row, record_size);
    if (record == nullptr) break;  // so do all rows behind it
    for (auto const* field = definition.GetDefinition(); field != nullptr;
         field = field->next) {
      if (field->type != DBTypeString ||
          !LiesInRecord(field->type, field->offset, record_size)) {
        continue;
      }
      auto const index = LoadValue<std::int32_t>(record + field->offset);
      if (index >= 0) visit(static_cast<std::size_t>(index));
    }
  }
}

}  // namespace

std::size_t MostUnitsUnnamed(TablePart& part,
                             DBDefinition const& definition) noexcept {
  std::size_t const count = part.strings->count();
  // A text is put behind the last one, which gets its end by that.
  auto most = StartsAText(*part.strings, count)
                  ? std::numeric_limits<std::size_t>::max()
                  : count;
  ForEachPlace(part, definition, [&](std::size_t place) {
    if (place >= count) most = std::min(most, place);
  });
  return most;
}

bool SharesTexts(TablePart& part, DBDefinition const& definition) {
  auto const& strings = *part.strings;
  std::vector<bool> taken(strings.count());
  bool shares = false;
  ForEachPlace(part, definition, [&](std::size_t place) {
    if (place >= taken.size()) return;
    if (taken[place] || !StartsAText(strings, place)) shares = true;
    taken[place] = true;
  });
  return shares;
}

}  // namespace tabwerk
