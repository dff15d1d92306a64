#include "table/text_places.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "schema/bytes.h"
#include "schema/layout.h"

namespace tabwerk {
namespace {

bool StartsAText(DBStringMemory const& strings, std::size_t place) {
  return place == 0 || LoadValue<char16_t>(strings.data() + 2 * place - 2) == 0;
}

// Gathers the places of the values, one after the other.
class Examination {
 public:
  explicit Examination(DBStringMemory const& strings)
      : strings_(strings), taken_(strings.count()) {
    // A text is put behind the last one, which gets its end by that.
    if (!StartsAText(strings, taken_.size())) found_.most_units = taken_.size();
  }

  void Add(std::int32_t index) {
    if (index < 0) return;  // names no text, now or later
    auto const place = static_cast<std::size_t>(index);
    if (place >= taken_.size()) {
      found_.most_units = std::min(found_.most_units, place);
      return;
    }
    if (taken_[place] || !StartsAText(strings_, place)) found_.shared = true;
    taken_[place] = true;
  }
  TextPlaces const& found() const { return found_; }

 private:
  DBStringMemory const& strings_;
  std::vector<bool> taken_;
  TextPlaces found_;
};

}  // namespace

TextPlaces PlacesOf(TablePart& part, DBDefinition const& definition) {
  auto const record_size =
      static_cast<std::int32_t>(definition.GetMemorySize());
  Examination examination(*part.strings);
  for (std::int32_t row = 0; row < part.Rows(); ++row) {
    auto const* const record = part.Row(row, record_size);
    if (record == nullptr) break;  // so do all rows behind it
    for (auto const* field = definition.GetDefinition(); field != nullptr;
         field = field->next) {
      if (field->type != DBTypeString ||
          !LiesInRecord(field->type, field->offset, record_size)) {
        continue;
      }
      examination.Add(LoadValue<std::int32_t>(record + field->offset));
    }
  }
  return examination.found();
}

}  // namespace tabwerk
