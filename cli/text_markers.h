// A stored text taken apart at the markers of its sections for several
// languages: "#TS(Bolt¬Schraube)TS~" holds two pieces.
#ifndef TABWERK_CLI_TEXT_MARKERS_H
#define TABWERK_CLI_TEXT_MARKERS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tabwerk::tool {

inline constexpr std::u16string_view kOpening = u"#TS(";
inline constexpr std::u16string_view kClosing = u")TS~";
inline constexpr char16_t kSeparator = u'\u00AC';

// Where a section stands; units from the beginning of the text.
struct SectionPlace {
  static constexpr std::size_t kNone = std::u16string_view::npos;

  std::size_t begin = kNone;    // of the opening marker; kNone: no section
  std::size_t closing = kNone;  // of the closing marker; kNone: it has none

  bool IsThere() const { return begin != kNone; }
  bool IsClosed() const { return closing != kNone; }
  // Both for a closed one: what stands in it, and the first unit behind it.
  std::u16string_view Content(std::u16string_view text) const {
    std::size_t const first = begin + kOpening.size();
    return text.substr(first, closing - first);
  }
  std::size_t End() const { return closing + kClosing.size(); }
};

// The first section that begins there or behind.  Sections do not nest: each
// ends at the first closing marker.
SectionPlace FindSection(std::u16string_view text, std::size_t from);
// Adds the pieces of a section's content, at least one.
void AddPieces(std::u16string_view content,
               std::vector<std::u16string_view>* pieces);

// A closed section of a text.  Views are into the text.
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

// The closed sections front to back.
std::vector<MarkedSection> MarkedSections(std::u16string_view text);

// The first fault of each kind, in the order of their places.
std::vector<FoundFault> MarkerFaults(std::u16string_view text);

}  // namespace tabwerk::tool

#endif  // TABWERK_CLI_TEXT_MARKERS_H
