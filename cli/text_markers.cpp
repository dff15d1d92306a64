#include "cli/text_markers.h"

#include <algorithm>

namespace tabwerk::tool {
namespace {

constexpr auto kNone = SectionPlace::kNone;

}  // namespace

SectionPlace FindSection(std::u16string_view text, std::size_t from) {
  SectionPlace place;
  place.begin = text.find(kOpening, from);
  if (place.IsThere()) {
    place.closing = text.find(kClosing, place.begin + kOpening.size());
  }
  return place;
}

void AddPieces(std::u16string_view content,
               std::vector<std::u16string_view>* pieces) {
  for (;;) {
    auto const separator = content.find(kSeparator);
    pieces->push_back(content.substr(0, separator));
    if (separator == kNone) return;
    content.remove_prefix(separator + 1);
  }
}

bool HasMarkers(std::u16string_view text) {
  return text.find(kOpening) != kNone || text.find(kClosing) != kNone;
}

std::vector<MarkedSection> MarkedSections(std::u16string_view text) {
  std::vector<MarkedSection> sections;
  for (std::size_t from = 0;;) {
    auto const place = FindSection(text, from);
    if (!place.IsClosed()) return sections;
    from = place.End();
    sections.push_back({place.begin, from, {}});
    AddPieces(place.Content(text), &sections.back().pieces);
  }
}

std::vector<FoundFault> MarkerFaults(std::u16string_view text) {
  std::vector<FoundFault> faults;
  auto const add = [&faults](MarkerFault fault, std::size_t at) {
    auto const is_same = [fault](FoundFault const& it) {
      return it.fault == fault;
    };
    if (std::none_of(faults.begin(), faults.end(), is_same)) {
      faults.push_back({fault, at});
    }
  };
  std::size_t fewest = kNone;  // languages of the sections so far
  std::size_t from = 0;
  bool nested = false;
  // What stands between two sections, or behind the last one.
  auto const between = [&](std::size_t end) {
    auto const stray = text.substr(from, end - from).find(kClosing);
    // The end of a nested section stands there by right.
    if (stray != kNone && !nested) add(MarkerFault::kStray, from + stray);
  };
  for (MarkedSection const& section : MarkedSections(text)) {
    between(section.begin);
    auto const content = section.begin + kOpening.size();
    auto const inner =
        text.substr(content, section.end - content).find(kOpening);
    if (inner != kNone) {
      nested = true;
      add(MarkerFault::kNested, content + inner);
    } else if (!nested && section.pieces.size() > fewest) {
      add(MarkerFault::kBlocked, section.begin);
    }
    fewest = std::min(fewest, section.pieces.size());
    from = section.end;
  }
  auto const unclosed = text.find(kOpening, from);
  between(std::min(unclosed, text.size()));
  if (unclosed != kNone) add(MarkerFault::kUnclosed, unclosed);
  return faults;
}

}  // namespace tabwerk::tool
