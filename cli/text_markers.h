// A stored text taken apart at the markers of its sections for several
// languages.
#ifndef TABWERK_CLI_TEXT_MARKERS_H
#define TABWERK_CLI_TEXT_MARKERS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tabwerk::tool {

// A "#TS(" … ")TS~" of a text.  Views are into the text.
struct MarkedSection {
  std::size_t begin = 0;  // units before it
  std::size_t end = 0;    // the first unit behind it
  std::vector<std::u16string_view> pieces;
};

// What is wrong with the markers of a text.
enum class MarkerFault {
  kUnclosed,  // a section that does not end
  kNested,    // an opening marker inside a section
  kStray,     // a closing marker outside a section
  kBlocked,   // a section behind one that has fewer languages
};

struct FoundFault {
  MarkerFault fault;
  std::size_t at;  // units before it
};

// False for most texts, quickly.
bool HasMarkers(std::u16string_view text);

// The sections front to back.  They do not nest: each ends at the first closing
// marker.  A section that does not end is none.
std::vector<MarkedSection> MarkedSections(std::u16string_view text);

// The first fault of each kind, in the order of their places.
std::vector<FoundFault> MarkerFaults(std::u16string_view text);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TEXT_MARKERS_H
